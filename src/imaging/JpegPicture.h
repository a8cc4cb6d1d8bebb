/// Reads and writes JPEG files.
#pragma once

#include "imaging/orientation.h"
#include "imaging/Picture.h"

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace qel
{

/// A JPEG that is known to be decodable, rotated as its EXIF record says. It is kept both as the bytes of the file and
/// as a decoded picture of moderate size.
class JpegPicture final : public Picture
{
public:
    /// The size and the decoded picture are upright.
    JpegPicture(int32_t myPictureWidth, int32_t myPictureHeight, std::vector<uint8_t> myWholeFile,
                Orientation myFileOrientation, PixelPicture myDecodedFile)
        : Picture(myPictureWidth, myPictureHeight, false), myFile(std::move(myWholeFile)),
          myOrientation(myFileOrientation), myPixels(std::move(myDecodedFile))
    {
    }

    PixelPicture Pixels(int32_t myNeededWidth, int32_t myNeededHeight) const override;

private:
    std::vector<uint8_t> myFile;
    Orientation myOrientation;
    PixelPicture myPixels;
};

bool IsJpeg(std::span<const uint8_t> myFile);

/// Decodes the picture, a large one at a reduced size. Error 481: it cannot be decoded, or it has more than MostPixels,
/// or more than four times as many if one sequential scan holds it. A picture whose data ends early is no error:
/// browsers show what there is.
std::unique_ptr<JpegPicture> ReadJpeg(std::vector<uint8_t> myFile);

/// Encodes the picture over white, with a quality from 1 to 100. Error 481: a side is longer than a JPEG can store.
std::vector<uint8_t> WriteJpeg(const PixelPicture& myPicture, int myQuality);

} // namespace qel
