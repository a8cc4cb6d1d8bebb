/// How the functions of the runtime end when memory runs out.
#pragma once

#include "com/Failure.h"
#include "com/qelcom.h"

namespace qel
{

/// Runs a function of the runtime, in which nothing but memory can run out. Returns its result, or E_OUTOFMEMORY.
template <class Operation>
HRESULT Contained(Operation&& myOperation) noexcept
{
    try
    {
        return myOperation();
    }
    catch (...)
    {
        return Refuse(E_OUTOFMEMORY);
    }
}

} // namespace qel
