/// Opens a build of the component through its entry points, as a host does.
#pragma once

#include "com/qelcom.h"
#include "com/QelHelperInterfaces.h"
#include "compare.h"

#include <dlfcn.h>

namespace qel::bench
{

/// Returns an object of the component, which stays loaded until the process ends. Ends the program if that fails.
inline QelPlugin& OpenComponent(const std::filesystem::path& myFile)
{
    void* const myLibrary = dlopen(myFile.c_str(), RTLD_NOW | RTLD_LOCAL);
    Require(myLibrary != nullptr, "the component loads");
    const auto myEntry = reinterpret_cast<DllGetClassObjectFunction>(dlsym(myLibrary, "DllGetClassObject"));
    void* myObject = nullptr;
    Require(myEntry(CLSID_Main, IID_IClassFactory, &myObject) == S_OK, "it has its class");
    auto* const myFactory = static_cast<IClassFactory*>(myObject);
    Require(myFactory->CreateInstance(nullptr, IID_QelPlugin, &myObject) == S_OK, "it makes its object");
    return *static_cast<QelPlugin*>(myObject);
}

} // namespace qel::bench
