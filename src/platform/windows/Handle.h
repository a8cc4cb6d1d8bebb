/// Handles of the system, closed at the end of their life.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <utility>

namespace qel
{

/// Owns one handle, or none.
class Handle
{
public:
    explicit Handle(HANDLE myOpenHandle = INVALID_HANDLE_VALUE) : myHandle(myOpenHandle) {}
    Handle(Handle&& myOther) noexcept : myHandle(std::exchange(myOther.myHandle, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&& myOther) noexcept
    {
        std::swap(myHandle, myOther.myHandle);
        return *this;
    }
    ~Handle() { Close(); }

    bool IsOpen() const { return myHandle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return myHandle; }

    /// Closes the handle and returns the result of the system: 0, or its error code. It is closed in any case.
    DWORD Close()
    {
        const HANDLE myLast = std::exchange(myHandle, INVALID_HANDLE_VALUE);
        return myLast == INVALID_HANDLE_VALUE || CloseHandle(myLast) != 0 ? 0 : GetLastError();
    }

private:
    HANDLE myHandle;
};

} // namespace qel
