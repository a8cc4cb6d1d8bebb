/// A decoded picture, as the imaging control passes it to the screen.
#pragma once

#include <cstdint>
#include <vector>

namespace qel
{

/// Rows from top to bottom, four bytes per pixel: red, green, blue (not premultiplied) and alpha, 0 for transparent.
struct PixelPicture
{
    int32_t Width = 0;
    int32_t Height = 0;
    std::vector<uint8_t> Pixels;
};

} // namespace qel
