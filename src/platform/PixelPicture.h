/// A picture on its way from the imaging control to the screen.
#pragma once

#include <cstdint>
#include <vector>

namespace qel
{

/// Rows from the top, four bytes a pixel: red, green, blue, and alpha not multiplied in, 0 for transparent.
struct PixelPicture
{
    int32_t Width = 0;
    int32_t Height = 0;
    std::vector<uint8_t> Pixels;
};

} // namespace qel
