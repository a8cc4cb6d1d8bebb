#include "commands/terminal.h"

#include <unistd.h>

namespace qel::host
{

bool IsTerminal(Output myStream)
{
    return isatty(myStream == Output::Standard ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

} // namespace qel::host
