/// Makes pictures larger and smaller.
#pragma once

#include "platform/PixelPicture.h"

#include <cstdint>

namespace qel
{

/// The picture at another size; no side is 0. Works in linear light, and colour counts by how opaque it is.
PixelPicture Resample(const PixelPicture& myPicture, int32_t myWidth, int32_t myHeight);

} // namespace qel
