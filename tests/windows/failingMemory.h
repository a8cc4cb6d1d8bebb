/// Memory that runs out when a test says so, for a library that the program has loaded.
#pragma once

#include "com/qelcom.h"
#include "memoryLimit.h"
#include "platform/windows/windowsHeaders.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

inline void* AllocateOrFail(size_t mySize)
{
    return MemoryIsOut() ? nullptr : std::malloc(mySize);
}
inline BSTR WINAPI AllocateTextOrFail(const OLECHAR* myText, UINT myLength)
{
    return MemoryIsOut() ? nullptr : SysAllocStringLen(myText, myLength);
}

/// Replaces the functions that give memory out for the loaded library that an address is in, and for what is linked
/// into it.
inline void ReplaceMemoryFunctionsOf(const void* myAddress)
{
    // The table of the addresses of all functions that it calls in other libraries.
    MEMORY_BASIC_INFORMATION myLibrary = {};
    VirtualQuery(myAddress, &myLibrary, sizeof(myLibrary));
    auto* const myModule = static_cast<uint8_t*>(myLibrary.AllocationBase);
    const auto& myHeaders = *reinterpret_cast<const IMAGE_NT_HEADERS*>(
        myModule + reinterpret_cast<const IMAGE_DOS_HEADER*>(myModule)->e_lfanew);
    const auto& myPlace = myHeaders.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
    auto* const theFirst = reinterpret_cast<void**>(myModule + myPlace.VirtualAddress);
    auto* const theEnd = theFirst + myPlace.Size / sizeof(void*);
    DWORD myProtection = 0;
    VirtualProtect(theFirst, myPlace.Size, PAGE_READWRITE, &myProtection);
    const auto Address = [](const wchar_t* myOwner, const char* myName)
    {
        return reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(myOwner), myName));
    };
    std::replace(theFirst, theEnd, Address(L"msvcrt.dll", "malloc"), reinterpret_cast<void*>(&AllocateOrFail));
    std::replace(theFirst, theEnd, Address(L"oleaut32.dll", "SysAllocStringLen"),
                 reinterpret_cast<void*>(&AllocateTextOrFail));
}
