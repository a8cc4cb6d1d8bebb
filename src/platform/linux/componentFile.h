/// Which file this code has been loaded from.
#pragma once

#include <string>

namespace qel
{

/// The library, or the program that it is linked into: absolute, in the system's form, independent of the name by which
/// it was loaded and of the current folder. Empty if it is unknown.
std::string NativeComponentFile();

} // namespace qel
