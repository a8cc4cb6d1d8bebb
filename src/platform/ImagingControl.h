/// Reads, resizes, converts and saves pictures, JPEG and GIF. Holds one current picture, which each Load replaces.
///
/// Order of calls: Load first, then any of the others. Every operation throws Error; without a current picture that is
/// 481, and 5 for settings other than those of ImagingSettings that each operation names. Only Load and Save access a
/// file. An object is used on the thread that made it.
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

    /// Makes the first page of a file the current picture. The format is recognised by the content, never by the name.
    /// Settings: LoadBitsPerPixel, FirstPage, PageCount.
    /// A photograph is rotated as its EXIF record says; width and height are those of the upright picture.
    /// Error 481: not a picture, a broken one, a truncated GIF, or one of more than 64 megapixels (256 for a JPEG with
    /// one sequential scan, as most have); then there is no current picture. Errors of Files::OpenShared.
    virtual void Load(TextView myFilename, int16_t myBitsPerPixel, int32_t myFirstPage, int32_t myPages) = 0;

    /// The width of the current picture in pixels.
    virtual float BitmapWidth() = 0;

    /// The height of the current picture in pixels.
    virtual float BitmapHeight() = 0;

    /// Resamples the current picture to exactly that size in pixels, each side rounded to a whole number, halves to the
    /// even neighbour. Transparency is kept. Setting: ResizeMode, a cubic filter in linear light in which transparent
    /// pixels have no weight. Error 5: a side would be 0, or the size more than 64 megapixels.
    virtual void Resize(float myWidth, float myHeight, int16_t myMode) = 0;

    /// Reduces the current picture to 8 bits per pixel. Settings: ReducedBitsPerPixel, PaletteOption (a palette made
    /// for this picture), DitherOption (none), ColourCount (as many as fit: 255, chosen for the least squared error,
    /// and transparent for each pixel that is more than half transparent).
    virtual void ReduceColors(int16_t myBitsPerPixel, int16_t myPalette, int16_t myDither, int16_t myColours) = 0;

    /// Writes the current picture, one page, and replaces an existing file. Settings for a JPEG: JpegFormat,
    /// JpegBitsPerPixel, JpegQuality (on the scale of this control; 85 on the usual scale from 1 to 100),
    /// MultiplePages; transparent pixels become white. For a GIF: GifFormat, GifBitsPerPixel, GifQuality,
    /// MultiplePages; error 5 for a picture that was not reduced. Errors of Files::OpenForWriting and of writing.
    virtual void Save(TextView myFilename, int16_t myFormat, int16_t myBitsPerPixel, int16_t myQuality,
                      bool myMultiplePages) = 0;

    /// The current picture at its current size. Error 481: that is more than 64 megapixels.
    virtual PixelPicture CurrentPicture() = 0;

    /// True when the file that was loaded last has more than one page. The operations above do not change it.
    virtual bool IsAnimated() = 0;
};

/// The settings that this component passes. The control takes no others.
namespace ImagingSettings
{
// Load
inline constexpr int16_t LoadBitsPerPixel = 24;
inline constexpr int32_t FirstPage = 1;
inline constexpr int32_t PageCount = 1;
// Resize
inline constexpr int16_t ResizeMode = 4;
// ReduceColors
inline constexpr int16_t ReducedBitsPerPixel = 8;
inline constexpr int16_t PaletteOption = 2;
inline constexpr int16_t DitherOption = 0;
inline constexpr int16_t ColourCount = 0;
// Save
inline constexpr int16_t GifFormat = 2;
inline constexpr int16_t GifBitsPerPixel = 8;
inline constexpr int16_t GifQuality = 0;
inline constexpr int16_t JpegFormat = 10;
inline constexpr int16_t JpegBitsPerPixel = 24;
inline constexpr int16_t JpegQuality = 20;
inline constexpr bool MultiplePages = false;
} // namespace ImagingSettings

/// The imaging control of this system. `myFiles` must outlive it.
std::unique_ptr<ImagingControl> MakeImagingControl(Files& myFiles);

} // namespace qel
