/// Reads and writes JPEG files.
#pragma once

#include "imaging/Picture.h"

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace qel
{

/// A JPEG that is known to be decodable. It is kept as the file has it, and as a picture of moderate size.
class JpegPicture final : public Picture
{
public:
    JpegPicture(int32_t myPictureWidth, int32_t myPictureHeight, std::vector<uint8_t> myWholeFile,
                PixelPicture myDecodedFile)
        : Picture(myPictureWidth, myPictureHeight, false), myFile(std::move(myWholeFile)),
          myPixels(std::move(myDecodedFile))
    {
    }

    PixelPicture Pixels(int32_t myNeededWidth, int32_t myNeededHeight) const override;

private:
    std::vector<uint8_t> myFile;
    PixelPicture myPixels;
};

bool IsJpeg(std::span<const uint8_t> myFile);

/// Decodes the picture, a large one at a fraction of its size. Error 481: it cannot be decoded, or it is too large. A
/// picture whose data ends early is shown by browsers as far as it goes, and passes.
std::unique_ptr<JpegPicture> ReadJpeg(std::vector<uint8_t> myFile);

/// A file of the picture over white; the quality goes from 1 to 100. Error 481: a side is longer than a JPEG can tell.
std::vector<uint8_t> WriteJpeg(const PixelPicture& myPicture, int myQuality);

} // namespace qel
