/// Plain files that are open, and the lock that goes with them.
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

/// Locks an open file for as long as it stays open. A file system without such locks is passed over. Error 70: someone
/// else holds a lock that excludes this one.
void LockFile(const Descriptor& myFile, Lock myLock);

/// What the system tells about an open file. Error 75: it is not a plain one.
struct stat FactsOfPlainFile(const Descriptor& myFile);

/// Appends the rest of one file to another, as far as possible without the bytes leaving the kernel. `myLength` is the
/// length that the source is known to have. Errors as in OutputFile::Write.
void CopyContent(const Descriptor& mySource, const Descriptor& myTarget, int64_t myLength);

/// Reads through a buffer that is there from the first small read on; a large read goes past it.
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

    /// What a refill asks for. It grows while the reading goes on without a gap, so that skipping from one entry to the
    /// next does not read what lies between.
    static constexpr size_t SmallestFill = 4096;
    static constexpr size_t LargestFill = 65536;
    /// What is as long as this goes past the buffer.
    static constexpr size_t LargePiece = 16384;

    Descriptor myFile;
    struct stat myFirstFacts; ///< of when it was opened
    time_t myOpeningTime = time(nullptr);
    int64_t myOffset = 0; ///< of the first byte that the system has not been asked for
    std::unique_ptr<std::byte[]> myBuffer;
    size_t myNext = 0;
    size_t myEnd = 0;
    size_t myFill = SmallestFill;
};

/// Collects what is written into whole blocks of the file, which the system takes at half the cost of odd pieces. A
/// large first piece goes past the buffer: a small file most often comes in one.
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
    size_t myOffset = 0; ///< of the first byte that the system has not been given
    std::unique_ptr<std::byte[]> myBuffer;
    size_t myPending = 0;
};

} // namespace qel
