/// The terminal that the program is used from, and its command line.
#pragma once

#include <string>
#include <vector>

namespace qel::host
{

/// The arguments of the command line in UTF-8, without the program's name. `myCount` and `myTexts` are those of main.
std::vector<std::string> CommandLine(int myCount, const char* const* myTexts);

/// Prepares the standard streams, before the program reads or writes: a terminal shows UTF-8 and obeys escapes, and
/// what is read or written elsewhere is bytes, unchanged. The terminal is what it was again when the program ends by
/// itself, with std::exit too, or by Ctrl+C.
void PrepareStandardStreams();

enum class Output
{
    Standard,
    Errors
};

/// True when what is written to that stream appears on a terminal that obeys escapes.
bool IsTerminal(Output myStream);

} // namespace qel::host
