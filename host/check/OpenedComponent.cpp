#include "check/OpenedComponent.h"

#include "common/Failure.h"

namespace qel::host
{

namespace
{

SharedLibrary Open(const std::filesystem::path& myFile)
{
    try
    {
        return SharedLibrary(myFile);
    }
    catch (const Failure& myFailure)
    {
        FailCheck(OpenedComponent::Opens, myFailure.what());
    }
}

} // namespace

ComPtr<IUnknown> Query(IUnknown& myObject, const IID& myInterface, const std::string& myWhat)
{
    void* theObject = nullptr;
    ExpectResult(myWhat, S_OK, myObject.QueryInterface(myInterface, &theObject));
    Expect(myWhat + " gives an object", theObject != nullptr);
    return ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(theObject));
}

OpenedComponent::OpenedComponent(const CheckContext& myContext) : myLibrary(Open(myContext.File)) {}

ComPtr<IClassFactory> OpenedComponent::Factory(const CLSID& myClass) const
{
    void* theFactory = nullptr;
    ExpectResult("DllGetClassObject", S_OK, ClassObject(myClass, IID_IClassFactory, &theFactory));
    Expect("DllGetClassObject returns an object", theFactory != nullptr);
    return ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(theFactory));
}

} // namespace qel::host
