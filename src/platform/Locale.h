/// What depends on where the user lives.
#pragma once

#include "text/text.h"

#include <cstdint>

namespace qel
{

/// Decimal digits, grouped as the user's locale has it; plain ones where the system has not that locale. Callable on
/// any thread.
Text GroupedNumberText(int64_t myNumber);

} // namespace qel
