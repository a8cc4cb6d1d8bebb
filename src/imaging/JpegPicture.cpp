#include "imaging/JpegPicture.h"

#include "text/errors.h"

#include <algorithm>
#include <new>
#include <turbojpeg.h>

namespace qel
{
namespace
{

/// The longer side, in pixels, that a large picture is decoded to at once: twice what the dialog shows or imports at
/// most, so that it is not decoded again.
constexpr int32_t UsualSide = 880;

struct Closer
{
    void operator()(void* myCodec) const { tjDestroy(myCodec); }
};

struct BufferFreer
{
    void operator()(unsigned char* myBuffer) const { tjFree(myBuffer); }
};

using Codec = std::unique_ptr<void, Closer>;

Codec Made(tjhandle myCodec)
{
    if (myCodec == nullptr)
    {
        throw std::bad_alloc();
    }
    return Codec(myCodec);
}

int32_t Scaled(int32_t mySide, int32_t myDivisor)
{
    return TJSCALED(mySide, (tjscalingfactor{1, myDivisor}));
}

/// The largest divisor for which the decoder is fast that leaves sides of at least so many pixels.
int32_t DivisorFor(int32_t myWidth, int32_t myHeight, int32_t myLeastWidth, int32_t myLeastHeight)
{
    int32_t theDivisor = 8;
    while (theDivisor > 1 &&
           (Scaled(myWidth, theDivisor) < myLeastWidth || Scaled(myHeight, theDivisor) < myLeastHeight))
    {
        theDivisor /= 2;
    }
    return theDivisor;
}

/// Turns the inks of a picture that is made for print into colours. Such files hold how much of the light passes.
void MixInks(std::vector<uint8_t>& thePixels)
{
    for (size_t i = 0; i < thePixels.size(); i += 4)
    {
        const int myBlack = thePixels[i + 3];
        for (size_t j = i; j < i + 3; ++j)
        {
            thePixels[j] = static_cast<uint8_t>((thePixels[j] * myBlack + 127) / 255);
        }
        thePixels[i + 3] = 0xFF;
    }
}

struct Header
{
    int Width = 0;
    int Height = 0;
    int Subsampling = 0;
    int ColourSpace = 0;
};

/// An unusual subsampling counts as a failure here, but not for the decoder: whether there is a size is what matters.
Header ReadHeader(const Codec& myDecoder, std::span<const uint8_t> myFile)
{
    Header theHeader;
    tjDecompressHeader3(myDecoder.get(), myFile.data(), myFile.size(), &theHeader.Width, &theHeader.Height,
                        &theHeader.Subsampling, &theHeader.ColourSpace);
    if (theHeader.Width <= 0 || theHeader.Height <= 0 || int64_t{theHeader.Width} * theHeader.Height > MostPixels)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
    return theHeader;
}

/// A warning means that there is a picture all the same.
PixelPicture Decode(const Codec& myDecoder, std::span<const uint8_t> myFile, const Header& myHeader, int32_t myDivisor)
{
    const bool myHasFourInks = myHeader.ColourSpace == TJCS_CMYK || myHeader.ColourSpace == TJCS_YCCK;
    PixelPicture theResult{Scaled(myHeader.Width, myDivisor), Scaled(myHeader.Height, myDivisor), {}};
    theResult.Pixels.resize(static_cast<size_t>(theResult.Width) * static_cast<size_t>(theResult.Height) * 4);
    if (tjDecompress2(myDecoder.get(), myFile.data(), myFile.size(), theResult.Pixels.data(), theResult.Width, 0,
                      theResult.Height, myHasFourInks ? TJPF_CMYK : TJPF_RGBA, TJFLAG_LIMITSCANS) != 0 &&
        tjGetErrorCode(myDecoder.get()) != TJERR_WARNING)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
    if (myHasFourInks)
    {
        MixInks(theResult.Pixels);
    }
    return theResult;
}

/// The colours over white, three bytes a pixel.
std::vector<uint8_t> OverWhite(const PixelPicture& myPicture)
{
    std::vector<uint8_t> theColours;
    theColours.reserve(myPicture.Pixels.size() / 4 * 3);
    for (size_t i = 0; i < myPicture.Pixels.size(); i += 4)
    {
        const int myAlpha = myPicture.Pixels[i + 3];
        for (size_t j = i; j < i + 3; ++j)
        {
            theColours.push_back(
                static_cast<uint8_t>((myPicture.Pixels[j] * myAlpha + 255 * (255 - myAlpha) + 127) / 255));
        }
    }
    return theColours;
}

} // namespace

PixelPicture JpegPicture::Pixels(int32_t myNeededWidth, int32_t myNeededHeight) const
{
    const int32_t myWanted = DivisorFor(Width(), Height(), 2 * myNeededWidth, 2 * myNeededHeight);
    if (myPixels.Width >= Scaled(Width(), myWanted))
    {
        return myPixels;
    }
    const Codec myDecoder = Made(tjInitDecompress());
    return Decode(myDecoder, myFile, ReadHeader(myDecoder, myFile), myWanted);
}

bool IsJpeg(std::span<const uint8_t> myFile)
{
    return myFile.size() >= 3 && myFile[0] == 0xFF && myFile[1] == 0xD8 && myFile[2] == 0xFF;
}

std::unique_ptr<JpegPicture> ReadJpeg(std::vector<uint8_t> myFile)
{
    const Codec myDecoder = Made(tjInitDecompress());
    const Header myHeader = ReadHeader(myDecoder, myFile);
    const int32_t mySide = std::max(myHeader.Width, myHeader.Height);
    PixelPicture myPixels = Decode(myDecoder, myFile, myHeader, DivisorFor(mySide, mySide, UsualSide, UsualSide));
    return std::make_unique<JpegPicture>(myHeader.Width, myHeader.Height, std::move(myFile), std::move(myPixels));
}

std::vector<uint8_t> WriteJpeg(const PixelPicture& myPicture, int myQuality)
{
    const std::vector<uint8_t> myColours = OverWhite(myPicture);
    const Codec myEncoder = Made(tjInitCompress());
    unsigned char* myBuffer = nullptr;
    unsigned long mySize = 0;
    const int myResult = tjCompress2(myEncoder.get(), myColours.data(), myPicture.Width, 0, myPicture.Height, TJPF_RGB,
                                     &myBuffer, &mySize, TJSAMP_420, myQuality, 0);
    const std::unique_ptr<unsigned char, BufferFreer> myFile(myBuffer);
    if (myResult != 0)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
    return {myBuffer, myBuffer + mySize};
}

} // namespace qel
