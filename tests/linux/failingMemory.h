/// Memory that runs out when a test says so. To be included by one file of a program: it replaces the functions that
/// give memory out, also for the libraries that the program loads.
#pragma once

#include "com/qelcom.h"
#include "memoryLimit.h"

#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <new>

void* operator new(size_t mySize)
{
    return MemoryIsOut() ? throw std::bad_alloc() : std::malloc(mySize);
}
void* operator new(size_t mySize, const std::nothrow_t&) noexcept
{
    return MemoryIsOut() ? nullptr : std::malloc(mySize);
}
[[gnu::noinline]] void operator delete(void* myMemory) noexcept
{
    std::free(myMemory);
}
[[gnu::noinline]] void operator delete(void* myMemory, size_t) noexcept
{
    std::free(myMemory);
}

BSTR SysAllocStringLen(const char16_t* myText, uint32_t myLength)
{
    static const auto TheReal = reinterpret_cast<decltype(&SysAllocStringLen)>(dlsym(RTLD_NEXT, "SysAllocStringLen"));
    return MemoryIsOut() ? nullptr : TheReal(myText, myLength);
}

/// Replaces them for the loaded library that an address is in; here that has been done already.
inline void ReplaceMemoryFunctionsOf(const void* /*myAddress*/) {}
