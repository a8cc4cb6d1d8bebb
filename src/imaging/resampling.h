/// Makes pictures larger and smaller.
#pragma once

#include "platform/PixelPicture.h"

#include <cstdint>

namespace qel
{

/// The picture at another size; no side is 0. Works in linear light, with colours weighted by alpha.
PixelPicture Resample(const PixelPicture& myPicture, int32_t myWidth, int32_t myHeight);

} // namespace qel
