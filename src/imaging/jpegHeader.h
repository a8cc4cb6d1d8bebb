/// What the header of a JPEG file says beside the size of the picture.
#pragma once

#include "imaging/orientation.h"

#include <cstdint>
#include <span>

namespace qel
{

struct JpegHeader
{
    /// True when a decoder needs no more memory than some rows: one scan holds the whole picture, from top to bottom.
    bool IsSequential = false;
    Orientation Upright = Orientation::AsStored;
};

/// Reads the segments in front of the picture's data. What is missing or damaged keeps its default. No error.
JpegHeader ReadJpegHeader(std::span<const uint8_t> myFile);

} // namespace qel
