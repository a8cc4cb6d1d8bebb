/// The component that is checked, through its entry points.
#pragma once

#include "check/Check.h"
#include "check/expectations.h"
#include "com/interfaceTables.h"
#include "common/SharedLibrary.h"

namespace qel::host
{

/// The identifier of a class and an interface that do not exist.
inline constexpr GUID UnknownId = {0x0BADC0DE, 0x1234, 0x5678, {1, 2, 3, 4, 5, 6, 7, 8}};

/// Asks an object for an interface, which it has to have.
ComPtr<IUnknown> Query(IUnknown& myObject, const IID& myInterface, const std::string& myWhat);

/// The component of a check, opened as a host opens it, and closed at the end of the object's life.
class OpenedComponent
{
public:
    static constexpr const char* Opens = "the file opens as a shared object"; ///< what is expected of the file

    explicit OpenedComponent(const CheckContext& myContext);

    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        const auto theFunction = myLibrary.Find<Function>(myName);
        Expect(std::string("the component exports ") + myName, theFunction != nullptr);
        return theFunction;
    }
    HRESULT ClassObject(REFCLSID myClass, REFIID myInterface, void** theObject) const
    {
        return EntryPoint<DllGetClassObjectFunction>("DllGetClassObject")(myClass, myInterface, theObject);
    }
    HRESULT CanUnloadNow() const { return EntryPoint<DllCanUnloadNowFunction>("DllCanUnloadNow")(); }
    ComPtr<IClassFactory> Factory(const CLSID& myClass) const;

    template <class Interface>
    ComPtr<Interface> Create(const CLSID& myClass) const
    {
        void* theObject = nullptr;
        ExpectResult("CreateInstance", S_OK,
                     Factory(myClass)->CreateInstance(nullptr, *InterfaceId<Interface>, &theObject));
        Expect("CreateInstance returns an object", theObject != nullptr);
        return ComPtr<Interface>::Adopt(static_cast<Interface*>(theObject));
    }
    ComPtr<QelPlugin> Plugin() const { return Create<QelPlugin>(CLSID_Main); }

private:
    SharedLibrary myLibrary;
};

} // namespace qel::host
