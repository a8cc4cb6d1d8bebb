/// Maps the system's error codes to the numbers of this component.
#pragma once

namespace qel
{

/// Throws the Error for an errno value; 57 for one that is not in the table.
[[noreturn]] void RaiseSystemError(int mySystemError);

} // namespace qel
