#include "platform/linux/FolderWatch.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>

namespace qel
{
namespace
{

constexpr uint32_t NameComes = IN_CREATE | IN_MOVED_TO;
constexpr uint32_t NameGoes = IN_DELETE | IN_MOVED_FROM;
constexpr uint32_t FolderGoes = IN_DELETE_SELF | IN_MOVE_SELF;

/// True for the file systems in which nothing changes without this system.
bool IsLocal(int myFolderHandle)
{
    constexpr std::array<long, 5> LocalSystems = {TMPFS_MAGIC, EXT4_SUPER_MAGIC, BTRFS_SUPER_MAGIC, XFS_SUPER_MAGIC,
                                                  F2FS_SUPER_MAGIC};
    struct statfs myFacts = {};
    return fstatfs(myFolderHandle, &myFacts) == 0 &&
           std::find(LocalSystems.begin(), LocalSystems.end(), myFacts.f_type) != LocalSystems.end();
}

} // namespace

std::optional<int> FolderWatch::Begin(int myFolderHandle)
{
    if (!IsLocal(myFolderHandle))
    {
        return std::nullopt;
    }
    if (!myQueue.IsOpen())
    {
        myQueue = Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    }
    const std::string myPath = "/proc/self/fd/" + std::to_string(myFolderHandle);
    const int theNumber = inotify_add_watch(myQueue.Handle(), myPath.c_str(), NameComes | NameGoes | FolderGoes);
    return theNumber == -1 ? std::nullopt : std::optional(theNumber);
}

std::optional<std::vector<FolderChange>> FolderWatch::TakeChanges()
{
    std::vector<FolderChange> theChanges;
    alignas(inotify_event) std::array<std::byte, 4096> myBytes{};
    ssize_t myCount = 0;
    while (myQueue.IsOpen() &&
           (myCount = Retrying([&] { return read(myQueue.Handle(), myBytes.data(), myBytes.size()); })) > 0)
    {
        for (size_t i = 0; i < static_cast<size_t>(myCount);)
        {
            inotify_event myEvent = {};
            std::memcpy(&myEvent, &myBytes[i], sizeof myEvent);
            i += sizeof myEvent;
            if ((myEvent.mask & (IN_Q_OVERFLOW | IN_UNMOUNT)) != 0)
            {
                return std::nullopt;
            }
            if ((myEvent.mask & (NameComes | NameGoes)) != 0)
            {
                // The name is filled up with zeros.
                theChanges.push_back(
                    {myEvent.wd, (myEvent.mask & NameComes) != 0, reinterpret_cast<const char*>(&myBytes[i])});
            }
            else if ((myEvent.mask & FolderGoes) != 0)
            {
                theChanges.push_back({myEvent.wd, false, {}});
            }
            i += myEvent.len;
        }
    }
    return theChanges;
}

} // namespace qel
