/// A file that is read through a buffer, over the open file of any system.
#pragma once

#include "platform/Files.h"
#include "text/errors.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace qel
{

/// The buffer is allocated by the first small read; a large read bypasses it.
///
/// `Device` is an open plain file of a system. It has Length and Version of InputFile, and
///     size_t ReadAt(std::span<std::byte> myTarget, int64_t myOffset);
/// which reads one byte or more and returns their number, 0 at the end of the file. Error 57: the device failed.
template <class Device>
class BufferedInputFile final : public InputFile
{
public:
    explicit BufferedInputFile(Device myOpenFile) : myDevice(std::move(myOpenFile)) {}

    int64_t Length() override { return myDevice.Length(); }
    std::optional<FileVersion> Version() override { return myDevice.Version(); }
    int64_t Position() override { return myOffset - static_cast<int64_t>(myEnd - myNext); }

    void Read(std::span<std::byte> myTarget) override
    {
        while (!myTarget.empty())
        {
            size_t myCount = 0;
            if (myNext == myEnd && myTarget.size() >= std::min(myFill, LargePiece))
            {
                myCount = ReadSome(myTarget);
            }
            else
            {
                FillBuffer();
                myCount = std::min(myTarget.size(), myEnd - myNext);
                std::memcpy(myTarget.data(), &myBuffer[myNext], myCount);
                myNext += myCount;
            }
            myTarget = myTarget.subspan(myCount);
        }
    }

    void Skip(int64_t myCount) override
    {
        if (myCount < 0)
        {
            Raise(ErrorNumber::InvalidArgument);
        }
        const auto myBuffered = static_cast<int64_t>(myEnd - myNext);
        if (myCount <= myBuffered)
        {
            myNext += static_cast<size_t>(myCount);
            return;
        }
        if (myCount > Length() - Position())
        {
            Raise(ErrorNumber::InputPastEnd);
        }
        myOffset += myCount - myBuffered;
        myNext = myEnd = 0;
        myFill = SmallestFill;
    }

private:
    /// Reads at least one byte from the file.
    size_t ReadSome(std::span<std::byte> myTarget)
    {
        const size_t myCount = myDevice.ReadAt(myTarget, myOffset);
        if (myCount == 0)
        {
            Raise(ErrorNumber::InputPastEnd);
        }
        myOffset += static_cast<int64_t>(myCount);
        return myCount;
    }

    /// Fills the buffer if it is empty.
    void FillBuffer()
    {
        if (myNext != myEnd)
        {
            return;
        }
        if (!myBuffer)
        {
            myBuffer = std::make_unique_for_overwrite<std::byte[]>(LargestFill);
        }
        myNext = myEnd = 0;
        myEnd = ReadSome({myBuffer.get(), myFill});
        myFill = std::min(4 * myFill, LargestFill);
    }

    /// How much a refill reads. It grows while the reads are sequential, so that skipping from one entry to the next
    /// does not read the bytes between.
    static constexpr size_t SmallestFill = 4096;
    static constexpr size_t LargestFill = 65536;
    /// A read of at least this length bypasses the buffer.
    static constexpr size_t LargePiece = 16384;

    Device myDevice;
    int64_t myOffset = 0; ///< of the first byte that has not been read from the device
    std::unique_ptr<std::byte[]> myBuffer;
    size_t myNext = 0;
    size_t myEnd = 0;
    size_t myFill = SmallestFill;
};

} // namespace qel
