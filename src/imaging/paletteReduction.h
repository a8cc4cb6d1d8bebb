/// Makes a picture of 256 colours out of one of many.
#pragma once

#include "imaging/GifPicture.h"

#include <memory>

namespace qel
{

/// Chooses up to 255 colours for the least squared error and gives each pixel the nearest one. Index 255 stands for
/// transparent, which a pixel becomes that is more than half so.
std::unique_ptr<GifPicture> ReduceToPalette(const PixelPicture& myPicture, bool myPictureIsAnimated);

} // namespace qel
