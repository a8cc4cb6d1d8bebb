#include "dialog/FormMainDialog.h"
#include "dialog/openDialog.h"
#include "dialog/pictureSize.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/succeeds.h"

namespace qel
{
namespace
{

/// A motif may have as many pixels each way, and no more.
constexpr int32_t LargestSide = 350;

void Shrink(ImagingControl& theControl)
{
    const PictureSize mySize =
        FitInto({LargestSide, LargestSide}, double{theControl.BitmapWidth()}, double{theControl.BitmapHeight()});
    ResizePicture(theControl, mySize);
}

} // namespace

/// Lets the author choose a picture and stages it in the temporary folder. Until that has succeeded there is none.
void FormMainDialog::ImportImage()
{
    const std::optional<Text> myFilename = myWindow.ShowOpen(OpenDialog(600, 610));
    if (!myFilename)
    {
        return;
    }
    Settings().myImageMode = ImageMode::None;
    Succeeds([&] { StageImage(*myFilename); });
    UpdateImageLabel();
    UpdatePreview();
}

/// The ending tells the format, to the letter: whatever is not ".jpg" goes the way of a GIF.
void FormMainDialog::StageImage(TextView myFilename)
{
    const bool myIsJpeg = myFilename.ends_with(JpegExtension);
    const Text myTarget = StagedImage(myIsJpeg ? JpegExtension : GifExtension);
    LoadPicture(LeadIn(), myFilename);
    DeleteTwins(myPorts.files, myTarget);
    if (LeadIn().BitmapWidth() <= LargestSide && LeadIn().BitmapHeight() <= LargestSide)
    {
        myPorts.files.Copy(myFilename, myTarget);
    }
    else
    {
        if (myWindow.MsgBox(LoadResString(840), QuestionStyle) != PressedOK)
        {
            return;
        }
        Shrink(LeadIn());
        using namespace ImagingSettings;
        if (myIsJpeg)
        {
            LeadIn().Save(myTarget, JpegFormat, JpegBitsPerPixel, JpegQuality, MultiplePages);
        }
        else
        {
            LeadIn().ReduceColors(ReducedBitsPerPixel, PaletteOption, DitherOption, ColourCount);
            LeadIn().Save(myTarget, GifFormat, GifBitsPerPixel, GifQuality, MultiplePages);
        }
    }
    Settings().myImageMode = myIsJpeg ? ImageMode::Jpeg : ImageMode::Gif;
}

Text FormMainDialog::StagedImage(TextView myExtension) const
{
    return JoinTexts({myForm.TempFolder(), ImagePrefix, myExtension});
}

} // namespace qel
