/// Paths between the logic ("\" between folders, UTF-16) and the system ("/", UTF-8).
#pragma once

#include "text/text.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel
{

/// The system's form of a path. Error 52: it contains an unpaired surrogate or the character 0.
std::string NativePath(TextView myPath);

/// The logic's form of a path of the system; nothing if the path contains "\" or is not UTF-8.
std::optional<Text> LogicalPath(std::string_view myNativePath);

/// The absolute path of what a path of the system refers to, with links resolved; empty if it does not exist.
std::string RealPath(const std::string& myNativePath);

} // namespace qel
