/// The window of the settings dialog, built from the table of its controls.
#pragma once

#include "platform/windows/window/AccessibleControl.h"
#include "platform/windows/window/appearance.h"
#include "platform/windows/window/ModalOwner.h"
#include "platform/windows/window/NameToolTip.h"

#include <array>
#include <functional>
#include <string>

namespace qel
{

/// Each control is a control of the system. Its identifier is that of DialogId.
///
/// The window has the scale of the owner's screen, and follows a change of it. Enter presses the button with the focus,
/// a button of the tool bar and an import text included, and cmdOK from anywhere else; Escape presses cmdCancel and F1
/// cmdHelp.
class FormDialog final
{
public:
    /// Makes the window, not shown yet. Error 57: the system has no display for it.
    FormDialog();
    FormDialog(const FormDialog&) = delete;
    FormDialog& operator=(const FormDialog&) = delete;

    /// Runs for each notification of a control (BN_CLICKED, LBN_SELCHANGE and so on). A list reports each double click,
    /// on an entry or beside the entries.
    std::function<void(const ControlLayout& myControl, UINT myNotification)> Reported;
    /// Runs for a press of a button of the tool bar, which count from 1.
    std::function<void(int32_t myButton)> ToolPressed;
    /// Draws the inside of picPreview.
    std::function<void(HDC myTarget, const RECT& myInside)> PaintPreview;

    HWND Window() const { return myForm.get(); }
    HWND Control(TextView myName) const;

    /// Shows the window in the middle of the screen, disables the other windows of the thread, and returns when it has
    /// closed. A request to quit closes it and stays in the queue for the host.
    void ShowModally();
    void Close() { myIsClosed = true; }

    /// The pointer over the whole window; null for the usual ones.
    void Pointer(HCURSOR myCursor);
    /// Shows another text in a label, in a font in which it fits.
    void Caption(HWND myLabel, TextView myText);
    /// One of the two icons of the import boxes.
    HICON ImportIcon(int32_t myResource) const;

private:
    /// A control, and what has to live as long as it.
    struct Part
    {
        FormDialog* Dialog = nullptr;
        const ControlLayout* Layout = nullptr;
        HWND Window = nullptr;
        WNDPROC SystemProcedure = nullptr;
        Font OwnFont;
        AccessibleControl Accessible;
    };

    static INT_PTR CALLBACK DialogProcedure(HWND myWindow, UINT myMessage, WPARAM myFirst, LPARAM mySecond);
    static LRESULT CALLBACK ControlProcedure(HWND myWindow, UINT myMessage, WPARAM myFirst, LPARAM mySecond);
    INT_PTR Answer(HWND myBox, UINT myMessage, WPARAM myFirst, LPARAM mySecond);
    LRESULT AnswerInControl(Part& thePart, UINT myMessage, WPARAM myFirst, LPARAM mySecond);
    INT_PTR TakeCommand(UINT myId, UINT myNotification);
    INT_PTR ShowPointer(HWND myBox, HWND myPlace) const;
    HBRUSH ColoursOf(HWND myControl, HDC theTarget) const;
    void DrawPart(const DRAWITEMSTRUCT& myItem) const;
    bool TakeKey(const MSG& myMessage);
    bool TakeToolKey(WPARAM myKey);

    HWND MakeBox(HWND myParent, DWORD myStyle, DWORD myExtendedStyle);
    HWND MakeControl(const ControlLayout& myLayout, HWND myParent);
    void FillToolBar(HWND myToolBar);
    void TakeScale(Scale myNewScale);
    void ReplaceIcon(Icon& theIcon, Icon myNewIcon);
    void Place(Part& thePart);
    void SetCombosHeight(HWND myCombo) const;
    void Fit(Part& thePart);
    void Centre();
    void MoveInto(const RECT& myRoom, LONG myLeft, LONG myTop);
    void FollowScale(UINT myDotsPerInch, const RECT& mySuggestion);
    void FollowColours();
    void RunModalLoop();
    void Press(TextView myButton);
    Part* PartOf(HWND myControl);
    const Part* PartOf(HWND myControl) const;

    ModalOwner myOwner;
    std::array<Part, MainFormControls.size()> myParts;
    Scale myScale;
    Font myFont;
    Icon myWarning;
    Icon myInformation;
    Cursor myHand;
    ImageList myToolImages;
    NameToolTip myToolTip;
    HCURSOR myPointer = nullptr;
    bool myIsClosed = false;
    bool myHasDoubleClick = false;      ///< a list has reported one since this was reset
    Owned<HWND, &DestroyWindow> myForm; ///< the last member: its destruction uses the others
};

/// The identifier of a control: that of the system for OK and Cancel, else its place in the table from FirstControlId.
/// The buttons of the tool bar count from FirstToolId.
inline constexpr UINT FirstControlId = 100;
inline constexpr UINT FirstToolId = 200;
constexpr UINT ToolId(size_t myIndex)
{
    return FirstToolId + static_cast<UINT>(myIndex);
}
UINT DialogId(const ControlLayout& myLayout);

} // namespace qel
