/// Finds a path without regard to case, for when the exact path does not exist.
///
/// Part by part from the left: the exact name if it exists, else of those that are equal in lower case the first by
/// character code. Paths are in the system's form. Nothing is cached between calls.
#pragma once

#include "platform/linux/FolderReader.h"

#include <optional>
#include <string>

namespace qel
{

/// The first part of a path that does not exist, if any.
enum class Missing
{
    Nothing,
    Name,  ///< the last part
    Folder ///< something before the last part
};

/// The result of a search. If something is missing, `Path` is the path that was given.
struct Place
{
    std::string Path;
    Missing What;
};

/// Finds a path. In a folder without read permission only exact names are found.
/// Error 57: the system cannot read a folder.
Place FindPath(const std::string& myPath);

/// The path with its last part unchanged, in the folder that is found for the rest; nothing if there is no such folder.
/// Error 57 as above.
std::optional<std::string> FindFolderOf(const std::string& myPath);

/// Opens a folder for reading, and searches for it if necessary. If that fails, the reader is not open and errno has
/// the reason, ENOENT or ENOTDIR for a folder that does not exist.
FolderReader OpenFolder(const std::string& myFolder);

} // namespace qel
