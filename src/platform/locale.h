/// What depends on the user's locale.
#pragma once

#include "text/NumberGrouping.h"

namespace qel
{

/// How the user's locale groups the digits of numbers; no groups if the system does not have that locale. Reads the
/// locale from disk. Callable on any thread. No error.
NumberGrouping UserNumberGrouping();

} // namespace qel
