#include "imaging/JpegPicture.h"

#include "imaging/jpegHeader.h"
#include "text/errors.h"

#include <algorithm>
#include <new>
#include <turbojpeg.h>
#include <utility>

namespace qel
{
namespace
{

/// The longer side, in pixels, to which a large picture is decoded at first: twice the most that the dialog shows or
/// imports, so that it is not decoded again.
constexpr int32_t UsualSide = 880;

/// The most pixels of a file that is decoded at a reduced size and is never completely in memory.
constexpr int64_t MostSequentialPixels = 4 * MostPixels;

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

/// The largest divisor that is fast in the decoder and leaves sides of at least so many pixels.
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

/// Converts the inks of a picture for print into colours. Such files store how much light passes.
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

struct Frame
{
    int Width = 0;
    int Height = 0;
    int Subsampling = 0;
    int ColourSpace = 0;
};

void DemandPixels(int32_t myWidth, int32_t myHeight, int64_t myMost)
{
    if (int64_t{myWidth} * myHeight > myMost)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
}

/// The size of a file in the codec's type, which has 32 bits on some systems. Error 481: the file is larger.
unsigned long CodecSize(std::span<const uint8_t> myFile)
{
    if (!std::in_range<unsigned long>(myFile.size()))
    {
        Raise(ErrorNumber::InvalidPicture);
    }
    return static_cast<unsigned long>(myFile.size());
}

/// Reading the header reports an unusual subsampling as a failure, although the decoder accepts it. So only the size
/// counts.
Frame ReadFrame(const Codec& myDecoder, std::span<const uint8_t> myFile)
{
    Frame theFrame;
    tjDecompressHeader3(myDecoder.get(), myFile.data(), CodecSize(myFile), &theFrame.Width, &theFrame.Height,
                        &theFrame.Subsampling, &theFrame.ColourSpace);
    if (theFrame.Width <= 0 || theFrame.Height <= 0)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
    return theFrame;
}

/// After a warning there is still a picture.
PixelPicture Decode(const Codec& myDecoder, std::span<const uint8_t> myFile, const Frame& myFrame, int32_t myDivisor)
{
    const bool myHasFourInks = myFrame.ColourSpace == TJCS_CMYK || myFrame.ColourSpace == TJCS_YCCK;
    PixelPicture theResult{Scaled(myFrame.Width, myDivisor), Scaled(myFrame.Height, myDivisor), {}};
    DemandPixels(theResult.Width, theResult.Height, MostPixels);
    theResult.Pixels.resize(static_cast<size_t>(theResult.Width) * static_cast<size_t>(theResult.Height) * 4);
    if (tjDecompress2(myDecoder.get(), myFile.data(), CodecSize(myFile), theResult.Pixels.data(), theResult.Width, 0,
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

/// The colours over white, three bytes per pixel.
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
    return Upright(Decode(myDecoder, myFile, ReadFrame(myDecoder, myFile), myWanted), myOrientation);
}

bool IsJpeg(std::span<const uint8_t> myFile)
{
    return myFile.size() >= 3 && myFile[0] == 0xFF && myFile[1] == 0xD8 && myFile[2] == 0xFF;
}

std::unique_ptr<JpegPicture> ReadJpeg(std::vector<uint8_t> myFile)
{
    const Codec myDecoder = Made(tjInitDecompress());
    const Frame myFrame = ReadFrame(myDecoder, myFile);
    const JpegHeader myHeader = ReadJpegHeader(myFile);
    DemandPixels(myFrame.Width, myFrame.Height, myHeader.IsSequential ? MostSequentialPixels : MostPixels);
    const int32_t mySide = std::max(myFrame.Width, myFrame.Height);
    const int32_t myDivisor = DivisorFor(mySide, mySide, UsualSide, UsualSide);
    PixelPicture myPixels = Upright(Decode(myDecoder, myFile, myFrame, myDivisor), myHeader.Upright);
    const auto [myWidth, myHeight] = SwapsSides(myHeader.Upright) ? std::pair(myFrame.Height, myFrame.Width)
                                                                  : std::pair(myFrame.Width, myFrame.Height);
    return std::make_unique<JpegPicture>(myWidth, myHeight, std::move(myFile), myHeader.Upright, std::move(myPixels));
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
