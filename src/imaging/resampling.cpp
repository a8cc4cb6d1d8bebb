#include "imaging/resampling.h"

#include <new>

#define STB_IMAGE_RESIZE_STATIC
#define STB_IMAGE_RESIZE_IMPLEMENTATION
#include <stb/stb_image_resize.h>

namespace qel
{
namespace
{

constexpr int Channels = 4;
constexpr int AlphaChannel = 3;

bool IsOpaque(const PixelPicture& myPicture)
{
    for (size_t i = AlphaChannel; i < myPicture.Pixels.size(); i += Channels)
    {
        if (myPicture.Pixels[i] != 0xFF)
        {
            return false;
        }
    }
    return true;
}

} // namespace

PixelPicture Resample(const PixelPicture& myPicture, int32_t myWidth, int32_t myHeight)
{
    const int myFlags = IsOpaque(myPicture) ? STBIR_FLAG_ALPHA_PREMULTIPLIED : 0; // no weighting by alpha needed
    PixelPicture theResult{myWidth, myHeight, {}};
    theResult.Pixels.resize(static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight) * Channels);
    if (stbir_resize_uint8_generic(myPicture.Pixels.data(), myPicture.Width, myPicture.Height, 0,
                                   theResult.Pixels.data(), myWidth, myHeight, 0, Channels, AlphaChannel, myFlags,
                                   STBIR_EDGE_CLAMP, STBIR_FILTER_CATMULLROM, STBIR_COLORSPACE_SRGB, nullptr) == 0)
    {
        throw std::bad_alloc();
    }
    return theResult;
}

} // namespace qel
