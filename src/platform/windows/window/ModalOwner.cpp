#include "platform/windows/window/ModalOwner.h"

#include "platform/windows/window/handlerResult.h"

namespace qel
{
namespace
{

/// Adds a window to a list, for EnumThreadWindows. Without memory for it the window is left out.
BOOL CALLBACK AddIfEnabled(HWND myWindow, LPARAM theList)
{
    if (IsWindowEnabled(myWindow) != 0)
    {
        auto& theWindows = *reinterpret_cast<std::vector<HWND>*>(theList);
        HandlerResult([&] { return &theWindows.emplace_back(myWindow); });
    }
    return TRUE;
}

} // namespace

ModalOwner::ModalOwner() : myActive(GetActiveWindow())
{
    if (myActive != nullptr)
    {
        myOldScaling = SetThreadDpiAwarenessContext(GetWindowDpiAwarenessContext(myActive));
    }
    else
    {
        // A class of the system: a class of the component would have to be removed before the component is unloaded.
        myHidden = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", nullptr, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                   nullptr, nullptr);
    }
}

ModalOwner::~ModalOwner()
{
    if (myHidden != nullptr)
    {
        DestroyWindow(myHidden);
    }
    if (myOldScaling != nullptr)
    {
        SetThreadDpiAwarenessContext(myOldScaling);
    }
}

DisabledWindows::DisabledWindows(HWND myException)
{
    EnumThreadWindows(GetCurrentThreadId(), &AddIfEnabled, reinterpret_cast<LPARAM>(&myWindows));
    std::erase_if(myWindows, [&](HWND w) { return w == myException || GetWindow(w, GW_OWNER) == myException; });
    for (HWND const myWindow : myWindows)
    {
        SendMessageW(myWindow, WM_CANCELMODE, 0, 0); // a menu or a drag of the host ends
        EnableWindow(myWindow, FALSE);
    }
}

DisabledWindows::~DisabledWindows()
{
    for (HWND const myWindow : myWindows)
    {
        EnableWindow(myWindow, TRUE); // has no effect on a window that no longer exists
    }
}

} // namespace qel
