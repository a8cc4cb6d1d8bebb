#include "platform/windows/window/FormDialog.h"

#include "resources/pictures.h"

#include <algorithm>

namespace qel
{
namespace
{

/// The rows of an opened combo box.
constexpr int RowsOfCombo = 10;

bool HasLines(const ControlLayout& myLayout)
{
    return myLayout.Trait == ControlTrait::HandCursor;
}

} // namespace

/// Scales everything: the window, its controls, their fonts and pictures.
void FormDialog::TakeScale(Scale myNewScale)
{
    myScale = myNewScale;
    RECT myFrame = {0, 0, myScale.Twips(MainFormLayout.ClientWidth), myScale.Twips(MainFormLayout.ClientHeight)};
    AdjustWindowRectExForDpi(&myFrame, static_cast<DWORD>(GetWindowLongPtrW(Window(), GWL_STYLE)), FALSE,
                             static_cast<DWORD>(GetWindowLongPtrW(Window(), GWL_EXSTYLE)), myScale.Dpi());
    SetWindowPos(Window(), nullptr, 0, 0, myFrame.right - myFrame.left, myFrame.bottom - myFrame.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    myFont = FormFont(myScale, Regular);
    myToolTip.Take(myFont.get(), myScale.Twips(MainFormLayout.ClientWidth));
    constexpr auto IconSide = static_cast<int32_t>(WarningPicture.size());
    ReplaceIcon(myWarning, IconOf(WarningPicture, myScale.Pixels(IconSide)));
    ReplaceIcon(myInformation, IconOf(InformationPicture, myScale.Pixels(IconSide)));
    myHand = HandCursor(myScale);
    ImageList myNewImages = ToolImages(myScale);
    SendMessageW(Control(u"ToolbarPlay"), TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(myNewImages.get()));
    myToolImages = std::move(myNewImages);
    for (Part& thePart : myParts)
    {
        Place(thePart);
    }
}

/// Replaces one of the icons also where an import box shows it.
void FormDialog::ReplaceIcon(Icon& theIcon, Icon myNewIcon)
{
    for (const Part& myPart : myParts)
    {
        if (theIcon && myPart.Layout->Kind == ControlKind::Image &&
            reinterpret_cast<HICON>(SendMessageW(myPart.Window, STM_GETICON, 0, 0)) == theIcon.get())
        {
            SendMessageW(myPart.Window, STM_SETICON, reinterpret_cast<WPARAM>(myNewIcon.get()), 0);
        }
    }
    theIcon = std::move(myNewIcon);
}

void FormDialog::Place(Part& thePart)
{
    const ControlLayout& myLayout = *thePart.Layout;
    SendMessageW(thePart.Window, WM_SETFONT, reinterpret_cast<WPARAM>(myFont.get()), FALSE);
    POINT myCorner = {myScale.Twips(myLayout.Left), myScale.Twips(myLayout.Top)};
    if (!myLayout.Parent.empty())
    {
        // Counted from the outer corner of the box, but placed from its inner one.
        HWND const myBox = GetParent(thePart.Window);
        RECT myOuter = {};
        GetWindowRect(myBox, &myOuter);
        POINT myInner = {0, 0};
        ClientToScreen(myBox, &myInner);
        myCorner.x -= myInner.x - myOuter.left;
        myCorner.y -= myInner.y - myOuter.top;
    }
    const int myHeight = myScale.Twips(myLayout.Height);
    SetWindowPos(thePart.Window, nullptr, myCorner.x, myCorner.y, myScale.Twips(myLayout.Width), myHeight,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    switch (myLayout.Kind)
    {
    case ControlKind::ComboBox:
        SetCombosHeight(thePart.Window);
        break;
    case ControlKind::ToolBar:
        SendMessageW(thePart.Window, TB_SETBUTTONSIZE, 0,
                     MAKELPARAM(myScale.Twips(ToolButtonWidth), myScale.Twips(myLayout.Height)));
        break;
    default:
        if (!myLayout.Caption.empty())
        {
            Fit(thePart);
        }
    }
}

/// Sets the height of a closed combo box to that of the form, and the number of rows that it shows when open. The
/// system derives the closed height from that of an entry.
void FormDialog::SetCombosHeight(HWND myCombo) const
{
    const ControlLayout& myLayout = *PartOf(myCombo)->Layout;
    const int myHeight = myScale.Twips(myLayout.Height);
    const auto myRow = static_cast<int>(SendMessageW(myCombo, CB_GETITEMHEIGHT, 0, 0));
    SetWindowPos(myCombo, nullptr, 0, 0, myScale.Twips(myLayout.Width), myHeight + RowsOfCombo * myRow,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    auto myShown = static_cast<int>(SendMessageW(myCombo, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
    // Not every system includes the border in its answer, so the result is measured.
    for (int i = 0; i < 2; ++i)
    {
        RECT myFrame = {};
        GetWindowRect(myCombo, &myFrame);
        if (myFrame.bottom - myFrame.top != myHeight)
        {
            myShown += myHeight - (myFrame.bottom - myFrame.top);
            SendMessageW(myCombo, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), myShown);
        }
    }
}

/// Sets a font in which the caption of a control fits.
void FormDialog::Fit(Part& thePart)
{
    RECT myInside = {};
    GetClientRect(thePart.Window, &myInside);
    SIZE myRoom = {myInside.right, myInside.bottom};
    if (thePart.Layout->Kind == ControlKind::CheckBox)
    {
        myRoom.cx -= GetSystemMetricsForDpi(SM_CXMENUCHECK, myScale.Dpi()) + myScale.Pixels(3);
    }
    std::wstring myText = WindowText(thePart.Window);
    std::erase(myText, L'&');
    Font myFitting = FittingFont(myScale, thePart.Layout->FontWeight, myText, myRoom, HasLines(*thePart.Layout));
    SendMessageW(thePart.Window, WM_SETFONT, reinterpret_cast<WPARAM>(myFitting.get()), TRUE);
    thePart.OwnFont = std::move(myFitting);
}

/// Shows the window in the middle of its screen, or with its top left corner visible if it is too large.
void FormDialog::Centre()
{
    MONITORINFO myScreen = {};
    myScreen.cbSize = sizeof(myScreen);
    const DWORD myWithout = MONITOR_DEFAULTTOPRIMARY;
    GetMonitorInfoW(myOwner.IsHidden() ? MonitorFromPoint({0, 0}, myWithout)
                                       : MonitorFromWindow(myOwner.Window(), MONITOR_DEFAULTTONEAREST),
                    &myScreen);
    RECT myFrame = {};
    GetWindowRect(Window(), &myFrame);
    const RECT& myAll = myScreen.rcMonitor;
    MoveInto(myScreen.rcWork, (myAll.left + myAll.right - (myFrame.right - myFrame.left)) / 2,
             (myAll.top + myAll.bottom - (myFrame.bottom - myFrame.top)) / 2);
}

/// Moves the window to a place, or to the nearest one where it is inside a room. Of a window that is too large the top
/// left corner is inside.
void FormDialog::MoveInto(const RECT& myRoom, LONG myLeft, LONG myTop)
{
    RECT myFrame = {};
    GetWindowRect(Window(), &myFrame);
    const LONG myLastLeft = myRoom.right - (myFrame.right - myFrame.left);
    const LONG myLastTop = myRoom.bottom - (myFrame.bottom - myFrame.top);
    SetWindowPos(Window(), nullptr, std::max(std::min(myLeft, myLastLeft), myRoom.left),
                 std::max(std::min(myTop, myLastTop), myRoom.top), 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// Adopts the scale of the screen to which the user has moved the window, or a new scale of its screen. The system
/// suggests a place that keeps the window under the mouse.
void FormDialog::FollowScale(UINT myDotsPerInch, const RECT& mySuggestion)
{
    TakeScale(Scale(myDotsPerInch));
    MONITORINFO myScreen = {};
    myScreen.cbSize = sizeof(myScreen);
    GetMonitorInfoW(MonitorFromRect(&mySuggestion, MONITOR_DEFAULTTONEAREST), &myScreen);
    MoveInto(myScreen.rcWork, mySuggestion.left, mySuggestion.top);
}

/// Adopts the colours that the user has changed.
void FormDialog::FollowColours()
{
    TakeScale(myScale); // the images of the tool bar have colours of the system
    for (const Part& myPart : myParts)
    {
        SendMessageW(myPart.Window, WM_SYSCOLORCHANGE, 0, 0); // which the system sends only to the form
    }
    RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}
} // namespace qel
