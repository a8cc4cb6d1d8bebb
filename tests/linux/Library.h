/// A shared library that a test loads.
#pragma once

#include <dlfcn.h>
#include <string>

namespace qel
{

/// The file of a component of this name.
inline std::string LibraryFile(const std::string& myName)
{
    return myName + ".so";
}

/// It is closed when the object goes.
class Library
{
public:
    explicit Library(const std::string& myPath) : myLibrary(dlopen(myPath.c_str(), RTLD_NOW | RTLD_LOCAL)) {}
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library()
    {
        if (IsLoaded())
        {
            dlclose(myLibrary);
        }
    }

    bool IsLoaded() const { return myLibrary != nullptr; }

    /// The export of this name; null if there is none.
    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return reinterpret_cast<Function>(dlsym(myLibrary, myName));
    }

private:
    void* myLibrary;
};

} // namespace qel
