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

/// Reads through a buffer, which is allocated by the first small read; a large read bypasses it.
class PlainInputFile final : public InputFile
{
public:
    PlainInputFile(Descriptor myOpenFile, const struct stat& myPresentFacts)
        : myFile(std::move(myOpenFile)), myFirstFacts(myPresentFacts)
    {
    }

    int64_t Length() override;
    std::optional<FileVersion> Version() override;
    int64_t Position() override { return myOffset - static_cast<int64_t>(myEnd - myNext); }
    void Read(std::span<std::byte> myTarget) override;
    void Skip(int64_t myCount) override;

private:
    size_t ReadSome(std::span<std::byte> myTarget);
    void FillBuffer();

    /// How much a refill reads. It grows while the reads are sequential, so that skipping from one entry to the next
    /// does not read the bytes between.
    static constexpr size_t SmallestFill = 4096;
    static constexpr size_t LargestFill = 65536;
    /// A read of at least this length bypasses the buffer.
    static constexpr size_t LargePiece = 16384;

    Descriptor myFile;
    struct stat myFirstFacts; ///< when it was opened
    time_t myOpeningTime = time(nullptr);
    int64_t myOffset = 0; ///< of the first byte that has not been read from the system
    std::unique_ptr<std::byte[]> myBuffer;
    size_t myNext = 0;
    size_t myEnd = 0;
    size_t myFill = SmallestFill;
};

/// Collects writes into whole blocks of the file, which cost the system half as much as unaligned pieces. A large first
/// write bypasses the buffer, because a small file is usually written at once.
class PlainOutputFile final : public OutputFile
{
public:
    explicit PlainOutputFile(Descriptor myOpenFile) : myFile(std::move(myOpenFile)) {}
    ~PlainOutputFile() override;

    void Write(std::span<const std::byte> myBytes) override;
    void Close() override;

private:
    void Flush();

    static constexpr size_t LargePiece = 4096;
    static constexpr size_t BlockSize = 131072;

    Descriptor myFile;
    size_t myOffset = 0; ///< of the first byte that has not been passed to the system
    std::unique_ptr<std::byte[]> myBuffer;
    size_t myPending = 0;
};

} // namespace qel
