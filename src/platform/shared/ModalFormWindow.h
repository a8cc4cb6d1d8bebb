/// What the dialog's window has in common on all systems.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/shared/EventForwarder.h"
#include "text/ScopeGuard.h"

namespace qel
{

/// A control that the author presses, and its handler.
struct PressHandler
{
    TextView Control;
    Handler Press;
};

inline constexpr PressHandler PressHandlers[] = {
    {u"lblImage", &FormMainEvents::lblImage_Click},     {u"lblMIDI", &FormMainEvents::lblMIDI_Click},
    {u"cmdSetLink", &FormMainEvents::cmdSetLink_Click}, {u"cmdUnsetLink", &FormMainEvents::cmdUnsetLink_Click},
    {u"cmdHelp", &FormMainEvents::cmdHelp_Click},       {u"cmdOK", &FormMainEvents::cmdOK_Click},
    {u"cmdCancel", &FormMainEvents::cmdCancel_Click},
};

/// Leads the logic through one opening of `Dialog`, the window of the system: that has ShowModally, which returns when
/// the window has closed, and Close.
template <class Dialog>
class ModalFormWindow : public FormMainWindow
{
public:
    void Show(FormMainEvents& theEvents) final
    {
        myForwarder.Receiver(&theEvents);
        const ScopeGuard myGuard([&] { myForwarder.Receiver(nullptr); });
        theEvents.Form_Load();
        if (!myIsUnloaded)
        {
            myDialog.ShowModally();
        }
        theEvents.Form_Unload();
    }
    void Unload() final
    {
        myIsUnloaded = true;
        myDialog.Close();
    }

protected:
    EventForwarder myForwarder;
    Dialog myDialog;

private:
    bool myIsUnloaded = false; ///< possibly before it was shown
};

} // namespace qel
