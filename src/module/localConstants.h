/// The fixed texts of the module layer, and the two settings of the running component.
#pragma once

#include "text/text.h"

namespace qel
{

/// Set when a Main is created; one record per thread.
struct localConstants
{
    Text myDesignsFolder; ///< the designs library, with a closing "\"
    Text myHelpFile;      ///< full path of the help file
};

/// What a folder field holds for a file that the author imported.
inline constexpr TextView UserMarker = u"(USER)";

/// The names of imported files in the temporary folder, and of staged ones in a build, begin with these.
inline constexpr TextView ImagePrefix = u"qelspr";
inline constexpr TextView TunePrefix = u"qelmid";

inline constexpr TextView GifExtension = u".gif";
inline constexpr TextView JpegExtension = u".jpg";
inline constexpr TextView TuneExtension = u".mid";

/// The length of ".gif", ".jpg" and ".mid".
inline constexpr size_t ExtensionLength = 4;

inline constexpr TextView LineEnd = u"\r\n";

} // namespace qel
