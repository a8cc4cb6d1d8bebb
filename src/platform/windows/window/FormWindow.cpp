#include "platform/windows/window/FormWindow.h"

#include "platform/windows/window/dialogs.h"
#include "text/ScopeGuard.h"

#include <algorithm>

namespace qel
{
namespace
{

/// What a control reports to the logic, and by which notification of the system.
struct ReportedEvent
{
    TextView Control;
    UINT Notification;
    Handler Event;
};

constexpr ReportedEvent ReportedEvents[] = {
    {u"cmbImageFolder", CBN_SELCHANGE, &FormMainEvents::cmbImageFolder_Click},
    {u"cmbMIDIFolder", CBN_SELCHANGE, &FormMainEvents::cmbMIDIFolder_Click},
    {u"lstImage", LBN_SELCHANGE, &FormMainEvents::lstImage_Click},
    {u"lstMIDI", LBN_DBLCLK, &FormMainEvents::lstMIDI_DblClick},
    {u"lblImage", BN_CLICKED, &FormMainEvents::lblImage_Click},
    {u"lblMIDI", BN_CLICKED, &FormMainEvents::lblMIDI_Click},
    {u"cmdSetLink", BN_CLICKED, &FormMainEvents::cmdSetLink_Click},
    {u"cmdUnsetLink", BN_CLICKED, &FormMainEvents::cmdUnsetLink_Click},
    {u"cmdHelp", BN_CLICKED, &FormMainEvents::cmdHelp_Click},
    {u"cmdOK", BN_CLICKED, &FormMainEvents::cmdOK_Click},
    {u"cmdCancel", BN_CLICKED, &FormMainEvents::cmdCancel_Click},
};

} // namespace

FormWindow::FormWindow(Text& theLastFolder) : theFolder(theLastFolder)
{
    myDialog.Reported = [this](const ControlLayout& myControl, UINT myNotification)
    {
        for (const ReportedEvent& myEvent : ReportedEvents)
        {
            if (myEvent.Control == myControl.Name && myEvent.Notification == myNotification)
            {
                myForwarder.CallFromSystem(myEvent.Event);
            }
        }
    };
    myDialog.ToolPressed = [this](int32_t myButton)
    {
        myForwarder.CallFromSystem(&FormMainEvents::ToolbarPlay_ButtonClick, myButton);
    };
    myDialog.PaintPreview = [this](HDC myTarget, const RECT& myInside)
    {
        myPreview.Show(myTarget, myInside);
    };
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
    myDialog.Close();
}

void FormWindow::Pointer(MousePointer myPointer)
{
    myDialog.Pointer(myPointer == MousePointer::Hourglass ? LoadCursorW(nullptr, IDC_WAIT) : nullptr);
}

std::optional<Text> FormWindow::ShowOpen(const FileDialogSettings& mySettings)
{
    return ShowOpenDialog(myDialog.Window(), mySettings, theFolder);
}

int32_t FormWindow::MsgBox(TextView myText, int32_t myStyle)
{
    return ShowMessage(IsWindowVisible(myDialog.Window()) != 0 ? myDialog.Window() : GetActiveWindow(), myText,
                       myStyle);
}

const ControlLayout& FormWindow::PreviewLayout() const
{
    return *std::ranges::find(MainFormControls, TextView(u"picPreview"), &ControlLayout::Name);
}

} // namespace qel
