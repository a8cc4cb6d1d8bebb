/// What the environment of the process says about the user's folders.
#pragma once

#include <string>

namespace qel
{

/// A path from the environment, without "/" at its end; empty if it is not set, not absolute, or the root. Empty as
/// well in a process with the rights of somebody else.
std::string PathFromEnvironment(const char* myVariable);

/// The user's home folder, without "/" at its end; empty for a user without one.
std::string HomeFolder();

} // namespace qel
