#include "commands/terminal.h"

#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"
#include "text/encodings.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace qel::host
{

namespace
{

constexpr std::array Outputs{STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

/// What the console was set to before the program; it outlives the program.
UINT myOldCodePage = 0;
std::array<std::optional<DWORD>, Outputs.size()> myOldModes; // none where a stream is no console

void RestoreConsole()
{
    for (size_t i = 0; i < Outputs.size(); ++i)
    {
        if (myOldModes[i])
        {
            SetConsoleMode(GetStdHandle(Outputs[i]), *myOldModes[i]);
        }
    }
    if (myOldCodePage != 0)
    {
        SetConsoleOutputCP(myOldCodePage);
    }
}

/// Ctrl+C where nothing else takes it. The system ends the program then.
BOOL WINAPI RestoreBeforeEnd(DWORD /*myEvent*/)
{
    RestoreConsole();
    return FALSE;
}

} // namespace

std::vector<std::string> CommandLine(int /*myCount*/, const char* const* /*myTexts*/)
{
    // The texts of main are in the code page, which lacks characters.
    int myCount = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> myTexts(CommandLineToArgvW(GetCommandLineW(), &myCount),
                                                                  &LocalFree);
    std::vector<std::string> theArguments;
    for (int i = 1; i < myCount; ++i)
    {
        theArguments.push_back(ToUtf8(TextOfWide(myTexts.get()[i])));
    }
    return theArguments;
}

void PrepareStandardStreams()
{
    for (std::FILE* const myStream : {stdin, stdout, stderr})
    {
        _setmode(_fileno(myStream), _O_BINARY); // line ends stay as they are
    }
    for (size_t i = 0; i < Outputs.size(); ++i)
    {
        DWORD myMode = 0;
        if (GetConsoleMode(GetStdHandle(Outputs[i]), &myMode) != 0)
        {
            myOldModes[i] = myMode;
            SetConsoleMode(GetStdHandle(Outputs[i]), myMode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
            myOldCodePage = myOldCodePage == 0 ? GetConsoleOutputCP() : myOldCodePage;
            SetConsoleOutputCP(CP_UTF8);
        }
    }
    std::atexit(&RestoreConsole);
    SetConsoleCtrlHandler(RestoreBeforeEnd, TRUE);
}

bool IsTerminal(Output myStream)
{
    DWORD myMode = 0;
    return GetConsoleMode(GetStdHandle(myStream == Output::Standard ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE), &myMode) !=
               0 &&
           (myMode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

} // namespace qel::host
