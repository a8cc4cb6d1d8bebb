// Checks of the entry points.
#include "check/runCheck.h"
#include "check/ServedPlugin.h"
#include "check/system.h"
#include "text/encodings.h"

namespace qel::host
{

namespace
{

/// What every other check begins with.
void Opening(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    myComponent.Create<IUnknown>(CLSID_Main);
    myComponent.Create<IUnknown>(CLSID_classStringSort);
    NoteStep("making an object of each class");
    myComponent.CanUnloadNow();
}

void Exports(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    Text theNames;
    for (const std::string& myName : ExportedNames(myContext.File))
    {
        theNames += FromUtf8(myName) + u" ";
    }
    ExpectText("the exported names", u"DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer ",
               theNames);
}

void UnknownClass(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    void* myObject = &myObject;
    ExpectResult("DllGetClassObject of an unknown class", CLASS_E_CLASSNOTAVAILABLE,
                 myComponent.ClassObject(UnknownId, IID_IClassFactory, &myObject));
    Expect("a failed DllGetClassObject returns null", myObject == nullptr);
}

void UnknownInterface(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    void* myObject = &myObject;
    ExpectResult("DllGetClassObject for an unknown interface", E_NOINTERFACE,
                 myComponent.ClassObject(CLSID_Main, UnknownId, &myObject));
    Expect("a failed DllGetClassObject returns null", myObject == nullptr);
    for (const CLSID* myClass : {&CLSID_Main, &CLSID_classStringSort})
    {
        const auto myFactory = myComponent.Factory(*myClass);
        for (const IID* myInterface : {&IID_IUnknown, &IID_IClassFactory})
        {
            Query(*myFactory.Get(), *myInterface, "QueryInterface of a factory");
        }
        myObject = &myObject;
        ExpectResult("QueryInterface of a factory for an unknown interface", E_NOINTERFACE,
                     myFactory->QueryInterface(UnknownId, &myObject));
        Expect("a failed QueryInterface of a factory returns null", myObject == nullptr);
        myObject = &myObject;
        ExpectResult("CreateInstance for an unknown interface", E_NOINTERFACE,
                     myFactory->CreateInstance(nullptr, UnknownId, &myObject));
        Expect("a failed CreateInstance returns null", myObject == nullptr);
    }
    ExpectResult("DllCanUnloadNow after failures", S_OK, myComponent.CanUnloadNow());
}

void NullPointersToEntries(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ExpectResult("DllGetClassObject without a place", E_POINTER,
                 myComponent.ClassObject(CLSID_Main, IID_IClassFactory, nullptr));
    const auto myFactory = myComponent.Factory(CLSID_Main);
    ExpectResult("CreateInstance without a place", E_POINTER,
                 myFactory->CreateInstance(nullptr, IID_QelPlugin, nullptr));
    ExpectResult("QueryInterface without a place", E_POINTER, myFactory->QueryInterface(IID_IUnknown, nullptr));
}

void Aggregation(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    for (const CLSID* myClass : {&CLSID_Main, &CLSID_classStringSort})
    {
        const auto myFactory = myComponent.Factory(*myClass);
        void* myObject = &myObject;
        ExpectResult("CreateInstance inside another object", CLASS_E_NOAGGREGATION,
                     myFactory->CreateInstance(myFactory.Get(), IID_IUnknown, &myObject));
        Expect("a refused CreateInstance returns null", myObject == nullptr);
    }
}

void UnloadCount(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto ExpectLoaded = [&](const std::string& myWhat, bool myStays)
    {
        ExpectResult("DllCanUnloadNow " + myWhat, myStays ? S_FALSE : S_OK, myComponent.CanUnloadNow());
    };
    ExpectLoaded("at first", false);
    auto myFactory = myComponent.Factory(CLSID_Main);
    ExpectResult("LockServer, undone before there is a lock", S_OK, myFactory->LockServer(0));
    ExpectLoaded("with a factory", true);
    auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    auto myPlugin = myComponent.Plugin();
    ExpectResult("LockServer", S_OK, myFactory->LockServer(1));
    myFactory.Reset();
    ExpectLoaded("with two objects and a lock", true);
    mySort.Reset();
    ExpectLoaded("with an object and a lock", true);
    Write(*myPlugin.Get(), u"");
    myPlugin.Reset();
    ExpectLoaded("with a lock", true);
    ExpectResult("LockServer, undone", S_OK, myComponent.Factory(CLSID_classStringSort)->LockServer(0));
    ExpectLoaded("at last, with only the record of a module left", false);
}

void Registration(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto Unregister = myComponent.EntryPoint<DllUnregisterServerFunction>("DllUnregisterServer");
    ExpectResult("DllRegisterServer", S_OK, myComponent.EntryPoint<DllRegisterServerFunction>("DllRegisterServer")());
    for (const char16_t* myName : {u"QelPluginAnimation.Main", u"QelPluginAnimation.classStringSort"})
    {
        void* myObject = nullptr;
        ExpectResult("creating " + ToUtf8(myName), S_OK, CreateByName(myName, IID_IDispatch, &myObject));
        ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(myObject));
    }
    ExpectResult("DllUnregisterServer", S_OK, Unregister());
    for (const char16_t* myName : {u"QelPluginAnimation.Main", u"QelPluginAnimation.classStringSort"})
    {
        void* myObject = nullptr;
        ExpectResult("creating " + ToUtf8(myName) + " after DllUnregisterServer", CO_E_CLASSSTRING,
                     CreateByName(myName, IID_IDispatch, &myObject));
    }
    ExpectResult("DllUnregisterServer once more", S_OK, Unregister());
}

void Unloading(const CheckContext& myContext)
{
    HostState myState;
    const auto myHelper = MakeCounted<CheckedHelper>(myState);
    const auto myDatabase = MakeCounted<CheckedDatabase>(myState);
    const auto References = [&]
    {
        return HoldersOf(*myHelper.Get()) + HoldersOf(*myDatabase.Get());
    };
    for (int i = 0; i < 2; ++i) // the second time everything is made anew
    {
        int64_t myHeld = 0;
        {
            const OpenedComponent myComponent(myContext);
            const auto myPlugin = myComponent.Plugin();
            QelBuildHelper* myService = myHelper.Get();
            QelDatabase* myOther = myDatabase.Get();
            ExpectResult("QelBuildHelper", S_OK, myPlugin->putref_QelBuildHelper(&myService));
            ExpectResult("QelDatabase", S_OK, myPlugin->putref_QelDatabase(&myOther));
            myHeld = References();
        }
        ExpectNumber("references to the services after unloading", myHeld, References());
    }
    ExpectNumber("calls into the host", 0, static_cast<int64_t>(myState.Calls.size()));
}

constexpr Check EntryCheckList[] = {
    {"entry.opening", "The component opens, creates its objects and closes", Opening},
    {"entry.exports", "The component exports its four entry points and nothing else", Exports},
    {"entry.unknown-class", "A class that it does not have is refused", UnknownClass},
    {"entry.unknown-interface", "An interface that a class does not have is refused", UnknownInterface},
    {"entry.null-pointers", "The entry points and the factory refuse null pointers", NullPointersToEntries},
    {"entry.aggregation", "Its objects cannot be made part of others", Aggregation},
    {"entry.unload-count", "It stays loaded while an object, a factory or a lock is left, and no longer", UnloadCount},
    {"entry.registration", "Registered, its two classes can be created by name, and it can be unregistered again",
     Registration},
    {"entry.unloading", "Unloaded with services in hand it does not call the host, and it can be loaded again",
     Unloading},
};

} // namespace

std::span<const Check> EntryChecks()
{
    return EntryCheckList;
}

} // namespace qel::host
