/// A file that is written through a buffer, over the open file of any system.
#pragma once

#include "platform/Files.h"
#include "text/errors.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace qel
{

/// Collects writes into whole blocks of the file, which cost the system half as much as unaligned pieces. A large first
/// write bypasses the buffer, because a small file is usually written at once.
///
/// `Device` is an open plain file of a system that is empty at first. It can be moved, and has Close of OutputFile and
///     void Append(std::span<const std::byte> myBytes);
/// with the errors of OutputFile::Write.
template <class Device>
class BufferedOutputFile final : public OutputFile
{
public:
    explicit BufferedOutputFile(Device myOpenFile) : myDevice(std::move(myOpenFile)) {}
    BufferedOutputFile(const BufferedOutputFile&) = delete;
    BufferedOutputFile& operator=(const BufferedOutputFile&) = delete;
    ~BufferedOutputFile() override
    {
        try
        {
            Flush();
        }
        catch (const Error&)
        {
            // A caller that needs the result calls Close.
        }
    }

    void Write(std::span<const std::byte> myBytes) override
    {
        if (myOffset == 0 && myPending == 0 && myBytes.size() >= LargePiece)
        {
            myDevice.Append(myBytes);
            myOffset = myBytes.size();
            return;
        }
        if (!myBuffer)
        {
            myBuffer = std::make_unique_for_overwrite<std::byte[]>(BlockSize);
        }
        while (!myBytes.empty())
        {
            const size_t myRoom = BlockSize - myOffset % BlockSize - myPending;
            const size_t myCount = std::min(myBytes.size(), myRoom);
            std::memcpy(&myBuffer[myPending], myBytes.data(), myCount);
            myPending += myCount;
            myBytes = myBytes.subspan(myCount);
            if (myCount == myRoom)
            {
                Flush();
            }
        }
    }

    void Close() override
    {
        Device myLast = std::move(myDevice); // closed also if the last write fails
        myLast.Append({myBuffer.get(), std::exchange(myPending, 0)});
        myLast.Close();
    }

private:
    /// Writes the buffer. After a failure nothing is tried again.
    void Flush()
    {
        const size_t myCount = std::exchange(myPending, 0);
        myOffset += myCount;
        myDevice.Append({myBuffer.get(), myCount});
    }

    static constexpr size_t LargePiece = 4096;
    static constexpr size_t BlockSize = 131072;

    Device myDevice;
    size_t myOffset = 0; ///< of the first byte that has not been passed to the device
    std::unique_ptr<std::byte[]> myBuffer;
    size_t myPending = 0;
};

} // namespace qel
