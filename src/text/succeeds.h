/// Failures whose reason nobody asks for.
#pragma once

namespace qel
{

/// Runs an operation. False: it threw something.
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
