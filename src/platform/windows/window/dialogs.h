/// The two small dialogs of the system: a message, and the choice of a file. They are in the system's language.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/MessageBox.h"
#include "platform/windows/window/controlHeaders.h"

namespace qel
{

/// Shows a message over a window, or over none. Returns PressedOK or PressedCancel. Error 57: there is no display.
int32_t ShowMessage(HWND myOwner, TextView myText, int32_t myStyle);

/// Lets the user choose a file, by name also one that does not exist; nothing when they cancel. Starts in `theFolder`
/// if that is not empty, else where the system suggests, and leaves the folder of the chosen file there. The current
/// folder of the process stays the same.
std::optional<Text> ShowOpenDialog(HWND myOwner, const FileDialogSettings& mySettings, Text& theFolder);

} // namespace qel
