// Checks of every member, late-bound.
#include "check/ServedPlugin.h"
#include "check/system.h"
#include "com/Bstr.h"
#include "text/encodings.h"

#include <algorithm>
#include <map>
#include <utility>

// What OpenedComponent gives is never null; a check ends where it would be.
// NOLINTBEGIN(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)

namespace qel::host
{

namespace
{

constexpr uint16_t Method = DISPATCH_METHOD;
constexpr uint16_t Get = DISPATCH_PROPERTYGET;
constexpr uint16_t Put = DISPATCH_PROPERTYPUT;
constexpr uint16_t PutReference = DISPATCH_PROPERTYPUTREF;
constexpr uint16_t PutObject = Put | PutReference;
constexpr uint16_t MethodOrGet = Method | Get;

struct NamedMember
{
    TextView Name;
    DISPID Number;
    uint16_t Kinds; ///< that it answers to
};

constexpr NamedMember PluginNames[] = {
    {u"QelThumbnails", 1, PutObject},
    {u"QelDatabase", 2, PutObject},
    {u"QelTopic", 3, PutObject},
    {u"QelBuildHelper", 4, PutObject},
    {u"InitialScript", 5, Get},
    {u"Output", 6, Get},
    {u"TextFunction", 7, Get},
    {u"TextRequirementsServer", 8, Get},
    {u"TextRequirementsClient", 9, Get},
    {u"TextSettings", 10, Get},
    {u"TextConfig", 11, Get},
    {u"IsConfigurable", 12, Get},
    {u"Description", 13, Get},
    {u"PreviewImageFilename", 14, Get},
    {u"LogoFilename", 15, Get},
    {u"CallBack", 16, Method},
    {u"Script", 17, Get | Put},
    {u"ErrorText", 19, Get},
    {u"ShowHelp", 20, Method},
    {u"RequiresPHP", 21, Get},
};
constexpr NamedMember InfoNames[] = {{u"About", 1, Method}, {u"Version", 2, Get}};
constexpr NamedMember MainNames[] = {{u"About", 22, Method}, {u"Version", 23, Get}};
constexpr NamedMember SortNames[] = {
    {u"Clear", 1, Method}, {u"AddValue", 2, Method}, {u"Value", 3, Get}, {u"ValueCount", 4, Get}, {u"Sort", 5, Method},
};

/// A dual interface of an object, and the members that it answers to.
struct LateObject
{
    std::string NameOf(const NamedMember& myMember) const { return Name + ("." + ToUtf8(myMember.Name)); }

    const char* Name;
    IDispatch& Object;
    std::span<const NamedMember> Members;
};

/// Hands each dual interface to the operation, with its members. The default interface of Main has two lists.
void ForEachTable(const OpenedComponent& myComponent, const std::function<void(const LateObject&)>& myOperation)
{
    const auto myPlugin = myComponent.Create<QelPlugin>(CLSID_Main);
    const auto myInfo = myComponent.Create<QelInfo>(CLSID_Main);
    const auto myMain = myComponent.Create<QelPluginAnimationMain>(CLSID_Main);
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    myOperation({"QelPlugin", *myPlugin.Get(), PluginNames});
    myOperation({"QelInfo", *myInfo.Get(), InfoNames});
    myOperation({"QelPluginAnimationMain", *myMain.Get(), PluginNames});
    myOperation({"QelPluginAnimationMain", *myMain.Get(), MainNames});
    myOperation({"QelStringSort", *mySort.Get(), SortNames});
}

void LateNames(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto ExpectNamed = [](const LateObject& myTable, Text myName, HRESULT myResult, DISPID myNumber)
    {
        LPOLESTR myNames = InputText(myName.data());
        DISPID theNumber = 0;
        const std::string myWhat = std::string("GetIDsOfNames of ") + myTable.Name + " for " + ToUtf8(myName);
        ExpectResult(myWhat, myResult, myTable.Object.GetIDsOfNames(GUID_NULL, &myNames, 1, 0, &theNumber));
        ExpectNumber(myWhat, myNumber, theNumber);
    };
    ForEachTable(myComponent,
                 [&](const LateObject& myTable)
                 {
                     for (const NamedMember& myMember : myTable.Members)
                     {
                         ExpectNamed(myTable, Text(myMember.Name), S_OK, myMember.Number);
                         ExpectNamed(myTable, LowerCase(myMember.Name), S_OK, myMember.Number);
                     }
                     ExpectNamed(myTable, u"Nothing", DISP_E_UNKNOWNNAME, DISPID_UNKNOWN);
                     const std::string myWhat = std::string(" of ") + myTable.Name;
                     uint32_t theCount = 7;
                     ExpectResult("GetTypeInfoCount" + myWhat, S_OK, myTable.Object.GetTypeInfoCount(&theCount));
                     ExpectNumber("the type descriptions" + myWhat, TypeDescriptionCount, theCount);
                     for (uint32_t i = 0; i < 2; ++i)
                     {
                         ITypeInfo* theInfo = nullptr;
                         ExpectResult("GetTypeInfo " + std::to_string(i) + myWhat,
                                      i < theCount ? S_OK : DISP_E_BADINDEX,
                                      myTable.Object.GetTypeInfo(i, 0, &theInfo));
                         ComPtr<IUnknown>::Adopt(reinterpret_cast<IUnknown*>(theInfo));
                     }
                 });
}

struct LateCall
{
    HRESULT Invoke(IDispatch& myObject, DISPID myNumber, uint16_t myKinds, DISPID myPut = DISPID_PROPERTYPUT)
    {
        const bool isPut = (myKinds & PutObject) != 0;
        DISPPARAMS myParams{Arguments.data(), isPut ? &myPut : nullptr, static_cast<uint32_t>(Arguments.size()),
                            isPut ? 1U : 0U};
        return myObject.Invoke(myNumber, GUID_NULL, 0, myKinds, &myParams, &Result, &Exception, &Position);
    }
    LateCall() = default;
    LateCall(const LateCall&) = delete;
    LateCall& operator=(const LateCall&) = delete;
    ~LateCall()
    {
        VariantClear(&Result);
        SysFreeString(Exception.bstrSource);
        SysFreeString(Exception.bstrDescription);
        SysFreeString(Exception.bstrHelpFile);
    }

    std::vector<VARIANT> Arguments; ///< the last one first; not freed
    VARIANT Result{};
    EXCEPINFO Exception{};
    uint32_t Position = 99;
};

VARIANT NumberVariant(int32_t myNumber)
{
    VARIANT theVariant{};
    theVariant.vt = VT_I4;
    theVariant.lVal = myNumber;
    return theVariant;
}

VARIANT ReferenceVariant(IDispatch** myPlace)
{
    VARIANT theVariant{};
    theVariant.vt = VT_DISPATCH | VT_BYREF;
    theVariant.ppdispVal = myPlace;
    return theVariant;
}

VARIANT ObjectVariant(IDispatch* myObject)
{
    VARIANT theVariant{};
    theVariant.vt = VT_DISPATCH;
    theVariant.pdispVal = myObject;
    return theVariant;
}

constexpr std::pair<uint16_t, const char*> KindNames[] = {
    {Method, "a method"}, {Get, "a read"}, {Put, "a write"}, {PutReference, "a write by reference"}};

std::string NameOfKinds(uint16_t myKinds)
{
    const auto* const myNamed = std::ranges::find(KindNames, myKinds, &std::pair<uint16_t, const char*>::first);
    return myNamed == std::end(KindNames) ? "a method or read" : myNamed->second;
}

constexpr std::pair<VARTYPE, const char*> TypeNames[] = {
    {VT_EMPTY, "VT_EMPTY"}, {VT_I4, "VT_I4"}, {VT_BSTR, "VT_BSTR"}, {VT_BOOL, "VT_BOOL"}};

std::string NameOfType(VARTYPE myType)
{
    const auto* const myNamed = std::ranges::find(TypeNames, myType, &std::pair<VARTYPE, const char*>::first);
    return myNamed == std::end(TypeNames) ? "VARTYPE " + std::to_string(myType) : myNamed->second;
}

void Kinds(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto ExpectKinds = [](const LateObject& myTable, const NamedMember& myMember)
    {
        for (const uint16_t myKinds : {Method, Get, Put, PutReference, MethodOrGet})
        {
            LateCall myCall; // with arguments that no member takes, so that none is called
            myCall.Arguments.resize(6);
            ExpectResult("Invoke of " + myTable.NameOf(myMember) + " as " + NameOfKinds(myKinds) + " with 6 arguments",
                         (myKinds & myMember.Kinds) != 0 ? DISP_E_BADPARAMCOUNT : DISP_E_MEMBERNOTFOUND,
                         myCall.Invoke(myTable.Object, myMember.Number, myKinds));
        }
    };
    ForEachTable(myComponent,
                 [&](const LateObject& myTable)
                 {
                     for (const NamedMember& myMember : myTable.Members)
                     {
                         ExpectKinds(myTable, myMember);
                     }
                     ExpectKinds(myTable, {u"number 0", 0, 0});
                     ExpectKinds(myTable, {u"number 24", 24, 0});
                 });
    const auto myPlugin = myComponent.Plugin();
    ExpectKinds({"QelPlugin", *myPlugin.Get(), {}}, {u"Script, by its other slot,", 18, Get | Put});
}

struct LateValue
{
    VARTYPE Type = VT_EMPTY;
    Text Value;
};

void ExpectValue(IDispatch& myObject, DISPID myNumber, const std::string& myWhat, const LateValue& myExpected,
                 const std::vector<VARIANT>& myArguments = {})
{
    LateCall myCall;
    myCall.Arguments = myArguments;
    ExpectResult(myWhat, S_OK, myCall.Invoke(myObject, myNumber, MethodOrGet));
    const VARTYPE myType = myCall.Result.vt;
    ExpectText("the type of " + myWhat, FromUtf8(NameOfType(myExpected.Type)), FromUtf8(NameOfType(myType)));
    const Text theValue = myType == VT_BSTR   ? TextOfBstr(myCall.Result.bstrVal)
                          : myType == VT_BOOL ? NumberText(int64_t{myCall.Result.boolVal})
                          : myType == VT_I4   ? NumberText(int64_t{myCall.Result.lVal})
                                              : Text();
    ExpectText(myWhat, myExpected.Value, theValue);
}

/// What members return through their tables, while a module with everything is in hand.
std::map<TextView, LateValue> ValuesOfTables(const OpenedComponent& myComponent)
{
    std::map<TextView, LateValue> theValues{
        {u"IsConfigurable", {VT_BOOL, u"-1"}}, {u"RequiresPHP", {VT_BOOL, u"0"}}, {u"ValueCount", {VT_I4, u"0"}}};
    const auto myPlugin = myComponent.Plugin();
    ExpectResult("writing Script", S_OK, Write(*myPlugin.Get(), FullScript));
    for (const auto& myMember : TextMembers)
    {
        theValues[myMember.Name] = {VT_BSTR, Read(*myPlugin.Get(), myMember.Read)};
    }
    for (const auto& myText : FixedTexts)
    {
        theValues[myText.Name] = {VT_BSTR, Text(myText.Value)};
    }
    Bstr myVersion;
    ExpectResult("Version", S_OK, myPlugin.Query<QelInfo>()->get_Version(myVersion.Pointer()));
    theValues[u"Version"] = {VT_BSTR, myVersion.Value()};
    return theValues;
}

/// Hands a service in late-bound, and takes it back. While it is in hand the component holds `myKept` references.
void ExpectLateService(const LateObject& myTable, const NamedMember& myMember, IDispatch& myService, int64_t myKept)
{
    const std::string myWhat = myTable.NameOf(myMember);
    for (IDispatch* const myObject : {&myService, static_cast<IDispatch*>(nullptr)})
    {
        IDispatch* myPlace = myObject;
        for (const VARIANT& myArgument : {ObjectVariant(myObject), ReferenceVariant(&myPlace)})
        {
            LateCall myPut;
            myPut.Arguments = {myArgument};
            ExpectResult("writing " + myWhat + " late-bound", S_OK,
                         myPut.Invoke(myTable.Object, myMember.Number, PutReference));
            ExpectNumber("references to " + myWhat, myObject != nullptr ? 1 + myKept : 1, HoldersOf(myService));
        }
    }
}

/// Calls every member of an interface that can be called without a module, a host or a display.
void ExpectTable(const LateObject& myTable, const std::map<TextView, LateValue>& myValues)
{
    HostState myState;
    const auto myHelper = MakeCounted<CheckedHelper>(myState);
    const auto myDatabase = MakeCounted<CheckedDatabase>(myState);
    const auto myThumbnails = MakeCounted<Thumbnails>();
    const auto myTopic = MakeCounted<Topic>();
    const std::map<TextView, std::pair<IDispatch*, int64_t>> myServices{{u"QelBuildHelper", {myHelper.Get(), 1}},
                                                                        {u"QelDatabase", {myDatabase.Get(), 1}},
                                                                        {u"QelThumbnails", {myThumbnails.Get(), 0}},
                                                                        {u"QelTopic", {myTopic.Get(), 0}}};
    for (const NamedMember& myMember : myTable.Members)
    {
        const auto myKnown = myValues.find(myMember.Name);
        if (myKnown != myValues.end())
        {
            ExpectValue(myTable.Object, myMember.Number, myTable.NameOf(myMember), myKnown->second);
        }
        else if (const auto myService = myServices.find(myMember.Name); myService != myServices.end())
        {
            ExpectLateService(myTable, myMember, *myService->second.first, myService->second.second);
        }
        else if (myMember.Name == u"ShowHelp")
        {
            ExpectValue(myTable.Object, myMember.Number, myTable.NameOf(myMember), {VT_EMPTY, u""},
                        {NumberVariant(INT32_MAX)});
        }
        else if (myMember.Name == u"CallBack")
        {
            ExpectValue(myTable.Object, myMember.Number, myTable.NameOf(myMember), {VT_BOOL, u"0"}, {NumberVariant(7)});
        }
    }
}

void LateValues(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myValues = ValuesOfTables(myComponent);
    ForEachTable(myComponent, [&](const LateObject& myTable) { ExpectTable(myTable, myValues); });
    Bstr myScript(u"<pg.param name=\"link\" value=\"URL:a\">");
    VARIANT myByValue{};
    myByValue.vt = VT_BSTR;
    myByValue.bstrVal = *myScript.Pointer();
    VARIANT myByReference{};
    myByReference.vt = VT_BSTR | VT_BYREF;
    myByReference.pbstrVal = myScript.Pointer();
    const auto myPlugin = myComponent.Plugin();
    const auto myMain = myComponent.Create<QelPluginAnimationMain>(CLSID_Main);
    for (IDispatch* const myObject : {static_cast<IDispatch*>(myPlugin.Get()), static_cast<IDispatch*>(myMain.Get())})
    {
        for (const VARIANT& myArgument : {myByValue, myByReference})
        {
            ExpectResult("writing an empty Script", S_OK, Write(*myPlugin.Get(), u"<pg.param name=\"link\">"));
            LateCall myPut;
            myPut.Arguments = {myArgument};
            ExpectResult("writing Script late-bound", S_OK, myPut.Invoke(*myObject, 17, Put));
            ExpectPart("Script, written late-bound", u"value=\"URL:a\"", Read(*myPlugin.Get(), &QelPlugin::get_Script));
        }
    }
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    ExpectValue(*mySort.Get(), 2, "QelStringSort.AddValue", {VT_EMPTY, u""}, {myByValue});
    ExpectValue(*mySort.Get(), 4, "QelStringSort.ValueCount", {VT_I4, u"1"});
    ExpectValue(*mySort.Get(), 3, "QelStringSort.Value", {VT_BSTR, myScript.Value()}, {NumberVariant(1)});
}

void LateFailures(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    LateCall myOutside;
    myOutside.Arguments = {NumberVariant(1000)};
    ExpectResult("Value of 1000 late-bound", DISP_E_EXCEPTION, myOutside.Invoke(*mySort.Get(), 3, Get));
    ExpectResult("the description in the exception", QEL_RESULT(0x800A0009U), myOutside.Exception.scode);
    ExpectText("its source", u"QelPluginAnimation", TextOfBstr(myOutside.Exception.bstrSource));
    Expect("the exception has a description", SysStringLen(myOutside.Exception.bstrDescription) > 0);
    const auto myPlugin = myComponent.Plugin();
    LateCall myNoObject;
    myNoObject.Arguments = {NumberVariant(1)};
    ExpectResult("a number for QelDatabase", DISP_E_TYPEMISMATCH, myNoObject.Invoke(*myPlugin.Get(), 2, PutObject));
    ExpectNumber("the place of the wrong argument", 0, myNoObject.Position);
    HostState myState;
    const auto myDatabase = MakeCounted<CheckedDatabase>(myState);
    LateCall myOther;
    myOther.Arguments = {ObjectVariant(myDatabase.Get())};
    ExpectResult("a database for QelBuildHelper", DISP_E_TYPEMISMATCH,
                 myOther.Invoke(*myPlugin.Get(), 4, PutReference));
    LateCall myNowhere;
    myNowhere.Arguments = {ReferenceVariant(nullptr)};
    ExpectResult("a null reference for QelDatabase", E_POINTER, myNowhere.Invoke(*myPlugin.Get(), 2, PutReference));
    ExpectNumber("the place of the null reference", 0, myNowhere.Position);
    LateCall myNamed;
    myNamed.Arguments = {ObjectVariant(nullptr)};
    ExpectResult("writing with another name than that of a put", DISP_E_NONAMEDARGS,
                 myNamed.Invoke(*myPlugin.Get(), 2, Put, 0));
    DISPPARAMS myNone{};
    ForEachTable(myComponent,
                 [&](const LateObject& myTable)
                 {
                     const auto myAbout = std::ranges::find(myTable.Members, u"About", &NamedMember::Name);
                     if (myAbout != myTable.Members.end())
                     {
                         ExpectResult(myTable.NameOf(*myAbout) + " without a display", DISP_E_EXCEPTION,
                                      myTable.Object.Invoke(myAbout->Number, GUID_NULL, 0, Method, &myNone, nullptr,
                                                            nullptr, nullptr));
                     }
                 });
    ExpectResult("writing without the name of a put", DISP_E_PARAMNOTOPTIONAL,
                 myPlugin->Invoke(17, GUID_NULL, 0, Put, &myNone, nullptr, nullptr, nullptr));
    ExpectResult("Invoke with a reserved identifier", DISP_E_UNKNOWNINTERFACE,
                 myPlugin->Invoke(5, IID_IUnknown, 0, Get, &myNone, nullptr, nullptr, nullptr));
    ExpectResult("Invoke without arguments' record", E_POINTER,
                 myPlugin->Invoke(5, GUID_NULL, 0, Get, nullptr, nullptr, nullptr, nullptr));
    ExpectResult("Invoke without a place for the result", S_OK,
                 myPlugin->Invoke(5, GUID_NULL, 0, Get, &myNone, nullptr, nullptr, nullptr));
}

constexpr Check LateBindingCheckList[] = {
    {"late.names", "Every member is found by its name, whatever the case, and nothing else is", LateNames},
    {"late.kinds", "Every member answers to its own kind of call and to no other", Kinds},
    {"late.values", "Late-bound calls take and return the same values in variants of the right type", LateValues},
    {"late.failures", "A late-bound call that fails says why, and where", LateFailures},
};

} // namespace

std::span<const Check> LateBindingChecks()
{
    return LateBindingCheckList;
}

} // namespace qel::host

// NOLINTEND(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)
