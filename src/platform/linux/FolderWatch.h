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

/// A name that has come or gone.
struct FolderChange
{
    int Watch = 0;        ///< which folder, as FolderWatch::Begin gave it
    bool IsThere = false; ///< the name has come, else it has gone
    std::string Name;     ///< empty: the folder itself has gone or moved
};

class FolderWatch
{
public:
    /// Watches an open folder from now on, and gives a number for it, the same one each time. Nothing where the system
    /// would not tell of every change, as in a network's file system, or watches no more.
    std::optional<int> Begin(int myFolderHandle);

    /// The changes since the last call, in the order in which they came about. Nothing when some were lost.
    std::optional<std::vector<FolderChange>> TakeChanges();

    /// Watches no folder any more.
    void End() { myQueue = Descriptor(); }

private:
    Descriptor myQueue;
};

} // namespace qel
