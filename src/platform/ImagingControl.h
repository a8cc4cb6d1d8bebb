/// Reads, resizes, converts and saves pictures, JPEG and GIF. Holds one current picture, which each Load replaces.
///
/// Order of calls: Load first, then any of the others. Every operation throws Error; without a current picture that is
/// 481, and 5 for settings other than those that this component always passes, which each operation names. The file is
/// touched by Load and Save alone. An object is used on the thread that made it.
#pragma once

#include "platform/PixelPicture.h"
#include "text/text.h"

#include <cstdint>
#include <memory>

namespace qel
{

class Files;

class ImagingControl
{
public:
    virtual ~ImagingControl() = default;

    /// Makes the first page of a file the current picture. The format is told by the content, never by the name.
    /// The numbers are always 24, 1, 1.
    /// Error 481: not a picture, a broken one, a truncated GIF, or one of more than 64 megapixels; then there is no
    /// current picture. Errors of Files::OpenShared.
    virtual void Load(TextView myFilename, int16_t myBitsPerPixel, int32_t myFirstPage, int32_t myPages) = 0;

    /// The width of the current picture in pixels.
    virtual float BitmapWidth() = 0;

    /// The height of the current picture in pixels.
    virtual float BitmapHeight() = 0;

    /// Resamples the current picture to exactly that size in pixels, each side rounded to a whole number, halves to the
    /// even neighbour. Transparency is kept. The mode is always 4: a cubic filter in linear light, in which what is
    /// transparent has no part. Error 5: a side comes to 0, or the size to more than 64 megapixels.
    virtual void Resize(float myWidth, float myHeight, int16_t myMode) = 0;

    /// Reduces the current picture to 8 bits a pixel. The numbers are always 8, 2, 0, 0: a palette made for this
    /// picture, no dithering, as many colours as fit. Those are 255, chosen for the least squared error, and
    /// transparent, which a pixel becomes that is more than half transparent.
    virtual void ReduceColors(int16_t myBitsPerPixel, int16_t myPalette, int16_t myDither, int16_t myColours) = 0;

    /// Writes the current picture, one page, and replaces a file that is there. The last argument is always false.
    /// JpegFormat, 24, 20: a JPEG; quality 20 of this control's scale is 85 of the usual one, from 1 to 100, and what
    /// is transparent becomes white. GifFormat, 8, 0: a GIF; error 5 for a picture that was not reduced. Errors of
    /// Files::OpenForWriting and of writing.
    virtual void Save(TextView myFilename, int16_t myFormat, int16_t myBitsPerPixel, int16_t myQuality,
                      bool myMultiplePages) = 0;

    /// The current picture at its current size.
    virtual PixelPicture CurrentPicture() = 0;

    /// True when the file that was loaded last holds more than one page; stays so through the operations above.
    virtual bool IsAnimated() = 0;
};

/// The formats of Save.
inline constexpr int16_t GifFormat = 2;
inline constexpr int16_t JpegFormat = 10;

/// The imaging control of this system. `myFiles` must outlive it.
std::unique_ptr<ImagingControl> MakeImagingControl(Files& myFiles);

} // namespace qel
