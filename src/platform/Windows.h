/// Windows, controls, message boxes and sound, as the dialog's logic sees them: one narrow port per kind of control.
///
/// What stands behind these ports is loaded at the first call and not before. Everything is used on the thread that
/// made it, which has to be the one that owns the process's windows. Operations throw Error where they say so.
#pragma once

#include "text/dates.h"
#include "text/text.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace qel
{

struct PixelPicture;

/// A list to pick one entry from. Entries count from 0.
class ComboBox
{
public:
    virtual ~ComboBox() = default;

    virtual void AddItem(TextView myText) = 0;
    virtual int32_t ListCount() = 0;

    /// The selected entry; -1 when there is none.
    virtual int32_t ListIndex() = 0;

    /// Selects an entry; the control's click handler runs before the call returns, also when nothing changes, and what
    /// it throws comes out here.
    virtual void ListIndex(int32_t myIndex) = 0;

    /// The text of the selected entry; empty when there is none.
    virtual Text SelectedText() = 0;
};

/// A combo box whose entries all show, and which can be emptied and hidden.
class ListBox : public ComboBox
{
public:
    /// Takes all entries out. No handler runs.
    virtual void Clear() = 0;
    virtual void Visible(bool myValue) = 0;
};

/// A frame with other controls in it.
class PictureBox
{
public:
    virtual ~PictureBox() = default;
    virtual void Visible(bool myValue) = 0;
};

/// The frame that the preview is painted into; it measures in pixels.
class PreviewBox
{
public:
    virtual ~PreviewBox() = default;

    /// Empties the box to its white background.
    virtual void Cls() = 0;
    /// The inner size, the border left out.
    virtual int32_t ScaleWidth() = 0;
    virtual int32_t ScaleHeight() = 0;
    /// Paints a picture at its own size, its transparent parts left white. It stays until Cls.
    virtual void PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop) = 0;
};

class Label
{
public:
    virtual ~Label() = default;
    virtual void Caption(TextView myText) = 0;
    virtual void Visible(bool myValue) = 0;
};

/// A place for one of the two icons, by resource number (see resources/formLayout.h).
class IconImage
{
public:
    virtual ~IconImage() = default;
    virtual void Icon(int32_t myResource) = 0;
};

class CheckBox
{
public:
    virtual ~CheckBox() = default;
    virtual bool Value() = 0;
    virtual void Value(bool myValue) = 0;
};

class Button
{
public:
    virtual ~Button() = default;
    virtual void Enabled(bool myValue) = 0;
};

/// A date with a check box; the box is off when there is no value.
class DatePicker
{
public:
    virtual ~DatePicker() = default;
    virtual std::optional<Date> Value() = 0;

    /// Nothing switches the box off and leaves the date that shows. Error 5: a date before 1601 or after 9999.
    virtual void Value(std::optional<Date> myDate) = 0;
};

/// The dialog for opening a file, with what is set before it shows.
struct FileDialogSettings
{
    Text Filter; ///< pairs of description and patterns, all separated by "|", the patterns of a pair by ";"
    Text DialogTitle;
    int32_t MaxFileSize; ///< room for file names, in characters
    uint32_t Flags;      ///< 0x80004: a dialog that browses, without a box for read-only
};

enum class MousePointer : int32_t
{
    Default = 0,
    Hourglass = 11
};

/// What the user does, as the form's logic handles it. A handler may throw only inside a write of a selected index; one
/// that the window calls by itself deals with its failures.
class FormMainEvents
{
public:
    virtual ~FormMainEvents() = default;

    /// Before the window shows. What it throws keeps the window closed and comes out of Show.
    virtual void Form_Load() = 0;
    /// At every closing. Throws nothing.
    virtual void Form_Unload() = 0;

    virtual void cmbImageFolder_Click() = 0;
    virtual void cmbMIDIFolder_Click() = 0;
    virtual void lstImage_Click() = 0;
    virtual void lstMIDI_DblClick() = 0;
    virtual void lblImage_Click() = 0;
    virtual void lblMIDI_Click() = 0;
    virtual void ToolbarPlay_ButtonClick(int32_t myButton) = 0; ///< from 1
    virtual void cmdSetLink_Click() = 0;
    virtual void cmdUnsetLink_Click() = 0;
    virtual void cmdHelp_Click() = 0;
    virtual void cmdOK_Click() = 0;
    virtual void cmdCancel_Click() = 0;
};

/// The controls of the dialog that its logic works with.
struct FormMainControls
{
    ComboBox& cmbImageFolder;
    ComboBox& cmbMIDIFolder;
    ListBox& lstImage;
    ListBox& lstMIDI;
    PictureBox& picImage;
    PictureBox& picMIDI;
    PreviewBox& picPreview;
    IconImage& imgImage;
    IconImage& imgMIDI;
    Label& lblImage;
    Label& lblMIDI;
    Label& lblAnimated;
    CheckBox& chkImage;
    CheckBox& chkMIDI;
    Button& cmdUnsetLink;
    DatePicker& DateFrom;
    DatePicker& DateTo;
};

/// The dialog's window, from its making to its unloading.
class FormMainWindow
{
public:
    virtual ~FormMainWindow() = default;

    virtual FormMainControls& Controls() = 0;

    /// Runs Form_Load, shows the window modally, and returns when it is unloaded and its controls are of no more use.
    virtual void Show(FormMainEvents& theEvents) = 0;

    /// Closes the window; Form_Unload runs before Show returns.
    virtual void Unload() = 0;

    virtual int32_t HelpContextID() = 0;
    virtual void Pointer(MousePointer myPointer) = 0;

    /// Lets the author choose a file to open; nothing when they cancel or the dialog fails.
    virtual std::optional<Text> ShowOpen(const FileDialogSettings& mySettings) = 0;

    /// Shows a message with the style's buttons and icon, over this window.
    virtual int32_t MsgBox(TextView myText, int32_t myStyle) = 0;
};

/// Message boxes: style 64 has the OK button and the information icon, style 33 OK and Cancel and the question icon.
inline constexpr int32_t InformationStyle = 64;
inline constexpr int32_t QuestionStyle = 33;
inline constexpr int32_t PressedOK = 1;
inline constexpr int32_t PressedCancel = 2;

class Windows
{
public:
    virtual ~Windows() = default;

    /// Makes sure that windows can be shown from this thread, and loads what that needs. Has no other effect.
    /// Error 53: the window module is not installed. 57: there is no display. 5: another thread owns the windows.
    virtual void DemandDisplay() = 0;

    /// Makes the dialog's window, not shown yet. Errors of DemandDisplay.
    virtual std::unique_ptr<FormMainWindow> MakeFormMain() = 0;

    /// Shows a message over no window. Gives PressedOK or PressedCancel. Errors of DemandDisplay.
    virtual int32_t MsgBox(TextView myText, int32_t myStyle) = 0;

    /// Sends one command to the multimedia service, in the ANSI code page where that takes bytes, and does not wait
    /// for a tune to end: `open "FILE" type sequencer alias NAME`, `play NAME `, `stop NAME `, `close NAME `. A command
    /// that fails has no effect. No error.
    virtual void SendMultimediaCommand(TextView myCommand) = 0;
};

} // namespace qel
