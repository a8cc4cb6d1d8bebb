/// The two small dialogs: a message, and the choice of a file.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/MessageBox.h"

#include <QWidget>

namespace qel
{

/// Shows a message over a window, or over none. Gives PressedOK or PressedCancel.
int32_t ShowMessage(QWidget* myOwner, TextView myText, int32_t myStyle);

/// Lets the user choose an existing file, by name also one that the filter leaves out; nothing when they cancel. The
/// empty text, which is no file's path, means a file whose path cannot be written in the logic's form. Starts in the
/// folder of the file that was chosen last in this process.
std::optional<Text> ShowOpenDialog(QWidget* myOwner, const FileDialogSettings& mySettings);

} // namespace qel
