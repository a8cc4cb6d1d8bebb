/// What is wrong with a command line, in words for the user.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace qel::host
{

/// The line that reports an error of the command line: the reason, and where help is.
std::string MisuseMessage(const CLI::App* myApplication, const CLI::Error& myError);

} // namespace qel::host
