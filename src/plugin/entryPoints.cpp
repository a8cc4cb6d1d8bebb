/// The four entry points of the component, and the factory of its two classes.
#include "com/CountedObject.h"
#include "com/failure.h"
#include "com/QelHelperInterfaces.h"
#include "com/registration.h"
#include "platform/LivingObject.h"
#include "plugin/Apartment.h"
#include "plugin/Main.h"
#include "plugin/StringSortObject.h"

#include <array>

namespace qel
{

const char16_t* const ErrorSource = u"QelPluginAnimation";

namespace
{

/// A class that a host can create.
struct CreatableClass
{
    RegisteredClass Entry;
    HRESULT (*Create)(const IID& myInterface, void** theObject);
};

/// Creates an object and returns one of its interfaces.
template <class Object, class... Arguments>
HRESULT Create(const IID& myInterface, void** theObject, const Arguments&... myArguments)
{
    const HRESULT theResult = MakeCounted<Object>(myArguments...)->QueryInterface(myInterface, theObject);
    return FAILED(theResult) ? Refuse(theResult) : theResult;
}

constexpr CreatableClass Classes[] = {
    {{&CLSID_Main, u"QelPluginAnimation.Main"}, Create<Main>},
    {{&CLSID_classStringSort, u"QelPluginAnimation.classStringSort"}, Create<StringSortObject>},
};

constexpr std::array RegistryEntries = {Classes[0].Entry, Classes[1].Entry};
static_assert(RegistryEntries.size() == std::size(Classes));

class ClassFactory final : public CountedObject<IClassFactory>
{
public:
    explicit ClassFactory(const CreatableClass& theClass) : myClass(theClass) {}

    STDMETHODIMP CreateInstance(IUnknown* myOuter, REFIID myInterface, void** theObject) override
    {
        if (theObject == nullptr)
        {
            return Refuse(E_POINTER);
        }
        *theObject = nullptr;
        if (myOuter != nullptr)
        {
            return Refuse(CLASS_E_NOAGGREGATION);
        }
        return Guarded([&] { return myClass.Create(myInterface, theObject); });
    }

    STDMETHODIMP LockServer(BOOL myLock) override
    {
        if (myLock != 0)
        {
            ++LockCount;
        }
        else
        {
            Unlock();
        }
        return S_OK;
    }

private:
    const CreatableClass& myClass;
    LivingObject myLife;
};

} // namespace
} // namespace qel

/// Registers both classes. qelcom.h documents the four functions.
STDAPI DllRegisterServer()
{
    return qel::Guarded(
        [] { return qel::RegisterClasses(qel::RegistryEntries, qel::Apartment::OfThisThread().ComponentFile()); });
}

STDAPI DllUnregisterServer()
{
    return qel::Guarded(
        [] { return qel::UnregisterClasses(qel::RegistryEntries, qel::Apartment::OfThisThread().ComponentFile()); });
}

STDAPI DllGetClassObject(REFCLSID myClass, REFIID myInterface, void** theObject)
{
    if (theObject == nullptr)
    {
        return qel::Refuse(E_POINTER);
    }
    *theObject = nullptr;
    for (const qel::CreatableClass& myCandidate : qel::Classes)
    {
        if (qel::SameId(myClass, *myCandidate.Entry.Identifier))
        {
            return qel::Guarded([&] { return qel::Create<qel::ClassFactory>(myInterface, theObject, myCandidate); });
        }
    }
    return qel::Refuse(CLASS_E_CLASSNOTAVAILABLE);
}

STDAPI DllCanUnloadNow()
{
    return qel::LivingObjectCount == 0 && qel::LockCount == 0 ? S_OK : S_FALSE;
}
