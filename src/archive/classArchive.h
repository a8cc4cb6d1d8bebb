/// Reads, unpacks and packs design archives: one flat file that holds the files of a folder tree.
///
/// An object serves one operation: set BaseFolder and ArchiveFilename, subscribe to the event if wanted, call
/// ReadArchive, UnPackArchive or PackArchive. None of them throws: a failure, also an exception of a subscriber, is the
/// result False. Entries count from 1. An object is used on the thread of its port.
///
/// A damaged archive, or one with a name that would leave BaseFolder, ends the operation with False. A name leaves the
/// folder by "..", by a drive, by "/", by being an absolute path, or where a folder below BaseFolder is a link. Damage
/// is a NameLength or Size that is negative or extends past the end, or a missing end marker. Bytes after the end
/// marker are ignored.
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
    Text DiskName = {}; ///< the same path as spelled on disk; set by packing only
};

class classArchive
{
public:
    /// The port must outlive the object.
    explicit classArchive(Files& thePort) : myFilePort(thePort) {}

    /// Raised while an archive is packed: with the empty text and 0 at the start, with its name after each file, and
    /// with the empty text and 100 at the end. `myPercent` is the share of the listed bytes that is written, 100 when
    /// all files are empty. `myCancel` is one flag for the whole operation, initially false. It is checked after each
    /// file and at the end; if it is true, the archive is deleted and the result is False.
    std::function<void(const Text& myFilename, int32_t& myPercent, bool& myCancel)> ProgessCreate;

    /// Raised after each file that is unpacked, with its name. `myCancel` is one flag for the whole operation,
    /// initially false; true ends the operation, whose result is still True.
    std::function<void(const Text& myFilename, bool& myCancel)> ProgessUnpack;

    /// True packs every name in lower case; initially false. Unpacking and reading ignore it.
    void SmallFilenames(bool myValue) { mySmallFilenames = myValue; }
    bool SmallFilenames() const { return mySmallFilenames; }

    /// The folder to pack from or unpack into; stored with one closing "\".
    void BaseFolder(TextView myFolder) { myBaseFolder = Concat(myFolder, u"\\"); }
    const Text& BaseFolder() const { return myBaseFolder; }

    /// The path of the archive file, stored unchanged.
    void ArchiveFilename(TextView myFilename) { myArchiveFilename = myFilename; }
    const Text& ArchiveFilename() const { return myArchiveFilename; }

    /// Fills the table of contents with the files below BaseFolder, links left out, and writes them into a new archive;
    /// an old one is deleted first. False: cancelled, or failed. A failed listing leaves an old archive unchanged; any
    /// later failure leaves an incomplete archive. The listing fails on a folder that cannot be read, on a name that an
    /// archive cannot hold or that UnPackArchive would refuse, on two names in a folder that differ only in case, and
    /// on a file of 2 GiB or more.
    bool PackArchive();

    /// The number of the error that made the last PackArchive, UnPackArchive or ReadArchive fail; 0 when it succeeded
    /// or was cancelled. 5 is a file that does not begin as an archive does. In UnPackArchive, 52 is a name that leads
    /// out of the folder, and 75 also a link in the path; in ReadArchive, 52 and 62 are damage.
    int32_t FailureNumber() const { return myFailureNumber; }

    /// The path below BaseFolder, with "\" in front, that the last PackArchive or UnPackArchive was processing when it
    /// ended; empty when that was the archive itself, and after ReadArchive.
    const Text& LastName() const { return myLastName; }

    /// Fills the table of contents from the archive. False: it cannot be read whole, and the table is empty; the reason
    /// is FailureNumber.
    bool ReadArchive();

    /// Writes every file of the archive below BaseFolder, which is created if its parent exists. Existing files are
    /// replaced. The table of contents is neither used nor changed. False: it failed; what was written stays.
    bool UnPackArchive();

    /// The total size of all entries of the table of contents.
    double TotalSize() const;

    /// Shows the table of contents: the list is emptied, then takes one item for each entry, with file name, size,
    /// folder, an icon and a colour by the file's extension, and the whole name as its tag. Throws what the list
    /// throws.
    void FillList(ListView& myListView) const;

    /// The number of entries, in plain digits.
    Text FileCount() const;

    /// A line about the table of contents: its size in kilobytes and the number of files, with digits grouped as in the
    /// user's locale. Error 6: the sizes add up to 2 GiB or more.
    Text Status() const;

    /// Both joined with one "\"; before that, one "\" is removed on each side of the join.
    static Text Concat(TextView myFirst, TextView mySecond);

    /// Both joined with one "/"; before that, one "\" and then one "/" is removed on each side of the join.
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
        myFolders; ///< that were unpacked to, as they are on disk, by their path below BaseFolder
    std::array<std::byte, BlockSize> myBlock{};
};

} // namespace qel
