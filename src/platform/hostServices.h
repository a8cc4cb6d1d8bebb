/// The two services that the host hands in, as the logic calls them.
///
/// Each read is one call into the host, made on the thread of the component, in the order in which the logic asks. A
/// failed call throws Error with the host's number and text (see ErrorNumber). Folders and addresses end in their
/// separator, so that a name can be appended directly.
#pragma once

#include "text/text.h"

#include <cstdint>

namespace qel
{

/// What the host provides while it builds pages.
class BuildHelper
{
public:
    virtual ~BuildHelper() = default;

    /// A text for file names, unique among the modules of a build.
    virtual Text UniqueName() = 0;
    /// A number for names in the page, constant during one page output.
    virtual int32_t InstanceNumber() = 0;
    /// Where tunes are copied to, and the same place as the page addresses it.
    virtual Text MediaFolder() = 0;
    virtual Text MediaURL() = 0;
    /// The same for pictures.
    virtual Text ImageFolder() = 0;
    virtual Text ImageURL() = 0;
    /// The same for other linked files.
    virtual Text FileFolder() = 0;
    virtual Text FileURL() = 0;
    /// The name of this module's archive below the data folder.
    virtual Text ArchiveName() = 0;
};

/// The host's database of the site, with one current record.
class Database
{
public:
    virtual ~Database() = default;

    /// The kind of the current record: 0 none; 1, 2, 3, 6 with an address, RecordURL; 4 a picture; 5 another file.
    virtual int32_t RecordType() = 0;
    /// True when SeekUID found nothing.
    virtual bool AtEnd() = 0;
    /// The file name, without folder, of a record of kind 4 or 5.
    virtual Text RecordFilename() = 0;
    /// Makes the record with this uid the current one.
    virtual void SeekUID(TextView myUID) = 0;
    /// The address of the current record.
    virtual Text RecordURL() = 0;
    /// The local folder of the site's data.
    virtual Text DataFolder() = 0;
    /// Lets the author choose a link target. Returns its link text, which replaces the present one completely.
    virtual Text ChooseLink(TextView myPresentLink) = 0;
};

} // namespace qel
