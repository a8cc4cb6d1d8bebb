#include "platform/windows/WindowsHelpViewer.h"

#include "platform/windows/ansiPath.h"

namespace qel
{
namespace
{

constexpr UINT ShowContextCommand = 15;

using HtmlHelpFunction = HWND(WINAPI*)(HWND myCaller, LPCSTR myFile, UINT myCommand, DWORD_PTR myData);

} // namespace

void WindowsHelpViewer::ShowContext(TextView myHelpFile, int32_t myContext)
{
    if (myLibrary == nullptr)
    {
        myLibrary = LoadLibraryExW(L"hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    }
    const FARPROC myAddress = myLibrary == nullptr ? nullptr : GetProcAddress(myLibrary, "HtmlHelpA");
    const std::optional<AnsiPath> myFile = AnsiPathOf(myHelpFile);
    if (myAddress != nullptr && myFile)
    {
        const auto HtmlHelpA = reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(myAddress));
        HtmlHelpA(nullptr, myFile->Bytes.c_str(), ShowContextCommand, static_cast<uint32_t>(myContext));
    }
}

} // namespace qel
