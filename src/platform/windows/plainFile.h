/// Open plain files. Their share modes are their locks.
#pragma once

#include "platform/Files.h"
#include "platform/windows/Handle.h"

#include <string>

namespace qel
{

enum class Sharing
{
    None,   ///< nobody else may open the file
    Readers ///< others may open it for reading
};

/// Opens a plain file for reading, through links. Errors as in Files::OpenForReading.
Handle OpenPlainFile(const std::wstring& myNativePath, Sharing mySharing);

/// Opens a plain file for writing, through links, with other access locked out, and creates it or empties it. A file
/// that exists keeps its attributes. Errors as in Files::OpenForWriting.
Handle OpenEmptyFile(const std::wstring& myNativePath);

/// Appends the content of one file to another: only the bytes, not the attributes or streams of the source. Errors as
/// in OutputFile::Write.
void CopyContent(const Handle& mySource, const Handle& myTarget);

/// An open file that is read, as BufferedInputFile uses it.
class InputDevice
{
public:
    explicit InputDevice(Handle myOpenFile);

    int64_t Length() const;
    std::optional<FileVersion> Version() const;
    size_t ReadAt(std::span<std::byte> myTarget, int64_t myOffset) const;

private:
    Handle myFile;
    int64_t myOpeningTime; ///< in units of 100 nanoseconds since 1601
};

/// An open file that is written, as BufferedOutputFile uses it.
class OutputDevice
{
public:
    explicit OutputDevice(Handle myOpenFile) : myFile(std::move(myOpenFile)) {}

    void Append(std::span<const std::byte> myBytes) const;
    void Close();

private:
    Handle myFile;
};

} // namespace qel
