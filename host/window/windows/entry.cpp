/// The entry point of the host's window module.
#include "window/linkWindowModule.h"
#include "window/windows/LinkDialog.h"

namespace qel::host
{

extern "C" __declspec(dllexport) LinkWindowEnd QelhostShowLinkWindow2(LinkChoice& theChoice, Error& theFailure)
{
    try
    {
        // The component's dialog is the active window, and is disabled until this window is closed.
        return LinkDialog(theChoice).Show(GetActiveWindow()) ? LinkWindowEnd::Confirmed : LinkWindowEnd::Cancelled;
    }
    catch (...)
    {
        theFailure = CurrentError();
        return LinkWindowEnd::Failed;
    }
}

} // namespace qel::host
