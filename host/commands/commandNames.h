/// Checks the names of commands for typing errors.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace qel::host
{

/// Checks that every name of a command on the command line exists. UsageFailure: one does not; the nearest name is
/// suggested.
void DemandKnownCommands(const CLI::App& myApplication, const std::vector<std::string>& myTexts);

} // namespace qel::host
