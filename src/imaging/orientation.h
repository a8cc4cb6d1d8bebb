/// The orientation of a photograph, and the rotation that makes it upright.
#pragma once

#include "platform/PixelPicture.h"

#include <cstdint>
#include <span>

namespace qel
{

/// What makes the stored picture upright. The numbers are those of EXIF.
enum class Orientation : uint8_t
{
    AsStored = 1,
    MirrorColumns = 2,
    TurnHalf = 3,
    MirrorRows = 4,
    Transpose = 5,      ///< rows become columns
    TurnRight = 6,      ///< by 90 degrees
    TurnTransposed = 7, ///< rows become columns, then half a turn
    TurnLeft = 8        ///< by 90 degrees
};

/// The orientation in an EXIF record, which begins with its TIFF header. AsStored if there is none or the record is
/// damaged. No error.
Orientation OrientationOfExif(std::span<const uint8_t> myExif);

/// True when width and height are swapped.
bool SwapsSides(Orientation myOrientation);

/// The picture upright.
PixelPicture Upright(PixelPicture myPicture, Orientation myOrientation);

} // namespace qel
