/// The controls of the dialog as its logic sees them, each on one control of the system.
#pragma once

#include "dialog/ports/FormMainControls.h"
#include "platform/shared/EventForwarder.h"
#include "platform/windows/window/entries.h"
#include "platform/windows/window/FormDialog.h"

#include <vector>

namespace qel
{

/// `Port` is ComboBox or ListBox.
template <class Port, const EntryMessages& Messages>
class EntryControl : public Port
{
public:
    EntryControl(HWND myControl, EventForwarder& myForwarder, Handler myClick)
        : myWindow(myControl), myEvents(myForwarder), myHandler(myClick)
    {
    }

    void AddItem(TextView myText) override { AddEntry(myWindow, Messages, myText); }
    int32_t ListCount() override { return Ask(Messages.Count); }
    int32_t ListIndex() override { return Ask(Messages.Selected); }
    void ListIndex(int32_t myIndex) override
    {
        // The system reports only what the user selects.
        SendMessageW(myWindow, Messages.Select, static_cast<WPARAM>(myIndex), 0);
        myEvents.Call(myHandler);
    }
    Text SelectedText() override { return SelectedEntry(myWindow, Messages); }

protected:
    HWND Window() const { return myWindow; }

private:
    int32_t Ask(UINT myMessage) const { return static_cast<int32_t>(SendMessageW(myWindow, myMessage, 0, 0)); }

    HWND myWindow;
    EventForwarder& myEvents;
    Handler myHandler;
};

using SystemComboBox = EntryControl<ComboBox, ComboMessages>;

class SystemListBox final : public EntryControl<ListBox, ListMessages>
{
public:
    using EntryControl::EntryControl;

    void Clear() override { SendMessageW(Window(), LB_RESETCONTENT, 0, 0); }
    void Visible(bool myValue) override { ShowWindow(Window(), myValue ? SW_SHOWNA : SW_HIDE); }
};

class SystemPictureBox final : public PictureBox
{
public:
    explicit SystemPictureBox(HWND myBox) : myWindow(myBox) {}
    void Visible(bool myValue) override { ShowWindow(myWindow, myValue ? SW_SHOWNA : SW_HIDE); }

private:
    HWND myWindow;
};

/// Stores what is painted in pixels of 96 to the inch; it is enlarged only on the screen.
class SystemPreviewBox final : public PreviewBox
{
public:
    SystemPreviewBox(HWND myBox, const ControlLayout& myLayout);

    void Cls() override;
    int32_t ScaleWidth() override { return myWidth; }
    int32_t ScaleHeight() override { return myHeight; }
    void PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop) override;

    /// Shows what has been painted, in a rectangle of the screen.
    void Show(HDC myTarget, const RECT& myInside) const;

private:
    HWND myWindow;
    int32_t myWidth;
    int32_t myHeight;
    std::vector<uint32_t> myPixels; ///< 0xRRGGBB, rows from top to bottom
};

class SystemLabel final : public Label
{
public:
    SystemLabel(FormDialog& theFormDialog, TextView myName)
        : theDialog(theFormDialog), myWindow(theDialog.Control(myName))
    {
    }
    void Caption(TextView myText) override { theDialog.Caption(myWindow, myText); }
    void Visible(bool myValue) override { ShowWindow(myWindow, myValue ? SW_SHOWNA : SW_HIDE); }

private:
    FormDialog& theDialog;
    HWND myWindow;
};

class SystemIconImage final : public IconImage
{
public:
    SystemIconImage(const FormDialog& myFormDialog, TextView myName)
        : myDialog(myFormDialog), myWindow(myDialog.Control(myName))
    {
    }
    void Icon(int32_t myResource) override
    {
        SendMessageW(myWindow, STM_SETICON, reinterpret_cast<WPARAM>(myDialog.ImportIcon(myResource)), 0);
    }

private:
    const FormDialog& myDialog;
    HWND myWindow;
};

class SystemCheckBox final : public CheckBox
{
public:
    explicit SystemCheckBox(HWND myBox) : myWindow(myBox) {}
    bool Value() override { return SendMessageW(myWindow, BM_GETCHECK, 0, 0) == BST_CHECKED; }
    void Value(bool myValue) override { SendMessageW(myWindow, BM_SETCHECK, myValue ? BST_CHECKED : BST_UNCHECKED, 0); }

private:
    HWND myWindow;
};

class SystemButton final : public Button
{
public:
    explicit SystemButton(HWND myButton) : myWindow(myButton) {}
    /// The focus leaves a button that is disabled.
    void Enabled(bool myValue) override;

private:
    HWND myWindow;
};

/// The days that the system's picker can show begin on 14 September 1752.
class SystemDatePicker final : public DatePicker
{
public:
    explicit SystemDatePicker(HWND myPicker);
    std::optional<Date> Value() override;
    void Value(std::optional<Date> myNewDate) override;

private:
    HWND myWindow;
    Date myDate = 0; ///< that was set, with its time of day
};

} // namespace qel
