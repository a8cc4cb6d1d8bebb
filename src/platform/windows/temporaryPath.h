/// Where temporary files are.
#pragma once

#include "text/text.h"

namespace qel
{

/// The user's temporary folder as the system's function for programs with byte texts returns it, with a closing "\";
/// the empty text if there is none or its path has more than 253 bytes in the code page. If the code page lacks one of
/// its characters, it is the path with short names, or empty without those.
Text SystemTemporaryPath();

} // namespace qel
