#include "dialog/FormMainDialog.h"
#include "dialog/pictureSize.h"
#include "resources/formLayout.h"
#include "resources/stringTable.h"
#include "text/succeeds.h"

namespace qel
{

/// Shows the selected motif, or an empty box where there is none that can be shown.
void FormMainDialog::UpdatePreview()
{
    PreviewBox& theBox = Controls().picPreview;
    theBox.Cls();
    myWindow.Pointer(MousePointer::Hourglass);
    if (!Succeeds([&] { PaintPreview(); }))
    {
        theBox.Cls();
    }
    myWindow.Pointer(MousePointer::Default);
}

void FormMainDialog::PaintPreview()
{
    constexpr int32_t Margins = 10; // both together
    const Text myFolder = Controls().cmbImageFolder.SelectedText();
    const bool myIsOwn = myFolder == OwnFileEntry;
    if (myIsOwn && Settings().myImageMode == ImageMode::None)
    {
        return;
    }
    LoadPicture(LeadIn(), myIsOwn
                              ? StagedImage(Settings().myImageMode == ImageMode::Jpeg ? JpegExtension : GifExtension)
                              : LibraryFile(myFolder, Controls().lstImage.SelectedText(), GifExtension));
    PreviewBox& theBox = Controls().picPreview;
    const float myHeight = LeadIn().BitmapHeight();
    const float myWidth = LeadIn().BitmapWidth();
    const PictureSize mySize =
        FitInto({theBox.ScaleWidth() - Margins, theBox.ScaleHeight() - Margins}, double{myWidth}, double{myHeight});
    ResizePicture(LeadIn(), mySize);
    theBox.PaintPicture(LeadIn().CurrentPicture(), (theBox.ScaleWidth() - mySize.Width) / 2,
                        (theBox.ScaleHeight() - mySize.Height) / 2);
    Controls().lblAnimated.Visible(LeadIn().IsAnimated());
}

/// Tells in the import box whether a picture is there.
void FormMainDialog::UpdateImageLabel()
{
    const bool myIsThere = Settings().myImageMode != ImageMode::None;
    Controls().lblImage.Caption(LoadResString(myIsThere ? 800 : 801));
    Controls().imgImage.Icon(myIsThere ? InformationIcon : WarningIcon);
}

} // namespace qel
