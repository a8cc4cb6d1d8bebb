/// Reads, unpacks and packs design archives: one flat file that holds the files of a folder tree.
///
/// An object serves one operation: set BaseFolder and ArchiveFilename, subscribe to the event if wanted, call
/// ReadArchive, UnPackArchive or PackArchive. None of them raises anything to its caller:
/// failures are the result False, what a subscriber throws among them. Entries count from 1. An object is used on the
/// thread of its port.
///
/// On names that would leave BaseFolder, and on damaged files: such an archive ends the run with False. A name leaves
/// the folder by "..", by a drive, by "/", by standing for an absolute path, or where a folder below BaseFolder is a
/// link. Damaged are a NameLength or Size that is negative or runs past the end, and a missing end marker. Bytes after
/// the end marker are ignored.
#pragma once

#include "platform/Files.h"
#include "text/text.h"

#include <array>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace qel
{

struct ArchiveInput;
class ListView;

/// One line of the table of contents.
struct ArchiveEntry
{
    Text Name; ///< path below the packed folder, with "\" in front
    int32_t Size = 0;
    Text DiskName = {}; ///< the same path as the disk has it; of an archive that is packed
};

class classArchive
{
public:
    /// The port must outlive the object.
    explicit classArchive(Files& thePort) : myFilePort(thePort) {}

    /// Raised while an archive is packed: with the empty text and 0 at the start, with its name after each file, and
    /// with the empty text and 100 at the end. `myPercent` is the share of the listed bytes that is written, 100 when
    /// all files are empty. `myCancel` is one flag for the whole run, false at its start and looked at after each file
    /// and at the end; true there deletes the archive and gives False.
    std::function<void(const Text& myFilename, int32_t& myPercent, bool& myCancel)> ProgessCreate;

    /// Raised after each file that is unpacked, with its name. `myCancel` is one flag for the whole run, false at its
    /// start; true ends the run, which then still gives True.
    std::function<void(const Text& myFilename, bool& myCancel)> ProgessUnpack;

    /// True packs every name in lower case; false at creation. Unpacking and reading do not look at it.
    void SmallFilenames(bool myValue) { mySmallFilenames = myValue; }
    bool SmallFilenames() const { return mySmallFilenames; }

    /// The folder to pack from or unpack into; stored with one closing "\".
    void BaseFolder(TextView myFolder) { myBaseFolder = Concat(myFolder, u"\\"); }
    const Text& BaseFolder() const { return myBaseFolder; }

    /// The path of the archive file, stored unchanged.
    void ArchiveFilename(TextView myFilename) { myArchiveFilename = myFilename; }
    const Text& ArchiveFilename() const { return myArchiveFilename; }

    /// Fills the table of contents with the files below BaseFolder, links left out, and writes them into a new archive;
    /// an old one is deleted first. False: cancelled, or failed. A failed listing leaves an old archive as it was; any
    /// later failure leaves an incomplete archive. The listing fails on a folder that cannot be read, on a name that an
    /// archive cannot hold or that UnPackArchive would refuse, on two names in a folder that are alike in lower case,
    /// and on a file of 2 GiB or more.
    bool PackArchive();

    /// The number of the error that made the last PackArchive or UnPackArchive fail; 0 when it gave True or was
    /// cancelled. In unpacking 52 is a name that leads out of the folder, and 75 also a link in the way.
    int32_t FailureNumber() const { return myFailureNumber; }

    /// The path below BaseFolder, with "\" in front, that the last PackArchive or UnPackArchive was busy with when it
    /// ended; empty when that was the archive itself.
    const Text& LastName() const { return myLastName; }

    /// Fills the table of contents from the archive. False: it cannot be read whole, and the table is empty.
    bool ReadArchive();

    /// Writes every file of the archive below BaseFolder, which is made if its parent is there, and replaces files. The
    /// table of contents plays no part. False: it failed; what was written stays.
    bool UnPackArchive();

    /// The sizes of all entries of the table of contents, added up.
    double TotalSize() const;

    /// Shows the table of contents: the list is emptied, then takes one item for each entry, with file name, size,
    /// folder, an icon and a colour by the file's extension, and the whole name as its tag. Throws what the list
    /// throws.
    void FillList(ListView& myListView) const;

    /// The number of entries, in plain digits.
    Text FileCount() const;

    /// A line about the table of contents: its size in kilobytes and the number of files, grouped as the user's locale
    /// has it. Error 6: the sizes add up to 2 GiB or more.
    Text Status() const;

    /// Both joined with one "\"; one "\" is cut off at each side of the seam.
    static Text Concat(TextView myFirst, TextView mySecond);

    /// Both joined with one "/"; one "\" and then one "/" is cut off at each side of the seam.
    static Text ConcatUnix(TextView myFirst, TextView mySecond);

    /// True when the name of an entry would lead out of BaseFolder by itself, links aside. Such a name is refused.
    static bool LeavesFolder(TextView myName);

private:
    static constexpr size_t BlockSize = 32000;

    void ListFolder(const Text& myFolder, const Text& myDiskFolder);
    void AddFile(Text myName, Text myDiskName, int64_t myLength);
    void WriteAllEntries(OutputFile& myOutputFile, bool& theCancel);
    void WriteArchiveEntry(OutputFile& myOutputFile, const ArchiveEntry& myEntry);
    void RaiseCreate(const Text& myFilename, int32_t myPercent, bool& theCancel) const;

    void UnPackEntry(ArchiveInput& theInput, const Text& myName, bool& theCancel);
    const Text& MakeFolders(TextView myFolder);
    Text MakeFolder(const Text& myParent, TextView myName);
    bool FolderExists(TextView myFolder);
    bool DeleteFile(TextView myFilename);
    void CopyBytes(InputFile& mySource, OutputFile& myTarget, int64_t myCount);

    static TextView FolderOfName(TextView myFilename);

    Files& myFilePort;
    Text myBaseFolder;
    Text myArchiveFilename;
    bool mySmallFilenames = false;
    int32_t myFailureNumber = 0;
    Text myLastName;
    std::vector<ArchiveEntry> myFiles;
    std::unordered_map<Text, Text>
        myFolders; ///< that have been unpacked to: by their path below BaseFolder, on the disk
    std::array<std::byte, BlockSize> myBlock{};
};

} // namespace qel
