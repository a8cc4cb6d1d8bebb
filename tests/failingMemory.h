/// Memory that runs out when a test says so. To be included by one file of a program: it replaces the functions that
/// give memory out, also for the libraries that the program loads.
#pragma once

#include "com/qelcom.h"

#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <utility>

/// How many pieces of memory this thread still gets; -1: any number.
inline thread_local int MemoryLeft = -1;

inline bool MemoryIsOut()
{
    MemoryLeft -= MemoryLeft > 0 ? 1 : 0;
    return MemoryLeft == 0;
}

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

namespace qel
{

/// Runs an operation that fails at its first piece of memory, at its second, and so on, until it succeeds. What it
/// returns each time goes to `myExamine`, with any number of pieces again.
template <class Operation, class Examination>
void FailEachPieceOfMemory(Operation myOperation, Examination myExamine)
{
    for (int i = 1, myRest = 0; myRest == 0; ++i)
    {
        MemoryLeft = i;
        const auto myOutcome = myOperation();
        myRest = std::exchange(MemoryLeft, -1);
        myExamine(myOutcome);
    }
}

} // namespace qel
