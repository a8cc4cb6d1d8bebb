/// Fits the size of a picture into limits.
#pragma once

#include "platform/ImagingControl.h"
#include "text/dates.h"

#include <cstdint>

namespace qel
{

struct PictureSize
{
    int32_t Width;
    int32_t Height;
};

/// The size of a picture that is reduced to the limits if necessary, with its proportions kept: the width is fitted
/// first, and each side is rounded to a whole number as soon as it is known, halves to the even neighbour. A side can
/// become 0. Error 6: the result is out of range.
inline PictureSize FitInto(PictureSize myRoom, double myWidth, double myHeight)
{
    const double myRatio = myWidth / myHeight;
    PictureSize theSize{};
    theSize.Width = myWidth > myRoom.Width ? myRoom.Width : RoundToWhole(myWidth);
    theSize.Height = RoundToWhole(theSize.Width / myRatio);
    if (theSize.Height > myRoom.Height)
    {
        theSize.Height = myRoom.Height;
        theSize.Width = RoundToWhole(theSize.Height * myRatio);
    }
    return theSize;
}

/// Resizes the control's picture to that size, in the only mode that is used.
inline void ResizePicture(ImagingControl& theControl, PictureSize mySize)
{
    theControl.Resize(static_cast<float>(mySize.Width), static_cast<float>(mySize.Height), ImagingSettings::ResizeMode);
}

} // namespace qel
