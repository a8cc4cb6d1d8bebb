#include "platform/linux/window/FormWindow.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "platform/linux/window/dialogs.h"

#include <QToolButton>

namespace qel
{

FormWindow::FormWindow()
{
    ConnectClicks();
}

void FormWindow::ConnectClicks()
{
    for (const PressHandler& myEntry : PressHandlers)
    {
        QObject::connect(&myDialog.Control<QAbstractButton>(myEntry.Control), &QAbstractButton::clicked, &myDialog,
                         [this, myHandler = myEntry.Press] { Press(myHandler); });
    }
    int32_t myIndex = 0;
    for (const QToolButton* const myButton : myDialog.Control<QWidget>(u"ToolbarPlay").findChildren<QToolButton*>())
    {
        ++myIndex;
        QObject::connect(myButton, &QAbstractButton::clicked, &myDialog,
                         [this, myIndex]
                         { myForwarder.CallFromSystem(&FormMainEvents::ToolbarPlay_ButtonClick, myIndex); });
    }
}

/// Passes a press on. One of OK is refused while a picker holds a text that is no day: then a message says so, and that
/// picker gets the focus.
void FormWindow::Press(Handler myHandler)
{
    if (myHandler != &FormMainEvents::cmdOK_Click || DatesAreDays())
    {
        myForwarder.CallFromSystem(myHandler);
    }
}

bool FormWindow::DatesAreDays()
{
    for (const TextView myName : {u"DateFrom", u"DateTo"})
    {
        auto& theField = myDialog.Control<DateField>(myName);
        if (const QString myRefusal = theField.Refusal(); !myRefusal.isEmpty())
        {
            ShowMessage(&myDialog, FromToolkit(myRefusal), InformationStyle);
            theField.Day().setFocus();
            theField.Day().SelectFirstPart();
            return false;
        }
    }
    return true;
}

void FormWindow::Pointer(MousePointer myPointer)
{
    if (myPointer == MousePointer::Hourglass)
    {
        myDialog.setCursor(Qt::WaitCursor);
    }
    else
    {
        myDialog.unsetCursor();
    }
}

std::optional<Text> FormWindow::ShowOpen(const FileDialogSettings& mySettings)
{
    return ShowOpenDialog(&myDialog, mySettings);
}

int32_t FormWindow::MsgBox(TextView myText, int32_t myStyle)
{
    return ShowMessage(&myDialog, myText, myStyle);
}

} // namespace qel
