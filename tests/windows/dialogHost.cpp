/// A host that opens the settings dialog for a driver in another process, which works in its windows.
///
/// Usage: dialog_host FOLDER MODE
/// FOLDER contains the component, its library, the script of the module in script.txt, and the folder data. It takes
/// what the host saw in result.txt, and in calls.txt the calls of functions of the system that are only written down.
/// MODE is empty, or a word of Run below.
#include "DialogHost.h"
#include "platform/windows/wideText.h"
#include "platform/windows/window/controlHeaders.h"
#include "Redirection.h"

#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <objbase.h>
#include <optional>
#include <thread>

namespace qel
{

const char16_t* const ErrorSource = u"dialog_host";

namespace
{

namespace fs = std::filesystem;

fs::path theFolder; ///< that the program is started with

void WriteCall(const std::string& myCall)
{
    std::ofstream(theFolder / "calls.txt", std::ios::binary | std::ios::app) << myCall << "\n";
}

/// In place of mciSendStringA.
DWORD WINAPI RecordCommand(const char* myCommand, char* theAnswer, UINT mySize, HANDLE myWindow)
{
    const bool myIsPlain = theAnswer == nullptr && mySize == 0 && myWindow == nullptr;
    WriteCall(std::string(myIsPlain ? "tune " : "another ") + myCommand);
    return 0;
}

/// In place of HtmlHelpA.
HWND WINAPI RecordHelp(HWND myOwner, const char* myFile, UINT myCommand, DWORD_PTR myTopic)
{
    const std::string myName = fs::path(myFile).filename().string();
    WriteCall((myOwner == nullptr ? "help " : "another ") + myName + " " + std::to_string(myCommand) + " " +
              std::to_string(myTopic));
    return nullptr;
}

/// In place of GetOpenFileNameW: chooses large.gif, and goes to its folder as the system does.
BOOL WINAPI RecordFileDialog(OPENFILENAMEW* theDialog)
{
    std::string myFilter;
    for (const wchar_t* myPart = theDialog->lpstrFilter; *myPart != L'\0'; myPart += std::wcslen(myPart) + 1)
    {
        myFilter += ToUtf8(TextOfWide(myPart)) + "|";
    }
    WriteCall("file " + ToUtf8(TextOfWide(theDialog->lpstrTitle)) + ", " + myFilter + ", " +
              std::to_string(theDialog->Flags) + ", " + std::to_string(theDialog->nMaxFile) + ", " +
              (theDialog->lpfnHook == nullptr && *theDialog->lpstrFile == L'\0' ? "plain" : "another"));
    const std::wstring myFile = fs::path(theFolder / "large.gif").make_preferred().wstring();
    std::ranges::copy(myFile, theDialog->lpstrFile);
    return SetCurrentDirectoryW(theFolder.c_str());
}

/// In place of MessageBoxW: presses Cancel.
int WINAPI RecordMessage(HWND myOwner, const wchar_t* myText, const wchar_t* myCaption, UINT myStyle)
{
    WriteCall("message " + std::to_string(myStyle) + " " + ToUtf8(TextOfWide(myCaption)) + ": " +
              ToUtf8(TextOfWide(myText)) + (myOwner == nullptr ? ", without an owner" : ""));
    return IDCANCEL;
}

std::string Open()
{
    std::ifstream myFile(theFolder / "script.txt", std::ios::binary);
    const std::string myScript(std::istreambuf_iterator<char>(myFile), {});
    return DialogHost((theFolder / "QelPluginAnimation.dll").string(), (theFolder / "data").u16string() + u"\\")
        .Open(myScript);
}

/// Opens the dialog over one of two windows of the host, and adds what became of them.
std::string OpenOverAWindow()
{
    const auto Make = []
    {
        return CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 300, 200, nullptr,
                               nullptr, nullptr, nullptr);
    };
    HWND const myOther = Make();
    HWND const myDisabled = Make();
    HWND const myOwner = Make();
    EnableWindow(myDisabled, FALSE);
    SetActiveWindow(myOwner);
    std::string theResult = Open();
    for (HWND const myWindow : {myOwner, myOther, myDisabled})
    {
        theResult += IsWindowEnabled(myWindow) != 0 ? "enabled " : "disabled ";
    }
    return theResult + (GetActiveWindow() == myOwner ? "owner\n" : "other\n");
}

/// Opens a dialog in each of two threads.
std::string OpenInTwoThreads()
{
    std::thread myOther([] { Open(); });
    const std::string theResult = Open();
    myOther.join();
    return theResult;
}

std::string Run(const std::string& myMode)
{
    const Redirection myCommands(L"winmm.dll", "mciSendStringA", &RecordCommand);
    const Redirection myHelp(L"hhctrl.ocx", "HtmlHelpA", &RecordHelp);
    std::optional<Redirection> myFileDialog;
    std::optional<Redirection> myMessages;
    if (myMode == "recorded")
    {
        myFileDialog.emplace(L"comdlg32.dll", "GetOpenFileNameW", &RecordFileDialog);
        myMessages.emplace(L"user32.dll", "MessageBoxW", &RecordMessage);
    }
    if (myMode == "about")
    {
        return DialogHost((theFolder / "QelPluginAnimation.dll").string(), u"").About();
    }
    return myMode == "owned" ? OpenOverAWindow() : myMode == "threads" ? OpenInTwoThreads() : Open();
}

/// What the dialog has left in the process.
std::string Leftovers(const fs::path& myCurrentFolder)
{
    std::string theResult = fs::current_path() == myCurrentFolder ? "same folder\n" : "another folder\n";
    theResult += GetModuleHandleW(L"QelPluginAnimation.dll") == nullptr ? "unloaded\n" : "still loaded\n";
    MSG myMessage = {};
    if (PeekMessageW(&myMessage, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != 0)
    {
        theResult += "quit " + std::to_string(myMessage.wParam) + "\n";
    }
    return theResult;
}

} // namespace
} // namespace qel

int main(int myCount, char** myArguments)
{
    using namespace qel;
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    theFolder = myArguments[1];
    const fs::path myCurrentFolder = fs::current_path();
    std::string theResult = Run(myCount > 2 ? myArguments[2] : "");
    theResult += Leftovers(myCurrentFolder);
    std::ofstream(theFolder / "result.txt", std::ios::binary) << theResult;
    CoUninitialize();
    return 0;
}
