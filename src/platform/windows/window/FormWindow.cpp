#include "platform/windows/window/FormWindow.h"

#include "platform/windows/window/dialogs.h"

#include <algorithm>

namespace qel
{
namespace
{

/// What else the author does in a control, and how the system reports it.
struct ReportHandler
{
    TextView Control;
    UINT Notification;
    Handler Report;
};

constexpr ReportHandler ReportHandlers[] = {
    {u"cmbImageFolder", CBN_SELCHANGE, &FormMainEvents::cmbImageFolder_Click},
    {u"cmbMIDIFolder", CBN_SELCHANGE, &FormMainEvents::cmbMIDIFolder_Click},
    {u"lstImage", LBN_SELCHANGE, &FormMainEvents::lstImage_Click},
    {u"lstMIDI", LBN_DBLCLK, &FormMainEvents::lstMIDI_DblClick},
};

} // namespace

FormWindow::FormWindow(Text& theLastFolder) : theFolder(theLastFolder)
{
    myDialog.Reported = [this](const ControlLayout& myControl, UINT myNotification)
    {
        for (const ReportHandler& myEntry : ReportHandlers)
        {
            if (myEntry.Control == myControl.Name && myEntry.Notification == myNotification)
            {
                myForwarder.CallFromSystem(myEntry.Report);
            }
        }
        for (const PressHandler& myEntry : PressHandlers)
        {
            if (myEntry.Control == myControl.Name && myNotification == BN_CLICKED)
            {
                myForwarder.CallFromSystem(myEntry.Press);
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
