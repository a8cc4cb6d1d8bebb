// What a process holds of the system.
#include "check/system.h"

#include <dlfcn.h>
#include <malloc.h>

namespace qel::host
{

size_t MemoryInUse()
{
    // A sanitizer's own allocator does not show in the system's figures.
    using Counter = size_t (*)();
    static const auto myCounter =
        reinterpret_cast<Counter>(dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes"));
    const struct mallinfo2 myMemory = mallinfo2();
    return myCounter != nullptr ? myCounter() : myMemory.uordblks + myMemory.hblkhd;
}

int64_t OpenFileCount()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

} // namespace qel::host
