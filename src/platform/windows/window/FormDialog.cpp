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
    TakeScale(Scale(GetDpiForWindow(Window())));
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
    // In this mode the buttons do not show their texts: each is the tool tip, and the name for a screen reader.
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
    auto* const myFound = std::ranges::find(myParts, myControl, &Part::Window);
    return myFound == myParts.end() ? nullptr : myFound;
}

const FormDialog::Part* FormDialog::PartOf(HWND myControl) const
{
    const auto* const myFound = std::ranges::find(myParts, myControl, &Part::Window);
    return myFound == myParts.end() ? nullptr : myFound;
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

} // namespace qel
