/// The files of this machine as the logic sees them: "\" between folders, names found without regard to case.
///
/// Both "\" and "/" separate folders in arguments. What is read, looked up or listed is found without regard to case: a
/// path that exists exactly is used as it is; only a part that does not exist exactly is searched for, and of several
/// names that differ only in case the first by character code is used. What is written, created or deleted has exactly
/// the given name, in a folder that is found in the same way. Where the system ignores case in names, its own rule
/// applies.
/// Every operation throws Error unless it says otherwise. An object is used on the thread that made it, and so are the
/// open files that it returns, which are closed when they are destroyed.
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

/// Identifies one state of the content of one file. Any other state of this or another file compares unequal, unless
/// somebody writes to the file through memory that it is mapped to.
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

    /// The file's current length in bytes. Error 57: the system cannot tell.
    virtual int64_t Length() = 0;

    /// The version of the file when it was opened. Nothing if its last change was so recent then that a further change
    /// might not show in the version, and where others can change the file without this system's knowledge. No error.
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

    /// Closes the file and reports errors that the system has delayed until now. Without this call the destructor
    /// closes the file and reports nothing. Errors as in Write. No other call may follow.
    virtual void Close() = 0;
};

enum class EntryKind
{
    File,
    Folder,
    Link,
    Other ///< a pipe, a socket, a device, a link without a target where links are followed
};

/// What a name refers to.
struct Entry
{
    EntryKind Kind;
    int64_t Length; ///< in bytes; of files only
    Text Name;      ///< as spelled on disk if that differs from the given name; else empty
};

/// Which entries a listing contains.
enum class Listing
{
    PlainFiles,
    FilesAndFolders ///< "." and ".." included
};

class Files
{
public:
    virtual ~Files() = default;

    /// Opens a plain file for reading from its first byte, other access locked out until it is closed.
    /// Error 53: no such file. 76: no such folder. 70: someone else has locked it, or no permission. 75: not a plain
    /// file. 52: a name that the system cannot hold.
    virtual std::unique_ptr<InputFile> OpenForReading(TextView myFilename) = 0;

    /// The same, but others may read the file at the same time.
    virtual std::unique_ptr<InputFile> OpenShared(TextView myFilename) = 0;

    /// Opens a plain file for writing, with other access locked out until it is closed. Creates the file or empties an
    /// existing one. Errors as in OpenForReading, and 61: the disk is full.
    virtual std::unique_ptr<OutputFile> OpenForWriting(TextView myFilename) = 0;

    /// What the last part of the path refers to, which need not be readable: a link itself, not its target.
    /// Error 53, 76, 70, 52 as above.
    virtual Entry Look(TextView myPath) = 0;

    /// The same, but a name that differs in case does not match: what OpenForWriting, MakeFolder or Delete would find.
    virtual Entry LookExactly(TextView myPath) = 0;

    /// Copies a plain file byte for byte and replaces an existing target. A copy that fails midway leaves what was
    /// written. Errors of OpenForReading for the source and of OpenForWriting for the target, and
    /// 70: source and target are one file.
    virtual void Copy(TextView mySource, TextView myTarget) = 0;

    /// Deletes a file, or a link but not its target. False: no such file. Error 76: no such folder. 70: no permission.
    /// 75: a folder.
    virtual bool Delete(TextView myFilename) = 0;

    /// Creates one folder. Error 75: something of that name exists. 76: its parent does not. 70: no permission.
    virtual void MakeFolder(TextView myFolder) = 0;

    /// True when the path leads to a folder. No error.
    virtual bool IsFolder(TextView myPath) = 0;

    /// True when the last part of the path is itself a link, whatever its target. No error.
    virtual bool IsLink(TextView myPath) = 0;

    /// The names, without folder, that match a path whose last part may hold the wild cards "*" and "?" ("*.*" matches
    /// every name), in the file system's order. Left out are hidden entries, as the system hides them: by a leading dot
    /// or by attributes; entries that are neither file nor folder; and names that contain "\" or are not valid UTF-8 or
    /// UTF-16. A missing folder has no names.
    /// Error 75: the folder cannot be read.
    virtual std::vector<Text> List(TextView myPattern, Listing myListing) = 0;

    /// Passes when the folder is missing, or belongs to this user and is not a link. Error 75: it is not safe.
    virtual void DemandOwnFolder(TextView myFolder) = 0;

    /// The system's temporary path with a closing "\"; the empty text when there is none, or none that is safe because
    /// it belongs to this user alone where users share the system's. No error.
    virtual Text TemporaryPath() = 0;
};

} // namespace qel
