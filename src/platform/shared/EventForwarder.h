/// Forwards the events of the dialog's window to its logic.
#pragma once

#include "dialog/ports/FormMainEvents.h"

namespace qel
{

/// A handler of the logic without arguments; null for none.
using Handler = void (FormMainEvents::*)();

/// Has a receiver while the window is shown; without one every call does nothing.
class EventForwarder
{
public:
    /// For an event during a call of the logic: what the handler throws is passed on.
    void Call(Handler myHandler)
    {
        if (myEvents != nullptr && myHandler != nullptr)
        {
            (myEvents->*myHandler)();
        }
    }

    /// For an event that comes from the system, through which nothing may be thrown. The logic handles its failures; an
    /// exception that still escapes, for lack of memory, is ignored.
    template <class... Arguments>
    void CallFromSystem(void (FormMainEvents::*myHandler)(Arguments...), Arguments... myArguments) noexcept
    {
        if (myEvents == nullptr || myHandler == nullptr)
        {
            return;
        }
        try
        {
            (myEvents->*myHandler)(myArguments...);
        }
        catch (...) // NOLINT(bugprone-empty-catch)
        {
        }
    }

    /// Null: nobody receives events.
    void Receiver(FormMainEvents* theEvents) { myEvents = theEvents; }

private:
    FormMainEvents* myEvents = nullptr;
};

} // namespace qel
