/// What the process of a check is made to do by a component with a fault.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

namespace qel
{

/// The words that started the process, each between zeros or quotation marks.
inline std::string CommandLine()
{
    std::ifstream myWords("/proc/self/cmdline", std::ios::binary);
    return {std::istreambuf_iterator<char>(myWords), {}};
}

/// Waits for ever, and so does another process, out of reach of what ends the group of this one.
[[noreturn]] inline void Hang()
{
    if (fork() != 0)
    {
        setpgid(0, getpgid(getppid()));
    }
    for (;;)
    {
        pause();
    }
}

} // namespace qel
