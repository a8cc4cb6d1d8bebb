#include "commands/terminal.h"

#include <unistd.h>

namespace qel::host
{

std::vector<std::string> CommandLine(int myCount, const char* const* myTexts)
{
    return {myTexts + (myCount > 0 ? 1 : 0), myTexts + myCount};
}

void PrepareStandardStreams() {} // which are what they should be

bool IsTerminal(Output myStream)
{
    return isatty(myStream == Output::Standard ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

} // namespace qel::host
