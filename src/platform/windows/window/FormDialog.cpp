#include "platform/windows/window/FormDialog.h"

#include "platform/windows/wideText.h"
#include "platform/windows/window/ComponentStyle.h"
#include "resources/pictures.h"
#include "text/errors.h"

#include <algorithm>

namespace qel
{
namespace
{

/// The rows of an opened combo box.
constexpr int RowsOfCombo = 10;

/// The system's class of the controls of a kind, and their styles. All have WS_CLIPSIBLINGS, or a label would paint
/// over the control that overlaps it.
struct SystemControl
{
    const wchar_t* Class;
    DWORD Style;
    DWORD ExtendedStyle;
};

SystemControl SystemControlOf(const ControlLayout& myLayout)
{
    switch (myLayout.Kind)
    {
    case ControlKind::ComboBox:
        return {WC_COMBOBOXW, CBS_DROPDOWNLIST | CBS_HASSTRINGS | WS_VSCROLL | WS_TABSTOP, 0};
    case ControlKind::ListBox:
        return {WC_LISTBOXW, LBS_NOTIFY | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
                WS_EX_CLIENTEDGE};
    case ControlKind::CheckBox:
        return {WC_BUTTONW, BS_AUTOCHECKBOX | WS_TABSTOP, 0};
    case ControlKind::Button:
        return {WC_BUTTONW,
                static_cast<DWORD>(myLayout.Trait == ControlTrait::DefaultButton ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) |
                    WS_TABSTOP,
                0};
    case ControlKind::DatePicker:
        return {DATETIMEPICK_CLASSW, DTS_SHORTDATEFORMAT | DTS_SHOWNONE | WS_TABSTOP, 0};
    case ControlKind::ToolBar:
        return {TOOLBARCLASSNAMEW,
                TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | CCS_NODIVIDER | CCS_NORESIZE | CCS_NOPARENTALIGN |
                    WS_TABSTOP,
                0};
    case ControlKind::Label:
        if (myLayout.Trait == ControlTrait::HandCursor)
        {
            return {WC_BUTTONW, BS_OWNERDRAW | WS_TABSTOP, 0};
        }
        return {WC_STATICW, static_cast<DWORD>(SS_NOPREFIX) | (myLayout.Side == TextSide::Right ? SS_RIGHT : SS_LEFT),
                0};
    case ControlKind::Image:
        return {WC_STATICW, SS_ICON | SS_REALSIZECONTROL, 0};
    case ControlKind::PictureBox:
        break;
    }
    return {WC_STATICW, SS_OWNERDRAW, WS_EX_CLIENTEDGE};
}

/// A picture box that contains controls; the other one is painted.
bool IsBox(const ControlLayout& myLayout)
{
    return std::ranges::any_of(MainFormControls, [&](const auto& c) { return c.Parent == myLayout.Name; });
}

bool HasLines(const ControlLayout& myLayout)
{
    return myLayout.Trait == ControlTrait::HandCursor;
}

std::wstring WindowText(HWND myWindow)
{
    std::wstring theText(static_cast<size_t>(GetWindowTextLengthW(myWindow)), L'\0');
    GetWindowTextW(myWindow, theText.data(), static_cast<int>(theText.size()) + 1);
    return theText;
}

/// Stops the system from enlarging a dialog by itself on a screen with another scale. The older versions that lack this
/// function do not enlarge dialogs.
void KeepLayout(HWND myDialog)
{
    using Function = BOOL(WINAPI*)(HWND, int myMask, int myValues);
    constexpr int DisableAll = 1;
    const FARPROC myAddress = GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetDialogDpiChangeBehavior");
    if (const auto myFunction = reinterpret_cast<Function>(reinterpret_cast<void*>(myAddress)))
    {
        myFunction(myDialog, DisableAll, DisableAll);
    }
}

/// What a press of a button of the tool bar is to its window.
UINT ToolId(size_t myIndex)
{
    return FirstToolId + static_cast<UINT>(myIndex);
}

} // namespace

UINT DialogId(const ControlLayout& myLayout)
{
    switch (myLayout.Trait)
    {
    case ControlTrait::DefaultButton:
        return IDOK;
    case ControlTrait::CancelButton:
        return IDCANCEL;
    default:
        return FirstControlId + static_cast<UINT>(&myLayout - MainFormControls.data());
    }
}

FormDialog::FormDialog() : myFont(FormFont(Scale(), Regular))
{
    const ComponentStyle myStyle;
    const INITCOMMONCONTROLSEX myClasses = {sizeof(myClasses), ICC_BAR_CLASSES | ICC_DATE_CLASSES};
    InitCommonControlsEx(&myClasses);
    myForm.reset(MakeBox(myOwner.Window(), WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME, 0));
    if (!myForm)
    {
        throw Error{ErrorNumber::DeviceError, u"El sistema no puede mostrar ventanas"};
    }
    SetWindowTextW(Window(), WideText(MainFormLayout.Caption).c_str());
    for (size_t i = 0; i < myParts.size(); ++i)
    {
        Part& thePart = myParts[i];
        thePart.Dialog = this;
        thePart.Layout = &MainFormControls[i];
    }
    // The contents of a box are made after it.
    for (const bool myIsInBox : {false, true})
    {
        for (Part& thePart : myParts)
        {
            if (thePart.Layout->Parent.empty() != myIsInBox)
            {
                thePart.Window = MakeControl(*thePart.Layout, myIsInBox ? Control(thePart.Layout->Parent) : Window());
                SetWindowLongPtrW(thePart.Window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&thePart));
                if (!IsBox(*thePart.Layout))
                {
                    thePart.SystemProcedure = reinterpret_cast<WNDPROC>(
                        SetWindowLongPtrW(thePart.Window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ControlProcedure)));
                }
            }
        }
    }
    SendMessageW(Window(), DM_SETDEFID, IDOK, 0);
    KeepLayout(Window());
    Scaled(Scale(GetDpiForWindow(Window())));
}

HWND FormDialog::Control(TextView myName) const
{
    return std::ranges::find(myParts, myName, [](const Part& myPart) { return myPart.Layout->Name; })->Window;
}

/// Makes a dialog of the system without controls: the form, or a box in it. Both handle their messages here.
HWND FormDialog::MakeBox(HWND myParent, DWORD myStyle, DWORD myExtendedStyle)
{
    struct
    {
        DLGTEMPLATE Head;
        WORD MenuClassAndTitle[3];
    } myTemplate = {};
    myTemplate.Head.style = myStyle | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
    myTemplate.Head.dwExtendedStyle = myExtendedStyle | WS_EX_CONTROLPARENT;
    return CreateDialogIndirectParamW(GetModuleHandleW(nullptr), &myTemplate.Head, myParent, &DialogProcedure,
                                      reinterpret_cast<LPARAM>(this));
}

HWND FormDialog::MakeControl(const ControlLayout& myLayout, HWND myParent)
{
    HWND theControl = nullptr;
    if (IsBox(myLayout))
    {
        theControl = MakeBox(myParent, WS_CHILD | WS_VISIBLE | DS_CONTROL, WS_EX_CLIENTEDGE);
        SetWindowLongPtrW(theControl, GWLP_ID, static_cast<LONG_PTR>(DialogId(myLayout)));
    }
    else
    {
        const SystemControl myControl = SystemControlOf(myLayout);
        theControl =
            CreateWindowExW(myControl.ExtendedStyle, myControl.Class, nullptr,
                            myControl.Style | WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0, myParent,
                            reinterpret_cast<HMENU>(static_cast<UINT_PTR>(DialogId(myLayout))), nullptr, nullptr);
    }
    if (theControl == nullptr)
    {
        Raise(ErrorNumber::OutOfMemory);
    }
    const bool myIsNamedByText = myLayout.Kind == ControlKind::PictureBox;
    SetWindowTextW(theControl, WideText(myIsNamedByText ? myLayout.AccessibleName : myLayout.Caption).c_str());
    if (myLayout.Kind == ControlKind::DatePicker)
    {
        DateTime_SetFormat(theControl, WideText(PeriodPickers.Format).c_str());
    }
    if (myLayout.Kind == ControlKind::ToolBar)
    {
        FillToolBar(theControl);
    }
    return theControl;
}

void FormDialog::FillToolBar(HWND myToolBar)
{
    SendMessageW(myToolBar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    // Buttons in a list, of which none shows its text, take the text as tool tip and as name for a screen reader.
    SendMessageW(myToolBar, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS);
    for (size_t i = 0; i < PlayButtons.size(); ++i)
    {
        const std::wstring myTip = WideText(PlayButtons[i].ToolTip);
        TBBUTTON myButton = {};
        myButton.iBitmap = PlayButtons[i].Image - 1;
        myButton.idCommand = static_cast<int>(ToolId(i));
        myButton.fsState = TBSTATE_ENABLED;
        myButton.fsStyle = BTNS_BUTTON;
        myButton.iString = reinterpret_cast<INT_PTR>(myTip.c_str());
        SendMessageW(myToolBar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&myButton));
    }
}

/// Scales everything: the window, its controls, their fonts and pictures.
void FormDialog::Scaled(Scale myNewScale)
{
    myScale = myNewScale;
    RECT myFrame = {0, 0, myScale.Twips(MainFormLayout.ClientWidth), myScale.Twips(MainFormLayout.ClientHeight)};
    AdjustWindowRectExForDpi(&myFrame, static_cast<DWORD>(GetWindowLongPtrW(Window(), GWL_STYLE)), FALSE,
                             static_cast<DWORD>(GetWindowLongPtrW(Window(), GWL_EXSTYLE)), myScale.Dpi());
    SetWindowPos(Window(), nullptr, 0, 0, myFrame.right - myFrame.left, myFrame.bottom - myFrame.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    myFont = FormFont(myScale, Regular);
    constexpr auto IconSide = static_cast<int32_t>(WarningPicture.size());
    myWarning = IconOf(WarningPicture, myScale.Pixels(IconSide));
    myInformation = IconOf(InformationPicture, myScale.Pixels(IconSide));
    myHand = HandCursor(myScale);
    ImageList myNewImages = ToolImages(myScale);
    SendMessageW(Control(u"ToolbarPlay"), TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(myNewImages.get()));
    myToolImages = std::move(myNewImages);
    for (Part& thePart : myParts)
    {
        Place(thePart);
    }
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
    // Not each system counts the border in what it answers, so what comes out is measured.
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

void FormDialog::Caption(HWND myLabel, TextView myText)
{
    SetWindowTextW(myLabel, WideText(myText).c_str());
    Fit(*PartOf(myLabel));
    InvalidateRect(myLabel, nullptr, TRUE);
}

HICON FormDialog::ImportIcon(int32_t myResource) const
{
    return myResource == InformationIcon ? myInformation.get() : myWarning.get();
}

FormDialog::Part* FormDialog::PartOf(HWND myControl)
{
    const auto myFound = std::ranges::find(myParts, myControl, &Part::Window);
    return myFound == myParts.end() ? nullptr : &*myFound;
}

const FormDialog::Part* FormDialog::PartOf(HWND myControl) const
{
    const auto myFound = std::ranges::find(myParts, myControl, &Part::Window);
    return myFound == myParts.end() ? nullptr : &*myFound;
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
    const LONG myWidth = myFrame.right - myFrame.left;
    const LONG myHeight = myFrame.bottom - myFrame.top;
    const RECT& myAll = myScreen.rcMonitor;
    const RECT& myRoom = myScreen.rcWork;
    const LONG myLeft = std::min((myAll.left + myAll.right - myWidth) / 2, myRoom.right - myWidth);
    const LONG myTop = std::min((myAll.top + myAll.bottom - myHeight) / 2, myRoom.bottom - myHeight);
    SetWindowPos(Window(), nullptr, std::max(myLeft, myRoom.left), std::max(myTop, myRoom.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormDialog::ShowModally()
{
    Centre();
    {
        const DisabledWindows myOthers(Window());
        ShowWindow(Window(), SW_SHOW);
        SetForegroundWindow(Window());
        SetFocus(myParts.front().Window);
        RunModalLoop();
    }
    // Only now, so that the system activates the owner and not a window of another program.
    ShowWindow(Window(), SW_HIDE);
}

void FormDialog::RunModalLoop()
{
    while (!myIsClosed)
    {
        MSG myMessage = {};
        const BOOL myIsOther = GetMessageW(&myMessage, nullptr, 0, 0);
        if (myIsOther <= 0)
        {
            if (myIsOther == 0)
            {
                PostQuitMessage(static_cast<int>(myMessage.wParam));
            }
            return;
        }
        if (!TakeKey(myMessage) && IsDialogMessageW(Window(), &myMessage) == 0)
        {
            TranslateMessage(&myMessage);
            DispatchMessageW(&myMessage);
        }
    }
}

void FormDialog::Pointer(HCURSOR myCursor)
{
    myPointer = myCursor;
    POINT myPlace = {};
    GetCursorPos(&myPlace);
    HWND const myTarget = WindowFromPoint(myPlace);
    if (myTarget == Window() || IsChild(Window(), myTarget) != 0)
    {
        SetCursor(myPointer != nullptr ? myPointer : LoadCursorW(nullptr, IDC_ARROW));
    }
}

void FormDialog::Press(TextView myButton)
{
    SendMessageW(Control(myButton), BM_CLICK, 0, 0);
}

/// Handles the keys that the system's dialogs do not: F1, and Enter on what is no push button but acts like one.
bool FormDialog::TakeKey(const MSG& myMessage)
{
    if (myMessage.message != WM_KEYDOWN || IsChild(Window(), myMessage.hwnd) == 0)
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
    return theDialog == nullptr ? FALSE : theDialog->Answer(myWindow, myMessage, myFirst, mySecond);
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
        Scaled(Scale(LOWORD(myFirst)));
        Centre();
        return TRUE;
    case WM_SYSCOLORCHANGE:
        if (myBox == Window())
        {
            Scaled(myScale); // the images of the tool bar have colours of the system
            RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
        }
        return FALSE;
    case WM_DESTROY:
        if (myBox == Window())
        {
            Close(); // the host has destroyed the owner, and with it this window
            myForm.release();
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

/// The background of a label or box, and its colours for what the system writes there. Null: those of the system.
HBRUSH FormDialog::ColoursOf(HWND myControl, HDC theTarget)
{
    const Part* const myPart = PartOf(myControl);
    if (myPart == nullptr || myPart->Layout->BackColour == Face)
    {
        return nullptr;
    }
    const COLORREF myBack = BackColourOf(*myPart->Layout);
    SetTextColor(theTarget, TextColourOf(*myPart->Layout));
    SetBkColor(theTarget, myBack);
    myWhite.reset(CreateSolidBrush(myBack));
    return myWhite.get();
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
    // The caller restores what is selected into the target, but not its colours.
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
    return thePart.Dialog->AnswerInControl(thePart, myMessage, myFirst, mySecond);
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
