/// What the process of a check is made to do by a component with a fault.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <string>

namespace qel
{

/// The words that started the process, each between zeros or quotation marks.
inline std::string CommandLine()
{
    return GetCommandLineA();
}

/// Waits for ever, and so does another process that this one has started.
[[noreturn]] inline void Hang()
{
    STARTUPINFOW myStart = {};
    myStart.cb = sizeof myStart;
    PROCESS_INFORMATION myProcess = {};
    wchar_t myCommand[] = L"ping -n 60 127.0.0.1";
    CreateProcessW(nullptr, myCommand, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &myStart, &myProcess);
    for (;;)
    {
        Sleep(INFINITE);
    }
}

} // namespace qel
