/// The component as a host loads it.
#pragma once

#include "com/comHostServices.h"
#include "common/SharedLibrary.h"

#include <filesystem>

namespace qel
{

/// Unloads the component when it is destroyed. A call that fails throws.
class LoadedComponent
{
public:
    explicit LoadedComponent(const std::filesystem::path& myFile) : myLibrary(myFile) {}

    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return myLibrary.Find<Function>(myName);
    }

    ComPtr<IClassFactory> Factory() const
    {
        ComPtr<IClassFactory> theFactory;
        const auto myClassObject = EntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
        CheckHostCall(myClassObject(CLSID_Main, IID_IClassFactory, reinterpret_cast<void**>(theFactory.Receive())));
        return theFactory;
    }

    ComPtr<QelPlugin> Plugin() const
    {
        ComPtr<QelPlugin> thePlugin;
        CheckHostCall(Factory()->CreateInstance(nullptr, IID_QelPlugin, reinterpret_cast<void**>(thePlugin.Receive())));
        return thePlugin;
    }

private:
    const host::SharedLibrary myLibrary;
};

} // namespace qel
