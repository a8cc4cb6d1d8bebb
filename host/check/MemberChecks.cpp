// Checks of every member, through the table of its interface and late-bound.
#include "check/CheckSupport.h"

#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <tuple>
#include <utility>

// What OpenedComponent gives is never null; a check ends where it would be.
// NOLINTBEGIN(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

constexpr struct
{
    TextView Name;
    TextMember Read;
    TextView Value;
} FixedTexts[] = {
    {u"InitialScript", &QelPlugin::get_InitialScript, u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">"},
    {u"TextFunction", &QelPlugin::get_TextFunction,
     u"Este plug-in coloca objetos gráficos animados en su sitio web. Si desea obtener más detalles, consulte la "
     u"<help type=\"plugin\" id=\"100\" caption=\"Ayuda del plug-in\">."},
    {u"TextRequirementsServer", &QelPlugin::get_TextRequirementsServer,
     u"Este plug-in no exige <b>ninguna</b> característica especial para el servidor web utilizado."},
    {u"TextRequirementsClient", &QelPlugin::get_TextRequirementsClient,
     u"El plug-in requiere que su navegador web sea capaz de ejecutar <b>JavaScript</b>."},
    {u"TextConfig", &QelPlugin::get_TextConfig,
     u"Haga clic <callback type=0 icon=1 caption=\"aquí\"> para seleccionar un motivo y una música."},
    {u"Description", &QelPlugin::get_Description, u"Mueve objetos gráficos animados en su sitio web."},
    {u"PreviewImageFilename", &QelPlugin::get_PreviewImageFilename, u"QelPluginAnimationPreview.bmp"},
    {u"LogoFilename", &QelPlugin::get_LogoFilename, u"QelPluginAnimationLogo.bmp"},
};

void ReadsFixedTexts(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    for (const auto& myText : FixedTexts)
    {
        ExpectText(ToUtf8(myText.Name), myText.Value, Read(*myPlugin.Get(), myText.Read));
    }
}

/// Reads a truth value, which may fill its 16 bits and no more.
void ExpectAnswer(const std::string& myWhat, VARIANT_BOOL myExpected, const std::function<HRESULT(VARIANT_BOOL*)>& Ask)
{
    std::array<VARIANT_BOOL, 2> myAnswer{7, 7};
    ExpectResult(myWhat, S_OK, Ask(myAnswer.data()));
    ExpectNumber(myWhat, myExpected, myAnswer[0]);
    ExpectNumber("what lies behind the answer of " + myWhat, 7, myAnswer[1]);
}

void Answers(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    ExpectAnswer("IsConfigurable", VARIANT_TRUE,
                 [&](VARIANT_BOOL* theAnswer) { return myPlugin->get_IsConfigurable(theAnswer); });
    ExpectAnswer("RequiresPHP", VARIANT_FALSE,
                 [&](VARIANT_BOOL* theAnswer) { return myPlugin->get_RequiresPHP(theAnswer); });
    for (int32_t myLink : {1, -1, INT32_MAX, INT32_MIN})
    {
        ExpectAnswer("CallBack of " + std::to_string(myLink), VARIANT_FALSE,
                     [&](VARIANT_BOOL* theAnswer) { return myPlugin->CallBack(&myLink, theAnswer); });
    }
    int32_t myTopic = INT32_MAX;
    ExpectResult("ShowHelp of a topic that is not there", S_OK, myPlugin->ShowHelp(&myTopic));
    ExpectNumber("the topic after ShowHelp", INT32_MAX, myTopic);
}

void Version(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    Bstr theText;
    ExpectResult("Version", S_OK, myComponent.Create<QelInfo>(CLSID_Main)->get_Version(theText.Pointer()));
    const std::string myVersion = ToUtf8(theText.Value());
    std::array<unsigned, 3> myParts{};
    const int myCount = std::sscanf(myVersion.c_str(), "%u.%u.%u", myParts.data(), &myParts[1], &myParts[2]);
    const std::string myForm =
        std::to_string(myParts[0]) + "." + std::to_string(myParts[1]) + "." + std::to_string(myParts[2]);
    if (myCount != 3 || myVersion != myForm)
    {
        FailCheck("three numbers without leading zeros, such as 1.0.19", myVersion);
    }
}

/// Calls a member with a null pointer for one of its arguments, each in turn; numbers among the others are 1.
template <class Interface, class... Values>
void RefuseNull(Interface& myObject, HRESULT (Interface::*myMember)(Values*...), const std::string& myName)
{
    for (size_t i = 0; i < sizeof...(Values); ++i)
    {
        std::tuple<Values...> myValues{static_cast<Values>(std::is_same_v<Values, int32_t> ? Values(1) : Values())...};
        const auto Call = [&]<size_t... Index>(std::index_sequence<Index...> /*unused*/)
        {
            return (myObject.*myMember)((Index == i ? nullptr : &std::get<Index>(myValues))...);
        };
        ExpectResult(myName + " with a null pointer for argument " + std::to_string(i + 1), E_POINTER,
                     Call(std::index_sequence_for<Values...>()));
    }
}

void NullPointers(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myHeld = myComponent.Plugin();
    QelPlugin& myPlugin = *myHeld.Get();
    for (const auto& myText : TextMembers)
    {
        RefuseNull(myPlugin, myText.Read, ToUtf8(myText.Name));
    }
    RefuseNull(myPlugin, &QelPlugin::get_IsConfigurable, "IsConfigurable");
    RefuseNull(myPlugin, &QelPlugin::get_RequiresPHP, "RequiresPHP");
    RefuseNull(myPlugin, &QelPlugin::CallBack, "CallBack");
    RefuseNull(myPlugin, &QelPlugin::ShowHelp, "ShowHelp");
    RefuseNull(myPlugin, &QelPlugin::put_Script, "writing Script");
    RefuseNull(myPlugin, &QelPlugin::putref_QelThumbnails, "QelThumbnails");
    RefuseNull(myPlugin, &QelPlugin::putref_QelDatabase, "QelDatabase");
    RefuseNull(myPlugin, &QelPlugin::putref_QelTopic, "QelTopic");
    RefuseNull(myPlugin, &QelPlugin::putref_QelBuildHelper, "QelBuildHelper");
    RefuseNull(*myHeld.Query<QelInfo>().Get(), &QelInfo::get_Version, "Version");
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    RefuseNull(*mySort.Get(), &QelStringSort::AddValue, "AddValue");
    RefuseNull(*mySort.Get(), &QelStringSort::get_Value, "Value");
    RefuseNull(*mySort.Get(), &QelStringSort::get_ValueCount, "ValueCount");
}

void Bitmaps(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    for (const TextMember myMember : {&QelPlugin::get_PreviewImageFilename, &QelPlugin::get_LogoFilename})
    {
        const Text myName = Read(*myPlugin.Get(), myMember);
        Expect("a bitmap's name has no folder: " + Shown(myName),
               !myName.empty() && myName.find_first_of(u"/\\") == Text::npos);
        const fs::path myFile = myTrial.File.parent_path() / ToUtf8(myName);
        if (!fs::is_regular_file(myFile))
        {
            throw Outcome{CheckResult::Warned, "a file " + myFile.string(), "there is none"};
        }
    }
}

Text ValuesOf(QelStringSort& mySort)
{
    int32_t theCount = 0;
    Text theValues;
    ExpectResult("ValueCount", S_OK, mySort.get_ValueCount(&theCount));
    for (int32_t i = 1; i <= theCount; ++i)
    {
        Bstr theValue;
        ExpectResult("Value", S_OK, mySort.get_Value(&i, theValue.Pointer()));
        theValues += theValue.Value() + u"|";
    }
    return theValues;
}

void StringSort(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myHeld = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    QelStringSort& mySort = *myHeld.Get();
    const auto Add = [&](TextView myText)
    {
        Bstr myValue(myText);
        ExpectResult("AddValue", S_OK, mySort.AddValue(myValue.Pointer()));
    };
    ExpectResult("Sort of nothing", S_OK, mySort.Sort());
    for (const TextView myText : {u"b", u"Zebra", u"apple", u"", u"b", u"B"})
    {
        Add(myText);
    }
    ExpectText("the values before Sort", u"b|Zebra|apple||b|B|", ValuesOf(mySort));
    ExpectResult("Sort", S_OK, mySort.Sort());
    ExpectText("the values after Sort", u"|B|Zebra|apple|b|b|", ValuesOf(mySort));
    Add(u"A");
    ExpectText("a value added after Sort", u"|B|Zebra|apple|b|b|A|", ValuesOf(mySort));
    for (int32_t myIndex : {-1, 1000})
    {
        BSTR theValue = nullptr; // not freed: it need not be a text
        ExpectResult("Value " + std::to_string(myIndex), QEL_RESULT(0x800A0009U),
                     mySort.get_Value(&myIndex, &theValue));
        Expect("a failed Value gives no text", theValue == nullptr);
    }
    BSTR myNull = nullptr;
    ExpectResult("AddValue of a null text", S_OK, mySort.AddValue(&myNull));
    ExpectText("an empty text added", u"|B|Zebra|apple|b|b|A||", ValuesOf(mySort));
    ExpectResult("Clear", S_OK, mySort.Clear());
    ExpectText("the values after Clear", u"", ValuesOf(mySort));
}

// ---- Late binding ------------------------------------------------------------------------------------------------

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

void Names(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto ExpectNamed = [](const LateObject& myTable, Text myName, HRESULT myResult, DISPID myNumber)
    {
        char16_t* myNames = myName.data();
        DISPID theNumber = 0;
        const std::string myWhat = std::string("GetIDsOfNames of ") + myTable.Name + " for " + ToUtf8(myName);
        ExpectResult(myWhat, myResult, myTable.Object.GetIDsOfNames(&GUID_NULL, &myNames, 1, 0, &theNumber));
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
                     ITypeInfo* theInfo = nullptr;
                     ExpectResult("GetTypeInfoCount" + myWhat, S_OK, myTable.Object.GetTypeInfoCount(&theCount));
                     ExpectNumber("the type descriptions" + myWhat, 0, theCount);
                     ExpectResult("GetTypeInfo" + myWhat, DISP_E_BADINDEX, myTable.Object.GetTypeInfo(0, 0, &theInfo));
                 });
}

struct LateCall
{
    HRESULT Invoke(IDispatch& myObject, DISPID myNumber, uint16_t myKinds)
    {
        DISPID myPut = DISPID_PROPERTYPUT;
        const bool isPut = (myKinds & PutObject) != 0;
        DISPPARAMS myParams{Arguments.data(), isPut ? &myPut : nullptr, static_cast<uint32_t>(Arguments.size()),
                            isPut ? 1U : 0U};
        return myObject.Invoke(myNumber, &GUID_NULL, 0, myKinds, &myParams, &Result, &Exception, &Position);
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

VARIANT ObjectVariant(IDispatch* myObject)
{
    VARIANT theVariant{};
    theVariant.vt = VT_DISPATCH;
    theVariant.pdispVal = myObject;
    return theVariant;
}

std::string NameOfKinds(uint16_t myKinds)
{
    constexpr std::pair<uint16_t, const char*> myNames[] = {
        {Method, "a method"}, {Get, "a read"}, {Put, "a write"}, {PutReference, "a write by reference"}};
    const auto* const myNamed = std::ranges::find(myNames, myKinds, &std::pair<uint16_t, const char*>::first);
    return myNamed == std::end(myNames) ? "a method or read" : myNamed->second;
}

std::string NameOfType(VARTYPE myType)
{
    constexpr std::pair<VARTYPE, const char*> myNames[] = {
        {VT_EMPTY, "VT_EMPTY"}, {VT_I4, "VT_I4"}, {VT_BSTR, "VT_BSTR"}, {VT_BOOL, "VT_BOOL"}};
    const auto* const myNamed = std::ranges::find(myNames, myType, &std::pair<VARTYPE, const char*>::first);
    return myNamed == std::end(myNames) ? "VARTYPE " + std::to_string(myType) : myNamed->second;
}

void Kinds(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
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

/// What members give through their tables, while a module of everything is in hand.
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
        LateCall myPut;
        myPut.Arguments = {ObjectVariant(myObject)};
        ExpectResult("writing " + myWhat + " late-bound", S_OK,
                     myPut.Invoke(myTable.Object, myMember.Number, PutReference));
        ExpectNumber("references to " + myWhat, myObject != nullptr ? 1 + myKept : 1, HoldersOf(myService));
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

void LateValues(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
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

void LateFailures(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    LateCall myOutside;
    myOutside.Arguments = {NumberVariant(1000)};
    ExpectResult("Value of 1000 late-bound", DISP_E_EXCEPTION, myOutside.Invoke(*mySort.Get(), 3, Get));
    ExpectResult("what the exception tells", QEL_RESULT(0x800A0009U), myOutside.Exception.scode);
    ExpectText("its source", u"QelPluginAnimation", TextOfBstr(myOutside.Exception.bstrSource));
    Expect("the exception has a description", SysStringLen(myOutside.Exception.bstrDescription) > 0);
    const auto myPlugin = myComponent.Plugin();
    LateCall myNoObject;
    myNoObject.Arguments = {NumberVariant(1)};
    ExpectResult("a number for QelDatabase", DISP_E_TYPEMISMATCH, myNoObject.Invoke(*myPlugin.Get(), 2, PutObject));
    ExpectNumber("the place of the wrong argument", 0, myNoObject.Position);
    DISPPARAMS myNone{};
    ForEachTable(myComponent,
                 [&](const LateObject& myTable)
                 {
                     const auto myAbout = std::ranges::find(myTable.Members, u"About", &NamedMember::Name);
                     if (myAbout != myTable.Members.end())
                     {
                         ExpectResult(myTable.NameOf(*myAbout) + " without a display", DISP_E_EXCEPTION,
                                      myTable.Object.Invoke(myAbout->Number, &GUID_NULL, 0, Method, &myNone, nullptr,
                                                            nullptr, nullptr));
                     }
                 });
    ExpectResult("writing without the name of a put", DISP_E_PARAMNOTOPTIONAL,
                 myPlugin->Invoke(17, &GUID_NULL, 0, Put, &myNone, nullptr, nullptr, nullptr));
    ExpectResult("Invoke with a reserved identifier", DISP_E_UNKNOWNINTERFACE,
                 myPlugin->Invoke(5, &IID_IUnknown, 0, Get, &myNone, nullptr, nullptr, nullptr));
    ExpectResult("Invoke without arguments' record", E_POINTER,
                 myPlugin->Invoke(5, &GUID_NULL, 0, Get, nullptr, nullptr, nullptr, nullptr));
    ExpectResult("Invoke without a place for the result", S_OK,
                 myPlugin->Invoke(5, &GUID_NULL, 0, Get, &myNone, nullptr, nullptr, nullptr));
}

constexpr Check Checks[] = {
    {"members.fixed-texts", "The fixed texts are those of the plug-in, each in its slot", ReadsFixedTexts},
    {"members.answers", "Truth values are -1 and 0 in 16 bits, and CallBack of another number than 0 gives false",
     Answers},
    {"members.version", "The version is three numbers without leading zeros", Version},
    {"members.null-pointers", "Every member refuses null pointers", NullPointers},
    {"members.bitmaps", "The two bitmaps are named without a folder and lie beside the component", Bitmaps},
    {"members.string-sort", "The list of texts keeps its values and sorts them by character code", StringSort},
    {"late.names", "Every member is found by its name, whatever the case, and nothing else is", Names},
    {"late.kinds", "Every member answers to its own kind of call and to no other", Kinds},
    {"late.values", "Late-bound calls take and give the same values in variants of the right type", LateValues},
    {"late.failures", "A late-bound call that fails says why, and where", LateFailures},
};

} // namespace

std::span<const Check> MemberChecks()
{
    return Checks;
}

} // namespace qel::host

// NOLINTEND(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)
