/// The owner of a dialog, and what happens to the host's windows while it is open.
#pragma once

#include "platform/windows/window/controlHeaders.h"

#include <vector>

namespace qel
{

/// The active window of the thread owns a dialog or, if there is none, a hidden window that lives as long as this
/// object; it also keeps the dialog out of the task bar. While the object lives, the thread makes its windows at the
/// scale of the owner.
class ModalOwner
{
public:
    ModalOwner();
    ModalOwner(const ModalOwner&) = delete;
    ModalOwner& operator=(const ModalOwner&) = delete;
    ~ModalOwner();

    HWND Window() const { return myActive != nullptr ? myActive : myHidden; }
    bool IsHidden() const { return myActive == nullptr; }

private:
    HWND myActive;
    HWND myHidden = nullptr;
    DPI_AWARENESS_CONTEXT myOldScaling = nullptr;
};

/// Disables the enabled windows of the thread except one and those that it owns, and enables them again at the end of
/// its life.
class DisabledWindows
{
public:
    explicit DisabledWindows(HWND myException);
    DisabledWindows(const DisabledWindows&) = delete;
    DisabledWindows& operator=(const DisabledWindows&) = delete;
    ~DisabledWindows();

private:
    std::vector<HWND> myWindows;
};

} // namespace qel
