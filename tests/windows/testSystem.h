/// What tests need of the system beyond the standard library. Each system has a header of this name.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace qel
{

/// The path that a text in UTF-8 names.
inline std::filesystem::path PathOfUtf8(std::string_view myText)
{
    return std::u8string(myText.begin(), myText.end());
}

/// Sets a variable of the environment, or removes it: null.
inline void SetVariable(const char* myName, const char* myValue)
{
    _wputenv_s(PathOfUtf8(myName).c_str(), PathOfUtf8(myValue == nullptr ? "" : myValue).c_str());
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
    std::wstring theName = PathOfUtf8(myName == nullptr ? "" : myName).wstring();
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

/// Waits until a program of the system below Wine has made or removed an entry.
inline void WaitUntil(bool myIsThere, const std::filesystem::path& myEntry)
{
    for (int i = 0; i < 1000 && (GetFileAttributesW(myEntry.c_str()) != INVALID_FILE_ATTRIBUTES) != myIsThere; ++i)
    {
        Sleep(10);
    }
}

/// Makes a link to a folder: a junction, which needs no special right. Wine makes none; there a link of the system
/// below it looks like one as long as the folder exists.
inline void LinkFolder(const std::filesystem::path& myFolder, const std::filesystem::path& myLink)
{
    if (UnixName(L"C:\\").empty())
    {
        const std::wstring myTarget = std::filesystem::absolute(myFolder).make_preferred().wstring();
        const std::wstring myName = std::filesystem::path(myLink).make_preferred().wstring();
        _wsystem((L"mklink /J \"" + myName + L"\" \"" + myTarget + L"\" >NUL").c_str());
        return;
    }
    const bool myFolderIsNew = std::filesystem::create_directories(myFolder);
    StartUnixProgram(L"/bin/ln", L"-s \"" + UnixName(myFolder) + L"\" \"" + UnixName(myLink.parent_path()) + L"/" +
                                     myLink.filename().wstring() + L"\"");
    WaitUntil(true, myLink);
    if (myFolderIsNew)
    {
        std::filesystem::remove(myFolder);
    }
}

/// True where a link to a folder can be deleted, as Wine cannot.
inline const bool LinksCanBeDeleted = UnixName(L"C:\\").empty();

/// Removes a folder with its content, whatever the names and attributes in it, as far as possible. A link is
/// removed, but not its target. Wine cannot do so with each link and name; there the system below it does.
inline void RemoveTree(const std::filesystem::path& myFolder)
{
    const std::wstring myUnixName = UnixName(myFolder);
    if (myUnixName.empty())
    {
        const std::wstring myName = std::filesystem::path(myFolder).make_preferred().wstring();
        _wsystem((L"rd /s /q \"\\\\?\\" + myName + L"\"").c_str());
        return;
    }
    StartUnixProgram(L"/bin/rm", L"-rf \"" + myUnixName + L"\"");
    WaitUntil(false, myFolder);
}

/// The variable of the environment that names the folder for temporary files.
constexpr const char* TemporaryFolderVariable = "TMP";

/// What makes the system have no temporary path: one that is too long.
inline const std::pair<const char*, std::string> NoTemporaryPath[] = {{"TMP", "C:\\" + std::string(300, 'x')}};

/// Hides an entry whose name begins with a dot.
inline void Hide(const std::filesystem::path& myEntry)
{
    SetFileAttributesW(myEntry.c_str(), FILE_ATTRIBUTE_HIDDEN);
}

/// Nothing: the system has no copies of a process.
inline std::optional<bool> ReachesItsEnd(const std::function<void()>& /*myFunction*/)
{
    return {};
}

/// Ends this process without giving it another moment.
inline void KillThisProcess()
{
    TerminateProcess(GetCurrentProcess(), 1);
}

} // namespace qel
