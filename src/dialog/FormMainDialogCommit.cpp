#include "archive/classArchive.h"
#include "dialog/FormMainDialog.h"
#include "dialog/importedFiles.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/errors.h"
#include "text/succeeds.h"

#include <cmath>

namespace qel
{
namespace
{

/// Cuts off the time of day of the date that a picker holds, if it holds one.
void KeepWholeDay(DatePicker& thePicker)
{
    if (const std::optional<Date> myDate = thePicker.Value())
    {
        thePicker.Value(std::trunc(*myDate));
    }
}

} // namespace

/// Stores the author's choices in the settings and closes the dialog. What a step has changed stays changed if a later
/// one fails.
void FormMainDialog::Commit()
{
    if (!TakeFile(myMotif) || !TakeFile(myTune) || !PackImports())
    {
        return;
    }
    for (const DialogHalf* const myHalf : {&myMotif, &myTune})
    {
        Settings().*myHalf->IsOn = myHalf->Switch.Value();
    }
    if (!TakePeriod())
    {
        return;
    }
    myForm.ExitButton = FormMain::Confirmed;
    myWindow.Unload();
}

/// Stores the selected file in the settings. False: it is an own file, but none has been imported; the author has seen
/// a message.
bool FormMainDialog::TakeFile(const DialogHalf& myHalf)
{
    const Text myFolder = myHalf.Folders.SelectedText();
    if (myFolder != OwnFileEntry)
    {
        Settings().*myHalf.Folder = myFolder;
        Settings().*myHalf.Filename = JoinTexts({myHalf.Files.SelectedText(), myHalf.Extension});
        return true;
    }
    if (!myHalf.IsImported(Settings()))
    {
        ShowMessage(LoadResString(myHalf.ImportFirstText));
        return false;
    }
    Settings().*myHalf.Folder = UserMarker;
    Settings().*myHalf.Filename = myHalf.ImportedName(Settings());
    return true;
}

/// Packs what has been imported, selected or not, into the module's archive. False: that failed, and the author has
/// seen a message.
bool FormMainDialog::PackImports()
{
    const ImageMode myFormat = Settings().myImageMode;
    if (!Settings().myMIDIMode && myFormat == ImageMode::None)
    {
        Settings().myFilename.clear();
        return true;
    }
    if (myFormat != ImageMode::None)
    {
        // An earlier import of the other format may still be there.
        const Text myOther = StagedFile(ImportedImageOfOtherFormat(myFormat));
        Succeeds([&] { myPorts.files.Delete(myOther); });
        DeleteCaseVariants(myPorts.files, myOther);
    }
    // A foreign archive may name a file twice, in different case, of which a new archive holds one.
    for (const Text& myName : {ImportedImage(ImageMode::Gif), ImportedImage(ImageMode::Jpeg), ImportedTune()})
    {
        if (const Text myFile = StagedFile(myName); FileIsReadable(myPorts.files, myFile))
        {
            DeleteCaseVariants(myPorts.files, myFile);
        }
    }
    classArchive myArchive(myPorts.files);
    myArchive.BaseFolder(myForm.TempFolder());
    const Text myDataFolder = myForm.Records()->DataFolder();
    myArchive.ArchiveFilename(myDataFolder + myForm.Helper()->ArchiveName());
    myArchive.SmallFilenames(true);
    if (!myArchive.PackArchive())
    {
        const Text myMessage =
            ReplaceAll(LoadResString(StringId::ArchiveNotWritten), u"%2", ErrorDescription(myArchive.FailureNumber()));
        ShowMessage(ReplaceAll(myMessage, u"%1", myArchive.ArchiveFilename()));
        return false;
    }
    Settings().myFilename = myForm.Helper()->ArchiveName();
    return true;
}

/// Stores the period in the settings. False: it ends before it starts, and the author has seen a message.
bool FormMainDialog::TakePeriod()
{
    KeepWholeDay(Controls().DateFrom);
    KeepWholeDay(Controls().DateTo);
    Settings().myFrom = Controls().DateFrom.Value().value_or(0);
    Settings().myTo = Controls().DateTo.Value().value_or(0);
    const bool myHasBothDays = DateIsSet(Settings().myFrom) && DateIsSet(Settings().myTo);
    if (myHasBothDays && Settings().myFrom > Settings().myTo)
    {
        ShowMessage(LoadResString(StringId::PeriodIsReversed));
        return false;
    }
    return true;
}

} // namespace qel
