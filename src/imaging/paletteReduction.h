/// Reduces a picture to 256 colours.
#pragma once

#include "imaging/GifPicture.h"

#include <memory>

namespace qel
{

/// Chooses up to 255 colours for the least squared error and maps each pixel to the nearest one. Index 255 is
/// transparent and is used for each pixel that is more than half transparent.
std::unique_ptr<GifPicture> ReduceToPalette(const PixelPicture& myPicture, bool myPictureIsAnimated);

} // namespace qel
