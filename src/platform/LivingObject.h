/// What keeps the component loaded: its objects, and the host's locks. Both are counted on any thread.
#pragma once

#include <atomic>
#include <cstdint>

namespace qel
{

inline std::atomic<uint32_t> LivingObjectCount = 0;

/// Counted separately from the objects, so that unlocking too often does not unload a component with objects.
inline std::atomic<uint32_t> LockCount = 0;

/// A member of every object that a host, or another program such as a screen reader, can hold.
class LivingObject
{
public:
    LivingObject() { ++LivingObjectCount; }
    ~LivingObject() { --LivingObjectCount; }
    LivingObject(const LivingObject&) = delete;
    LivingObject& operator=(const LivingObject&) = delete;
};

/// Undoes one lock. Without a lock it does nothing.
inline void Unlock() noexcept
{
    uint32_t myCount = LockCount;
    while (myCount > 0 && !LockCount.compare_exchange_weak(myCount, myCount - 1))
    {
    }
}

} // namespace qel
