/// How large a picture comes out in a limited room.
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

/// The size of a picture that is made no larger than the room, with its proportions kept: the width is fitted first,
/// and each side rounded to a whole number as soon as it is known, halves to the even neighbour. A side can come to 0.
/// Error 6: it cannot be told.
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

/// Gives the control's picture that size, in the one mode that is used.
inline void ResizePicture(ImagingControl& theControl, PictureSize mySize)
{
    theControl.Resize(static_cast<float>(mySize.Width), static_cast<float>(mySize.Height), ImagingSettings::ResizeMode);
}

} // namespace qel
