/// Picture files for tests.
#pragma once

#include "imaging/GifPicture.h"
#include "imaging/JpegPicture.h"

#include <string>

namespace qel
{

/// A picture in one colour, transparent if that is index 0, with a second image if it is to be animated.
inline std::string Gif(int myWidth, int myHeight, GifColour myColour = {255, 0, 0}, bool myAnimated = false,
                       int myTransparentIndex = GifImage::NotTransparent)
{
    GifImage myImage;
    myImage.Width = myWidth;
    myImage.Height = myHeight;
    myImage.Indices = std::make_unique<uint8_t[]>(static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight));
    myImage.Palette[0] = myColour;
    myImage.TransparentIndex = myTransparentIndex;
    const std::vector<uint8_t> myFile = WriteGif(GifPicture(myWidth, myHeight, false, std::move(myImage)));
    std::string theFile(myFile.begin(), myFile.end());
    constexpr size_t Head = 6 + 7 + 3 * 256;
    return myAnimated ? theFile.substr(0, theFile.size() - 1) + theFile.substr(Head) : theFile;
}

inline std::string Jpeg(int myWidth, int myHeight)
{
    const auto mySize = static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight) * 4;
    const std::vector<uint8_t> myFile = WriteJpeg({myWidth, myHeight, std::vector<uint8_t>(mySize, 100)}, 90);
    return {myFile.begin(), myFile.end()};
}

} // namespace qel
