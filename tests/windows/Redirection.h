/// Functions of the system that a test replaces.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qel
{

/// While an object lives, every call of a function in this process goes to another one with the same parameters.
class Redirection
{
public:
    template <class Function>
    Redirection(const wchar_t* myLibrary, const char* myName, Function* myReplacement)
        : thePlace(reinterpret_cast<uint8_t*>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(myLibrary), myName))))
    {
        DWORD myProtection = 0;
        VirtualProtect(thePlace, myOld.size(), PAGE_EXECUTE_READWRITE, &myProtection);
        std::copy_n(thePlace, myOld.size(), myOld.begin());
        // A jump: the address into the accumulator, and on to there. In 32 bits the first byte of it is left out.
        std::array<uint8_t, 12> myJump = {0x48, 0xB8};
        myJump[2 + sizeof(myReplacement)] = 0xFF;
        myJump[3 + sizeof(myReplacement)] = 0xE0;
        std::memcpy(&myJump[2], &myReplacement, sizeof(myReplacement));
        constexpr size_t First = sizeof(myReplacement) == 8 ? 0 : 1;
        std::copy_n(&myJump[First], 4 + sizeof(myReplacement) - First, thePlace);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection() { std::ranges::copy(myOld, thePlace); }

private:
    uint8_t* thePlace;
    std::array<uint8_t, 12> myOld;
};

} // namespace qel
