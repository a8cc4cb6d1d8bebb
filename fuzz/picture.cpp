/// Pictures: any file is a picture or an error, and a saved picture loads unchanged.
#include "fuzz.h"
#include "platform/ImagingControl.h"
#include "platform/shared/SystemPlatform.h"
#include "TemporaryFolder.h"
#include "text/errors.h"

#include <algorithm>

namespace qel
{
namespace
{

/// A larger picture is only loaded: the cost of working on it depends on its size alone, which is limited.
constexpr float LargestSide = 1500;

struct Work
{
    const TemporaryFolder Folder;
    const std::unique_ptr<SystemPlatform> System = MakeSystemPlatform();
    const std::unique_ptr<ImagingControl> Control = MakeImagingControl(System->Ports().files);
};

bool IsPicture(ImagingControl& theControl, const Text& myFilename)
{
    try
    {
        theControl.Load(myFilename, 24, 1, 1);
        return true;
    }
    catch (const Error& e)
    {
        Demand(e.Number == ErrorNumber::InvalidPicture, "what is no picture is error 481");
        return false;
    }
}

void DemandSize(ImagingControl& theControl, float myWidth, float myHeight)
{
    Demand(theControl.BitmapWidth() == myWidth && theControl.BitmapHeight() == myHeight, "the size is the given one");
    const PixelPicture myPicture = theControl.CurrentPicture();
    Demand(myPicture.Pixels.size() == static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight) * 4,
           "there is a pixel for each place");
}

} // namespace
} // namespace qel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize)
{
    using namespace qel;
    static const Work myWork;
    ImagingControl& theControl = *myWork.Control;
    myWork.Folder.Write("a", Characters(myBytes, mySize));
    if (!IsPicture(theControl, myWork.Folder.Logical(u"a")))
    {
        return 0;
    }
    const float myWidth = theControl.BitmapWidth();
    const float myHeight = theControl.BitmapHeight();
    Demand(myWidth >= 1 && myHeight >= 1, "a picture has a size");
    if (myWidth > LargestSide || myHeight > LargestSide)
    {
        return 0;
    }
    DemandSize(theControl, myWidth, myHeight);
    const float myNewWidth = std::max(1.0F, std::min(myWidth, 50.0F));
    const float myNewHeight = std::min(myHeight + 1, 35.0F);
    theControl.Resize(myNewWidth, myNewHeight, 4);
    DemandSize(theControl, myNewWidth, myNewHeight);
    theControl.Save(myWork.Folder.Logical(u"a"), ImagingSettings::JpegFormat, 24, 20, false);
    theControl.ReduceColors(8, 2, 0, 0);
    const std::vector<uint8_t> myPixels = theControl.CurrentPicture().Pixels;
    theControl.Save(myWork.Folder.Logical(u"b"), ImagingSettings::GifFormat, 8, 0, false);

    Demand(IsPicture(theControl, myWork.Folder.Logical(u"a")), "a saved JPEG loads");
    DemandSize(theControl, myNewWidth, myNewHeight);
    Demand(IsPicture(theControl, myWork.Folder.Logical(u"b")), "a saved GIF loads");
    DemandSize(theControl, myNewWidth, myNewHeight);
    Demand(theControl.CurrentPicture().Pixels == myPixels, "a GIF keeps each pixel");
    Demand(!theControl.IsAnimated(), "one page was saved");
    return 0;
}
