/// When memory runs out in a test. failingMemory.h of each system has the functions that give memory out.
#pragma once

#include <utility>

/// How many pieces of memory this thread still gets; -1: any number.
inline thread_local int MemoryLeft = -1;

inline bool MemoryIsOut()
{
    MemoryLeft -= MemoryLeft > 0 ? 1 : 0;
    return MemoryLeft == 0;
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
