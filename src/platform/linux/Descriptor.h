/// File descriptors of the system, closed at the end of their life.
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace qel
{

/// Repeats a call as long as a signal interrupts it.
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

    /// Closes the descriptor and returns the result of the system: 0, or an errno value. It is closed in any case.
    int Close()
    {
        const int myLast = std::exchange(myHandle, -1);
        // After an interrupted close the descriptor is closed.
        return myLast == -1 || close(myLast) == 0 || errno == EINTR ? 0 : errno;
    }

private:
    int myHandle;
};

} // namespace qel
