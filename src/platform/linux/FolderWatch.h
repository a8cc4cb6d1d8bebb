/// Tells what comes and goes in folders, whoever brings it about.
///
/// The system notes a change before the call that makes it returns, so whoever asks afterwards learns of it.
#pragma once

#include "platform/linux/Descriptor.h"

#include <optional>
#include <string>
#include <vector>

namespace qel
{

/// True when nothing changes in the file system of an open file or folder without this system's knowing, as it does in
/// a network's.
bool IsInLocalFileSystem(int myHandle);

/// What has changed in a folder.
struct FolderChange
{
    enum Kind
    {
        NameCame,
        NameWent,
        Other ///< a name has moved away, perhaps in exchange for another, or the folder itself has gone
    };

    int Watch; ///< which folder, as FolderWatch::Begin gave it
    Kind What;
    std::string Name; ///< that has come or gone
};

class FolderWatch
{
public:
    FolderWatch() = default;
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch() { EndAll(); }

    /// Watches an open folder from now on, and gives a number for it, the same one each time. Nothing where the system
    /// would not tell of every change, or watches no more: of what it has for all programs of a user, those of this
    /// process take a small part.
    std::optional<int> Begin(int myFolderHandle);

    /// Watches a folder no longer.
    void End(int myNumber);
    void EndAll();

    /// The changes since the last call, in the order in which they came about. Nothing when some were lost.
    std::optional<std::vector<FolderChange>> TakeChanges();

private:
    Descriptor myQueue;
    pid_t myProcess = 0; ///< whose queue it is; one that was forked shares it and must not take anything out
};

} // namespace qel
