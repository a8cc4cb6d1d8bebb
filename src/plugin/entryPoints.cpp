/// The four entry points of the component, and the factory of its two classes.
#include "com/CountedObject.h"
#include "com/failure.h"
#include "com/QelHelperInterfaces.h"
#include "plugin/Apartment.h"
#include "plugin/LivingObject.h"
#include "plugin/Main.h"
#include "plugin/StringSortObject.h"
#include "text/encodings.h"

namespace qel
{

const char16_t* const ErrorSource = u"QelPluginAnimation";

namespace
{

/// A class that a host can create.
struct CreatableClass
{
    const CLSID* Identifier;
    const char16_t* ProgramName;
    HRESULT (*Create)(const IID* myInterface, void** theObject);
};

/// Creates an object and returns one of its interfaces.
template <class Object, class... Arguments>
HRESULT Create(const IID* myInterface, void** theObject, const Arguments&... myArguments)
{
    const HRESULT theResult = MakeCounted<Object>(myArguments...)->QueryInterface(myInterface, theObject);
    return FAILED(theResult) ? Refuse(theResult) : theResult;
}

constexpr CreatableClass Classes[] = {
    {&CLSID_Main, u"QelPluginAnimation.Main", Create<Main>},
    {&CLSID_classStringSort, u"QelPluginAnimation.classStringSort", Create<StringSortObject>},
};

class ClassFactory final : public CountedObject<IClassFactory>
{
public:
    explicit ClassFactory(const CreatableClass& theClass) : myClass(theClass) {}

    HRESULT CreateInstance(IUnknown* myOuter, const IID* myInterface, void** theObject) override
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

    HRESULT LockServer(int32_t myLock) override
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

HRESULT RegisterClasses()
{
    const std::filesystem::path myFile = Apartment::OfThisThread().ComponentFile();
    for (const CreatableClass& myClass : Classes)
    {
        const HRESULT theResult = QelRegisterClass(myClass.Identifier, myClass.ProgramName, myFile.c_str());
        if (FAILED(theResult))
        {
            return theResult;
        }
    }
    return S_OK;
}

} // namespace
} // namespace qel

/// Writes both classes into the user's registry. Fails as QelRegisterClass does.
QEL_EXTERN_C QEL_EXPORT HRESULT DllRegisterServer()
{
    return qel::Guarded(qel::RegisterClasses);
}

/// Removes both classes from the user's registry; missing ones are no failure.
QEL_EXTERN_C QEL_EXPORT HRESULT DllUnregisterServer()
{
    HRESULT theResult = S_OK;
    for (const qel::CreatableClass& myClass : qel::Classes)
    {
        const HRESULT myRemoval = QelUnregisterClass(myClass.Identifier);
        theResult = FAILED(myRemoval) ? myRemoval : theResult;
    }
    return theResult;
}

/// Returns the factory of a class. CLASS_E_CLASSNOTAVAILABLE: the component has no such class.
QEL_EXTERN_C QEL_EXPORT HRESULT DllGetClassObject(const CLSID* myClass, const IID* myInterface, void** theObject)
{
    if (myClass == nullptr || myInterface == nullptr || theObject == nullptr)
    {
        return qel::Refuse(E_POINTER);
    }
    *theObject = nullptr;
    for (const qel::CreatableClass& myCandidate : qel::Classes)
    {
        if (qel::SameId(*myClass, *myCandidate.Identifier))
        {
            return qel::Guarded([&] { return qel::Create<qel::ClassFactory>(myInterface, theObject, myCandidate); });
        }
    }
    return qel::Refuse(CLASS_E_CLASSNOTAVAILABLE);
}

/// S_OK when no object and no lock is left, else S_FALSE. The record of the module in hand does not count.
QEL_EXTERN_C QEL_EXPORT HRESULT DllCanUnloadNow()
{
    return qel::LivingObjectCount == 0 && qel::LockCount == 0 ? S_OK : S_FALSE;
}
