#include "platform/linux/plainFile.h"

#include "platform/linux/systemErrors.h"
#include "text/errors.h"

#include <algorithm>
#include <array>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/vfs.h>

namespace qel
{
namespace
{

void WriteAll(const Descriptor& myFile, std::span<const std::byte> myBytes)
{
    while (!myBytes.empty())
    {
        const ssize_t myWritten = Retrying([&] { return write(myFile.Handle(), myBytes.data(), myBytes.size()); });
        if (myWritten == -1)
        {
            RaiseSystemError(errno);
        }
        myBytes = myBytes.subspan(static_cast<size_t>(myWritten));
    }
}

/// True when no change happens in the file system of an open file without this system's knowledge, unlike in a network
/// file system.
bool IsInLocalFileSystem(const Descriptor& myFile)
{
    constexpr std::array<long, 5> LocalSystems = {TMPFS_MAGIC, EXT4_SUPER_MAGIC, BTRFS_SUPER_MAGIC, XFS_SUPER_MAGIC,
                                                  F2FS_SUPER_MAGIC};
    struct statfs myFacts = {};
    return fstatfs(myFile.Handle(), &myFacts) == 0 &&
           std::find(LocalSystems.begin(), LocalSystems.end(), myFacts.f_type) != LocalSystems.end();
}

} // namespace

void LockFile(const Descriptor& myFile, Lock myLock)
{
    const int myOperation = (myLock == Lock::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    if (Retrying([&] { return flock(myFile.Handle(), myOperation); }) != 0 && errno == EWOULDBLOCK)
    {
        RaiseSystemError(errno);
    }
}

struct stat FactsOfPlainFile(const Descriptor& myFile)
{
    struct stat theFacts = {};
    if (fstat(myFile.Handle(), &theFacts) != 0)
    {
        RaiseSystemError(errno);
    }
    if (!S_ISREG(theFacts.st_mode))
    {
        Raise(ErrorNumber::PathAccess);
    }
    return theFacts;
}

void CopyContent(const Descriptor& mySource, const Descriptor& myTarget, int64_t myLength)
{
    constexpr int64_t AtOnce = int64_t{1} << 30;
    int64_t myLeft = myLength;
    while (myLeft > 0)
    {
        const auto myCount = static_cast<size_t>(std::min(myLeft, AtOnce));
        const ssize_t myCopied = Retrying(
            [&] { return copy_file_range(mySource.Handle(), nullptr, myTarget.Handle(), nullptr, myCount, 0); });
        if (myCopied <= 0)
        {
            break;
        }
        myLeft -= myCopied;
    }
    if (myLeft == 0 && myLength > 0)
    {
        return;
    }
    // The kernel cannot copy between these two, or the copy failed and fails here again, or the file does not report
    // its length, as virtual files of the kernel do not.
    constexpr size_t BlockSize = 65536;
    const auto myBlock = std::make_unique_for_overwrite<std::byte[]>(BlockSize);
    for (;;)
    {
        const ssize_t myCount = Retrying([&] { return read(mySource.Handle(), myBlock.get(), BlockSize); });
        if (myCount == 0)
        {
            return;
        }
        if (myCount == -1)
        {
            Raise(ErrorNumber::DeviceError);
        }
        WriteAll(myTarget, {myBlock.get(), static_cast<size_t>(myCount)});
    }
}

int64_t InputDevice::Length() const
{
    struct stat myFacts = {};
    if (fstat(myFile.Handle(), &myFacts) != 0)
    {
        Raise(ErrorNumber::DeviceError);
    }
    return myFacts.st_size;
}

std::optional<FileVersion> InputDevice::Version() const
{
    // The clock of file systems has a resolution of some milliseconds.
    constexpr time_t SecondsToSettle = 2;
    if (myFirstFacts.st_ctim.tv_sec > myOpeningTime - SecondsToSettle || !IsInLocalFileSystem(myFile))
    {
        return std::nullopt;
    }
    return FileVersion{myFirstFacts.st_dev, myFirstFacts.st_ino, myFirstFacts.st_size, myFirstFacts.st_ctim.tv_sec,
                       myFirstFacts.st_ctim.tv_nsec};
}

size_t InputDevice::ReadAt(std::span<std::byte> myTarget, int64_t myOffset) const
{
    const ssize_t theCount =
        Retrying([&] { return pread(myFile.Handle(), myTarget.data(), myTarget.size(), myOffset); });
    if (theCount == -1)
    {
        Raise(ErrorNumber::DeviceError);
    }
    return static_cast<size_t>(theCount);
}

void OutputDevice::Append(std::span<const std::byte> myBytes) const
{
    WriteAll(myFile, myBytes);
}

void OutputDevice::Close()
{
    if (const int mySystemError = myFile.Close(); mySystemError != 0)
    {
        RaiseSystemError(mySystemError);
    }
}

} // namespace qel
