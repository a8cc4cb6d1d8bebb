/// What the picture codecs return to the imaging control.
#pragma once

#include "platform/PixelPicture.h"

#include <cstdint>
#include <utility>

namespace qel
{

/// More pixels than this are never allocated for one picture: 64 megapixels.
inline constexpr int64_t MostPixels = int64_t{64} * 1024 * 1024;

/// A picture that its codec has checked completely.
class Picture
{
public:
    Picture(int32_t myPictureWidth, int32_t myPictureHeight, bool myPictureIsAnimated)
        : myWidth(myPictureWidth), myHeight(myPictureHeight), myAnimated(myPictureIsAnimated)
    {
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    virtual ~Picture() = default;

    /// The size in pixels; neither side is 0.
    int32_t Width() const { return myWidth; }
    int32_t Height() const { return myHeight; }
    /// True when the file has more than one image.
    bool Animated() const { return myAnimated; }

    /// The decoded picture. If that is cheaper it is smaller than the original, but at least twice the needed width and
    /// height. Error 481: it cannot be decoded, or has more than MostPixels.
    virtual PixelPicture Pixels(int32_t myNeededWidth, int32_t myNeededHeight) const = 0;

private:
    int32_t myWidth;
    int32_t myHeight;
    bool myAnimated;
};

/// A picture that is in memory uncompressed.
class PlainPicture final : public Picture
{
public:
    PlainPicture(PixelPicture myContent, bool myPictureIsAnimated)
        : Picture(myContent.Width, myContent.Height, myPictureIsAnimated), myPixels(std::move(myContent))
    {
    }

    PixelPicture Pixels(int32_t /*myNeededWidth*/, int32_t /*myNeededHeight*/) const override { return myPixels; }

private:
    PixelPicture myPixels;
};

} // namespace qel
