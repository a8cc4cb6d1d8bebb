/// Failures that pass without a word.
#pragma once

#include "text/errors.h"

#include <exception>

namespace qel
{

/// Runs an operation. False: it has failed; why, nobody asks.
template <class Operation>
bool Succeeds(Operation myOperation)
{
    try
    {
        myOperation();
        return true;
    }
    catch (const Error&)
    {
        return false;
    }
    catch (const std::exception&) // no memory, for one
    {
        return false;
    }
}

} // namespace qel
