/// Reads the entries of a folder one after the other, in the file system's order, "." and ".." among them except in a
/// root.
#pragma once

#include "platform/Files.h"
#include "platform/windows/windowsHeaders.h"

#include <string>

namespace qel
{

/// The kind of an entry itself: a junction or a symbolic link is a link, whatever its target.
EntryKind KindOf(const WIN32_FIND_DATAW& myEntry);

/// The kind of what a path leads to, links followed; Other if that does not exist.
EntryKind KindOfTarget(const std::wstring& myNativePath);

class FolderReader
{
public:
    /// Opens a folder, in the form of NativePath. If that fails, IsOpen is false and OpeningError has the reason.
    explicit FolderReader(const std::wstring& myNativeFolder);
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;
    ~FolderReader();

    bool IsOpen() const { return mySearch != INVALID_HANDLE_VALUE; }
    DWORD OpeningError() const { return myOpeningError; }

    /// The next entry, or null after the last one. It is valid until the next call. Error 75: reading failed.
    const WIN32_FIND_DATAW* Next();

private:
    WIN32_FIND_DATAW myEntry = {};
    HANDLE mySearch;
    DWORD myOpeningError;
    bool myEntryIsNext = true; ///< it was read with the opening
};

} // namespace qel
