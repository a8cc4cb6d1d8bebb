/// The picture for the comparisons: a ball with a highlight, some grain and a shadow on a transparent background,
/// similar to a scanned or painted one.
#pragma once

#include "platform/PixelPicture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace qel::bench
{

inline PixelPicture Ball(int32_t myWidth, int32_t myHeight)
{
    const auto mySize = static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight) * 4;
    PixelPicture thePicture{myWidth, myHeight, std::vector<uint8_t>(mySize)};
    std::mt19937 myGrain(1);
    uint8_t* myPixel = thePicture.Pixels.data();
    for (int32_t y = 0; y < myHeight; ++y)
    {
        for (int32_t x = 0; x < myWidth; ++x, myPixel += 4)
        {
            const double myLeft = double(x) / myWidth;
            const double myTop = double(y) / myHeight;
            const double myDistance = std::hypot((myLeft - 0.5) / 0.457, (myTop - 0.48) / 0.44);
            const double myShine = std::exp(-8 * std::hypot((myLeft - 0.343) / 0.457, (myTop - 0.28) / 0.44));
            const double myLight = 1 - 0.7 * myDistance + static_cast<double>(myGrain() % 16) / 255;
            myPixel[0] = static_cast<uint8_t>(std::clamp(220 * myLight + 255 * myShine, 0.0, 255.0));
            myPixel[1] = static_cast<uint8_t>(std::clamp(90 * myLight + 255 * myShine, 0.0, 255.0));
            myPixel[2] = static_cast<uint8_t>(std::clamp(60 * myLight + 200 * myShine + 25 * myTop, 0.0, 255.0));
            myPixel[3] = myDistance < 1 ? 255 : 0;
        }
    }
    return thePicture;
}

} // namespace qel::bench
