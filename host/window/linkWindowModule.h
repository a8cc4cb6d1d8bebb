/// The boundary between the program and its window module, which come from one build.
#pragma once

#include "site/LinkChoice.h"

namespace qel::host
{

/// The module's one entry point. It shows the offered targets in a modal window until the author closes it. True: it
/// was confirmed, and `theChoice` is the result. False: it was cancelled, and `theChoice` is unchanged. On the thread
/// that shows the program's windows. Error 57: there is no display. 5: another thread shows the windows.
using LinkWindowEntry = bool(LinkChoice& theChoice);

/// The number changes with LinkChoice.
inline constexpr char LinkWindowEntryName[] = "QelhostShowLinkWindow1";

} // namespace qel::host
