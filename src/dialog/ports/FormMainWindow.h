/// The window of the settings dialog as its logic sees it, and its factory.
///
/// Everything is used on the thread that made it. Operations throw Error where they say so.
#pragma once

#include "dialog/ports/FormMainControls.h"
#include "dialog/ports/FormMainEvents.h"
#include "text/text.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace qel
{

/// The settings of the dialog for opening a file.
struct FileDialogSettings
{
    Text Filter; ///< pairs of description and patterns, all separated by "|", the patterns of a pair by ";"
    Text DialogTitle;
    int32_t MaxFileSize; ///< of the buffer for file names, in characters
    uint32_t Flags;      ///< 0x80004: a dialog that browses, without a box for read-only
};

/// The pointer of the mouse while it is over the window.
enum class MousePointer : int32_t
{
    Default = 0,
    Hourglass = 11
};

/// The dialog's window, for one opening.
///
/// Order of calls: Show, once; the others inside it, from the handlers of its events. Controls also before.
class FormMainWindow
{
public:
    virtual ~FormMainWindow() = default;

    /// The controls, which live as long as this object.
    virtual FormMainControls& Controls() = 0;

    /// Runs Form_Load, shows the window modally, runs Form_Unload at its closing, and returns. Throws what Form_Load
    /// throws; then the window has not been shown.
    virtual void Show(FormMainEvents& theEvents) = 0;

    /// Closes the window; Form_Unload runs before Show returns.
    virtual void Unload() = 0;

    /// The number of the help topic about the form.
    virtual int32_t HelpContextID() = 0;

    virtual void Pointer(MousePointer myPointer) = 0;

    /// Lets the author choose a file to open; nothing when they cancel or the dialog fails.
    virtual std::optional<Text> ShowOpen(const FileDialogSettings& mySettings) = 0;

    /// Shows a message over this window, with the buttons and the icon of InformationStyle or QuestionStyle (see
    /// platform/MessageBox.h), and waits for the answer: PressedOK or PressedCancel.
    virtual int32_t MsgBox(TextView myText, int32_t myStyle) = 0;
};

/// Makes the dialog's window. What that needs is loaded at the first call and not before.
class FormMainWindowMaker
{
public:
    virtual ~FormMainWindowMaker() = default;

    /// Makes sure that windows can be shown from this thread, and loads what that needs. Has no other effect.
    /// Error 53: the window module is not installed. 57: there is no display. 5: another thread owns the windows.
    virtual void DemandDisplay() = 0;

    /// Makes the window, not shown yet. Errors of DemandDisplay.
    virtual std::unique_ptr<FormMainWindow> MakeFormMain() = 0;
};

} // namespace qel
