/// The record of the module in hand.
#pragma once

#include "text/dates.h"
#include "text/text.h"

#include <cstdint>

namespace qel
{

/// The format of the picture that the author imported.
enum class ImageMode : int32_t
{
    None = 0,
    Gif = 1,
    Jpeg = 2
};

/// The settings that the persistence script stores.
struct ModuleSettings
{
    Text myImage;       ///< picture's file name with ending, without folder; empty: no picture chosen yet
    Text myImageFolder; ///< its subfolder of the library, or UserMarker
    Text myMIDI;        ///< tune's file name, likewise
    Text myMIDIFolder;  ///< its subfolder of the library, or UserMarker
    bool myShowImage = false;
    bool myPlayMIDI = false;
    ImageMode myImageMode = ImageMode::None; ///< what the author imported, chosen or not
    bool myMIDIMode = false;                 ///< the author has imported a tune
    Text myFilename; ///< archive of imported files below the host's data folder; empty if there is none
    Text myLink;     ///< link text of the picture, in the host's form; empty if there is none
    Date myFrom = 0; ///< first day of the period, or no date
    Date myTo = 0;   ///< last day of the period, or no date
};

} // namespace qel
