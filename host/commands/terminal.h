/// The terminal that the program is used from.
#pragma once

namespace qel::host
{

enum class Output
{
    Standard,
    Errors
};

/// True when what is written to that stream appears on a terminal.
bool IsTerminal(Output myStream);

} // namespace qel::host
