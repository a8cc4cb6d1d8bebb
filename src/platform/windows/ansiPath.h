/// Paths for functions of the system that take bytes in its code page.
#pragma once

#include "text/text.h"

#include <optional>
#include <string>

namespace qel
{

/// One path in both forms.
struct AnsiPath
{
    Text Path;
    std::string Bytes;
};

/// A path that the code page can hold: the given one or, if the code page lacks one of its characters, the same with
/// short names. Nothing if there are no short names either, as for a path that does not exist.
std::optional<AnsiPath> AnsiPathOf(TextView myPath);

} // namespace qel
