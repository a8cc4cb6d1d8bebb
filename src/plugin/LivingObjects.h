/// Counts what keeps the component loaded: its objects, and the host's locks.
#pragma once

#include <atomic>
#include <cstdint>

namespace qel
{

inline std::atomic<int32_t> LivingObjectCount = 0;

/// A member of every object that the host can hold.
class LivingObject
{
public:
    LivingObject() { ++LivingObjectCount; }
    ~LivingObject() { --LivingObjectCount; }
    LivingObject(const LivingObject&) = delete;
    LivingObject& operator=(const LivingObject&) = delete;
};

} // namespace qel
