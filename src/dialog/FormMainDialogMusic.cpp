#include "dialog/FormMainDialog.h"
#include "dialog/importedFiles.h"
#include "tags/pluginFunctions.h"
#include "text/succeeds.h"

namespace qel
{

void FormMainDialog::PressToolButton(int32_t myButton)
{
    constexpr int32_t PlayButton = 1;
    if (myButton != PlayButton)
    {
        StopMIDI();
    }
    else if (OwnFileIsSelected(myTune))
    {
        PlayMIDI(StagedFile(ImportedTune()));
    }
    else
    {
        PlaySelectedMIDI();
    }
}

void FormMainDialog::PlaySelectedMIDI()
{
    PlayMIDI(SelectedFile(myTune));
}

/// Plays a copy, so that an import can overwrite the tune while it plays. If anything fails, no tune plays.
void FormMainDialog::PlayMIDI(const Text& myFile)
{
    StopMIDI();
    const Text& myCopy = myForm.TempMIDI();
    Succeeds([&] { myPorts.files.Delete(myCopy); });
    DeleteCaseVariants(myPorts.files, myCopy);
    Succeeds([&] { myPorts.files.Copy(myFile, myCopy); });
    myPorts.sound.SendMultimediaCommand(JoinTexts({u"open \"", myCopy, u"\" type sequencer alias qelmidi"}));
    myPorts.sound.SendMultimediaCommand(u"play qelmidi ");
}

void FormMainDialog::StopMIDI()
{
    myPorts.sound.SendMultimediaCommand(u"stop qelmidi ");
    myPorts.sound.SendMultimediaCommand(u"close qelmidi ");
}

} // namespace qel
