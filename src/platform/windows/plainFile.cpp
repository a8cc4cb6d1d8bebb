#include "platform/windows/plainFile.h"

#include "platform/windows/systemErrors.h"
#include "text/errors.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace qel
{
namespace
{

constexpr int64_t TicksPerSecond = 10'000'000;
constexpr int64_t NanosecondsPerTick = 100;

/// The most bytes for one call of the system, which takes a count of 32 bits.
constexpr size_t MostAtOnce = size_t{1} << 30;

Handle OpenFile(const std::wstring& myNativePath, DWORD myAccess, DWORD myShareMode, DWORD myDisposition)
{
    return Handle(CreateFileW(myNativePath.c_str(), myAccess, myShareMode, nullptr, myDisposition,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Throws the Error of an opening that failed. For a folder the system reports that access is denied.
[[noreturn]] void RaiseOpeningError(const std::wstring& myNativePath, DWORD mySystemError)
{
    const DWORD myAttributes = mySystemError == ERROR_ACCESS_DENIED ? GetFileAttributesW(myNativePath.c_str()) : 0;
    if (myAttributes != INVALID_FILE_ATTRIBUTES && (myAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    {
        Raise(ErrorNumber::PathAccess);
    }
    RaiseSystemError(mySystemError);
}

void DemandDiskFile(const Handle& myFile)
{
    if (GetFileType(myFile.Get()) != FILE_TYPE_DISK)
    {
        Raise(ErrorNumber::PathAccess);
    }
}

/// True when no change happens in the file system of an open file without this system's knowledge, unlike in a network
/// file system, and when it records the time of each change.
bool IsInLocalFileSystem(const Handle& myFile)
{
    FILE_REMOTE_PROTOCOL_INFO myProtocol = {};
    if (GetFileInformationByHandleEx(myFile.Get(), FileRemoteProtocolInfo, &myProtocol, sizeof(myProtocol)) != 0)
    {
        return false;
    }
    std::array<wchar_t, MAX_PATH + 1> myName = {};
    return GetVolumeInformationByHandleW(myFile.Get(), nullptr, 0, nullptr, nullptr, nullptr, myName.data(),
                                         static_cast<DWORD>(myName.size())) != 0 &&
           std::wstring_view(myName.data()) == L"NTFS";
}

int64_t Wide(DWORD myHigh, DWORD myLow)
{
    return static_cast<int64_t>(uint64_t{myHigh} << 32 | myLow);
}

void AppendAll(const Handle& myFile, std::span<const std::byte> myBytes)
{
    while (!myBytes.empty())
    {
        DWORD myWritten = 0;
        const auto myCount = static_cast<DWORD>(std::min(myBytes.size(), MostAtOnce));
        if (WriteFile(myFile.Get(), myBytes.data(), myCount, &myWritten, nullptr) == 0)
        {
            RaiseSystemError(GetLastError());
        }
        if (myWritten == 0)
        {
            Raise(ErrorNumber::DeviceError);
        }
        myBytes = myBytes.subspan(myWritten);
    }
}

} // namespace

Handle OpenPlainFile(const std::wstring& myNativePath, Sharing mySharing)
{
    Handle theFile =
        OpenFile(myNativePath, GENERIC_READ, mySharing == Sharing::Readers ? FILE_SHARE_READ : 0, OPEN_EXISTING);
    if (!theFile.IsOpen())
    {
        RaiseOpeningError(myNativePath, GetLastError());
    }
    DemandDiskFile(theFile);
    return theFile;
}

Handle OpenEmptyFile(const std::wstring& myNativePath)
{
    // A file is emptied only once it is open: until then others may hold it, also as the source of a copy. To replace a
    // hidden file while it is opened would also need to know its attributes.
    Handle theFile = OpenFile(myNativePath, GENERIC_WRITE, 0, OPEN_ALWAYS);
    const DWORD mySystemError = GetLastError();
    if (!theFile.IsOpen())
    {
        // If something is missing, that is the folder.
        RaiseOpeningError(myNativePath, mySystemError == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : mySystemError);
    }
    DemandDiskFile(theFile);
    if (mySystemError == ERROR_ALREADY_EXISTS && SetEndOfFile(theFile.Get()) == 0)
    {
        RaiseSystemError(GetLastError());
    }
    return theFile;
}

void CopyContent(const Handle& mySource, const Handle& myTarget)
{
    constexpr DWORD BlockSize = 262144;
    const auto myBlock = std::make_unique_for_overwrite<std::byte[]>(BlockSize);
    for (;;)
    {
        DWORD myCount = 0;
        if (ReadFile(mySource.Get(), myBlock.get(), BlockSize, &myCount, nullptr) == 0)
        {
            Raise(ErrorNumber::DeviceError);
        }
        if (myCount == 0)
        {
            return;
        }
        AppendAll(myTarget, {myBlock.get(), myCount});
    }
}

InputDevice::InputDevice(Handle myOpenFile) : myFile(std::move(myOpenFile))
{
    FILETIME myNow = {};
    GetSystemTimeAsFileTime(&myNow);
    myOpeningTime = Wide(myNow.dwHighDateTime, myNow.dwLowDateTime);
}

int64_t InputDevice::Length() const
{
    LARGE_INTEGER myLength = {};
    if (GetFileSizeEx(myFile.Get(), &myLength) == 0)
    {
        Raise(ErrorNumber::DeviceError);
    }
    return myLength.QuadPart;
}

std::optional<FileVersion> InputDevice::Version() const
{
    // Nobody can write while this file is open, so its state is still the one in which it was opened. A change is
    // recorded with the time of a clock that ticks every 16 milliseconds.
    constexpr int64_t TicksToSettle = 2 * TicksPerSecond;
    BY_HANDLE_FILE_INFORMATION myFacts = {};
    FILE_BASIC_INFO myTimes = {};
    if (GetFileInformationByHandle(myFile.Get(), &myFacts) == 0 ||
        GetFileInformationByHandleEx(myFile.Get(), FileBasicInfo, &myTimes, sizeof(myTimes)) == 0 ||
        myTimes.ChangeTime.QuadPart == 0 || myTimes.ChangeTime.QuadPart > myOpeningTime - TicksToSettle ||
        !IsInLocalFileSystem(myFile))
    {
        return std::nullopt;
    }
    const int64_t myChange = myTimes.ChangeTime.QuadPart;
    return FileVersion{myFacts.dwVolumeSerialNumber,
                       static_cast<uint64_t>(Wide(myFacts.nFileIndexHigh, myFacts.nFileIndexLow)),
                       Wide(myFacts.nFileSizeHigh, myFacts.nFileSizeLow), myChange / TicksPerSecond,
                       myChange % TicksPerSecond * NanosecondsPerTick};
}

size_t InputDevice::ReadAt(std::span<std::byte> myTarget, int64_t myOffset) const
{
    OVERLAPPED myPlace = {};
    myPlace.Offset = static_cast<DWORD>(myOffset);
    myPlace.OffsetHigh = static_cast<DWORD>(myOffset >> 32);
    DWORD theCount = 0;
    const auto myCount = static_cast<DWORD>(std::min(myTarget.size(), MostAtOnce));
    if (ReadFile(myFile.Get(), myTarget.data(), myCount, &theCount, &myPlace) == 0 &&
        GetLastError() != ERROR_HANDLE_EOF)
    {
        Raise(ErrorNumber::DeviceError);
    }
    return theCount;
}

void OutputDevice::Append(std::span<const std::byte> myBytes) const
{
    AppendAll(myFile, myBytes);
}

void OutputDevice::Close()
{
    if (const DWORD mySystemError = myFile.Close(); mySystemError != 0)
    {
        RaiseSystemError(mySystemError);
    }
}

} // namespace qel
