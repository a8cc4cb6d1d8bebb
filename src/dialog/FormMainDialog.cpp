#include "dialog/FormMainDialog.h"

#include "platform/clock.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/errors.h"
#include "text/succeeds.h"

namespace qel
{
namespace
{

/// While the dialog is open, the settings hold the entry of the combo box in place of the marker of an imported file.
void ShowMarker(Text& theFolder)
{
    if (theFolder == UserMarker)
    {
        theFolder = OwnFileEntry;
    }
}

/// As an author reads it: 06/07/2009.
Text DayText(Date myDate)
{
    const auto TwoDigits = [](int32_t myNumber)
    {
        return JoinTexts({myNumber < 10 ? u"0" : u"", NumberText(int64_t{myNumber})});
    };
    const CalendarDay myDay = DayOfDate(myDate);
    return JoinTexts({TwoDigits(myDay.Day), u"/", TwoDigits(myDay.Month), u"/", NumberText(int64_t{myDay.Year})});
}

/// Shows a stored date. Error 5, with the date in its description: the picker cannot show it.
void ShowDate(DatePicker& thePicker, Date myDate)
{
    try
    {
        thePicker.Value(myDate);
    }
    catch (const Error& e)
    {
        if (e.Number != ErrorNumber::InvalidArgument)
        {
            throw;
        }
        throw Error{e.Number, ReplaceAll(LoadResString(StringId::DateNotShown), u"%1", DayText(myDate))};
    }
}

/// A picker without a date shows today, so that switching it on starts there.
void FillPicker(DatePicker& thePicker, Date myDate)
{
    if (DateIsSet(myDate))
    {
        ShowDate(thePicker, myDate);
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
    : myPorts(myPlatform), myLocalConstants(myConstants), myFormLead(myLead), myForm(theMain), myWindow(theFormWindow),
      myMotif(MotifHalf(theFormWindow.Controls())), myTune(TuneHalf(theFormWindow.Controls()))
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
    const auto myHalves = {&myMotif, &myTune};
    for (const DialogHalf* const myHalf : myHalves)
    {
        ShowMarker(Settings().*myHalf->Folder);
    }
    for (const DialogHalf* const myHalf : myHalves)
    {
        FillFolderCombo(myHalf->Folders, Settings().*myHalf->Folder);
    }
    for (const DialogHalf* const myHalf : myHalves)
    {
        myHalf->Switch.Value(Settings().*myHalf->IsOn);
    }
    FillPicker(Controls().DateFrom, Settings().myFrom);
    FillPicker(Controls().DateTo, Settings().myTo);
    UpdatePreview();
    UpdateLinkButtons();
}

void FormMainDialog::Form_Unload()
{
    StopMIDI();
}

/// The host's answer replaces the link whatever it is, the present link and the empty text included.
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

/// Runs a handler. During a write of a selected index a failure is passed on to the code that writes; any other failure
/// is shown to the author here, because no other code would report it.
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
        Succeeds([&] { ShowMessage(CurrentError().Description); });
    }
}

void FormMainDialog::ShowMessage(TextView myText)
{
    myWindow.MsgBox(myText, InformationStyle);
}

void FormMainDialog::cmbImageFolder_Click()
{
    Handle(
        [&]
        {
            OpenFolder(myMotif);
            if (OwnFileIsSelected(myMotif)) // else the list has updated the preview when its selection was written
            {
                UpdatePreview();
                UpdateImageLabel();
            }
        });
}

void FormMainDialog::cmbMIDIFolder_Click()
{
    Handle(
        [&]
        {
            OpenFolder(myTune);
            UpdateMIDILabel(); // also for a folder of the library, unlike the motif's
        });
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
