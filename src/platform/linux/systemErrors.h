/// The one place where the system's error codes become the numbers of this component.
#pragma once

namespace qel
{

/// Throws the Error that stands for an errno value; 57 for one that is not foreseen.
[[noreturn]] void RaiseSystemError(int mySystemError);

} // namespace qel
