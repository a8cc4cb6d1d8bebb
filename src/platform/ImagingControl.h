/// Reads, resizes, converts and saves pictures, JPEG and GIF. Holds one current picture, which each Load replaces.
///
/// Order of calls: Load first, then any of the others. Every operation throws Error; without a current picture that is
/// 481. An object is used on the thread that made it.
#pragma once

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
    /// The numbers are the settings that this component always passes: 24, 1, 1; any others are error 5.
    /// Error 481: not a picture, a broken or truncated one, or one of more than 64 megapixels; then there is no
    /// current picture. Errors of Files::OpenShared.
    virtual void Load(TextView myFilename, int16_t myBitsPerPixel, int32_t myFirstPage, int32_t myPages) = 0;

    /// The width of the current picture in pixels.
    virtual float BitmapWidth() = 0;

    /// The height of the current picture in pixels.
    virtual float BitmapHeight() = 0;
};

/// The imaging control of this system. `myFiles` must outlive it.
std::unique_ptr<ImagingControl> MakeImagingControl(Files& myFiles);

} // namespace qel
