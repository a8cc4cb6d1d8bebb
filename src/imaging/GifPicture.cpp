#include "imaging/GifPicture.h"

#include "text/errors.h"

#include <algorithm>
#include <cstring>
#include <gif_lib.h>
#include <new>
#include <optional>
#include <string_view>

namespace qel
{
namespace
{

void Demand(bool myCondition)
{
    if (!myCondition)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
}

bool PixelsAreServed(int32_t myWidth, int32_t myHeight)
{
    return int64_t{myWidth} * myHeight <= MostPixels;
}

/// Iterates over the records of one file.
class GifReader
{
public:
    explicit GifReader(std::span<const uint8_t> myFile) : myRest(myFile), myDecoder(DGifOpen(this, Supply, nullptr))
    {
        Demand(myDecoder != nullptr && PixelsAreServed(myDecoder->SWidth, myDecoder->SHeight));
    }
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;

    std::unique_ptr<GifPicture> Read();

private:
    struct Closer
    {
        void operator()(GifFileType* myOpenDecoder) const { DGifCloseFile(myOpenDecoder, nullptr); }
    };

    /// Passes bytes to the decoder, at the end of the file fewer than requested. Called from C: nothing may be thrown.
    static int Supply(GifFileType* myAsking, GifByteType* theBytes, int myCount)
    {
        auto& myBytes = static_cast<GifReader*>(myAsking->UserData)->myRest;
        const size_t myGiven = std::min(myBytes.size(), static_cast<size_t>(myCount));
        std::copy_n(myBytes.begin(), myGiven, theBytes);
        myBytes = myBytes.subspan(myGiven);
        return static_cast<int>(myGiven);
    }

    /// Throws if a call of the decoder has failed.
    static void Check(int myResult) { Demand(myResult == GIF_OK); }

    void ReadExtension();
    void ReadFirstImage();
    void ReadRows();
    void SkipImage();

    std::span<const uint8_t> myRest;
    std::unique_ptr<GifFileType, Closer> myDecoder;
    int myTransparentIndex = GifImage::NotTransparent;
    std::optional<GifImage> myFirstImage;
    bool myAnimated = false;
};

std::unique_ptr<GifPicture> GifReader::Read()
{
    GifRecordType myType = UNDEFINED_RECORD_TYPE;
    while (myType != TERMINATE_RECORD_TYPE && !(myFirstImage && myRest.empty()))
    {
        Check(DGifGetRecordType(myDecoder.get(), &myType));
        if (myType == EXTENSION_RECORD_TYPE)
        {
            ReadExtension();
        }
        else if (myType == IMAGE_DESC_RECORD_TYPE && !myFirstImage)
        {
            ReadFirstImage();
        }
        else if (myType == IMAGE_DESC_RECORD_TYPE)
        {
            SkipImage();
            myAnimated = true;
        }
    }
    Demand(myFirstImage.has_value());
    const bool myHasScreen = myDecoder->SWidth > 0 && myDecoder->SHeight > 0;
    const int32_t myWidth = myHasScreen ? myDecoder->SWidth : myFirstImage->Width;
    const int32_t myHeight = myHasScreen ? myDecoder->SHeight : myFirstImage->Height;
    return std::make_unique<GifPicture>(myWidth, myHeight, myAnimated, *std::move(myFirstImage));
}

void GifReader::ReadExtension()
{
    int myCode = 0;
    GifByteType* myBlock = nullptr; // its length, then its bytes
    Check(DGifGetExtension(myDecoder.get(), &myCode, &myBlock));
    GraphicsControlBlock myControl = {};
    if (myCode == GRAPHICS_EXT_FUNC_CODE && !myFirstImage && myBlock != nullptr &&
        DGifExtensionToGCB(myBlock[0], myBlock + 1, &myControl) == GIF_OK)
    {
        myTransparentIndex = myControl.TransparentColor;
    }
    while (myBlock != nullptr)
    {
        Check(DGifGetExtensionNext(myDecoder.get(), &myBlock));
    }
}

void GifReader::ReadFirstImage()
{
    Check(DGifGetImageHeader(myDecoder.get()));
    const GifImageDesc& myHeader = myDecoder->Image;
    Demand(myHeader.Width > 0 && myHeader.Height > 0 && PixelsAreServed(myHeader.Width, myHeader.Height));
    const ColorMapObject* const myColours = myHeader.ColorMap != nullptr ? myHeader.ColorMap : myDecoder->SColorMap;
    Demand(myColours != nullptr);
    GifImage& theImage = myFirstImage.emplace();
    theImage.Left = myHeader.Left;
    theImage.Top = myHeader.Top;
    theImage.Width = myHeader.Width;
    theImage.Height = myHeader.Height;
    theImage.TransparentIndex = myTransparentIndex;
    const auto myCount = std::min(static_cast<size_t>(myColours->ColorCount), theImage.Palette.size());
    std::transform(myColours->Colors, myColours->Colors + myCount, theImage.Palette.begin(),
                   [](const GifColorType& myColour) {
                       return GifColour{myColour.Red, myColour.Green, myColour.Blue};
                   });
    ReadRows();
}

void GifReader::ReadRows()
{
    struct Pass
    {
        int32_t First;
        int32_t Step;
    };
    static constexpr std::array<Pass, 1> Straight = {{{0, 1}}};
    static constexpr std::array<Pass, 4> Interlaced = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};

    const auto myWidth = static_cast<size_t>(myFirstImage->Width);
    myFirstImage->Indices =
        std::make_unique_for_overwrite<uint8_t[]>(myWidth * static_cast<size_t>(myFirstImage->Height));
    for (const Pass& myPass : myDecoder->Image.Interlace ? std::span<const Pass>(Interlaced) : Straight)
    {
        for (int32_t i = myPass.First; i < myFirstImage->Height; i += myPass.Step)
        {
            uint8_t* const myRow = &myFirstImage->Indices[static_cast<size_t>(i) * myWidth];
            Check(DGifGetLine(myDecoder.get(), myRow, myFirstImage->Width));
        }
    }
}

void GifReader::SkipImage()
{
    Check(DGifGetImageHeader(myDecoder.get()));
    int myCodeSize = 0;
    GifByteType* myBlock = nullptr;
    Check(DGifGetCode(myDecoder.get(), &myCodeSize, &myBlock));
    while (myBlock != nullptr)
    {
        Check(DGifGetCodeNext(myDecoder.get(), &myBlock));
    }
}

/// Closes an encoder after a failure. Otherwise WriteGif closes it, because closing writes the rest and can fail.
struct EncoderCloser
{
    void operator()(GifFileType* myOpenEncoder) const { EGifCloseFile(myOpenEncoder, nullptr); }
};

/// Takes bytes from the encoder, fewer than it passes if memory runs out. Called from C: nothing may be thrown.
int Append(GifFileType* myWriting, const GifByteType* myBytes, int myCount)
{
    auto& theFile = *static_cast<std::vector<uint8_t>*>(myWriting->UserData);
    try
    {
        theFile.insert(theFile.end(), myBytes, myBytes + myCount);
        return myCount;
    }
    catch (const std::bad_alloc&)
    {
        return 0;
    }
}

/// Throws if a call of the encoder has failed, which only happens for lack of memory.
void DemandWritten(int myResult)
{
    if (myResult != GIF_OK)
    {
        throw std::bad_alloc();
    }
}

void WriteTransparency(GifFileType* myEncoder, int myTransparentIndex)
{
    const GraphicsControlBlock myControl = {DISPOSAL_UNSPECIFIED, false, 0, myTransparentIndex};
    std::array<GifByteType, 4> myBlock = {};
    EGifGCBToExtension(&myControl, myBlock.data());
    DemandWritten(EGifPutExtension(myEncoder, GRAPHICS_EXT_FUNC_CODE, myBlock.size(), myBlock.data()));
}

void WriteRows(GifFileType* myEncoder, const GifImage& myImage)
{
    const auto myWidth = static_cast<size_t>(myImage.Width);
    std::vector<GifPixelType> myRow(myWidth); // a copy, because the encoder overwrites it
    for (int32_t i = 0; i < myImage.Height; ++i)
    {
        std::copy_n(&myImage.Indices[static_cast<size_t>(i) * myWidth], myWidth, myRow.begin());
        DemandWritten(EGifPutLine(myEncoder, myRow.data(), myImage.Width));
    }
}

} // namespace

PixelPicture GifPicture::Pixels(int32_t /*myNeededWidth*/, int32_t /*myNeededHeight*/) const
{
    const auto myRowLength = static_cast<size_t>(Width());
    PixelPicture thePixels{Width(), Height(), std::vector<uint8_t>(myRowLength * static_cast<size_t>(Height()) * 4)};
    const GifImage& myImage = myFirstImage;
    const int32_t myRight = std::min(myImage.Left + myImage.Width, Width());
    const int32_t myBottom = std::min(myImage.Top + myImage.Height, Height());
    for (int32_t y = myImage.Top; y < myBottom; ++y)
    {
        const uint8_t* mySource =
            &myImage.Indices[static_cast<size_t>(y - myImage.Top) * static_cast<size_t>(myImage.Width)];
        uint8_t* theTarget =
            thePixels.Pixels.data() + (static_cast<size_t>(y) * myRowLength + static_cast<size_t>(myImage.Left)) * 4;
        for (int32_t x = myImage.Left; x < myRight; ++x, ++mySource, theTarget += 4)
        {
            if (*mySource != myImage.TransparentIndex)
            {
                const GifColour& myColour = myImage.Palette[*mySource];
                theTarget[0] = myColour.Red;
                theTarget[1] = myColour.Green;
                theTarget[2] = myColour.Blue;
                theTarget[3] = 0xFF;
            }
        }
    }
    return thePixels;
}

bool IsGif(std::span<const uint8_t> myFile)
{
    constexpr size_t SignatureLength = 6;
    return myFile.size() >= SignatureLength && (std::memcmp(myFile.data(), "GIF87a", SignatureLength) == 0 ||
                                                std::memcmp(myFile.data(), "GIF89a", SignatureLength) == 0);
}

std::unique_ptr<GifPicture> ReadGif(std::span<const uint8_t> myFile)
{
    return GifReader(myFile).Read();
}

std::vector<uint8_t> WriteGif(const GifPicture& myPicture)
{
    constexpr int32_t LongestSide = 0xFFFF;
    const GifImage& myImage = myPicture.FirstImage();
    Demand(myPicture.Width() <= LongestSide && myPicture.Height() <= LongestSide);
    std::array<GifColorType, 256> myColours = {};
    std::transform(myImage.Palette.begin(), myImage.Palette.end(), myColours.begin(),
                   [](const GifColour& c) {
                       return GifColorType{c.Red, c.Green, c.Blue};
                   });
    const std::unique_ptr<ColorMapObject, void (*)(ColorMapObject*)> myMap(
        GifMakeMapObject(static_cast<int>(myColours.size()), myColours.data()), GifFreeMapObject);
    std::vector<uint8_t> theFile;
    std::unique_ptr<GifFileType, EncoderCloser> myEncoder(EGifOpen(&theFile, Append, nullptr));
    DemandWritten(myMap && myEncoder ? GIF_OK : GIF_ERROR);
    EGifSetGifVersion(myEncoder.get(), true);
    DemandWritten(EGifPutScreenDesc(myEncoder.get(), myPicture.Width(), myPicture.Height(), 8, 0, myMap.get()));
    if (myImage.TransparentIndex != GifImage::NotTransparent)
    {
        WriteTransparency(myEncoder.get(), myImage.TransparentIndex);
    }
    DemandWritten(
        EGifPutImageDesc(myEncoder.get(), myImage.Left, myImage.Top, myImage.Width, myImage.Height, false, nullptr));
    WriteRows(myEncoder.get(), myImage);
    DemandWritten(EGifCloseFile(myEncoder.release(), nullptr));
    return theFile;
}

} // namespace qel
