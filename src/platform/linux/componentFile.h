/// Which file this code has been loaded from.
#pragma once

#include <string>

namespace qel
{

/// The library, or the program that it is linked into: absolute, in the system's form, whatever the name under which it
/// was loaded and the current folder now. Empty when the system cannot tell.
std::string NativeComponentFile();

} // namespace qel
