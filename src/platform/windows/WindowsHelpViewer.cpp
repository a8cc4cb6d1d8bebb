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
        myLibrary = LoadLibraryExW(myFile.c_str(), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    }
    const FARPROC myAddress = myLibrary == nullptr ? nullptr : GetProcAddress(myLibrary, "HtmlHelpA");
    const std::optional<AnsiPath> myPath = AnsiPathOf(myHelpFile);
    if (myAddress != nullptr && myPath)
    {
        const auto HtmlHelpA = reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(myAddress));
        HtmlHelpA(nullptr, myPath->Bytes.c_str(), ShowContextCommand, static_cast<uint32_t>(myContext));
    }
}

} // namespace qel
