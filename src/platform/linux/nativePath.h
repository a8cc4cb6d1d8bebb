/// Paths between the logic ("\" between folders, UTF-16) and the system ("/", UTF-8).
#pragma once

#include "text/text.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel
{

/// The system's form of a path. Error 52: it holds half a surrogate pair or the character 0.
std::string NativePath(TextView myPath);

/// The logic's form of a path of the system, or nothing where it has none: the path holds "\", or is not UTF-8.
std::optional<Text> LogicalPath(std::string_view myNativePath);

/// The absolute path of what a path of the system leads to, without links in it; empty when there is nothing.
std::string RealPath(const std::string& myNativePath);

} // namespace qel
