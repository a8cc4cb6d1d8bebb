/// Names of commands that are mistyped.
#pragma once

#include <CLI/CLI.hpp>

namespace qel::host
{

/// Passes when every name of a command on the command line is one that there is.
/// UsageFailure: it is not; the nearest name is suggested.
void DemandKnownCommands(const CLI::App& myApplication, int myCount, const char* const* myTexts);

} // namespace qel::host
