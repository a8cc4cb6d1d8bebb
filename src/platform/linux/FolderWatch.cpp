#include "platform/linux/FolderWatch.h"

#include <algorithm>
#include <array>
#include <atomic>
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
constexpr uint32_t Others = IN_MOVED_FROM | IN_DELETE_SELF;

/// How many queues are open. Each thread that copies has one of its own, until the component is unloaded.
std::atomic<int> theQueues = 0;
constexpr int MostQueues = 8;

} // namespace

bool IsInLocalFileSystem(int myHandle)
{
    constexpr std::array<long, 5> LocalSystems = {TMPFS_MAGIC, EXT4_SUPER_MAGIC, BTRFS_SUPER_MAGIC, XFS_SUPER_MAGIC,
                                                  F2FS_SUPER_MAGIC};
    struct statfs myFacts = {};
    return fstatfs(myHandle, &myFacts) == 0 &&
           std::find(LocalSystems.begin(), LocalSystems.end(), myFacts.f_type) != LocalSystems.end();
}

std::optional<int> FolderWatch::Begin(int myFolderHandle)
{
    if (!IsInLocalFileSystem(myFolderHandle))
    {
        return std::nullopt;
    }
    if (!myQueue.IsOpen())
    {
        if (++theQueues <= MostQueues)
        {
            myQueue = Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
            myProcess = getpid();
        }
        if (!myQueue.IsOpen())
        {
            --theQueues;
            return std::nullopt;
        }
    }
    const std::string myPath = "/proc/self/fd/" + std::to_string(myFolderHandle);
    const int theNumber = inotify_add_watch(myQueue.Handle(), myPath.c_str(), NameComes | IN_DELETE | Others);
    return theNumber == -1 ? std::nullopt : std::optional(theNumber);
}

void FolderWatch::End(int myNumber)
{
    inotify_rm_watch(myQueue.Handle(), myNumber);
}

void FolderWatch::EndAll()
{
    if (myQueue.IsOpen())
    {
        myQueue = Descriptor();
        --theQueues;
    }
}

std::optional<std::vector<FolderChange>> FolderWatch::TakeChanges()
{
    std::vector<FolderChange> theChanges;
    if (!myQueue.IsOpen())
    {
        return theChanges;
    }
    if (myProcess != getpid())
    {
        return std::nullopt;
    }
    alignas(inotify_event) std::array<std::byte, 4096> myBytes{};
    ssize_t myCount = 0;
    do
    {
        myCount = Retrying([&] { return read(myQueue.Handle(), myBytes.data(), myBytes.size()); });
        for (size_t i = 0; myCount > 0 && i < static_cast<size_t>(myCount);)
        {
            inotify_event myEvent = {};
            std::memcpy(&myEvent, &myBytes[i], sizeof myEvent);
            i += sizeof myEvent;
            if ((myEvent.mask & (IN_Q_OVERFLOW | IN_UNMOUNT)) != 0)
            {
                return std::nullopt;
            }
            if ((myEvent.mask & Others) != 0)
            {
                theChanges.push_back({myEvent.wd, FolderChange::Other, {}});
            }
            else if ((myEvent.mask & (NameComes | IN_DELETE)) != 0)
            {
                // The name is filled up with zeros.
                theChanges.push_back({myEvent.wd,
                                      (myEvent.mask & NameComes) != 0 ? FolderChange::NameCame : FolderChange::NameWent,
                                      reinterpret_cast<const char*>(&myBytes[i])});
            }
            i += myEvent.len;
        }
    } while (myCount > static_cast<ssize_t>(myBytes.size() / 2)); // else there was room for more, and so no more
    return theChanges;
}

} // namespace qel
