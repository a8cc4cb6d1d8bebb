#include "imaging/orientation.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace qel
{
namespace
{

/// Reads numbers of a TIFF structure in its byte order. Outside the structure it reads 0.
class TiffReader
{
public:
    explicit TiffReader(std::span<const uint8_t> myBytes) : myRecord(myBytes) {}

    /// True when the header is one of the two valid ones.
    bool HasHeader() const
    {
        constexpr uint16_t LittleEndianMark = 0x4949;
        constexpr uint16_t BigEndianMark = 0x4D4D;
        constexpr uint16_t Version = 42;
        const uint32_t myMark = Number(0, 2);
        return (myMark == LittleEndianMark || myMark == BigEndianMark) && Number(2, 2) == Version;
    }

    /// The number of `mySize` bytes at an offset.
    uint32_t Number(size_t myPlace, size_t mySize) const
    {
        if (myPlace > myRecord.size() || mySize > myRecord.size() - myPlace)
        {
            return 0;
        }
        const bool myIsLittleEndian = myRecord[0] == 'I';
        uint32_t theNumber = 0;
        for (size_t i = 0; i < mySize; ++i)
        {
            theNumber = theNumber << 8 | myRecord[myPlace + (myIsLittleEndian ? mySize - 1 - i : i)];
        }
        return theNumber;
    }

private:
    std::span<const uint8_t> myRecord;
};

} // namespace

Orientation OrientationOfExif(std::span<const uint8_t> myExif)
{
    constexpr uint32_t OrientationTag = 0x0112;
    constexpr uint32_t ShortType = 3;
    constexpr size_t EntryLength = 12; // tag, type, count, value
    const TiffReader myReader(myExif);
    if (!myReader.HasHeader())
    {
        return Orientation::AsStored;
    }
    const size_t myDirectory = myReader.Number(4, 4);
    const uint32_t myCount = myReader.Number(myDirectory, 2);
    for (size_t i = 0; i < myCount; ++i)
    {
        const size_t myEntry = myDirectory + 2 + i * EntryLength;
        if (myReader.Number(myEntry, 2) == OrientationTag)
        {
            const uint32_t myValue = myReader.Number(myEntry + 8, 2);
            const bool myIsSound = myReader.Number(myEntry + 2, 2) == ShortType &&
                                   myReader.Number(myEntry + 4, 4) == 1 && myValue >= 1 && myValue <= 8;
            return myIsSound ? static_cast<Orientation>(myValue) : Orientation::AsStored;
        }
    }
    return Orientation::AsStored;
}

bool SwapsSides(Orientation myOrientation)
{
    return myOrientation >= Orientation::Transpose;
}

PixelPicture Upright(PixelPicture myPicture, Orientation myOrientation)
{
    if (myOrientation == Orientation::AsStored)
    {
        return myPicture;
    }
    constexpr size_t PixelSize = 4;
    const auto myIsOneOf = [myOrientation](std::array<Orientation, 4> mySet)
    {
        return std::find(mySet.begin(), mySet.end(), myOrientation) != mySet.end();
    };
    using enum Orientation;
    const bool myMirrorsColumns = myIsOneOf({MirrorColumns, TurnHalf, TurnTransposed, TurnLeft});
    const bool myMirrorsRows = myIsOneOf({TurnHalf, MirrorRows, TurnRight, TurnTransposed});
    const bool mySwaps = SwapsSides(myOrientation);
    PixelPicture theResult{
        mySwaps ? myPicture.Height : myPicture.Width, mySwaps ? myPicture.Width : myPicture.Height, {}};
    theResult.Pixels.resize(myPicture.Pixels.size());
    uint8_t* myTarget = theResult.Pixels.data();
    for (int32_t y = 0; y < theResult.Height; ++y)
    {
        for (int32_t x = 0; x < theResult.Width; ++x)
        {
            const int32_t myColumn = mySwaps ? y : x;
            const int32_t myRow = mySwaps ? x : y;
            const auto mySourceColumn =
                static_cast<size_t>(myMirrorsColumns ? myPicture.Width - 1 - myColumn : myColumn);
            const auto mySourceRow = static_cast<size_t>(myMirrorsRows ? myPicture.Height - 1 - myRow : myRow);
            const size_t mySource = (mySourceRow * static_cast<size_t>(myPicture.Width) + mySourceColumn) * PixelSize;
            std::memcpy(myTarget, &myPicture.Pixels[mySource], PixelSize);
            myTarget += PixelSize;
        }
    }
    return theResult;
}

} // namespace qel
