#include "imaging/paletteReduction.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace qel
{
namespace
{

constexpr size_t MostColours = 255;
constexpr uint8_t TransparentIndex = 255;
constexpr uint8_t LeastOpaque = 128;
constexpr int ImprovingSteps = 3;

using Colour = std::array<int32_t, 3>;

/// A group of similar colours, as their count and sums.
struct Cell
{
    int64_t Count = 0;
    std::array<int64_t, 3> Sum = {};

    void Add(const Cell& myOther)
    {
        Count += myOther.Count;
        for (size_t i = 0; i < 3; ++i)
        {
            Sum[i] += myOther.Sum[i];
        }
    }

    double Mean(size_t myChannel) const { return static_cast<double>(Sum[myChannel]) / static_cast<double>(Count); }

    Colour Nearest() const
    {
        Colour theColour;
        for (size_t i = 0; i < 3; ++i)
        {
            theColour[i] = static_cast<int32_t>(std::lround(Mean(i)));
        }
        return theColour;
    }
};

bool IsTransparent(const uint8_t* myPixel)
{
    return myPixel[3] < LeastOpaque;
}

/// The colours of the picture, grouped by the upper five bits of each channel.
std::vector<Cell> CellsOf(const PixelPicture& myPicture)
{
    std::vector<Cell> theCells(size_t{1} << 15);
    for (size_t i = 0; i < myPicture.Pixels.size(); i += 4)
    {
        const uint8_t* const myPixel = &myPicture.Pixels[i];
        if (!IsTransparent(myPixel))
        {
            theCells[static_cast<size_t>(myPixel[0] >> 3 << 10 | myPixel[1] >> 3 << 5 | myPixel[2] >> 3)].Add(
                {1, {myPixel[0], myPixel[1], myPixel[2]}});
        }
    }
    std::erase_if(theCells, [](const Cell& c) { return c.Count == 0; });
    return theCells;
}

/// Cells that share an entry of the palette, with their variance.
struct Box
{
    std::span<Cell> Cells;
    Cell Total;
    size_t LongestChannel = 0;
    double Error = 0; ///< squared, over all channels

    explicit Box(std::span<Cell> myCells) : Cells(myCells)
    {
        std::array<double, 3> mySquares = {};
        for (const Cell& myCell : Cells)
        {
            Total.Add(myCell);
            for (size_t i = 0; i < 3; ++i)
            {
                mySquares[i] += static_cast<double>(myCell.Sum[i]) * myCell.Mean(i);
            }
        }
        double myLongest = 0;
        for (size_t i = 0; i < 3; ++i)
        {
            const double mySpread = mySquares[i] - static_cast<double>(Total.Sum[i]) * Total.Mean(i);
            Error += mySpread;
            if (mySpread > myLongest)
            {
                myLongest = mySpread;
                LongestChannel = i;
            }
        }
    }

    /// Moves the cells below the mean of the longest channel to the front, and returns their number.
    size_t Divide() const
    {
        const double myMiddle = Total.Mean(LongestChannel);
        const auto mySecond = std::partition(Cells.begin(), Cells.end(),
                                             [&](const Cell& c) { return c.Mean(LongestChannel) < myMiddle; });
        return static_cast<size_t>(mySecond - Cells.begin());
    }
};

/// Divides the colours repeatedly, each time the box with the largest error.
std::vector<Colour> CutPalette(std::vector<Cell>& theCells)
{
    std::vector<Box> myBoxes;
    const auto IsBetter = [](const Box& a, const Box& b)
    {
        return a.Error < b.Error;
    };
    if (!theCells.empty())
    {
        myBoxes.emplace_back(theCells);
    }
    while (!myBoxes.empty() && myBoxes.size() < MostColours)
    {
        std::pop_heap(myBoxes.begin(), myBoxes.end(), IsBetter);
        const Box myBox = myBoxes.back();
        const size_t myFirst = myBox.Divide();
        if (myFirst == 0 || myFirst == myBox.Cells.size())
        {
            break; // even the box with the largest error has only one colour
        }
        myBoxes.back() = Box(myBox.Cells.first(myFirst));
        std::push_heap(myBoxes.begin(), myBoxes.end(), IsBetter);
        myBoxes.emplace_back(myBox.Cells.subspan(myFirst));
        std::push_heap(myBoxes.begin(), myBoxes.end(), IsBetter);
    }
    std::vector<Colour> thePalette;
    std::transform(myBoxes.begin(), myBoxes.end(), std::back_inserter(thePalette),
                   [](const Box& b) { return b.Total.Nearest(); });
    return thePalette;
}

/// Finds the nearest entry of a palette, which it sorts by green. The search starts at the green of the colour,
/// continues in both directions, and ends where the difference in green alone is larger than the best distance.
class NearestSearch
{
public:
    explicit NearestSearch(std::vector<Colour>& thePalette) : myPalette(thePalette)
    {
        std::sort(myPalette.begin(), myPalette.end(), [](const Colour& a, const Colour& b) { return a[1] < b[1]; });
    }

    size_t operator()(const Colour& myColour)
    {
        Best myBest{0, INT32_MAX};
        auto myAbove =
            static_cast<size_t>(std::lower_bound(myPalette.begin(), myPalette.end(), myColour[1],
                                                 [](const Colour& c, int32_t myGreen) { return c[1] < myGreen; }) -
                                myPalette.begin());
        size_t myBelow = myAbove;
        bool myAboveIsOpen = true;
        bool myBelowIsOpen = true;
        while (myAboveIsOpen || myBelowIsOpen)
        {
            myAboveIsOpen = myAboveIsOpen && myAbove < myPalette.size() && Try(myAbove++, myColour, myBest);
            myBelowIsOpen = myBelowIsOpen && myBelow > 0 && Try(--myBelow, myColour, myBest);
        }
        return myBest.Index;
    }

private:
    struct Best
    {
        size_t Index;
        int32_t Distance;
    };

    /// False when this entry and those beyond it are too far away in green alone.
    bool Try(size_t myIndex, const Colour& myColour, Best& theBest) const
    {
        const Colour& myEntry = myPalette[myIndex];
        const auto Square = [&](size_t i)
        {
            return (myEntry[i] - myColour[i]) * (myEntry[i] - myColour[i]);
        };
        const int32_t myGreen = Square(1);
        if (myGreen >= theBest.Distance)
        {
            return false;
        }
        const int32_t myDistance = myGreen + Square(0) + Square(2);
        if (myDistance < theBest.Distance)
        {
            theBest = {myIndex, myDistance};
        }
        return true;
    }

    std::vector<Colour>& myPalette;
};

/// Moves each entry of the palette to the mean of the colours that are nearest to it.
void ImprovePalette(std::vector<Colour>& thePalette, const std::vector<Cell>& myCells)
{
    NearestSearch myNearest(thePalette);
    std::vector<Cell> myGroups(thePalette.size());
    for (const Cell& myCell : myCells)
    {
        myGroups[myNearest(myCell.Nearest())].Add(myCell);
    }
    for (size_t i = 0; i < thePalette.size(); ++i)
    {
        thePalette[i] = myGroups[i].Count == 0 ? thePalette[i] : myGroups[i].Nearest();
    }
}

} // namespace

std::unique_ptr<GifPicture> ReduceToPalette(const PixelPicture& myPicture, bool myPictureIsAnimated)
{
    std::vector<Cell> myCells = CellsOf(myPicture);
    std::vector<Colour> myPalette = CutPalette(myCells);
    for (int i = 0; i < ImprovingSteps; ++i)
    {
        ImprovePalette(myPalette, myCells);
    }
    NearestSearch myNearest(myPalette);
    GifImage theImage;
    theImage.Width = myPicture.Width;
    theImage.Height = myPicture.Height;
    std::transform(
        myPalette.begin(), myPalette.end(), theImage.Palette.begin(),
        [](const Colour& c) {
            return GifColour{static_cast<uint8_t>(c[0]), static_cast<uint8_t>(c[1]), static_cast<uint8_t>(c[2])};
        });
    const size_t myCount = myPicture.Pixels.size() / 4;
    theImage.Indices = std::make_unique_for_overwrite<uint8_t[]>(myCount);
    for (size_t i = 0; i < myCount; ++i)
    {
        const uint8_t* const myPixel = &myPicture.Pixels[i * 4];
        if (IsTransparent(myPixel))
        {
            theImage.TransparentIndex = TransparentIndex;
            theImage.Indices[i] = TransparentIndex;
        }
        else
        {
            theImage.Indices[i] = static_cast<uint8_t>(myNearest({myPixel[0], myPixel[1], myPixel[2]}));
        }
    }
    return std::make_unique<GifPicture>(myPicture.Width, myPicture.Height, myPictureIsAnimated, std::move(theImage));
}

} // namespace qel
