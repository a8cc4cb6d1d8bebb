/// The texts that a person sees and the templates of the page, by number.
#pragma once

#include "text/text.h"

namespace qel
{

/// The text of a number. Callable on any thread. Error 5: there is no such text.
TextView LoadResString(int32_t myNumber);

/// What the component says of itself.
struct VersionRecord
{
    TextView ProjectName = u"QelPluginAnimation";
    TextView Title = u"Tesselwind";
    TextView FileDescription = u"Läßt Grafiken über Ihre Homepage schweben";
    TextView Copyright = u"Copyright (c) 2026 The Tesselwind authors";
    int32_t Major = 1;
    int32_t Minor = 0;
    int32_t Revision = 19;
};

inline constexpr VersionRecord ComponentVersion;

} // namespace qel
