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

/// A JPEG that is known to be decodable, set upright as its EXIF record says. It is kept as the file has it, and as a
/// picture of moderate size.
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

/// Decodes the picture, a large one at a fraction of its size. Error 481: it cannot be decoded, or it has more than
/// MostPixels, or more than four times as many where the file can be decoded in a few rows of memory. A picture whose
/// data ends early is shown by browsers as far as it goes, and passes.
std::unique_ptr<JpegPicture> ReadJpeg(std::vector<uint8_t> myFile);

/// A file of the picture over white; the quality goes from 1 to 100. Error 481: a side is longer than a JPEG can tell.
std::vector<uint8_t> WriteJpeg(const PixelPicture& myPicture, int myQuality);

} // namespace qel
