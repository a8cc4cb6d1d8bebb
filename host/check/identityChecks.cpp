// Checks of the rules that every counted object keeps.
#include "check/moduleTexts.h"
#include "check/OpenedComponent.h"

namespace qel::host
{

namespace
{

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

void OneUnknown(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    for (const auto& [myClass, myInterfaces] : Classes)
    {
        const auto myObject = myComponent.Create<IUnknown>(*myClass);
        for (const auto& [myInterface, myName] : myInterfaces)
        {
            const auto myOther =
                Query(*myObject.Get(), *myInterface, std::string("QueryInterface of IUnknown for ") + myName);
            Expect(std::string(myName) + " of an object returns the same IUnknown as the others",
                   Query(*myOther.Get(), IID_IUnknown, "QueryInterface for IUnknown").Get() == myObject.Get());
        }
        Expect("two objects have two identities", myComponent.Create<IUnknown>(*myClass).Get() != myObject.Get());
    }
}

void QueryRules(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
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
                         myFirst->QueryInterface(UnknownId, &myNone));
            Expect("a failed QueryInterface returns null", myNone == nullptr);
            ExpectResult("QueryInterface of " + myName + " without a place", E_POINTER,
                         myFirst->QueryInterface(IID_IUnknown, nullptr));
        }
    }
}

void Counts(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
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
        myObject->QueryInterface(UnknownId, &myNone);
        ExpectNumber("the last Release", 0, myObject.Detach()->Release());
        ExpectResult("DllCanUnloadNow after it", S_OK, myComponent.CanUnloadNow());
    }
}

/// Expects the result of a call that has just failed, with a source and a description.
void ExpectOwnFailure(const std::string& myWhat, HRESULT myExpected, HRESULT myGot)
{
    ExpectResult(myWhat, myExpected, myGot);
    const FailureTexts myFailure;
    ExpectText("the source of the failure of " + myWhat, u"QelPluginAnimation", myFailure.Source);
    Expect("the failure of " + myWhat + " has a description", !myFailure.Description.empty());
}

void ErrorInfo(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    for (const auto& [myClass, myInterfaces] : Classes)
    {
        const auto mySupport = myComponent.Create<ISupportErrorInfo>(*myClass);
        for (size_t i = 0; i < myInterfaces.size(); ++i)
        {
            ExpectResult(std::string("InterfaceSupportsErrorInfo of ") + myInterfaces[i].Name,
                         i < GeneralInterfaces ? S_FALSE : S_OK,
                         mySupport->InterfaceSupportsErrorInfo(*myInterfaces[i].Id));
        }
        ExpectResult("InterfaceSupportsErrorInfo of another's interface", S_FALSE,
                     mySupport->InterfaceSupportsErrorInfo(IID_QelDatabase));
    }
    const auto myFactory = myComponent.Factory(CLSID_Main);
    const auto myPlugin = myComponent.Plugin();
    void* myObject = nullptr;
    VARIANT_BOOL myAnswer = VARIANT_TRUE;
    ExpectOwnFailure("a date out of range", QEL_RESULT(0x800A0006U),
                     Write(*myPlugin.Get(), u"<pg.param name=\"from\" value=\"1e9\">"));
    ExpectOwnFailure("CallBack without a number", E_POINTER, myPlugin->CallBack(nullptr, &myAnswer));
    ExpectNumber("the answer of a failed CallBack", VARIANT_FALSE, myAnswer);
    ExpectOwnFailure("QelThumbnails without a place", E_POINTER, myPlugin->putref_QelThumbnails(nullptr));
    ExpectOwnFailure("DllGetClassObject of an unknown class", CLASS_E_CLASSNOTAVAILABLE,
                     myComponent.ClassObject(UnknownId, IID_IClassFactory, &myObject));
    ExpectOwnFailure("CreateInstance for an unknown interface", E_NOINTERFACE,
                     myFactory->CreateInstance(nullptr, UnknownId, &myObject));
    ExpectOwnFailure("CreateInstance inside another object", CLASS_E_NOAGGREGATION,
                     myFactory->CreateInstance(myFactory.Get(), IID_IUnknown, &myObject));
}

constexpr Check IdentityCheckList[] = {
    {"identity.unknown", "An object has one IUnknown, whichever interface it is asked of", OneUnknown},
    {"identity.query", "Each interface of an object leads to every other and back, and to no unknown one", QueryRules},
    {"identity.counts", "References are counted, and the last Release ends the object", Counts},
    {"identity.error-info", "Failures leave their source and a description, as ISupportErrorInfo says", ErrorInfo},
};

} // namespace

std::span<const Check> IdentityChecks()
{
    return IdentityCheckList;
}

} // namespace qel::host
