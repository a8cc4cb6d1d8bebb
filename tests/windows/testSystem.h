/// What tests need of the system beyond the standard library. Each system has a header of this name.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <winioctl.h>

namespace qel
{

/// Sets a variable of the environment, or removes it: null.
inline void SetVariable(const char* myName, const char* myValue)
{
    _wputenv_s(std::filesystem::path(myName).c_str(), std::filesystem::path(myValue == nullptr ? "" : myValue).c_str());
}

/// The data of a junction, which leads to a folder.
inline std::vector<std::byte> JunctionData(const std::wstring& myFolder)
{
    const std::wstring myTarget = L"\\??\\" + myFolder;
    const auto myLength = static_cast<WORD>(myTarget.size() * sizeof(wchar_t));
    // After the tag: the length of the rest; then where the target and the name that is shown are, each with a 0.
    const WORD myNumbers[] = {static_cast<WORD>(myLength + 12), 0, 0, myLength, static_cast<WORD>(myLength + 2), 0};
    constexpr DWORD Tag = IO_REPARSE_TAG_MOUNT_POINT;
    std::vector<std::byte> theData(sizeof(Tag) + sizeof(myNumbers) + myLength + 4);
    std::memcpy(theData.data(), &Tag, sizeof(Tag));
    std::memcpy(&theData[sizeof(Tag)], myNumbers, sizeof(myNumbers));
    std::memcpy(&theData[sizeof(Tag) + sizeof(myNumbers)], myTarget.data(), myLength);
    return theData;
}

/// Makes a junction; false where the system cannot. It needs no special right.
inline bool MakeJunction(const std::filesystem::path& myFolder, const std::filesystem::path& myLink)
{
    CreateDirectoryW(myLink.c_str(), nullptr);
    const HANDLE myHandle = CreateFileW(myLink.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    std::vector<std::byte> myData = JunctionData(std::filesystem::absolute(myFolder).make_preferred().wstring());
    DWORD myCount = 0;
    const bool theResult = DeviceIoControl(myHandle, FSCTL_SET_REPARSE_POINT, myData.data(),
                                           static_cast<DWORD>(myData.size()), nullptr, 0, &myCount, nullptr) != 0;
    CloseHandle(myHandle);
    return theResult;
}

/// The name of a file as the system below Wine has it; empty on Windows itself.
inline std::wstring UnixName(const std::filesystem::path& myPath)
{
    const FARPROC myAddress = GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name");
    if (myAddress == nullptr)
    {
        return {};
    }
    char* const myName = reinterpret_cast<char*(__cdecl*)(LPCWSTR)>(reinterpret_cast<void*>(myAddress))(myPath.c_str());
    std::wstring theName = std::filesystem::path(myName == nullptr ? "" : myName).wstring();
    HeapFree(GetProcessHeap(), 0, myName);
    return theName;
}

/// Starts a program of the system below Wine, for what Wine cannot do, and does not wait for it.
inline void StartUnixProgram(const std::wstring& myProgram, const std::wstring& myArguments)
{
    std::wstring myCommand = L"\\\\?\\unix" + myProgram + L" " + myArguments;
    STARTUPINFOW myStart = {};
    myStart.cb = sizeof(myStart);
    PROCESS_INFORMATION myProcess = {};
    if (CreateProcessW(nullptr, myCommand.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &myStart, &myProcess) ==
        0)
    {
        throw std::runtime_error("no program of Unix started");
    }
    CloseHandle(myProcess.hThread);
    CloseHandle(myProcess.hProcess);
}

/// Makes a link to a folder. It needs no special right. Wine makes no junctions; there a link of the system below it
/// looks like one.
inline void LinkFolder(const std::filesystem::path& myFolder, const std::filesystem::path& myLink)
{
    if (MakeJunction(myFolder, myLink))
    {
        return;
    }
    std::filesystem::remove(myLink);
    StartUnixProgram(L"/bin/ln", L"-s \"" + UnixName(myFolder) + L"\" \"" + UnixName(myLink.parent_path()) + L"/" +
                                     myLink.filename().wstring() + L"\"");
    for (int i = 0; i < 1000 && GetFileAttributesW(myLink.c_str()) == INVALID_FILE_ATTRIBUTES; ++i)
    {
        Sleep(10);
    }
}

} // namespace qel
