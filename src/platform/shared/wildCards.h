/// Matching of file names with patterns, the same on every system.
#pragma once

#include "text/text.h"

namespace qel
{

/// The pattern as MatchesPattern takes it: in lower case, and "*" for "*.*", which matches names without a dot as well.
Text LoweredPattern(TextView myPattern);

/// True when a name in lower case matches a pattern of LoweredPattern: "*" matches any run of characters, "?" one
/// character.
bool MatchesPattern(TextView myLoweredName, TextView myLoweredPattern);

} // namespace qel
