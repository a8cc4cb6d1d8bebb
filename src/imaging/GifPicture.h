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

/// One image of a GIF. It may be partly or completely outside the picture.
struct GifImage
{
    static constexpr int NotTransparent = -1;

    int32_t Left = 0;
    int32_t Top = 0;
    int32_t Width = 0;
    int32_t Height = 0;
    /// One byte per pixel, rows from top to bottom even if the file is interlaced.
    std::unique_ptr<uint8_t[]> Indices;
    std::array<GifColour, 256> Palette = {}; ///< black where the file has no colour
    int TransparentIndex = NotTransparent;
};

/// The first page of a GIF as a browser shows it: as large as the logical screen, or as the first image if the file has
/// no screen size, and transparent outside that image.
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

/// Decodes the first image and skips the others up to the end. Error 481: broken, truncated or too large. Only the very
/// last byte, the end marker, may be missing: no browser requires it.
std::unique_ptr<GifPicture> ReadGif(std::span<const uint8_t> myFile);

/// Encodes a file with only the first page. Error 481: a side is longer than a GIF can store.
std::vector<uint8_t> WriteGif(const GifPicture& myPicture);

} // namespace qel
