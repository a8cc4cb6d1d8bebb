/// The boundary between the program and its window module, which come from one build.
#pragma once

#include "site/LinkChoice.h"
#include "text/errors.h"

namespace qel::host
{

enum class LinkWindowEnd
{
    Confirmed, ///< the choice has been stored
    Cancelled, ///< the choice is unchanged
    Failed     ///< the same, and the failure has been stored
};

/// The module's one entry point. It shows the offered targets in a modal window until the author closes it. On the
/// thread that shows the program's windows. Error 57: there is no display. 5: another thread shows the windows. 7:
/// there is no memory. No exception leaves the module.
using LinkWindowEntry = LinkWindowEnd(LinkChoice& theChoice, Error& theFailure);

/// The number changes with the types above.
inline constexpr char LinkWindowEntryName[] = "QelhostShowLinkWindow2";

} // namespace qel::host
