#include "site/fileOperations.h"

#include "platform/windows/FolderReader.h"
#include "platform/windows/Handle.h"
#include "platform/windows/nativePath.h"
#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"
#include "text/errors.h"

#include <array>
#include <string>
#include <string_view>

namespace qel::host
{

namespace fs = std::filesystem;

const bool HoldsAllNames = false;

namespace
{

std::error_code SystemError(DWORD myCode)
{
    return {static_cast<int>(myCode), std::system_category()};
}

std::error_code LastError()
{
    return SystemError(GetLastError());
}

/// True for a reparse point that stands for another path, or does not say what it is. Others are the entry itself, for
/// example a file that is in a cloud.
bool IsLink(const fs::path& myPath)
{
    WIN32_FIND_DATAW myEntry{};
    const HANDLE mySearch = FindFirstFileW(myPath.c_str(), &myEntry);
    if (mySearch == INVALID_HANDLE_VALUE)
    {
        return true; // what cannot be examined is not followed
    }
    FindClose(mySearch);
    return myEntry.dwReserved0 == 0 || IsReparseTagNameSurrogate(myEntry.dwReserved0);
}

/// True for a name that the system keeps for a device, such as NUL, in any folder.
bool IsDevice(const fs::path& myPath)
{
    constexpr std::wstring_view DevicePrefix = L"\\\\.\\";
    std::array<wchar_t, MAX_PATH> myWhole{}; // a longer path is that of a file
    const DWORD myLength = GetFullPathNameW(myPath.c_str(), MAX_PATH, myWhole.data(), nullptr);
    return myLength < MAX_PATH && std::wstring_view(myWhole.data(), myLength).starts_with(DevicePrefix);
}

} // namespace

fs::file_type EntryType(const fs::path& myPath, std::error_code& theError)
{
    theError.clear();
    if (IsDevice(myPath))
    {
        return fs::file_type::character;
    }
    const DWORD myAttributes = GetFileAttributesW(myPath.c_str());
    if (myAttributes == INVALID_FILE_ATTRIBUTES)
    {
        const std::error_code myReason = LastError();
        // A name that cannot exist does not exist.
        if (myReason == std::errc::no_such_file_or_directory || myReason.value() == ERROR_INVALID_NAME)
        {
            return fs::file_type::not_found;
        }
        theError = myReason;
        return fs::file_type::none;
    }
    if ((myAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLink(myPath))
    {
        return fs::file_type::symlink;
    }
    return (myAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? fs::file_type::directory : fs::file_type::regular;
}

std::vector<fs::path> EntryNames(const fs::path& myFolder, std::error_code& theError)
{
    // The iterator of the standard library reads the current folder in place of one whose path is too long for it.
    theError.clear();
    std::vector<fs::path> theNames;
    try
    {
        FolderReader myReader(NativePath(TextOfWide(myFolder.native())));
        theError = myReader.IsOpen() ? std::error_code() : SystemError(myReader.OpeningError());
        while (const WIN32_FIND_DATAW* const myEntry = myReader.IsOpen() ? myReader.Next() : nullptr)
        {
            const std::wstring_view myName = myEntry->cFileName;
            if (myName != L"." && myName != L"..")
            {
                theNames.emplace_back(myName);
            }
        }
    }
    catch (const Error& myError)
    {
        theError = SystemError(myError.Number == ErrorNumber::BadFileName ? ERROR_INVALID_NAME : ERROR_READ_FAULT);
    }
    return theNames;
}

fs::path RealFolderPath(const fs::path& myFolder, std::error_code& theError)
{
    constexpr DWORD LongestPath = 32768;
    theError.clear();
    const Handle myOpenFolder(CreateFileW(myFolder.c_str(), FILE_READ_ATTRIBUTES,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    std::wstring theFolder(LongestPath, L'\0');
    const DWORD myLength = !myOpenFolder.IsOpen()
                               ? 0
                               : GetFinalPathNameByHandleW(myOpenFolder.Get(), theFolder.data(), LongestPath,
                                                           FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (myLength == 0 || myLength >= LongestPath)
    {
        theError = myLength == 0 ? LastError() : SystemError(ERROR_FILENAME_EXCED_RANGE);
        return {};
    }
    theFolder.resize(myLength);
    return PlainPath(theFolder);
}

void CopyContent(const fs::path& mySource, const fs::path& myTarget, std::error_code& theError)
{
    theError.clear();
    // The copy of a file that can only be read, or that is hidden, would be so too.
    if (CopyFileW(mySource.c_str(), myTarget.c_str(), FALSE) == 0 ||
        SetFileAttributesW(myTarget.c_str(), FILE_ATTRIBUTE_ARCHIVE) == 0)
    {
        theError = LastError();
    }
}

void RenameEntry(const fs::path& myFile, const fs::path& myTarget, std::error_code& theError)
{
    theError.clear();
    if (MoveFileExW(myFile.c_str(), myTarget.c_str(), MOVEFILE_REPLACE_EXISTING) == 0)
    {
        theError = LastError();
    }
}

void FlushFile(const fs::path& myFile, std::error_code& theError)
{
    theError.clear();
    const Handle myOpenFile(CreateFileW(myFile.c_str(), GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!myOpenFile.IsOpen() || FlushFileBuffers(myOpenFile.Get()) == 0)
    {
        theError = LastError();
    }
}

void FlushFolder(const fs::path& /*myFolder*/, std::error_code& theError)
{
    theError.clear();
}

uintmax_t FreeSpace(const fs::path& myFolder, std::error_code& theError)
{
    // The standard library asks for the drive, which says nothing of a disk that is mounted in a folder.
    ULARGE_INTEGER theSpace{};
    theError =
        GetDiskFreeSpaceExW(myFolder.c_str(), &theSpace, nullptr, nullptr) != 0 ? std::error_code() : LastError();
    return theSpace.QuadPart;
}

bool IsHidden(const fs::path& myPath)
{
    const DWORD myAttributes = GetFileAttributesW(myPath.c_str());
    const bool myIsMarked = myAttributes != INVALID_FILE_ATTRIBUTES && (myAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
    return myIsMarked || myPath.filename().native().starts_with(L'.');
}

} // namespace qel::host
