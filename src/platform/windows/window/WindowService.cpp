#include "platform/windows/window/WindowService.h"

#include "platform/windows/window/dialogs.h"
#include "platform/windows/window/FormWindow.h"
#include "text/errors.h"

namespace qel
{

void WindowService::DemandDisplay()
{
    // A service of the system has no desktop that a user sees; its windows would wait forever.
    USEROBJECTFLAGS myFlags = {};
    const bool myIsKnown =
        GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &myFlags, sizeof(myFlags), nullptr) != 0;
    HWND const myProbe =
        CreateWindowExW(0, L"STATIC", nullptr, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    if (myProbe == nullptr || (myIsKnown && (myFlags.dwFlags & WSF_VISIBLE) == 0))
    {
        myProbe != nullptr ? DestroyWindow(myProbe) : 0;
        throw Error{ErrorNumber::DeviceError, u"No hay ninguna pantalla en la que mostrar ventanas"};
    }
    DestroyWindow(myProbe);
}

std::unique_ptr<FormMainWindow> WindowService::MakeFormMain()
{
    DemandDisplay();
    return std::make_unique<FormWindow>(myLastFolder);
}

int32_t WindowService::MsgBox(TextView myText, int32_t myStyle)
{
    DemandDisplay();
    return ShowMessage(GetActiveWindow(), myText, myStyle);
}

} // namespace qel
