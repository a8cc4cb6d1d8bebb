#include "archive/classArchive.h"
#include "dialog/FormMainDialog.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/errors.h"
#include "text/succeeds.h"

#include <cmath>

namespace qel
{
namespace
{

/// Cuts off the time of day of what a picker holds. Nothing when it holds no date.
void KeepWholeDay(DatePicker& thePicker)
{
    if (const std::optional<Date> myDate = thePicker.Value())
    {
        thePicker.Value(std::trunc(*myDate));
    }
}

} // namespace

/// Takes the author's choices into the record and closes the dialog. Each step stands, also when a later one refuses.
void FormMainDialog::Commit()
{
    if (!TakeImage() || !TakeMIDI() || !PackImports())
    {
        return;
    }
    Settings().myShowImage = Controls().chkImage.Value();
    Settings().myPlayMIDI = Controls().chkMIDI.Value();
    if (!TakePeriod())
    {
        return;
    }
    myForm.ExitButton = FormMain::Confirmed;
    myWindow.Unload();
}

bool FormMainDialog::TakeImage()
{
    const Text myFolder = Controls().cmbImageFolder.SelectedText();
    if (myFolder != OwnFileEntry)
    {
        Settings().myImageFolder = myFolder;
        Settings().myImage = JoinTexts({Controls().lstImage.SelectedText(), GifExtension});
        return true;
    }
    if (Settings().myImageMode == ImageMode::None)
    {
        ShowMessage(LoadResString(820));
        return false;
    }
    const bool myIsJpeg = Settings().myImageMode == ImageMode::Jpeg;
    Settings().myImageFolder = UserMarker;
    Settings().myImage = JoinTexts({ImagePrefix, myIsJpeg ? JpegExtension : GifExtension});
    return true;
}

bool FormMainDialog::TakeMIDI()
{
    const Text myFolder = Controls().cmbMIDIFolder.SelectedText();
    if (myFolder != OwnFileEntry)
    {
        Settings().myMIDIFolder = myFolder;
        Settings().myMIDI = JoinTexts({Controls().lstMIDI.SelectedText(), TuneExtension});
        return true;
    }
    if (!Settings().myMIDIMode)
    {
        ShowMessage(LoadResString(830));
        return false;
    }
    Settings().myMIDIFolder = UserMarker;
    Settings().myMIDI = JoinTexts({TunePrefix, TuneExtension});
    return true;
}

/// Packs what was imported, chosen or not, into the module's archive. False: that failed, and the author knows.
bool FormMainDialog::PackImports()
{
    if (!Settings().myMIDIMode && Settings().myImageMode == ImageMode::None)
    {
        Settings().myFilename.clear();
        return true;
    }
    if (Settings().myImageMode != ImageMode::None)
    {
        // An import of the other format may lie there from before.
        const bool myIsJpeg = Settings().myImageMode == ImageMode::Jpeg;
        const Text myOther = StagedImage(myIsJpeg ? GifExtension : JpegExtension);
        Succeeds([&] { myPorts.files.Delete(myOther); });
        DeleteTwins(myPorts.files, myOther);
    }
    classArchive myArchive(myPorts.files);
    myArchive.BaseFolder(myForm.TempFolder());
    const Text myDataFolder = myForm.Records().DataFolder();
    myArchive.ArchiveFilename(myDataFolder + myForm.Helper().ArchiveName());
    myArchive.SmallFilenames(true);
    if (!myArchive.PackArchive())
    {
        const Text myMessage = ReplaceAll(LoadResString(860), u"%2", ErrorDescription(myArchive.FailureNumber()));
        ShowMessage(ReplaceAll(myMessage, u"%1", myArchive.ArchiveFilename()));
        return false;
    }
    Settings().myFilename = myForm.Helper().ArchiveName();
    return true;
}

/// Takes the period over. False: it ends before it starts, and the author knows.
bool FormMainDialog::TakePeriod()
{
    KeepWholeDay(Controls().DateFrom);
    KeepWholeDay(Controls().DateTo);
    Settings().myFrom = Controls().DateFrom.Value().value_or(0);
    Settings().myTo = Controls().DateTo.Value().value_or(0);
    const bool myHasBothDays = DateIsSet(Settings().myFrom) && DateIsSet(Settings().myTo);
    if (myHasBothDays && Settings().myFrom > Settings().myTo)
    {
        ShowMessage(LoadResString(850));
        return false;
    }
    return true;
}

} // namespace qel
