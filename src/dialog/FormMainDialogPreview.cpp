#include "dialog/FormMainDialog.h"
#include "dialog/pictureSize.h"
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
    constexpr int32_t Margins = 10; // left and right together, or top and bottom
    const bool myIsOwn = OwnFileIsSelected(myMotif);
    if (myIsOwn && !myMotif.IsImported(Settings()))
    {
        return;
    }
    LoadPicture(LeadIn(), myIsOwn ? StagedFile(myMotif.ImportedName(Settings())) : SelectedFile(myMotif));
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

} // namespace qel
