#include "platform/windows/window/entries.h"
#include "platform/windows/window/FormDialog.h"
#include "platform/windows/window/handlerResult.h"

#include <algorithm>

namespace qel
{

/// Handles the keys that the system's dialogs do not: F1, and Enter on controls that act like push buttons.
bool FormDialog::TakeKey(const MSG& myMessage)
{
    if (myMessage.message != WM_KEYDOWN || (myMessage.hwnd != Window() && IsChild(Window(), myMessage.hwnd) == 0))
    {
        return false;
    }
    if (myMessage.wParam == VK_F1)
    {
        Press(u"cmdHelp");
        return true;
    }
    const Part* const myPart = PartOf(myMessage.hwnd);
    if (myPart == nullptr)
    {
        return false;
    }
    if (myPart->Layout->Kind == ControlKind::ToolBar)
    {
        return TakeToolKey(myMessage.wParam);
    }
    if (myMessage.wParam == VK_RETURN && myPart->Layout->Trait == ControlTrait::HandCursor)
    {
        Press(myPart->Layout->Name);
        return true;
    }
    return false;
}

/// Handles a key in the tool bar: the arrow keys go to the other button, Enter and the space key press it.
bool FormDialog::TakeToolKey(WPARAM myKey)
{
    HWND const myToolBar = Control(u"ToolbarPlay");
    const auto myLast = static_cast<LRESULT>(PlayButtons.size()) - 1;
    const LRESULT myHot = std::clamp<LRESULT>(SendMessageW(myToolBar, TB_GETHOTITEM, 0, 0), 0, myLast);
    switch (myKey)
    {
    case VK_LEFT:
    case VK_UP:
        SendMessageW(myToolBar, TB_SETHOTITEM, static_cast<WPARAM>(std::max<LRESULT>(myHot - 1, 0)), 0);
        return true;
    case VK_RIGHT:
    case VK_DOWN:
        SendMessageW(myToolBar, TB_SETHOTITEM, static_cast<WPARAM>(std::min(myHot + 1, myLast)), 0);
        return true;
    case VK_RETURN:
    case VK_SPACE:
        TakeCommand(ToolId(static_cast<size_t>(myHot)), BN_CLICKED);
        return true;
    default:
        return false;
    }
}

INT_PTR CALLBACK FormDialog::DialogProcedure(HWND myWindow, UINT myMessage, WPARAM myFirst, LPARAM mySecond)
{
    if (myMessage == WM_INITDIALOG)
    {
        SetWindowLongPtrW(myWindow, DWLP_USER, mySecond);
        return FALSE; // the focus stays where it is
    }
    auto* const theDialog = reinterpret_cast<FormDialog*>(GetWindowLongPtrW(myWindow, DWLP_USER));
    return theDialog == nullptr
               ? FALSE
               : HandlerResult([&] { return theDialog->Answer(myWindow, myMessage, myFirst, mySecond); })
                     .value_or(FALSE);
}

/// Handles a message of the form or of a box in it. FALSE: the system handles it.
INT_PTR FormDialog::Answer(HWND myBox, UINT myMessage, WPARAM myFirst, LPARAM mySecond)
{
    switch (myMessage)
    {
    case WM_COMMAND:
        return TakeCommand(LOWORD(myFirst), HIWORD(myFirst));
    case WM_CLOSE:
        Close();
        return TRUE;
    case WM_HELP: // the system's help key, which TakeKey has handled; the owner must not show its help as well
        return TRUE;
    case WM_SETCURSOR:
        return ShowPointer(myBox, reinterpret_cast<HWND>(myFirst));
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
        return reinterpret_cast<INT_PTR>(ColoursOf(reinterpret_cast<HWND>(mySecond), reinterpret_cast<HDC>(myFirst)));
    case WM_DRAWITEM:
        DrawPart(*reinterpret_cast<const DRAWITEMSTRUCT*>(mySecond));
        return TRUE;
    case WM_DPICHANGED:
        FollowScale(LOWORD(myFirst), *reinterpret_cast<const RECT*>(mySecond));
        return TRUE;
    case WM_SYSCOLORCHANGE:
        if (myBox == Window())
        {
            FollowColours();
        }
        return FALSE;
    case WM_DESTROY:
        if (myBox == Window())
        {
            Close(); // the host has destroyed the owner, and with it this window
            static_cast<void>(myForm.release());
        }
        return FALSE;
    default:
        return FALSE;
    }
}

INT_PTR FormDialog::TakeCommand(UINT myId, UINT myNotification)
{
    if (myId >= FirstToolId && myId < ToolId(PlayButtons.size()))
    {
        if (ToolPressed)
        {
            ToolPressed(static_cast<int32_t>(myId - FirstToolId) + 1);
        }
        return TRUE;
    }
    const auto* const myLayout = std::ranges::find(MainFormControls, myId, &DialogId);
    if (myLayout == MainFormControls.end())
    {
        return FALSE;
    }
    if (myLayout->Kind == ControlKind::ComboBox && myNotification == CBN_DROPDOWN)
    {
        WidenOpenedList(Control(myLayout->Name), myScale.Twips(MainFormLayout.ClientWidth));
    }
    myHasDoubleClick = myHasDoubleClick || myNotification == LBN_DBLCLK;
    if (Reported)
    {
        Reported(*myLayout, myNotification);
    }
    return TRUE;
}

/// Shows the pointer over a control. FALSE: the system shows it.
INT_PTR FormDialog::ShowPointer(HWND myBox, HWND myPlace) const
{
    const Part* const myPart = PartOf(myPlace);
    const bool myIsHand = myPart != nullptr && myPart->Layout->Trait == ControlTrait::HandCursor;
    HCURSOR const myCursor = myPointer != nullptr ? myPointer : myIsHand ? myHand.get() : nullptr;
    if (myCursor == nullptr)
    {
        return FALSE;
    }
    SetCursor(myCursor);
    SetWindowLongPtrW(myBox, DWLP_MSGRESULT, TRUE);
    return TRUE;
}

/// The background of a label, button or box, and the colours for what the system writes there: a text colour never
/// without the background that it belongs to. Null: those of the system.
HBRUSH FormDialog::ColoursOf(HWND myControl, HDC theTarget) const
{
    const Part* const myPart = PartOf(myControl);
    if (myPart == nullptr)
    {
        return nullptr;
    }
    const COLORREF myBack = BackColourOf(*myPart->Layout);
    SetTextColor(theTarget, TextColourOf(*myPart->Layout));
    SetBkColor(theTarget, myBack);
    SetDCBrushColor(theTarget, myBack);
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

void FormDialog::DrawPart(const DRAWITEMSTRUCT& myItem) const
{
    const Part* const myPart = PartOf(myItem.hwndItem);
    if (myPart == nullptr)
    {
        return;
    }
    if (myPart->Layout->Kind == ControlKind::PictureBox)
    {
        if (PaintPreview)
        {
            PaintPreview(myItem.hDC, myItem.rcItem);
        }
        return;
    }
    // The caller restores the selected objects of the target, but not its colours.
    RECT myRoom = myItem.rcItem;
    SetDCBrushColor(myItem.hDC, BackColourOf(*myPart->Layout));
    FillRect(myItem.hDC, &myRoom, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    SetBkMode(myItem.hDC, TRANSPARENT);
    SetTextColor(myItem.hDC, TextColourOf(*myPart->Layout));
    HGDIOBJ const myOld = SelectObject(myItem.hDC, myPart->OwnFont.get());
    DrawTextW(myItem.hDC, WindowText(myItem.hwndItem).c_str(), -1, &myRoom, DT_NOPREFIX | DT_WORDBREAK);
    SelectObject(myItem.hDC, myOld);
    if ((myItem.itemState & ODS_FOCUS) != 0 && (myItem.itemState & ODS_NOFOCUSRECT) == 0)
    {
        DrawFocusRect(myItem.hDC, &myItem.rcItem);
    }
}

LRESULT CALLBACK FormDialog::ControlProcedure(HWND myWindow, UINT myMessage, WPARAM myFirst, LPARAM mySecond)
{
    Part& thePart = *reinterpret_cast<Part*>(GetWindowLongPtrW(myWindow, GWLP_USERDATA));
    const std::optional<LRESULT> myAnswer =
        HandlerResult([&] { return thePart.Dialog->AnswerInControl(thePart, myMessage, myFirst, mySecond); });
    return myAnswer ? *myAnswer : CallWindowProcW(thePart.SystemProcedure, myWindow, myMessage, myFirst, mySecond);
}

/// Handles a message of a control before the system does.
LRESULT FormDialog::AnswerInControl(Part& thePart, UINT myMessage, WPARAM myFirst, LPARAM mySecond)
{
    HWND const myControl = thePart.Window;
    const ControlLayout& myLayout = *thePart.Layout;
    const auto Default = [&]
    {
        return CallWindowProcW(thePart.SystemProcedure, myControl, myMessage, myFirst, mySecond);
    };
    switch (myMessage)
    {
    case WM_GETOBJECT:
        if (static_cast<LONG>(mySecond) == static_cast<LONG>(OBJID_CLIENT) && !myLayout.AccessibleName.empty() &&
            myLayout.Kind != ControlKind::PictureBox)
        {
            const LRESULT myAnswer = thePart.Accessible.Describe(myControl, myLayout.AccessibleName, myFirst);
            return myAnswer != 0 ? myAnswer : Default();
        }
        return Default();
    case WM_MOUSEWHEEL: // changes only what has the focus
        return GetFocus() == myControl ? Default() : DefWindowProcW(myControl, myMessage, myFirst, mySecond);
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
        if (myLayout.Kind == ControlKind::ListBox || myLayout.Kind == ControlKind::ComboBox)
        {
            myToolTip.Follow({myControl, myMessage, myFirst, mySecond, 0, {}});
        }
        return Default();
    case WM_LBUTTONDBLCLK:
        if (myLayout.Kind == ControlKind::ListBox)
        {
            myHasDoubleClick = false;
            const LRESULT theResult = Default();
            if (!myHasDoubleClick) // beside the entries
            {
                TakeCommand(DialogId(myLayout), LBN_DBLCLK);
            }
            return theResult;
        }
        return Default();
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        if (myLayout.Kind == ControlKind::ToolBar)
        {
            SendMessageW(myControl, TB_SETHOTITEM, myMessage == WM_SETFOCUS ? 0 : static_cast<WPARAM>(-1), 0);
        }
        return Default();
    case WM_NCDESTROY:
        thePart.Accessible.Disconnect();
        SetWindowLongPtrW(myControl, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(thePart.SystemProcedure));
        return Default();
    default:
        return Default();
    }
}
} // namespace qel
