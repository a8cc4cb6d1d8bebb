/// A shared library that a test loads.
#pragma once

#include "platform/windows/windowsHeaders.h"

#include <string>

namespace qel
{

/// The file of a component of this name.
inline std::string LibraryFile(const std::string& myName)
{
    return myName + ".dll";
}

/// A loaded library, which the destructor unloads.
class Library
{
public:
    explicit Library(const std::string& myPath) : myLibrary(LoadLibraryA(myPath.c_str())) {}
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library()
    {
        if (IsLoaded())
        {
            FreeLibrary(myLibrary);
        }
    }

    bool IsLoaded() const { return myLibrary != nullptr; }

    /// The export of this name; null if there is none.
    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(myLibrary, myName)));
    }

private:
    HMODULE myLibrary;
};

} // namespace qel
