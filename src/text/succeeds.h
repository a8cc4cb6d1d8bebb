/// Calls of which only the success matters, not the reason of a failure.
#pragma once

namespace qel
{

/// Runs an operation. False: it threw an exception.
template <class Operation>
bool Succeeds(Operation myOperation) noexcept
{
    try
    {
        myOperation();
        return true;
    }
    catch (...)
    {
        return false;
    }
}

} // namespace qel
