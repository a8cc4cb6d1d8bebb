/// A host that opens the settings dialog for a driver in another process, which works in its windows.
///
/// Usage: dialog_host FOLDER MODE
/// FOLDER contains the component, its library, the script of the module in script.txt, and the folder data. It takes
/// what the host saw in result.txt. MODE is empty, or a word of Run below.
#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "comTestHost.h"
#include "Library.h"
#include "text/encodings.h"
#include "text/errors.h"
#include <objbase.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace qel
{

const char16_t* const ErrorSource = u"dialog_host";

namespace
{

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& myPath)
{
    std::ifstream myFile(myPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(myFile), {}};
}

/// A window of the host's own.
HWND MakeHostWindow()
{
    return CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 300, 200, nullptr, nullptr,
                           nullptr, nullptr);
}

/// The error information of a failed call.
std::string Failure(HRESULT myResult)
{
    ComPtr<IErrorInfo> myInfo;
    Bstr theText;
    if (GetErrorInfo(0, myInfo.Receive()) == S_OK)
    {
        myInfo->GetDescription(theText.Pointer());
    }
    return "error " + std::to_string(myResult & 0xFFFF) + " " + ToUtf8(theText.Value()) + "\n";
}

/// A plug-in object of the component.
ComPtr<QelPlugin> MakePlugin(const Library& myComponent)
{
    const auto myClassObject = myComponent.EntryPoint<decltype(&DllGetClassObject)>("DllGetClassObject");
    ComPtr<IClassFactory> myFactory;
    ComPtr<QelPlugin> thePlugin;
    CheckHostCall(myClassObject(CLSID_Main, IID_IClassFactory, reinterpret_cast<void**>(myFactory.Receive())));
    CheckHostCall(myFactory->CreateInstance(nullptr, IID_QelPlugin, reinterpret_cast<void**>(thePlugin.Receive())));
    return thePlugin;
}

void HandIn(QelPlugin& thePlugin, QelBuildHelper* myHelper, QelDatabase* myDatabase)
{
    CheckHostCall(thePlugin.putref_QelBuildHelper(&myHelper));
    CheckHostCall(thePlugin.putref_QelDatabase(&myDatabase));
}

/// Opens the dialog once, and returns whether it was confirmed and the script after it, or how it failed.
std::string Open(const fs::path& myFolder)
{
    const Library myComponent((myFolder / "QelPluginAnimation.dll").string());
    const ComPtr<QelPlugin> myPlugin = MakePlugin(myComponent);
    TestHost myHost;
    myHost.ArchiveName = u"m7.dat";
    myHost.DataFolder = (myFolder / "data").u16string() + u"\\";
    myHost.Link = u"URL:http://example.org/";
    const auto myHelper = MakeCounted<ComTestBuildHelper>(myHost);
    const auto myDatabase = MakeCounted<ComTestDatabase>(myHost);
    HandIn(*myPlugin.Get(), myHelper.Get(), myDatabase.Get());
    Bstr myScript(FromUtf8(ReadFile(myFolder / "script.txt")));
    CheckHostCall(myPlugin->put_Script(myScript.Pointer()));
    int32_t myLink = 0;
    VARIANT_BOOL myAnswer = VARIANT_FALSE;
    const HRESULT myResult = myPlugin->CallBack(&myLink, &myAnswer);
    std::string theResult =
        myResult == S_OK ? std::string(myAnswer == VARIANT_TRUE ? "True\n" : "False\n") : Failure(myResult);
    CheckHostCall(myPlugin->get_Script(myScript.Pointer()));
    theResult += ToUtf8(myScript.Value()) + "\n";
    HandIn(*myPlugin.Get(), nullptr, nullptr);
    return theResult;
}

/// Shows the box about the component.
std::string ShowAbout(const fs::path& myFolder)
{
    const Library myComponent((myFolder / "QelPluginAnimation.dll").string());
    const ComPtr<QelPlugin> myPlugin = MakePlugin(myComponent);
    ComPtr<QelInfo> myInfo;
    CheckHostCall(myPlugin->QueryInterface(IID_QelInfo, reinterpret_cast<void**>(myInfo.Receive())));
    const HRESULT myResult = myInfo->About();
    return myResult == S_OK ? "shown\n" : Failure(myResult);
}

/// Opens the dialog over one of two windows, and adds what became of them.
std::string OpenOverAWindow(const fs::path& myFolder)
{
    HWND const myOther = MakeHostWindow();
    HWND const myOwner = MakeHostWindow();
    SetActiveWindow(myOwner);
    std::string theResult = Open(myFolder);
    theResult += IsWindowEnabled(myOwner) != 0 && IsWindowEnabled(myOther) != 0 ? "enabled\n" : "disabled\n";
    return theResult + (GetActiveWindow() == myOwner ? "owner\n" : "other\n");
}

/// Opens a dialog in each of two threads.
std::string OpenInTwoThreads(const fs::path& myFolder)
{
    std::thread myOther([&] { Open(myFolder); });
    std::string theResult = Open(myFolder);
    myOther.join();
    return theResult;
}

/// Takes the place of mciSendStringA: writes the command down.
DWORD WINAPI RecordCommand(const char* myCommand, char* theAnswer, UINT mySize, HANDLE myWindow)
{
    const bool myIsPlain = theAnswer == nullptr && mySize == 0 && myWindow == nullptr;
    std::ofstream("commands.txt", std::ios::binary | std::ios::app) << (myIsPlain ? myCommand : "?") << "|";
    return 0;
}

/// Opens the dialog with a multimedia service that only writes down what it is sent.
std::string OpenWithRecordedTunes(const fs::path& myFolder)
{
    fs::current_path(myFolder);
    HMODULE const myService = LoadLibraryW(L"winmm.dll");
    auto* const thePlace =
        reinterpret_cast<uint8_t*>(reinterpret_cast<void*>(GetProcAddress(myService, "mciSendStringA")));
    DWORD myProtection = 0;
    VirtualProtect(thePlace, 16, PAGE_EXECUTE_READWRITE, &myProtection);
    // A jump to the recorder: its address into the accumulator, and on to there.
    const auto myTarget = reinterpret_cast<uintptr_t>(&RecordCommand);
    std::vector<uint8_t> myJump = {0x48, 0xB8};
    myJump.erase(myJump.begin(), myJump.begin() + (sizeof(myTarget) == 8 ? 0 : 1));
    for (size_t i = 0; i < sizeof(myTarget); ++i)
    {
        myJump.push_back(static_cast<uint8_t>(myTarget >> 8 * i));
    }
    myJump.insert(myJump.end(), {0xFF, 0xE0});
    std::ranges::copy(myJump, thePlace);
    return Open(myFolder);
}

std::string Run(const fs::path& myFolder, const std::string& myMode)
{
    const fs::path myCurrentFolder = fs::current_path();
    std::string theResult = myMode == "owned"     ? OpenOverAWindow(myFolder)
                            : myMode == "threads" ? OpenInTwoThreads(myFolder)
                            : myMode == "tunes"   ? OpenWithRecordedTunes(myFolder)
                            : myMode == "about"   ? ShowAbout(myFolder)
                                                  : Open(myFolder);
    theResult += fs::current_path() == myCurrentFolder ? "same folder\n" : "another folder\n";
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
    const fs::path myFolder = myArguments[1];
    std::string theResult;
    try
    {
        theResult = Run(myFolder, myCount > 2 ? myArguments[2] : "");
    }
    catch (const Error& e)
    {
        theResult = "error " + std::to_string(e.Number) + " " + ToUtf8(e.Description) + "\n";
    }
    std::ofstream(myFolder / "result.txt", std::ios::binary) << theResult;
    CoUninitialize();
    return 0;
}
