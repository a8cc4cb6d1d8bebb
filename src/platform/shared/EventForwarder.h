/// Passes the events of the dialog's window on to its logic.
#pragma once

#include "dialog/ports/FormMainEvents.h"

namespace qel
{

/// A handler of the logic without arguments; null for none.
using Handler = void (FormMainEvents::*)();

/// Has a receiver as long as the window is shown; without one every call does nothing.
class EventForwarder
{
public:
    /// For an event inside a call of the logic: what the handler throws comes out.
    void Call(Handler myHandler)
    {
        if (myEvents != nullptr && myHandler != nullptr)
        {
            (myEvents->*myHandler)();
        }
    }

    /// For an event that comes from the system, through which nothing may be thrown. The logic has dealt with its
    /// failures; what comes out all the same, for want of memory, leaves the dialog as it is.
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
