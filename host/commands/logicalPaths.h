/// Paths of this machine as the component names them, with "\" between folders.
#pragma once

#include "text/text.h"

#include <filesystem>
#include <optional>

namespace qel::host
{

/// The component's name of a path; nothing if it has none.
std::optional<Text> LogicalName(const std::filesystem::path& myPath);

/// The path that has this name in the component.
std::filesystem::path NativeName(TextView myName);

} // namespace qel::host
