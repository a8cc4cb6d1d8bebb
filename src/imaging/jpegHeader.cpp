#include "imaging/jpegHeader.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace qel
{
namespace
{

using Bytes = std::span<const uint8_t>;

constexpr uint8_t MarkerStart = 0xFF;
constexpr uint8_t BaselineFrame = 0xC0;
constexpr uint8_t ExtendedFrame = 0xC1; // sequential as well
constexpr uint8_t StartOfScan = 0xDA;
constexpr uint8_t ApplicationData = 0xE1; // EXIF among others

/// True for the markers that have no content: restarts, and one for temporary use.
bool HasNoLength(uint8_t myMarker)
{
    return myMarker == 0x01 || (myMarker >= 0xD0 && myMarker <= 0xD7);
}

/// One marker with its content.
struct Segment
{
    uint8_t Marker;
    Bytes Content;
};

/// Removes the next segment from the rest of a file; nothing if there is none.
std::optional<Segment> TakeSegment(Bytes& theRest)
{
    constexpr size_t HeadLength = 4; // the marker and the length, which counts its own two bytes
    while (theRest.size() >= 2 && theRest[0] == MarkerStart && theRest[1] == MarkerStart)
    {
        theRest = theRest.subspan(1); // a fill byte
    }
    if (theRest.size() < HeadLength || theRest[0] != MarkerStart)
    {
        return std::nullopt;
    }
    if (HasNoLength(theRest[1]))
    {
        return std::nullopt; // no writer of pictures puts one here
    }
    const size_t myLength = size_t{theRest[2]} << 8 | theRest[3];
    if (myLength < 2 || myLength + 2 > theRest.size())
    {
        return std::nullopt;
    }
    const Segment theSegment{theRest[1], theRest.subspan(HeadLength, myLength - 2)};
    theRest = theRest.subspan(myLength + 2);
    return theSegment;
}

/// The EXIF record in a segment; empty if there is none.
Bytes ExifOf(const Segment& mySegment)
{
    constexpr std::string_view Mark("Exif\0\0", 6);
    const Bytes myContent = mySegment.Content;
    const bool myIsExif = mySegment.Marker == ApplicationData && myContent.size() > Mark.size() &&
                          std::equal(Mark.begin(), Mark.end(), myContent.begin());
    return myIsExif ? myContent.subspan(Mark.size()) : Bytes();
}

} // namespace

JpegHeader ReadJpegHeader(Bytes myFile)
{
    constexpr size_t StartOfImage = 2;
    constexpr size_t ComponentCount = 5; // its offset in a frame's segment
    JpegHeader theHeader;
    bool myHasExif = false;
    int mySequentialComponents = -1;
    Bytes myRest = myFile.subspan(std::min(StartOfImage, myFile.size()));
    while (const std::optional<Segment> mySegment = TakeSegment(myRest))
    {
        const Bytes myContent = mySegment->Content;
        if (mySegment->Marker == StartOfScan)
        {
            theHeader.IsSequential = !myContent.empty() && myContent[0] == mySequentialComponents;
            break;
        }
        if ((mySegment->Marker == BaselineFrame || mySegment->Marker == ExtendedFrame) &&
            myContent.size() > ComponentCount)
        {
            mySequentialComponents = myContent[ComponentCount];
        }
        if (const Bytes myExif = ExifOf(*mySegment); !myExif.empty() && !myHasExif)
        {
            myHasExif = true;
            theHeader.Upright = OrientationOfExif(myExif);
        }
    }
    return theHeader;
}

} // namespace qel
