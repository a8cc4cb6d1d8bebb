/// The files of this machine as the logic sees them: "\" between folders, names found without regard to case.
///
/// Both "\" and "/" separate on the way in. What is read, looked at or listed is found without regard to case: a path
/// that exists exactly is used as it stands; only where a part of it does not exist is that part looked up, and among
/// twins the first by character code wins. What is written, made or deleted has exactly the name that was given, in a
/// folder that is found in the same way; on a system that does not tell case apart its own rule holds.
/// Every operation throws Error unless it says otherwise. An object is used on the thread that made it, and so are the
/// open files that it gives out, which close when they go.
#pragma once

#include "text/text.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace qel
{

/// What tells one state of a file's content from every other, its own and that of any other file, as long as nobody
/// writes to the file by way of memory that it is mapped to.
struct FileVersion
{
    uint64_t Device;
    uint64_t Number;
    int64_t Length;
    int64_t ChangeSeconds;
    int64_t ChangeNanoseconds;

    bool operator==(const FileVersion&) const = default;
};

/// A plain file that is open for reading.
class InputFile
{
public:
    virtual ~InputFile() = default;

    /// The file's length in bytes at this moment. Error 57: the system cannot tell.
    virtual int64_t Length() = 0;

    /// The version that the file was when it was opened; nothing if its last change was so recent then that another
    /// might look the same, and where others may change it without this system's knowing. No error.
    virtual std::optional<FileVersion> Version() = 0;

    /// The number of bytes from the start of the file to the next byte that is read.
    virtual int64_t Position() = 0;

    /// Fills the whole buffer with the next bytes. Error 62: the file ends first. 57: the device failed.
    virtual void Read(std::span<std::byte> myBuffer) = 0;

    /// Moves the position forward without reading. Error 62: past the end of the file. 5: a negative count.
    virtual void Skip(int64_t myCount) = 0;
};

/// A plain file that is open for writing.
class OutputFile
{
public:
    virtual ~OutputFile() = default;

    /// Appends the bytes. Error 61: the disk is full. 57: the device failed.
    virtual void Write(std::span<const std::byte> myBytes) = 0;

    /// Closes the file and reports what the system held back until now. Without this call the file closes in silence
    /// when the object goes. Errors as in Write. No other call may follow.
    virtual void Close() = 0;
};

enum class EntryKind
{
    File,
    Folder,
    Link,
    Other ///< a pipe, a socket, a device, a link that leads nowhere where links are followed
};

/// What stands under a name.
struct Entry
{
    EntryKind Kind;
    int64_t Length; ///< in bytes; of a file alone
    Text Name;      ///< as the disk has it where that is not the name that was asked for; else empty
};

/// What a listing yields.
enum class Listing
{
    PlainFiles,
    FilesAndFolders ///< "." and ".." among them
};

class Files
{
public:
    virtual ~Files() = default;

    /// Opens a plain file for reading from its first byte, other access locked out until it is closed.
    /// Error 53: no such file. 76: no such folder. 70: someone else holds it, or no permission. 75: not a plain file.
    /// 52: a name that the system cannot hold.
    virtual std::unique_ptr<InputFile> OpenForReading(TextView myFilename) = 0;

    /// The same, but others may read the file meanwhile.
    virtual std::unique_ptr<InputFile> OpenShared(TextView myFilename) = 0;

    /// Opens a plain file for writing, makes it if it is not there and empties it if it is, other access locked out
    /// until it is closed. Errors as in OpenForReading, and 61: the disk is full.
    virtual std::unique_ptr<OutputFile> OpenForWriting(TextView myFilename) = 0;

    /// What the last part of the path names, which need not be readable: a link itself, and not what it leads to.
    /// Error 53, 76, 70, 52 as above.
    virtual Entry Look(TextView myPath) = 0;

    /// The same, but a name that differs in case is not there: what OpenForWriting, MakeFolder or Delete would meet.
    virtual Entry LookExactly(TextView myPath) = 0;

    /// Copies a plain file byte for byte and replaces a target that is there. A copy that fails midway leaves what has
    /// been written. Errors of OpenForReading for the source and of OpenForWriting for the target, and
    /// 70: source and target are one file.
    virtual void Copy(TextView mySource, TextView myTarget) = 0;

    /// Deletes a file, or a link and not what it leads to. False: there was nothing of that name. Error 76: nor its
    /// folder. 70: no permission. 75: a folder.
    virtual bool Delete(TextView myFilename) = 0;

    /// Makes one folder. Error 75: something of that name is there. 76: its parent is not. 70: no permission.
    virtual void MakeFolder(TextView myFolder) = 0;

    /// True when the path leads to a folder. No error.
    virtual bool IsFolder(TextView myPath) = 0;

    /// True when the last part of the path is a link itself, wherever it leads. No error.
    virtual bool IsLink(TextView myPath) = 0;

    /// The names, without folder, that match a path whose last part may hold the wild cards "*" and "?" ("*.*" matches
    /// every name), in the file system's order. Left out are names with a leading dot, whatever is neither file nor
    /// folder, and names that hold "\" or are not valid UTF-8. A missing folder gives no names.
    /// Error 75: the folder cannot be read.
    virtual std::vector<Text> List(TextView myPattern, Listing myListing) = 0;

    /// Passes when the folder is missing, or belongs to this user and is not a link. Error 75: it is not safe.
    virtual void DemandOwnFolder(TextView myFolder) = 0;

    /// The system's temporary path, a folder of this user alone, with a closing "\"; the empty text when the system
    /// has no safe one. No error.
    virtual Text TemporaryPath() = 0;
};

} // namespace qel
