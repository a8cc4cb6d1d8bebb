/// Reads and writes GIF files.
#pragma once

#include "imaging/Picture.h"

#include <array>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace qel
{

struct GifColour
{
    uint8_t Red;
    uint8_t Green;
    uint8_t Blue;
};

/// One image of a GIF. It may lie partly or wholly beside the picture.
struct GifImage
{
    static constexpr int NotTransparent = -1;

    int32_t Left = 0;
    int32_t Top = 0;
    int32_t Width = 0;
    int32_t Height = 0;
    /// One byte for each pixel, from the top row to the bottom one, interlaced or not.
    std::unique_ptr<uint8_t[]> Indices;
    std::array<GifColour, 256> Palette = {}; ///< black where the file has no colour
    int TransparentIndex = NotTransparent;
};

/// The first page of a GIF as a browser shows it: as large as the logical screen, or as the first image where the file
/// gives no screen size, and transparent where that image does not lie.
class GifPicture final : public Picture
{
public:
    GifPicture(int32_t myPictureWidth, int32_t myPictureHeight, bool myPictureIsAnimated, GifImage myImage)
        : Picture(myPictureWidth, myPictureHeight, myPictureIsAnimated), myFirstImage(std::move(myImage))
    {
    }

    const GifImage& FirstImage() const { return myFirstImage; }
    PixelPicture Pixels(int32_t myNeededWidth, int32_t myNeededHeight) const override;

private:
    GifImage myFirstImage;
};

bool IsGif(std::span<const uint8_t> myFile);

/// Decodes the first image and walks over the others to the end. Error 481: broken, truncated or too large. Only the
/// last byte of all, which marks the end, may be missing: no browser asks for it.
std::unique_ptr<GifPicture> ReadGif(std::span<const uint8_t> myFile);

/// A file of the first page alone. Error 481: a side is longer than a GIF can tell.
std::vector<uint8_t> WriteGif(const GifPicture& myPicture);

} // namespace qel
