/// What the header of a JPEG file contains besides the size of the picture.
#pragma once

#include "imaging/orientation.h"

#include <cstdint>
#include <span>

namespace qel
{

struct JpegHeader
{
    /// True when one scan holds the whole picture from top to bottom, so that a decoder needs memory for a few rows
    /// only.
    bool IsSequential = false;
    Orientation Upright = Orientation::AsStored;
};

/// Reads the segments before the picture's data. What is missing or damaged keeps its default value. No error.
JpegHeader ReadJpegHeader(std::span<const uint8_t> myFile);

} // namespace qel
