/// Runs a program in a console of its own, and presses Ctrl+C there as soon as the program has written to its error
/// output. Nobody reads that before, so a program that writes much cannot have ended.
///
///     interrupter PROGRAM [ARGUMENT...]
///
/// Passes the error output on, and ends with the program's exit code; a code of 99 means that it could not be run.
#include "platform/windows/windowsHeaders.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace
{

void Require(bool myIsDone, const char* myWhat)
{
    if (!myIsDone)
    {
        std::fprintf(stderr, "interrupter: %s: error %lu\n", myWhat, GetLastError());
        std::exit(99);
    }
}

/// Ctrl+C is also for this program, which shares the console.
BOOL WINAPI Ignore(DWORD /*myEvent*/)
{
    return TRUE;
}

/// Starts the program with its error output in a small pipe; gives the pipe's other end.
HANDLE Start(std::wstring myCommand, PROCESS_INFORMATION& theProcess)
{
    constexpr DWORD SmallPipe = 4096;
    SECURITY_ATTRIBUTES myInheritance = {sizeof myInheritance, nullptr, TRUE};
    HANDLE theMessages = nullptr;
    STARTUPINFOW myStart = {};
    myStart.cb = sizeof myStart;
    myStart.dwFlags = STARTF_USESTDHANDLES;
    Require(CreatePipe(&theMessages, &myStart.hStdError, &myInheritance, SmallPipe), "a pipe");
    SetHandleInformation(theMessages, HANDLE_FLAG_INHERIT, 0);
    Require(
        CreateProcessW(nullptr, myCommand.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &myStart, &theProcess),
        "the program");
    CloseHandle(myStart.hStdError);
    return theMessages;
}

} // namespace

int main()
{
    const std::wstring myCommandLine = GetCommandLineW(); // quoted for the program already
    const size_t myEnd = myCommandLine.find(L' ', myCommandLine.find(L"interrupter.exe"));
    Require(myEnd != std::wstring::npos, "a program is not named");
    FreeConsole();
    Require(AllocConsole(), "a console");
    SetConsoleCtrlHandler(Ignore, TRUE);

    PROCESS_INFORMATION myProcess = {};
    const HANDLE myMessages = Start(myCommandLine.substr(myEnd + 1), myProcess);
    std::array<char, 256> myPart = {};
    DWORD myLength = 0;
    bool myIsPressed = false;
    while (ReadFile(myMessages, myPart.data(), DWORD{myPart.size()}, &myLength, nullptr) != 0)
    {
        std::fwrite(myPart.data(), 1, myLength, stderr);
        if (!std::exchange(myIsPressed, true))
        {
            Require(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), "Ctrl+C");
            Sleep(500); // it is taken on another thread
        }
    }
    WaitForSingleObject(myProcess.hProcess, INFINITE);
    DWORD theCode = 0;
    GetExitCodeProcess(myProcess.hProcess, &theCode);
    return static_cast<int>(theCode);
}
