/// The clock of the machine.
#pragma once

#include "text/dates.h"

namespace qel
{

/// The day that it is where the user lives. Callable on any thread.
Date Today();

} // namespace qel
