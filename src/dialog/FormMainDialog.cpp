#include "dialog/FormMainDialog.h"

#include "platform/clock.h"
#include "tags/pluginFunctions.h"
#include "text/errors.h"
#include "text/succeeds.h"

namespace qel
{
namespace
{

/// In the record the marker of an imported file reads as the entry of the combo while the dialog is open.
void ShowMarker(Text& theFolder)
{
    if (theFolder == UserMarker)
    {
        theFolder = OwnFileEntry;
    }
}

/// A picker without a date shows today, so that switching it on starts there.
void FillPicker(DatePicker& thePicker, Date myDate)
{
    if (DateIsSet(myDate))
    {
        thePicker.Value(myDate);
    }
    else
    {
        thePicker.Value(Today());
        thePicker.Value(std::nullopt);
    }
}

} // namespace

FormMainDialog::FormMainDialog(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead,
                               FormMain& theMain, FormMainWindow& theFormWindow)
    : myPorts(myPlatform), myLocalConstants(myConstants), myFormLead(myLead), myForm(theMain), myWindow(theFormWindow)
{
}

void FormMainDialog::Show()
{
    myWindow.Show(*this);
}

void FormMainDialog::Form_Load()
{
    myForm.ExitButton = FormMain::NotConfirmed;
    myForm.ClearTempFolder();
    if (!myForm.UnPackModule())
    {
        Settings().myImageMode = ImageMode::None;
        Settings().myMIDIMode = false;
    }
    ShowMarker(Settings().myImageFolder);
    ShowMarker(Settings().myMIDIFolder);
    FillFolderCombo(Controls().cmbImageFolder, Settings().myImageFolder);
    FillFolderCombo(Controls().cmbMIDIFolder, Settings().myMIDIFolder);
    Controls().chkImage.Value(Settings().myShowImage);
    Controls().chkMIDI.Value(Settings().myPlayMIDI);
    FillPicker(Controls().DateFrom, Settings().myFrom);
    FillPicker(Controls().DateTo, Settings().myTo);
    UpdatePreview();
    UpdateLinkButtons();
}

void FormMainDialog::Form_Unload()
{
    StopMIDI();
}

/// The host may answer with anything, the present link or none included.
void FormMainDialog::SetLink()
{
    Settings().myLink = myForm.Records()->ChooseLink(Settings().myLink);
    UpdateLinkButtons();
}

void FormMainDialog::UnsetLink()
{
    Settings().myLink.clear();
    UpdateLinkButtons();
}

void FormMainDialog::UpdateLinkButtons()
{
    Controls().cmdUnsetLink.Enabled(!Settings().myLink.empty());
}

/// Runs a handler. What fails inside a write of a selected index is a failure of whoever writes; anything else is shown
/// here, since nobody else would hear of it.
template <class Operation>
void FormMainDialog::Handle(Operation myOperation)
{
    if (myIndexWrites > 0)
    {
        myOperation();
        return;
    }
    try
    {
        myOperation();
    }
    catch (...)
    {
        Succeeds([&] { ShowMessage(ErrorInHand().Description); });
    }
}

void FormMainDialog::ShowMessage(TextView myText)
{
    myWindow.MsgBox(myText, InformationStyle);
}

void FormMainDialog::cmbImageFolder_Click()
{
    Handle([&] { OpenImageFolder(); });
}

void FormMainDialog::cmbMIDIFolder_Click()
{
    Handle([&] { OpenMIDIFolder(); });
}

void FormMainDialog::lstImage_Click()
{
    Handle([&] { UpdatePreview(); });
}

void FormMainDialog::lstMIDI_DblClick()
{
    Handle([&] { PlaySelectedMIDI(); });
}

void FormMainDialog::lblImage_Click()
{
    Handle([&] { ImportImage(); });
}

void FormMainDialog::lblMIDI_Click()
{
    Handle([&] { ImportMIDI(); });
}

void FormMainDialog::ToolbarPlay_ButtonClick(int32_t myButton)
{
    Handle([&] { PressToolButton(myButton); });
}

void FormMainDialog::cmdSetLink_Click()
{
    Handle([&] { SetLink(); });
}

void FormMainDialog::cmdUnsetLink_Click()
{
    Handle([&] { UnsetLink(); });
}

void FormMainDialog::cmdHelp_Click()
{
    Handle([&] { ShowHelpTopic(myPorts.help, myLocalConstants.myHelpFile, myWindow.HelpContextID()); });
}

void FormMainDialog::cmdOK_Click()
{
    Handle([&] { Commit(); });
}

void FormMainDialog::cmdCancel_Click()
{
    Handle([&] { myWindow.Unload(); });
}

} // namespace qel
