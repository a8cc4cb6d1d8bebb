/// The fixed texts of the module layer, and the two settings of the running component.
#pragma once

#include "text/text.h"

namespace qel
{

/// Set when a Main is created; one per thread.
struct localConstants
{
    Text myDesignsFolder; ///< the designs library, with a closing "\"
    Text myHelpFile;      ///< full path of the help file
};

/// The value of a folder field for a file that the author imported.
inline constexpr TextView UserMarker = u"(USER)";

/// The prefixes of the names of imported files in the temporary folder, and of staged files in a build.
inline constexpr TextView ImagePrefix = u"qelspr";
inline constexpr TextView TunePrefix = u"qelmid";

inline constexpr TextView GifExtension = u".gif";
inline constexpr TextView JpegExtension = u".jpg";
inline constexpr TextView TuneExtension = u".mid";

/// The length of ".gif", ".jpg" and ".mid".
inline constexpr size_t ExtensionLength = 4;

inline constexpr TextView LineEnd = u"\r\n";

} // namespace qel
