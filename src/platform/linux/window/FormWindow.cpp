#include "platform/linux/window/FormWindow.h"

#include "platform/linux/window/dialogs.h"

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
    {u"cmdHelp", &FormMainEvents::cmdHelp_Click},       {u"cmdOK", &FormMainEvents::cmdOK_Click},
    {u"cmdCancel", &FormMainEvents::cmdCancel_Click},
};

/// Leads the events to the logic for as long as the window is shown to it.
class Listening
{
public:
    Listening(EventForwarder& theForwarder, FormMainEvents& theEvents) : myForwarder(theForwarder)
    {
        myForwarder.Receiver(&theEvents);
    }
    ~Listening() { myForwarder.Receiver(nullptr); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

private:
    EventForwarder& myForwarder;
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
    int32_t myIndex = 0;
    for (const QToolButton* const myButton : myDialog.Control<QWidget>(u"ToolbarPlay").findChildren<QToolButton*>())
    {
        ++myIndex;
        QObject::connect(myButton, &QAbstractButton::clicked, &myDialog,
                         [this, myIndex]
                         { myForwarder.CallFromSystem(&FormMainEvents::ToolbarPlay_ButtonClick, myIndex); });
    }
}

void FormWindow::Show(FormMainEvents& theEvents)
{
    const Listening myListening(myForwarder, theEvents);
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
