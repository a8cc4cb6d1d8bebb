// Checks of the entry points, and of the rules that every counted object keeps.
#include "check/CheckSupport.h"

#include "site/siteFiles.h"
#include "text/encodings.h"

#include <array>
#include <cstring>
#include <set>

#include <elf.h>
#include <link.h>

namespace qel::host
{

namespace
{

constexpr GUID UnknownId = {0x0BADC0DE, 0x1234, 0x5678, {1, 2, 3, 4, 5, 6, 7, 8}};

ComPtr<IUnknown> Query(IUnknown& myObject, const IID& myInterface, const std::string& myWhat)
{
    void* theObject = nullptr;
    ExpectResult(myWhat, S_OK, myObject.QueryInterface(&myInterface, &theObject));
    Expect(myWhat + " gives an object", theObject != nullptr);
    return ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(theObject));
}

/// A record at a place in a file's bytes. Fails the check if the file ends before.
template <class Record>
Record RecordAt(const std::string& myBytes, size_t myPlace)
{
    Record theRecord{};
    if (myPlace > myBytes.size() || myBytes.size() - myPlace < sizeof theRecord)
    {
        FailCheck("the file is whole", "it ends before its tables do");
    }
    std::memcpy(&theRecord, myBytes.data() + myPlace, sizeof theRecord);
    return theRecord;
}

/// The names that a shared object gives to others.
std::set<std::string> ExportsOf(const std::string& myBytes)
{
    const auto myHeader = RecordAt<ElfW(Ehdr)>(myBytes, 0);
    const auto Section = [&](size_t myIndex)
    {
        return RecordAt<ElfW(Shdr)>(myBytes, myHeader.e_shoff + myIndex * sizeof(ElfW(Shdr)));
    };
    std::set<std::string> theNames;
    for (size_t i = 0; i < myHeader.e_shnum; ++i)
    {
        const auto mySymbols = Section(i);
        if (mySymbols.sh_type != SHT_DYNSYM)
        {
            continue;
        }
        const auto myTexts = Section(mySymbols.sh_link);
        for (size_t myOffset = 0; myOffset < mySymbols.sh_size; myOffset += sizeof(ElfW(Sym)))
        {
            const auto mySymbol = RecordAt<ElfW(Sym)>(myBytes, mySymbols.sh_offset + myOffset);
            if (mySymbol.st_shndx != SHN_UNDEF && ELF64_ST_BIND(mySymbol.st_info) != STB_LOCAL)
            {
                RecordAt<char>(myBytes, myTexts.sh_offset + mySymbol.st_name);
                theNames.insert(myBytes.data() + myTexts.sh_offset + mySymbol.st_name);
            }
        }
        return theNames;
    }
    throw Outcome{CheckResult::Skipped, "a file with a table of sections", "it has been stripped of it"};
}

void Exports(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    Text theNames;
    for (const std::string& myName : ExportsOf(ReadWholeFile(myTrial.File)))
    {
        theNames += FromUtf8(myName) + u" ";
    }
    ExpectText("the exported names", u"DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer ",
               theNames);
}

void UnknownClass(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    void* myObject = &myObject;
    ExpectResult("DllGetClassObject of an unknown class", CLASS_E_CLASSNOTAVAILABLE,
                 myComponent.ClassObject(&UnknownId, &IID_IClassFactory, &myObject));
    Expect("a failed DllGetClassObject gives null", myObject == nullptr);
}

void UnknownInterface(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    void* myObject = &myObject;
    ExpectResult("DllGetClassObject for an unknown interface", E_NOINTERFACE,
                 myComponent.ClassObject(&CLSID_Main, &UnknownId, &myObject));
    Expect("a failed DllGetClassObject gives null", myObject == nullptr);
    for (const CLSID* myClass : {&CLSID_Main, &CLSID_classStringSort})
    {
        const auto myFactory = myComponent.Factory(*myClass);
        for (const IID* myInterface : {&IID_IUnknown, &IID_IClassFactory})
        {
            Query(*myFactory.Get(), *myInterface, "QueryInterface of a factory");
        }
        myObject = &myObject;
        ExpectResult("QueryInterface of a factory for an unknown interface", E_NOINTERFACE,
                     myFactory->QueryInterface(&UnknownId, &myObject));
        Expect("a failed QueryInterface of a factory gives null", myObject == nullptr);
        myObject = &myObject;
        ExpectResult("CreateInstance for an unknown interface", E_NOINTERFACE,
                     myFactory->CreateInstance(nullptr, &UnknownId, &myObject));
        Expect("a failed CreateInstance gives null", myObject == nullptr);
    }
    ExpectResult("DllCanUnloadNow after failures", S_OK, myComponent.CanUnloadNow());
}

void NullPointers(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    void* myObject = nullptr;
    ExpectResult("DllGetClassObject without a place", E_POINTER,
                 myComponent.ClassObject(&CLSID_Main, &IID_IClassFactory, nullptr));
    ExpectResult("DllGetClassObject without a class", E_POINTER,
                 myComponent.ClassObject(nullptr, &IID_IClassFactory, &myObject));
    ExpectResult("DllGetClassObject without an interface", E_POINTER,
                 myComponent.ClassObject(&CLSID_Main, nullptr, &myObject));
    const auto myFactory = myComponent.Factory(CLSID_Main);
    ExpectResult("CreateInstance without a place", E_POINTER,
                 myFactory->CreateInstance(nullptr, &IID_QelPlugin, nullptr));
    ExpectResult("CreateInstance without an interface", E_POINTER,
                 myFactory->CreateInstance(nullptr, nullptr, &myObject));
    ExpectResult("QueryInterface without a place", E_POINTER, myFactory->QueryInterface(&IID_IUnknown, nullptr));
    ExpectResult("QueryInterface without an interface", E_POINTER, myFactory->QueryInterface(nullptr, &myObject));
}

void Aggregation(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    for (const CLSID* myClass : {&CLSID_Main, &CLSID_classStringSort})
    {
        const auto myFactory = myComponent.Factory(*myClass);
        void* myObject = &myObject;
        ExpectResult("CreateInstance inside another object", CLASS_E_NOAGGREGATION,
                     myFactory->CreateInstance(myFactory.Get(), &IID_IUnknown, &myObject));
        Expect("a refused CreateInstance gives null", myObject == nullptr);
    }
}

void UnloadCount(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto ExpectLoaded = [&](const std::string& myWhat, bool myStays)
    {
        ExpectResult("DllCanUnloadNow " + myWhat, myStays ? S_FALSE : S_OK, myComponent.CanUnloadNow());
    };
    ExpectLoaded("at first", false);
    auto myFactory = myComponent.Factory(CLSID_Main);
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

void Registration(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto Unregister = myComponent.EntryPoint<DllUnregisterServerFunction>("DllUnregisterServer");
    ExpectResult("DllRegisterServer", S_OK, myComponent.EntryPoint<DllRegisterServerFunction>("DllRegisterServer")());
    for (const char16_t* myName : {u"QelPluginAnimation.Main", u"QelPluginAnimation.classStringSort"})
    {
        CLSID myClass{};
        void* myObject = nullptr;
        ExpectResult("CLSIDFromProgID of " + ToUtf8(myName), S_OK, CLSIDFromProgID(myName, &myClass));
        ExpectResult("CoCreateInstance of " + ToUtf8(myName), S_OK,
                     CoCreateInstance(&myClass, nullptr, CLSCTX_INPROC_SERVER, &IID_IDispatch, &myObject));
        ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(myObject));
    }
    ExpectResult("DllUnregisterServer", S_OK, Unregister());
    for (const char16_t* myName : {u"QelPluginAnimation.Main", u"QelPluginAnimation.classStringSort"})
    {
        CLSID myClass{};
        ExpectResult(ToUtf8(myName) + " after DllUnregisterServer", CO_E_CLASSSTRING,
                     CLSIDFromProgID(myName, &myClass));
    }
    ExpectResult("DllUnregisterServer once more", S_OK, Unregister());
}

void Unloading(const Trial& myTrial)
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
            const OpenedComponent myComponent(myTrial);
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

// ---- Identity ----------------------------------------------------------------------------------------------------

struct NamedInterface
{
    const IID* Id;
    const char* Name;
};

struct ClassInterfaces
{
    const CLSID* Class;
    std::vector<NamedInterface> Interfaces;
};

/// The creatable classes with what each answers: three general interfaces, then those of the class.
const ClassInterfaces Classes[] = {
    {&CLSID_Main,
     {{&IID_IUnknown, "IUnknown"},
      {&IID_IDispatch, "IDispatch"},
      {&IID_ISupportErrorInfo, "ISupportErrorInfo"},
      {&IID_QelPluginAnimationMain, "QelPluginAnimationMain"},
      {&IID_QelPlugin, "QelPlugin"},
      {&IID_QelInfo, "QelInfo"}}},
    {&CLSID_classStringSort,
     {{&IID_IUnknown, "IUnknown"},
      {&IID_IDispatch, "IDispatch"},
      {&IID_ISupportErrorInfo, "ISupportErrorInfo"},
      {&IID_QelStringSort, "QelStringSort"}}},
};
constexpr size_t GeneralInterfaces = 3;

void OneUnknown(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    for (const auto& [myClass, myInterfaces] : Classes)
    {
        const auto myObject = myComponent.Create<IUnknown>(*myClass);
        for (const auto& [myInterface, myName] : myInterfaces)
        {
            const auto myOther =
                Query(*myObject.Get(), *myInterface, std::string("QueryInterface of IUnknown for ") + myName);
            Expect(std::string(myName) + " of an object gives the same IUnknown as the others",
                   Query(*myOther.Get(), IID_IUnknown, "QueryInterface for IUnknown").Get() == myObject.Get());
        }
        Expect("two objects are two", myComponent.Create<IUnknown>(*myClass).Get() != myObject.Get());
    }
}

void QueryRules(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    for (const auto& [myClass, myInterfaces] : Classes)
    {
        const auto myObject = myComponent.Create<IUnknown>(*myClass);
        for (const auto& [myInterface, myInterfaceName] : myInterfaces)
        {
            const std::string myName = myInterfaceName;
            const auto myFirst = Query(*myObject.Get(), *myInterface, "QueryInterface for " + myName);
            for (const auto& [myTarget, myTargetName] : myInterfaces)
            {
                const auto mySecond =
                    Query(*myFirst.Get(), *myTarget, "QueryInterface of " + myName + " for " + myTargetName);
                Query(*mySecond.Get(), *myInterface,
                      std::string("QueryInterface of ") + myTargetName + " back to " + myName);
            }
            void* myNone = &myNone;
            ExpectResult("QueryInterface of " + myName + " for an unknown one", E_NOINTERFACE,
                         myFirst->QueryInterface(&UnknownId, &myNone));
            Expect("a failed QueryInterface gives null", myNone == nullptr);
            ExpectResult("QueryInterface of " + myName + " without a place", E_POINTER,
                         myFirst->QueryInterface(&IID_IUnknown, nullptr));
            ExpectResult("QueryInterface of " + myName + " without an interface", E_POINTER,
                         myFirst->QueryInterface(nullptr, &myNone));
        }
    }
}

void Counts(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    for (const auto& [myClass, myInterfaces] : Classes)
    {
        auto myObject = myComponent.Create<IUnknown>(*myClass);
        ExpectNumber("AddRef of a new object", 2, myObject->AddRef());
        ExpectNumber("Release after it", 1, myObject->Release());
        for (const auto& [myInterface, myName] : myInterfaces)
        {
            auto myOther = Query(*myObject.Get(), *myInterface, "QueryInterface");
            ExpectNumber(std::string("references after QueryInterface for ") + myName, 2, HoldersOf(*myObject.Get()));
            myOther.Reset();
            ExpectNumber("references after its Release", 1, HoldersOf(*myObject.Get()));
        }
        void* myNone = nullptr;
        myObject->QueryInterface(&UnknownId, &myNone);
        ExpectNumber("the last Release", 0, myObject.Detach()->Release());
        ExpectResult("DllCanUnloadNow after it", S_OK, myComponent.CanUnloadNow());
    }
}

void ErrorInfo(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    for (const auto& [myClass, myInterfaces] : Classes)
    {
        const auto mySupport = myComponent.Create<ISupportErrorInfo>(*myClass);
        for (size_t i = 0; i < myInterfaces.size(); ++i)
        {
            ExpectResult(std::string("InterfaceSupportsErrorInfo of ") + myInterfaces[i].Name,
                         i < GeneralInterfaces ? S_FALSE : S_OK,
                         mySupport->InterfaceSupportsErrorInfo(myInterfaces[i].Id));
        }
        ExpectResult("InterfaceSupportsErrorInfo of another's interface", S_FALSE,
                     mySupport->InterfaceSupportsErrorInfo(&IID_QelDatabase));
        ExpectResult("InterfaceSupportsErrorInfo of a null pointer", E_POINTER,
                     mySupport->InterfaceSupportsErrorInfo(nullptr));
    }
    const auto myPlugin = myComponent.Plugin();
    ExpectResult("a date out of range", QEL_RESULT(0x800A0006U),
                 Write(*myPlugin.Get(), u"<pg.param name=\"from\" value=\"1e9\">"));
    const FailureTexts myFailure;
    ExpectText("the source of a failure", u"QelPluginAnimation", myFailure.Source);
    Expect("a failure has a description", !myFailure.Description.empty());
}

constexpr Check Checks[] = {
    {"entry.exports", "The component exports its four entry points and nothing else", Exports},
    {"entry.unknown-class", "A class that it does not have is refused", UnknownClass},
    {"entry.unknown-interface", "An interface that a class does not have is refused", UnknownInterface},
    {"entry.null-pointers", "The entry points and the factory refuse null pointers", NullPointers},
    {"entry.aggregation", "Its objects cannot be made part of others", Aggregation},
    {"entry.unload-count", "It stays loaded while an object, a factory or a lock is left, and no longer", UnloadCount},
    {"entry.registration", "Registered, its two classes can be created by name, and it can be taken out again",
     Registration},
    {"entry.unloading", "Unloaded with services in hand it does not call the host, and it can be loaded again",
     Unloading},
    {"identity.unknown", "An object has one IUnknown, whichever interface it is asked of", OneUnknown},
    {"identity.query", "Each interface of an object leads to every other and back, and to no unknown one", QueryRules},
    {"identity.counts", "References are counted, and the last Release ends the object", Counts},
    {"identity.error-info", "Failures leave their source and a description, as ISupportErrorInfo says", ErrorInfo},
};

} // namespace

std::span<const Check> EntryChecks()
{
    return Checks;
}

} // namespace qel::host
