#include "window/windows/LinkDialog.h"

#include "platform/windows/wideText.h"
#include "platform/windows/window/ComponentStyle.h"
#include "text/errors.h"

#include <algorithm>

namespace qel::host
{

namespace
{

// Lengths in pixels of 96 to the inch.
constexpr SIZE StartSize = {560, 400};
constexpr SIZE SmallestSize = {320, 240};
constexpr SIZE ButtonSize = {80, 26};
constexpr int NameWidth = 200;
constexpr int ColumnGap = 16;
constexpr int Margin = 11;
constexpr int Gap = 7;
constexpr int LineHeight = 16;
constexpr int FieldHeight = 23;

/// A control, in the order of the tab key.
struct ControlTemplate
{
    const wchar_t* Class;
    int Id;
    const wchar_t* Caption;
    DWORD Style;
    DWORD ExtendedStyle;
};

constexpr ControlTemplate Controls[] = {
    {WC_STATICW, RecordsLabel, L"&Records of this site:", 0, 0},
    {WC_LISTVIEWW, RecordsList, L"", LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | WS_TABSTOP, WS_EX_CLIENTEDGE},
    {WC_STATICW, AddressLabel, L"Another &address:", 0, 0},
    {WC_EDITW, AddressField, L"", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE},
    {WC_STATICW, NoteLabel, L"", SS_NOPREFIX, 0},
    {WC_BUTTONW, IDOK, L"OK", BS_DEFPUSHBUTTON | WS_TABSTOP, 0},
    {WC_BUTTONW, IDCANCEL, L"Cancel", BS_PUSHBUTTON | WS_TABSTOP, 0},
};

void SetCell(HWND myList, int myRow, int myColumn, TextView myText)
{
    std::wstring myCell = WideText(myText);
    LVITEMW myItem = {};
    myItem.mask = LVIF_TEXT;
    myItem.iItem = myRow;
    myItem.iSubItem = myColumn;
    myItem.pszText = myCell.data();
    SendMessageW(myList, myColumn == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&myItem));
}

/// The place for a window of this size in the middle of another one, or of the screen, and on the screen in any case.
RECT MiddleOf(HWND myOwner, SIZE mySize)
{
    MONITORINFO myScreen = {};
    myScreen.cbSize = sizeof(myScreen);
    GetMonitorInfoW(MonitorFromWindow(myOwner, MONITOR_DEFAULTTOPRIMARY), &myScreen);
    const RECT& myRoom = myScreen.rcWork;
    RECT myMiddle = myRoom;
    GetWindowRect(myOwner, &myMiddle);
    const LONG myLeft = (myMiddle.left + myMiddle.right - mySize.cx) / 2;
    const LONG myTop = (myMiddle.top + myMiddle.bottom - mySize.cy) / 2;
    const POINT myCorner = {std::max(std::min(myLeft, myRoom.right - mySize.cx), myRoom.left),
                            std::max(std::min(myTop, myRoom.bottom - mySize.cy), myRoom.top)};
    return {myCorner.x, myCorner.y, myCorner.x + mySize.cx, myCorner.y + mySize.cy};
}

} // namespace

bool LinkDialog::Show(HWND myOwner)
{
    const ComponentStyle myStyle;
    const INITCOMMONCONTROLSEX myClasses = {sizeof(myClasses), ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&myClasses);
    struct
    {
        DLGTEMPLATE Head;
        WORD MenuClassAndTitle[3];
    } myTemplate = {};
    myTemplate.Head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN;
    const INT_PTR theAnswer = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &myTemplate.Head, myOwner,
                                                      &DialogProcedure, reinterpret_cast<LPARAM>(this));
    if (myFailure)
    {
        std::rethrow_exception(myFailure);
    }
    if (theAnswer <= 0)
    {
        Raise(ErrorNumber::DeviceError);
    }
    return theAnswer == IDOK;
}

INT_PTR CALLBACK LinkDialog::DialogProcedure(HWND myDialog, UINT myMessage, WPARAM myFirst, LPARAM mySecond)
{
    if (myMessage == WM_INITDIALOG)
    {
        SetWindowLongPtrW(myDialog, DWLP_USER, mySecond);
        reinterpret_cast<LinkDialog*>(mySecond)->myWindow = myDialog;
    }
    auto* const theDialog = reinterpret_cast<LinkDialog*>(GetWindowLongPtrW(myDialog, DWLP_USER));
    if (theDialog == nullptr)
    {
        return FALSE;
    }
    try
    {
        return theDialog->Answer(myMessage, myFirst, mySecond);
    }
    catch (...) // nothing may be thrown through the system
    {
        theDialog->myFailure = std::current_exception();
        EndDialog(myDialog, IDCANCEL);
        return TRUE;
    }
}

/// Handles a message. FALSE: the system handles it.
INT_PTR LinkDialog::Answer(UINT myMessage, WPARAM myFirst, LPARAM mySecond)
{
    switch (myMessage)
    {
    case WM_INITDIALOG:
        Fill();
        return FALSE; // the focus has been set
    case WM_SIZE:
        Arrange();
        return TRUE;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(mySecond)->ptMinTrackSize = {myScale.Pixels(SmallestSize.cx),
                                                                   myScale.Pixels(SmallestSize.cy)};
        return TRUE;
    case WM_DPICHANGED:
        TakeScale(LOWORD(myFirst));
        Place(*reinterpret_cast<const RECT*>(mySecond)); // which keeps the window under the mouse
        return TRUE;
    case WM_COMMAND:
        TakeCommand(LOWORD(myFirst), HIWORD(myFirst));
        return TRUE;
    case WM_NOTIFY:
        TakeNotice(*reinterpret_cast<const NMHDR*>(mySecond));
        return TRUE;
    default:
        return FALSE;
    }
}

/// Makes the controls, with what is offered and chosen.
void LinkDialog::Fill()
{
    SetWindowTextW(myWindow, L"Choose a link");
    for (const ControlTemplate& myControl : Controls)
    {
        CreateWindowExW(myControl.ExtendedStyle, myControl.Class, myControl.Caption,
                        myControl.Style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, myWindow,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(myControl.Id)), nullptr, nullptr);
    }
    FillRecords();
    SendMessageW(Control(AddressField), EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(L"https://example.org/"));
    SetWindowTextW(Control(AddressField), WideText(myChoice.Address).c_str());
    SetWindowTextW(Control(NoteLabel), WideText(myChoice.Note).c_str());
    KeepLayout(myWindow);
    TakeScale(GetDpiForWindow(myWindow));
    Place(FirstPlace());
    UpdateConfirm();
    const bool myIsTyped = !myChoice.Address.empty() || myChoice.Rows.empty();
    SetFocus(Control(myIsTyped ? AddressField : RecordsList));
}

void LinkDialog::FillRecords()
{
    HWND const myList = Control(RecordsList);
    ListView_SetExtendedListViewStyle(myList, LVS_EX_FULLROWSELECT);
    int myColumn = 0;
    for (const wchar_t* myCaption : {L"Kind", L"Name", L"Address"})
    {
        LVCOLUMNW theColumn = {};
        theColumn.mask = LVCF_TEXT;
        theColumn.pszText = const_cast<wchar_t*>(myCaption);
        SendMessageW(myList, LVM_INSERTCOLUMNW, static_cast<WPARAM>(myColumn++), reinterpret_cast<LPARAM>(&theColumn));
    }
    int myRow = 0;
    for (const LinkRow& myOffer : myChoice.Rows)
    {
        SetCell(myList, myRow, 0, myOffer.Kind);
        SetCell(myList, myRow, 1, myOffer.Name);
        SetCell(myList, myRow++, 2, myOffer.Address);
    }
    if (myChoice.Row)
    {
        const auto myChosen = static_cast<int>(*myChoice.Row);
        ListView_SetItemState(myList, myChosen, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    }
}

/// Takes over the scale of a screen, and its font for everything in the window.
void LinkDialog::TakeScale(UINT myDotsPerInch)
{
    myScale = Scale(myDotsPerInch);
    NONCLIENTMETRICSW myMetrics = {};
    myMetrics.cbSize = sizeof(myMetrics);
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof(myMetrics), &myMetrics, 0, myScale.Dpi());
    myFont.reset(CreateFontIndirectW(&myMetrics.lfMessageFont));
    for (const ControlTemplate& myControl : Controls)
    {
        SendMessageW(Control(myControl.Id), WM_SETFONT, reinterpret_cast<WPARAM>(myFont.get()), TRUE);
    }
}

/// In the middle of the owner, at the first size.
RECT LinkDialog::FirstPlace() const
{
    return MiddleOf(GetWindow(myWindow, GW_OWNER), {myScale.Pixels(StartSize.cx), myScale.Pixels(StartSize.cy)});
}

/// Moves the window to a place, and gives the columns of the list their widths there.
void LinkDialog::Place(const RECT& myPlace)
{
    SetWindowPos(myWindow, nullptr, myPlace.left, myPlace.top, myPlace.right - myPlace.left,
                 myPlace.bottom - myPlace.top, SWP_NOZORDER | SWP_NOACTIVATE);
    Arrange(); // also when the size stays as it is
    HWND const myList = Control(RecordsList);
    ListView_SetColumnWidth(myList, 0, LVSCW_AUTOSIZE);
    ListView_SetColumnWidth(myList, 0, ListView_GetColumnWidth(myList, 0) + myScale.Pixels(ColumnGap));
    ListView_SetColumnWidth(myList, 1, myScale.Pixels(NameWidth));
    ListView_SetColumnWidth(myList, 2, LVSCW_AUTOSIZE_USEHEADER); // the rest
    ListView_EnsureVisible(myList, ListView_GetNextItem(myList, -1, LVNI_SELECTED), FALSE);
}

/// Places the controls from the bottom to the top; the list takes the room that is left.
void LinkDialog::Arrange()
{
    RECT myInside = {};
    GetClientRect(myWindow, &myInside);
    const int myMargin = myScale.Pixels(Margin);
    const int myGap = myScale.Pixels(Gap);
    const int myWidth = myInside.right - 2 * myMargin;
    const SIZE myButton = {myScale.Pixels(ButtonSize.cx), myScale.Pixels(ButtonSize.cy)};
    int myBottom = myInside.bottom - myMargin;
    int myRight = myInside.right - myMargin;
    for (const int myId : {IDCANCEL, IDOK})
    {
        MoveWindow(Control(myId), myRight - myButton.cx, myBottom - myButton.cy, myButton.cx, myButton.cy, TRUE);
        myRight -= myButton.cx + myGap;
    }
    myBottom -= myButton.cy + myGap;
    const auto Place = [&](int myId, int myHeight)
    {
        MoveWindow(Control(myId), myMargin, myBottom - myHeight, myWidth, myHeight, TRUE);
        myBottom -= myHeight + myGap;
    };
    if (!myChoice.Note.empty())
    {
        Place(NoteLabel, 2 * myScale.Pixels(LineHeight));
    }
    Place(AddressField, myScale.Pixels(FieldHeight));
    Place(AddressLabel, myScale.Pixels(LineHeight));
    Place(RecordsList, myBottom - myMargin - myScale.Pixels(LineHeight) - myGap);
    Place(RecordsLabel, myScale.Pixels(LineHeight));
}

void LinkDialog::TakeCommand(UINT myControl, UINT myNotification)
{
    if (myControl == AddressField && myNotification == EN_CHANGE)
    {
        if (GetWindowTextLengthW(Control(AddressField)) > 0)
        {
            ListView_SetItemState(Control(RecordsList), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
        }
        UpdateConfirm();
    }
    else if (myControl == IDOK && IsWindowEnabled(Control(IDOK)) != 0)
    {
        myChoice.Address = TypedAddress(); // the only one that can fail
        myChoice.Row = SelectedRow();
        EndDialog(myWindow, IDOK);
    }
    else if (myControl == IDCANCEL)
    {
        EndDialog(myWindow, IDCANCEL);
    }
}

/// Handles what the list reports.
void LinkDialog::TakeNotice(const NMHDR& myNotice)
{
    HWND const myField = Control(AddressField);
    switch (myNotice.idFrom == RecordsList ? myNotice.code : 0)
    {
    case LVN_ITEMCHANGED:
        if (SelectedRow() && GetWindowTextLengthW(myField) > 0)
        {
            SendMessageW(myField, EM_SETSEL, 0, -1);
            SendMessageW(myField, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L"")); // so that it can be undone
        }
        UpdateConfirm();
        break;
    case LVN_KEYDOWN:
        if (!SelectedRow()) // so that the first arrow key selects the first row
        {
            ListView_SetItemState(Control(RecordsList), -1, 0, LVIS_FOCUSED);
        }
        break;
    case NM_DBLCLK:
        TakeCommand(IDOK, BN_CLICKED);
        break;
    default:
        break;
    }
}

void LinkDialog::UpdateConfirm()
{
    EnableWindow(Control(IDOK), SelectedRow() || !TypedAddress().empty() ? TRUE : FALSE);
}

std::optional<std::size_t> LinkDialog::SelectedRow() const
{
    const int myRow = ListView_GetNextItem(Control(RecordsList), -1, LVNI_SELECTED);
    return myRow < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(myRow));
}

/// What has been typed, without white space around it.
Text LinkDialog::TypedAddress() const
{
    constexpr TextView WhiteSpace = u" \t\r\n\u00A0";
    std::wstring myTyped(static_cast<size_t>(GetWindowTextLengthW(Control(AddressField))) + 1, L'\0');
    myTyped.resize(
        static_cast<size_t>(GetWindowTextW(Control(AddressField), myTyped.data(), static_cast<int>(myTyped.size()))));
    const Text myText = TextOfWide(myTyped);
    const size_t myStart = myText.find_first_not_of(WhiteSpace);
    return myStart == Text::npos ? Text() : myText.substr(myStart, myText.find_last_not_of(WhiteSpace) - myStart + 1);
}

} // namespace qel::host
