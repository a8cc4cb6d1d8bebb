/// Maps the system's error codes to the numbers of this component.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <cstdint>

namespace qel
{

/// The number for a code of GetLastError; 57 for one that is not in the table.
int32_t NumberOfSystemError(DWORD mySystemError);

/// Throws the Error with that number.
[[noreturn]] void RaiseSystemError(DWORD mySystemError);

} // namespace qel
