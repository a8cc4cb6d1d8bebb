/// Finds what a path leads to without regard to case, after the exact path has turned out not to exist.
///
/// Part by part from the left: a name that is there exactly is taken, else the first by character code of those that
/// are alike, which is to say equal in lower case. Paths are in the system's form.
#pragma once

#include "platform/linux/FolderReader.h"
#include "platform/linux/FolderWatch.h"
#include "text/text.h"

#include <map>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <unordered_map>
#include <utility>

namespace qel
{

/// How long the names of folders are kept.
enum class Memory
{
    Passing, ///< no longer than this
    Lasting  ///< beyond it, up to eight folders, where the system tells of all that changes there
};

/// The first part of a path that does not exist, if any.
enum class Missing
{
    Nothing,
    Name,  ///< the last part; what is made is to be made at Place::Path
    Folder ///< something before the last part
};

/// Where a path leads.
struct Place
{
    std::string Path;
    Missing What;
};

/// The names of one folder, by their lower case.
class FolderNames
{
public:
    /// A path of the folder, ending in "/" unless it is the current folder, whose path is empty.
    std::string Path;
    std::optional<int> Watch; ///< its number among the folders that are watched

    /// Adds a name unless it is there.
    void Add(std::string_view myName);
    void Remove(std::string_view myName);
    /// The name itself or the first one that is alike; null when there is none.
    const std::string* Find(std::string_view myName) const;

private:
    using Map = std::unordered_multimap<Text, std::string>;
    Map::const_iterator FindExactly(const Text& myLowerCase, std::string_view myName) const;

    Map myNames;
};

class PathFinder
{
public:
    /// Finds a path. Where a folder may not be read its names count as unknown, and none is alike.
    /// Error 57: the system cannot read a folder.
    Place Find(const std::string& myPath);

    /// Opens a folder for reading, and finds it first if need be: then `theFolder` becomes its real path. When that
    /// fails the reader is not open and errno says why, with ENOENT and ENOTDIR for a folder that does not exist.
    FolderReader OpenFolder(std::string& theFolder);

    /// From Remember to the Forget that belongs to it the names of a folder are read at most once. They nest, and the
    /// outermost one's argument holds. No error.
    void Remember(Memory myMemory);
    void Forget();

    /// True when the names of the folder that the path's last part lies in have been read already.
    bool Remembers(std::string_view myPath) { return NamesAround(myPath) != nullptr; }

    /// Tells that the last part of a path has just been made, or deleted.
    void Made(std::string_view myPath);
    void Deleted(std::string_view myPath);

private:
    FolderNames* NamesAround(std::string_view myPath);
    FolderNames& ReadNames(std::string_view mySpelling, const std::string& myFolder, FolderReader& myReader);
    void CatchUp();
    void ForgetAll();

    int myRemembering = 0;
    Memory myOutermost = Memory::Passing;
    FolderWatch myWatch;
    /// By device and number, so that every way of writing a folder's path leads to the same names.
    std::map<std::pair<dev_t, ino_t>, FolderNames> myFolders;
    std::map<std::string, FolderNames*, std::less<>> mySpellings;
};

} // namespace qel
