/// The window in which an author chooses a link. It lies in a module of its own, qelhostWindow.so beside this program,
/// that is loaded when it is first asked for, so that no other command loads the toolkit.
#pragma once

#include "site/LinkChoice.h"

namespace qel::host
{

/// Shows what is offered in a modal window until the author closes it. True: it was confirmed, and `theChoice` says
/// with what. False: it was cancelled, and `theChoice` is as it was. On the thread that shows the program's windows.
/// Error 53: there is no such module. 57: there is no display. 5: another thread shows the windows.
bool ShowLinkWindow(LinkChoice& theChoice);

// ---- Between this program and the module, which are made in one build ----

/// The module's one entry point, which does the same.
using LinkWindowEntry = bool(LinkChoice& theChoice);

inline constexpr char LinkWindowFile[] = "qelhostWindow.so";
/// The number changes with LinkChoice.
inline constexpr char LinkWindowEntryName[] = "QelhostShowLinkWindow1";

} // namespace qel::host
