/// What a test asks of a failing operation.
#pragma once

#include "text/errors.h"

namespace qel
{

/// The number of the Error that the operation throws; 0 when it succeeds.
template <class Operation>
int32_t ErrorOf(Operation myOperation)
{
    try
    {
        myOperation();
        return 0;
    }
    catch (const Error& e)
    {
        return e.Number;
    }
}

} // namespace qel
