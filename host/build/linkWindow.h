/// The window in which an author chooses a link. It is in a module of its own beside this program, which is loaded when
/// it is first needed, so that no other command loads the toolkit.
#pragma once

#include "site/LinkChoice.h"

namespace qel::host
{

/// Shows what is offered in a modal window until the author closes it. True: it was confirmed, and `theChoice` has the
/// result. False: it was cancelled, and `theChoice` is unchanged. On the thread that shows the program's windows. Error
/// 53: there is no such module. 57: there is no display. 5: another thread shows the windows.
bool ShowLinkWindow(LinkChoice& theChoice);

} // namespace qel::host
