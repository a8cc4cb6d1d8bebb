/// Open plain files, and their locks.
#pragma once

#include "platform/Files.h"
#include "platform/linux/Descriptor.h"

#include <ctime>
#include <sys/stat.h>

namespace qel
{

enum class Lock
{
    Shared,
    Exclusive
};

/// Locks an open file for as long as it stays open. Does nothing on a file system without locks. Error 70: someone else
/// holds a conflicting lock.
void LockFile(const Descriptor& myFile, Lock myLock);

/// The status of an open file. Error 75: it is not a plain file.
struct stat FactsOfPlainFile(const Descriptor& myFile);

/// Appends the rest of one file to another, inside the kernel as far as possible. `myLength` is the known length of the
/// source. Errors as in OutputFile::Write.
void CopyContent(const Descriptor& mySource, const Descriptor& myTarget, int64_t myLength);

/// An open file that is read, as BufferedInputFile uses it.
class InputDevice
{
public:
    InputDevice(Descriptor myOpenFile, const struct stat& myPresentFacts)
        : myFile(std::move(myOpenFile)), myFirstFacts(myPresentFacts)
    {
    }

    int64_t Length() const;
    std::optional<FileVersion> Version() const;
    size_t ReadAt(std::span<std::byte> myTarget, int64_t myOffset) const;

private:
    Descriptor myFile;
    struct stat myFirstFacts; ///< when it was opened
    time_t myOpeningTime = time(nullptr);
};

/// An open file that is written, as BufferedOutputFile uses it.
class OutputDevice
{
public:
    explicit OutputDevice(Descriptor myOpenFile) : myFile(std::move(myOpenFile)) {}

    void Append(std::span<const std::byte> myBytes) const;
    void Close();

private:
    Descriptor myFile;
};

} // namespace qel
