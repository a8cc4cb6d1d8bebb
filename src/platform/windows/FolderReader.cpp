#include "platform/windows/FolderReader.h"

#include "platform/windows/Handle.h"
#include "platform/windows/nativePath.h"
#include "text/errors.h"

namespace qel
{
namespace
{

EntryKind KindOfAttributes(DWORD myAttributes)
{
    return (myAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::Folder : EntryKind::File;
}

} // namespace

EntryKind KindOf(const WIN32_FIND_DATAW& myEntry)
{
    // Other reparse points, such as files that are stored elsewhere or compressed, are plain files or folders. Without
    // a tag that is unknown.
    const bool myIsReparsePoint = (myEntry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const DWORD myTag = myEntry.dwReserved0;
    return myIsReparsePoint && (myTag == 0 || IsReparseTagNameSurrogate(myTag))
               ? EntryKind::Link
               : KindOfAttributes(myEntry.dwFileAttributes);
}

EntryKind KindOfTarget(const std::wstring& myNativePath)
{
    const Handle myTarget(CreateFileW(myNativePath.c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION myFacts = {};
    return myTarget.IsOpen() && GetFileInformationByHandle(myTarget.Get(), &myFacts) != 0
               ? KindOfAttributes(myFacts.dwFileAttributes)
               : EntryKind::Other;
}

FolderReader::FolderReader(const std::wstring& myNativeFolder)
    // Every name: the system's own patterns also match the short names of files.
    : mySearch(FindFirstFileExW(PathInFolder(myNativeFolder, L"*").c_str(), FindExInfoBasic, &myEntry,
                                FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH)),
      myOpeningError(IsOpen() ? 0 : GetLastError())
{
}

FolderReader::~FolderReader()
{
    if (IsOpen())
    {
        FindClose(mySearch);
    }
}

const WIN32_FIND_DATAW* FolderReader::Next()
{
    if (myEntryIsNext)
    {
        myEntryIsNext = false;
        return &myEntry;
    }
    if (FindNextFileW(mySearch, &myEntry) != 0)
    {
        return &myEntry;
    }
    if (GetLastError() != ERROR_NO_MORE_FILES)
    {
        Raise(ErrorNumber::PathAccess);
    }
    return nullptr;
}

} // namespace qel
