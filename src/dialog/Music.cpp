#include "dialog/FormMainDialog.h"
#include "dialog/openDialog.h"
#include "resources/formLayout.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/succeeds.h"

namespace qel
{

/// Lets the author choose a tune and stages it in the temporary folder, whatever it is.
void FormMainDialog::ImportMIDI()
{
    const std::optional<Text> myFilename = myWindow.ShowOpen(OpenDialog(650, 660));
    if (!myFilename)
    {
        return;
    }
    Settings().myMIDIMode = false;
    DeleteTwins(myPorts.files, StagedMIDI());
    Settings().myMIDIMode = Succeeds([&] { myPorts.files.Copy(*myFilename, StagedMIDI()); });
    UpdateMIDILabel();
}

void FormMainDialog::PressToolButton(int32_t myButton)
{
    constexpr int32_t PlayButton = 1;
    if (myButton != PlayButton)
    {
        StopMIDI();
    }
    else if (Controls().cmbMIDIFolder.SelectedText() == OwnFileEntry)
    {
        PlayMIDI(StagedMIDI());
    }
    else
    {
        PlaySelectedMIDI();
    }
}

void FormMainDialog::PlaySelectedMIDI()
{
    PlayMIDI(LibraryFile(Controls().cmbMIDIFolder.SelectedText(), Controls().lstMIDI.SelectedText(), TuneExtension));
}

/// Plays a copy, so that an import can overwrite the tune that sounds. What fails leaves silence.
void FormMainDialog::PlayMIDI(const Text& myFile)
{
    StopMIDI();
    const Text& myCopy = myForm.TempMIDI();
    Succeeds([&] { myPorts.files.Delete(myCopy); });
    Succeeds([&] { myPorts.files.Copy(myFile, myCopy); });
    myPorts.sound.SendMultimediaCommand(JoinTexts({u"open \"", myCopy, u"\" type sequencer alias qelmidi"}));
    myPorts.sound.SendMultimediaCommand(u"play qelmidi ");
}

void FormMainDialog::StopMIDI()
{
    myPorts.sound.SendMultimediaCommand(u"stop qelmidi ");
    myPorts.sound.SendMultimediaCommand(u"close qelmidi ");
}

/// Tells in the import box whether a tune is there.
void FormMainDialog::UpdateMIDILabel()
{
    const bool myIsThere = Settings().myMIDIMode;
    Controls().lblMIDI.Caption(LoadResString(myIsThere ? 810 : 811));
    Controls().imgMIDI.Icon(myIsThere ? InformationIcon : WarningIcon);
}

Text FormMainDialog::StagedMIDI() const
{
    return JoinTexts({myForm.TempFolder(), TunePrefix, TuneExtension});
}

} // namespace qel
