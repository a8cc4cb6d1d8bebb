/// Handles running out of memory in the functions of the runtime.
#pragma once

#include "com/failure.h"
#include "com/qelcom.h"

namespace qel
{

/// Runs a function of the runtime, which can throw only std::bad_alloc. Returns its result, or E_OUTOFMEMORY.
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
