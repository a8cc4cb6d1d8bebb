#include "dialog/FormMainDialog.h"
#include "dialog/importedFiles.h"
#include "dialog/pictureSize.h"
#include "resources/formLayout.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/succeeds.h"

namespace qel
{
namespace
{

// The settings of every file dialog
constexpr int32_t RoomForNames = 30000; ///< in characters
constexpr uint32_t BrowsingDialog = 0x80004;

/// The largest width and height of a motif, in pixels.
constexpr int32_t LargestSide = 350;

void Shrink(ImagingControl& theControl)
{
    const PictureSize mySize =
        FitInto({LargestSide, LargestSide}, double{theControl.BitmapWidth()}, double{theControl.BitmapHeight()});
    ResizePicture(theControl, mySize);
}

} // namespace

/// Lets the author choose a file to import. Nothing: they cancelled, and an earlier import stays valid.
std::optional<Text> FormMainDialog::ChooseImport(const DialogHalf& myHalf)
{
    return myWindow.ShowOpen(
        {Text(LoadResString(myHalf.OpenFilter)), Text(LoadResString(myHalf.OpenTitle)), RoomForNames, BrowsingDialog});
}

/// Imports a picture. There is none until the chosen one has been staged.
void FormMainDialog::ImportImage()
{
    const std::optional<Text> myFilename = ChooseImport(myMotif);
    if (!myFilename)
    {
        return;
    }
    Settings().myImageMode = ImageMode::None;
    Succeeds([&] { StageImage(*myFilename); });
    UpdateImageLabel();
    UpdatePreview();
}

/// Copies a picture into the temporary folder, one that is too large at a smaller size if the author agrees.
void FormMainDialog::StageImage(TextView myFilename)
{
    const ImageMode myFormat = ImportFormat(myFilename);
    const Text myTarget = StagedFile(ImportedImage(myFormat));
    LoadPicture(LeadIn(), myFilename);
    if (LeadIn().BitmapWidth() <= LargestSide && LeadIn().BitmapHeight() <= LargestSide)
    {
        DeleteCaseVariants(myPorts.files, myTarget);
        myPorts.files.Copy(myFilename, myTarget);
    }
    else
    {
        if (myWindow.MsgBox(LoadResString(StringId::ImageIsTooLarge), QuestionStyle) != PressedOK)
        {
            return;
        }
        Shrink(LeadIn());
        DeleteCaseVariants(myPorts.files, myTarget);
        SaveImage(myTarget, myFormat);
    }
    Settings().myImageMode = myFormat;
}

void FormMainDialog::SaveImage(TextView myTarget, ImageMode myFormat)
{
    using namespace ImagingSettings;
    if (myFormat == ImageMode::Jpeg)
    {
        LeadIn().Save(myTarget, JpegFormat, JpegBitsPerPixel, JpegQuality, MultiplePages);
        return;
    }
    LeadIn().ReduceColors(ReducedBitsPerPixel, PaletteOption, DitherOption, ColourCount);
    LeadIn().Save(myTarget, GifFormat, GifBitsPerPixel, GifQuality, MultiplePages);
}

/// Imports a tune, whatever the chosen file holds. There is none until it has been staged.
void FormMainDialog::ImportMIDI()
{
    const std::optional<Text> myFilename = ChooseImport(myTune);
    if (!myFilename)
    {
        return;
    }
    Settings().myMIDIMode = false;
    const Text myTarget = StagedFile(ImportedTune());
    DeleteCaseVariants(myPorts.files, myTarget);
    Settings().myMIDIMode = Succeeds([&] { myPorts.files.Copy(*myFilename, myTarget); });
    UpdateMIDILabel();
}

void FormMainDialog::UpdateImageLabel()
{
    UpdateImportLabel(myMotif);
}

void FormMainDialog::UpdateMIDILabel()
{
    UpdateImportLabel(myTune);
}

/// Shows in the import box whether a file has been imported.
void FormMainDialog::UpdateImportLabel(const DialogHalf& myHalf)
{
    const bool myIsThere = myHalf.IsImported(Settings());
    myHalf.ImportLabel.Caption(LoadResString(myIsThere ? myHalf.IsImportedText : myHalf.IsNotImportedText));
    myHalf.ImportIcon.Icon(myIsThere ? InformationIcon : WarningIcon);
}

Text FormMainDialog::StagedFile(TextView myName) const
{
    return JoinTexts({myForm.TempFolder(), myName});
}

} // namespace qel
