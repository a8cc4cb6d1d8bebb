/// Open files of the system, closed when they go.
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace qel
{

/// Repeats a call for as long as a signal interrupts it.
template <typename Call>
auto Retrying(Call myCall)
{
    auto theResult = myCall();
    while (theResult == -1 && errno == EINTR)
    {
        theResult = myCall();
    }
    return theResult;
}

/// Owns one descriptor, or none.
class Descriptor
{
public:
    explicit Descriptor(int myOpenHandle = -1) : myHandle(myOpenHandle) {}
    Descriptor(Descriptor&& myOther) noexcept : myHandle(std::exchange(myOther.myHandle, -1)) {}
    Descriptor& operator=(Descriptor&& myOther) noexcept
    {
        std::swap(myHandle, myOther.myHandle);
        return *this;
    }
    ~Descriptor() { Close(); }

    bool IsOpen() const { return myHandle != -1; }
    int Handle() const { return myHandle; }

    /// Closes, and gives what the system reports then: 0, or an errno value. The descriptor is gone in any case.
    int Close()
    {
        const int myLast = std::exchange(myHandle, -1);
        // An interrupted close has closed.
        return myLast == -1 || close(myLast) == 0 || errno == EINTR ? 0 : errno;
    }

private:
    int myHandle;
};

} // namespace qel
