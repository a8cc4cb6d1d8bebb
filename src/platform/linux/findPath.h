/// Finds what a path leads to without regard to case, after the exact path has turned out not to exist.
///
/// Part by part from the left: a name that is there exactly is taken, else the first by character code of those that
/// are alike, which means equal in lower case. Paths are in the system's form. Nothing is remembered between calls.
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

/// Where a path leads. Where something is missing `Path` is the path that was asked for.
struct Place
{
    std::string Path;
    Missing What;
};

/// Finds a path. Where a folder may not be read its names count as unknown, and none is alike.
/// Error 57: the system cannot read a folder.
Place FindPath(const std::string& myPath);

/// The path with its last part unchanged, in the folder that the rest of it leads to; nothing when there is no such
/// folder. Error 57 as above.
std::optional<std::string> FindFolderOf(const std::string& myPath);

/// Opens a folder for reading, and finds it first if need be. When that fails the reader is not open and errno says
/// why, with ENOENT and ENOTDIR for a folder that does not exist.
FolderReader OpenFolder(const std::string& myFolder);

} // namespace qel
