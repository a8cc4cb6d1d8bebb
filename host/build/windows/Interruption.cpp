#include "build/Interruption.h"

#include "platform/windows/windowsHeaders.h"

#include <atomic>
#include <cstdlib>

namespace qel::host
{

namespace
{

constexpr auto EndedByControlC = static_cast<int>(0xC000013A); // the exit code that shells know

std::atomic<bool> myIsRequested = false;

/// The system calls it on a thread of its own.
BOOL WINAPI NoteRequest(DWORD myEvent)
{
    if (myIsRequested.exchange(true))
    {
        return FALSE; // the second request ends the program at once
    }
    if (myEvent != CTRL_C_EVENT && myEvent != CTRL_BREAK_EVENT)
    {
        Sleep(INFINITE); // the window is closed or the user logs off: the system ends the program when this returns
    }
    return TRUE;
}

} // namespace

void Interrupted::EndProgram()
{
    std::exit(EndedByControlC); // which also restores the console
}

Interruption::Interruption()
{
    SetConsoleCtrlHandler(NoteRequest, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(NoteRequest, FALSE);
}

void Interruption::ThrowIfRequested()
{
    if (myIsRequested)
    {
        throw Interrupted("the build was interrupted; build again to complete it");
    }
}

} // namespace qel::host
