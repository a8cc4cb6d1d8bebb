#include "platform/linux/window/FormWindow.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "platform/linux/window/dialogs.h"
#include "text/ScopeGuard.h"

#include <QToolButton>

namespace qel
{
namespace
{

struct ClickHandler
{
    TextView Control;
    Handler Click;
};

constexpr ClickHandler ClickHandlers[] = {
    {u"lblImage", &FormMainEvents::lblImage_Click},     {u"lblMIDI", &FormMainEvents::lblMIDI_Click},
    {u"cmdSetLink", &FormMainEvents::cmdSetLink_Click}, {u"cmdUnsetLink", &FormMainEvents::cmdUnsetLink_Click},
    {u"cmdHelp", &FormMainEvents::cmdHelp_Click},       {u"cmdCancel", &FormMainEvents::cmdCancel_Click},
};

} // namespace

FormWindow::FormWindow()
{
    ConnectClicks();
}

void FormWindow::ConnectClicks()
{
    for (const ClickHandler& myEntry : ClickHandlers)
    {
        QObject::connect(&myDialog.Control<QAbstractButton>(myEntry.Control), &QAbstractButton::clicked, &myDialog,
                         [this, myHandler = myEntry.Click] { myForwarder.CallFromSystem(myHandler); });
    }
    QObject::connect(&myDialog.Control<QAbstractButton>(u"cmdOK"), &QAbstractButton::clicked, &myDialog,
                     [this] { PressOK(); });
    int32_t myIndex = 0;
    for (const QToolButton* const myButton : myDialog.Control<QWidget>(u"ToolbarPlay").findChildren<QToolButton*>())
    {
        ++myIndex;
        QObject::connect(myButton, &QAbstractButton::clicked, &myDialog,
                         [this, myIndex]
                         { myForwarder.CallFromSystem(&FormMainEvents::ToolbarPlay_ButtonClick, myIndex); });
    }
}

/// Passes the click on, unless a picker holds a text that is no day: then a message says so, and that picker gets the
/// focus.
void FormWindow::PressOK()
{
    for (const TextView myName : {u"DateFrom", u"DateTo"})
    {
        auto& theField = myDialog.Control<DateField>(myName);
        if (const QString myRefusal = theField.Refusal(); !myRefusal.isEmpty())
        {
            ShowMessage(&myDialog, FromToolkit(myRefusal), InformationStyle);
            theField.Day().setFocus();
            theField.Day().SelectFirstPart();
            return;
        }
    }
    myForwarder.CallFromSystem(&FormMainEvents::cmdOK_Click);
}

void FormWindow::Show(FormMainEvents& theEvents)
{
    myForwarder.Receiver(&theEvents);
    const ScopeGuard myGuard([&] { myForwarder.Receiver(nullptr); });
    theEvents.Form_Load();
    if (!myIsUnloaded)
    {
        myDialog.ShowModally();
    }
    theEvents.Form_Unload();
}

void FormWindow::Unload()
{
    myIsUnloaded = true;
    myDialog.done(QDialog::Accepted);
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
