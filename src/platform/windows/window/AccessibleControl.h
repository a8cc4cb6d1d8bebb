/// The description of a control for screen readers.
#pragma once

#include "platform/windows/window/controlHeaders.h"
#include "text/text.h"

struct IAccessible;

namespace qel
{

/// Names a control: the system's own description of it, with another name. The library of the system that describes
/// controls is loaded when a screen reader first asks.
class AccessibleControl
{
public:
    AccessibleControl() = default;
    AccessibleControl(const AccessibleControl&) = delete;
    AccessibleControl& operator=(const AccessibleControl&) = delete;
    ~AccessibleControl() { Disconnect(); }

    /// The answer to WM_GETOBJECT for the inside of a control; 0: the system's own description applies.
    LRESULT Describe(HWND myControl, TextView myName, WPARAM myFlags);

    /// Invalidates the description for every screen reader that still holds it. To be called before the control is
    /// destroyed.
    void Disconnect();

private:
    IAccessible* myDescription = nullptr;
};

} // namespace qel
