/// The pictures of the dialog, one character for each pixel. They are our own.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qel
{

template <size_t Size>
using PixelMap = std::array<std::string_view, Size>;

/// The colour that a character of a picture means, one of the 16 standard colours.
struct PixelColour
{
    char Sign;
    uint32_t Colour; ///< 0xRRGGBB
};

inline constexpr std::array<PixelColour, 7> PixelColours = {{
    {'K', 0x000000},
    {'W', 0xFFFFFF},
    {'S', 0xC0C0C0},
    {'G', 0x808080},
    {'Y', 0xFFFF00},
    {'O', 0x808000},
    {'B', 0x0000FF},
}};

/// Transparent. Where a system needs a colour for that, it is MaskColour.
inline constexpr char MaskSign = '.';
inline constexpr uint32_t MaskColour = 0x800000;

/// The hot spot of the pointing hand.
inline constexpr int32_t HandLeft = 5;
inline constexpr int32_t HandTop = 1;

// clang-format off

/// Icon 100: a yellow triangle with an exclamation mark.
inline constexpr PixelMap<32> WarningPicture = {
    "................................",
    "..............KK................",
    ".............KYOK...............",
    "............KYYYOKG.............",
    "...........KKYYYOKKG............",
    "...........KYYYYYOKG............",
    "..........KKYYYYYOKKG...........",
    "..........KYYYYYYYOKG...........",
    ".........KKYYYYYYYOKKG..........",
    ".........KYYYYKKYYYOKG..........",
    "........KKYYYKKKKYYOKKG.........",
    "........KYYYYKKKKYYYOKG.........",
    ".......KKYYYYKKKKYYYOKKG........",
    ".......KYYYYYKKKKYYYYOKG........",
    "......KYYYYYYKKKKYYYYYOKG.......",
    "......KYYYYYYYKKYYYYYYOKG.......",
    ".....KYYYYYYYYKKYYYYYYYOKG......",
    ".....KYYYYYYYYKKYYYYYYYOKGG.....",
    "....KYYYYYYYYYKKYYYYYYYYOKG.....",
    "....KYYYYYYYYYKKYYYYYYYYOKGG....",
    "...KYYYYYYYYYYYYYYYYYYYYYOKG....",
    "...KYYYYYYYYYYYYYYYYYYYYYOKGG...",
    "..KYYYYYYYYYYYKKYYYYYYYYYYOKG...",
    "..KYYYYYYYYYYYKKYYYYYYYYYYOKGG..",
    ".KYYYYYYYYYYYYKKYYYYYYYYYYYOKG..",
    ".KYYYYYYYYYYYYYYYYYYYYYYYYYOKGG.",
    ".KOOOOOOOOOOOOOOOOOOOOOOOOOOKGG.",
    "..KKKKKKKKKKKKKKKKKKKKKKKKKKGGG.",
    "...GGGGGGGGGGGGGGGGGGGGGGGGGGGG.",
    "....GGGGGGGGGGGGGGGGGGGGGGGGGG..",
    "................................",
    "................................",
};

/// Icon 110: a white speech bubble with a blue letter i.
inline constexpr PixelMap<32> InformationPicture = {
    "................................",
    "...........KKKKKKKK.............",
    "........KKKWWWWWWWSKKK..........",
    ".......KWWWWWWWWWWWWWSK.........",
    ".....KKWWWWWWBBBBWWWWWSKK.......",
    "....KWWWWWWWWBBBBWWWWWWWSK......",
    "...KWWWWWWWWWBBBBWWWWWWWWSK.....",
    "...KWWWWWWWWWWWWWWWWWWWWWSKG....",
    "..KWWWWWWWWWWWWWWWWWWWWWWWSKG...",
    "..KWWWWWWWWBBBBBBWWWWWWWWWSKG...",
    "..KWWWWWWWWBBBBBBWWWWWWWWWSKGG..",
    ".KWWWWWWWWWWWBBBBWWWWWWWWWWSKG..",
    ".KWWWWWWWWWWWBBBBWWWWWWWWWWSKG..",
    ".KSWWWWWWWWWWBBBBWWWWWWWWWWSKGG.",
    "..KWWWWWWWWWWBBBBWWWWWWWWWSKGGG.",
    "..KWWWWWWWWWWBBBBWWWWWWWWWSKGGG.",
    "..KSWWWWWWWWWBBBBWWWWWWWWWSKGG..",
    "...KWWWWWWWWWBBBBWWWWWWWWSKGGG..",
    "...KSWWWWWWBBBBBBBBWWWWWWSKGGG..",
    "....KSSWWWWBBBBBBBBWWWWSSKGGG...",
    ".....KKSWWWWWWWWWWWWWWSKKGGGG...",
    "......GKSSSWWWWWWWWWSSKGGGGG....",
    ".......GKKKSSSWWWWWSKKGGGGG.....",
    ".........GGKKKSWWWSKGGGGG.......",
    "..........GGGGKSWWSKGGGG........",
    ".............GGKSWSKGG..........",
    "................KSSKGG..........",
    ".................KSKGG..........",
    "..................KKGG..........",
    "...................KGG..........",
    "....................GG..........",
    ".....................G..........",
};

/// The pointing hand, shown over what starts an import.
inline constexpr PixelMap<32> HandPicture = {
    ".....KK.........................",
    "....KWWK........................",
    "....KWWK........................",
    "....KWWK........................",
    "....KWWK........................",
    "....KWWKKK......................",
    "....KWWKWWKKK...................",
    "....KWWKWWKWWKK.................",
    "....KWWKWWKWWKWK................",
    "KKK.KWWKWWKWWKWWK...............",
    "KWWKKWWWWWWWWKWWK...............",
    "KWWWKWWWWWWWWWWWK...............",
    ".KWWKWWWWWWWWWWWK...............",
    "..KWWWWWWWWWWWWWK...............",
    "..KWWWWWWWWWWWWWK...............",
    "...KWWWWWWWWWWWK................",
    "...KWWWWWWWWWWWK................",
    "....KWWWWWWWWWWK................",
    "....KWWWWWWWWWK.................",
    ".....KWWWWWWWWK.................",
    ".....KWWWWWWWWK.................",
    ".....KKKKKKKKKK.................",
    "................................",
    "................................",
    "................................",
    "................................",
    "................................",
    "................................",
    "................................",
    "................................",
    "................................",
    "................................",
};

/// Image 1 of the tool bar: play.
inline constexpr PixelMap<16> PlayPicture = {
    "................",
    "................",
    ".....K..........",
    ".....KK.........",
    ".....KKK........",
    ".....KKKK.......",
    ".....KKKKK......",
    ".....KKKKKK.....",
    ".....KKKKK......",
    ".....KKKK.......",
    ".....KKK........",
    ".....KK.........",
    ".....K..........",
    "................",
    "................",
    "................",
};

/// Image 2 of the tool bar: stop.
inline constexpr PixelMap<16> StopPicture = {
    "................",
    "................",
    "................",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "...KKKKKKKKK....",
    "................",
    "................",
    "................",
    "................",
};

// clang-format on

} // namespace qel
