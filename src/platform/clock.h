/// The clock of the machine.
#pragma once

#include "text/dates.h"

namespace qel
{

/// The current day in the user's time zone. Callable on any thread.
Date Today();

} // namespace qel
