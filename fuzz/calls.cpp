/// Late-bound calls: any sequence of them, over all interfaces of all objects, with arguments of every kind, also from
/// within a service of the host. None crashes or leaks; each returns a documented result and leaves error information
/// of its own.
#include "com/Bstr.h"
#include "com/DispatchImplementation.h"
#include "comTestHost.h"
#include "Environment.h"
#include "fuzz.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <map>
#include <span>

STDAPI DllGetClassObject(REFCLSID myClass, REFIID myInterface, void** theObject);
STDAPI DllCanUnloadNow();

namespace qel
{
namespace
{

namespace fs = std::filesystem;

/// What has been called since the start; printed at the end of the process.
struct CallCounts
{
    ~CallCounts()
    {
        std::fprintf(stderr, "calls: Invoke %llu, of which %llu succeeded and %llu failed in the member; names %llu\n",
                     Invoked, Succeeded, Failed, Names);
    }

    unsigned long long Invoked = 0;
    unsigned long long Succeeded = 0;
    unsigned long long Failed = 0;
    unsigned long long Names = 0;
};

CallCounts myCounts;

/// The input as choices, one byte each, from its first byte on. After the end every choice is 0.
class Choices
{
public:
    explicit Choices(std::string_view myBytes) : myRest(myBytes) {}

    bool IsUsedUp() const { return myRest.empty(); }

    uint8_t Byte()
    {
        const auto theByte = myRest.empty() ? uint8_t{0} : static_cast<uint8_t>(myRest.front());
        myRest.remove_prefix(myRest.empty() ? 0 : 1);
        return theByte;
    }

    size_t Below(size_t myCount) { return Byte() % myCount; }

    /// True for one byte in 16.
    bool Rarely() { return Byte() % 16 == 15; }

    template <class List>
    auto Pick(const List& myList)
    {
        return std::data(myList)[Below(std::size(myList))];
    }

    template <class Number>
    Number Any()
    {
        std::array<uint8_t, sizeof(Number)> myBytes{};
        std::ranges::generate(myBytes, [&] { return Byte(); });
        Number theNumber{};
        std::memcpy(&theNumber, myBytes.data(), sizeof(Number));
        return theNumber;
    }

    /// The text up to the next byte 0.
    std::string_view Rest()
    {
        const std::string_view theText = myRest.substr(0, myRest.find('\0'));
        myRest.remove_prefix(std::min(myRest.size(), theText.size() + 1));
        return theText;
    }

private:
    std::string_view myRest;
};

/// The folders of a host, in a folder where nothing else may be written.
class World
{
public:
    World()
    {
        using namespace std::string_literals;
        for (const char* myName : {"temporary", "build"})
        {
            myFolder.MakeFolder(myName);
            fs::permissions(myFolder / myName, fs::perms::owner_all);
        }
        myFolder.Write("data/a.dat", "qelarchive1.0\xb\0\0\0\\qelspr.gif"s + "\x23\0\0\0"s +
                                         std::string(SmallestPicture) + "\0\0\0\0"s);
        for (const char* myName : {"qelspr1.gif", "qelspr.gif", "data/a.gif", "data/a.txt"})
        {
            myFolder.Write(myName, SmallestPicture);
        }
        myEnvironment.Set(TemporaryFolderVariable, myFolder.Native("temporary"));
        for (const char* myDisplay : {"DISPLAY", "WAYLAND_DISPLAY"})
        {
            myEnvironment.Unset(myDisplay);
        }
        myState = State();
    }

    Text Folder(TextView myName) const { return myFolder.Logical(myName) + u"\\"; }

    /// Nothing has changed but in the two folders that the component may write to.
    void Demand()
    {
        qel::Demand(State() == myState, "no other file is touched");
        fs::remove_all(myFolder / "build");
        myFolder.MakeFolder("build");
    }

private:
    using Facts = std::map<std::string, std::pair<uintmax_t, fs::file_time_type>>;

    Facts State() const
    {
        Facts theState;
        for (const char* myName : {"", "data"})
        {
            for (const auto& myEntry : fs::directory_iterator(myFolder / myName))
            {
                if (!myEntry.is_directory())
                {
                    theState[myEntry.path()] = {myEntry.file_size(), myEntry.last_write_time()};
                }
            }
        }
        return theState;
    }

    const TemporaryFolder myFolder;
    Environment myEnvironment;
    Facts myState;
};

int myLivingServices = 0;

/// A service of the host that is counted while it lives.
template <class Service>
class CountedService final : public Service
{
public:
    explicit CountedService(TestHost& theHost) : Service(theHost) { ++myLivingServices; }
    ~CountedService() override { --myLivingServices; }
};

/// Error information that is in the thread before a call, so that a call which leaves none of its own is noticed.
constexpr const char16_t* OlderFailure = u"older failure";
constexpr int32_t HostErrorNumber = 1000;

Text TakenDescription()
{
    ComPtr<IErrorInfo> myInfo;
    Bstr theDescription;
    if (GetErrorInfo(0, myInfo.Receive()) == S_OK)
    {
        myInfo->GetDescription(theDescription.Pointer());
    }
    return theDescription.Value();
}

/// A failed call left a description of its own; that of a refusal is always the same.
void DemandOwnError(HRESULT myResult, const Text& myDescription)
{
    Demand(!myDescription.empty() && myDescription != OlderFailure, "error information is that of the call");
    if (myResult != DISP_E_EXCEPTION)
    {
        static std::map<HRESULT, Text> myDescriptions;
        Demand(myDescriptions.try_emplace(myResult, myDescription).first->second == myDescription,
               "a refusal has one description");
    }
}

constexpr HRESULT InvokeResults[] = {S_OK,
                                     DISP_E_EXCEPTION,
                                     DISP_E_MEMBERNOTFOUND,
                                     DISP_E_BADPARAMCOUNT,
                                     DISP_E_NONAMEDARGS,
                                     DISP_E_PARAMNOTOPTIONAL,
                                     DISP_E_UNKNOWNINTERFACE,
                                     DISP_E_TYPEMISMATCH,
                                     DISP_E_OVERFLOW,
                                     DISP_E_BADVARTYPE,
                                     E_POINTER};
constexpr HRESULT NameResults[] = {S_OK, DISP_E_UNKNOWNNAME, DISP_E_UNKNOWNINTERFACE, E_INVALIDARG, E_POINTER};
/// Of the members: errors 5, 6, 9 and 53, which QelHelperInterfaces.h lists, and that of this host.
constexpr HRESULT MemberResults[] = {QEL_RESULT(0x800A0005U), QEL_RESULT(0x800A0006U), QEL_RESULT(0x800A0009U),
                                     QEL_RESULT(0x800A0035U), QEL_RESULT(0x800A0000U | HostErrorNumber)};

bool IsOneOf(HRESULT myResult, std::span<const HRESULT> myResults)
{
    return std::ranges::find(myResults, myResult) != myResults.end();
}

constexpr VARTYPE ValueTypes[] = {VT_EMPTY, VT_NULL,     VT_I2,    VT_I4,   VT_R4,     VT_R8,
                                  VT_BSTR,  VT_DISPATCH, VT_ERROR, VT_BOOL, VT_UNKNOWN};

constexpr const IID* Interfaces[] = {
    &IID_QelPlugin, &IID_QelInfo,     &IID_QelPluginAnimationMain, &IID_QelStringSort,     &IID_IDispatch,
    &IID_IUnknown,  &IID_QelDatabase, &IID_QelBuildHelper,         &IID_ISupportErrorInfo, &IID_QelTopic};

/// Modules with a picture of their own: with a link, and with a tune and a period.
constexpr const char16_t* LinkedScript =
    u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\"><pg.file filename=\"a.dat\"><pg.param name=image "
    u"value=qelspr.gif><pg.param name=imagefolder value=(USER)><pg.param name=playmidi value=0>"
    u"<pg.param name=link value=UID:7>";
constexpr const char16_t* TuneScript =
    u"<pg.plugin version=\"1.0\"><pg.file filename=\"a.dat\"><pg.param name=image value=qelspr.gif><pg.param "
    u"name=imagefolder value=(USER)><pg.param name=midi value=qelspr.gif><pg.param name=midifolder value=(USER)>"
    u"<pg.param name=from value=38353><pg.param name=to value=38383>";

constexpr const char16_t* Texts[] = {
    u"",
    u"12",
    u" -3.5e1 ",
    u"True",
    LinkedScript,
    TuneScript,
    u"<pg.plugin version=\"2\">",
    u"<pg.param name=image value=a><pg.param name=link value=\"\">",
    u"<pg.param name=from value=1e9>",
};

/// The arguments of one call, the last one first, and what they refer to. All of it belongs to the caller.
class Arguments
{
public:
    static constexpr size_t Most = 4;

    Arguments() = default;
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments()
    {
        for (Argument& myArgument : myArguments)
        {
            VariantClear(&myArgument.Place);
        }
    }

    /// Makes an argument of a value, which it takes over, in one of the forms that a caller can choose.
    void Set(size_t myIndex, const VARIANT& myValue, Choices& theChoices)
    {
        Argument& theArgument = myArguments[myIndex];
        theArgument.Place = myValue;
        const auto myReference = static_cast<VARTYPE>(VT_BYREF | myValue.vt);
        switch (theChoices.Below(16))
        {
        case 1:
            Point(Values[myIndex], myReference, &theArgument.Place.byref);
            break;
        case 2:
            Point(Values[myIndex], VT_BYREF | VT_VARIANT, &theArgument.Place);
            break;
        case 3:
            Point(theArgument.Inner, myReference, &theArgument.Place.byref);
            Point(Values[myIndex], VT_BYREF | VT_VARIANT, &theArgument.Inner);
            break;
        case 4:
            Point(Values[myIndex], myReference, nullptr);
            break;
        case 5:
            Point(Values[myIndex], VT_BYREF | VT_VARIANT, nullptr);
            break;
        case 6:
            Point(theArgument.Inner, VT_BYREF | VT_VARIANT, &theArgument.Place);
            Point(Values[myIndex], VT_BYREF | VT_VARIANT, &theArgument.Inner);
            break;
        case 7:
            Point(Values[myIndex], UnknownType(theChoices), theChoices.Any<void*>());
            break;
        default:
            Values[myIndex] = theArgument.Place;
            break;
        }
    }

    std::array<VARIANT, Most> Values{};

private:
    struct Argument
    {
        VARIANT Place{}; ///< owns the value
        VARIANT Inner{}; ///< a variant between the argument and the value
    };

    static void Point(VARIANT& theVariant, int myType, void* myTarget)
    {
        theVariant.vt = static_cast<VARTYPE>(myType);
        theVariant.byref = myTarget;
    }

    /// A type that is not in the list of qelcom.h.
    static VARTYPE UnknownType(Choices& theChoices)
    {
        const auto theType = theChoices.Any<VARTYPE>();
        const auto myBase = static_cast<VARTYPE>(theType & ~VT_BYREF);
        const bool isKnown = std::ranges::find(ValueTypes, myBase) != std::end(ValueTypes) || myBase == VT_VARIANT;
        return static_cast<VARTYPE>(isKnown ? myBase | 0x2000 : theType);
    }

    std::array<Argument, Most> myArguments{};
};

/// One input: a sequence of steps, some of them within the host's services.
class Session
{
public:
    explicit Session(Choices& theInput) : theChoices(theInput)
    {
        myHost.MediaFolder = myHost.ImageFolder = myHost.FileFolder = TheWorld().Folder(u"build");
        myHost.DataFolder = TheWorld().Folder(u"data");
        myHost.RecordFilename = u"a.txt";
        myHost.RecordURL = u"page.html";
        myHost.Called = [this](const std::string&)
        {
            HostIsCalled();
        };
        Create(CLSID_Main, IID_QelPlugin);
        HandIn(nullptr, nullptr, EmptyScript);
    }

    void Run()
    {
        for (int i = 0; i < 100 && !theChoices.IsUsedUp(); ++i)
        {
            Step();
        }
    }

    /// Everything is given back: nothing of the host is held any more, and the component can be unloaded.
    void End()
    {
        myIsOver = true;
        myObjects.clear();
        Create(CLSID_Main, IID_QelPlugin);
        HandIn(nullptr, nullptr, EmptyScript);
        myObjects.clear();
        SetErrorInfo(0, nullptr);
        Demand(myLivingServices == 0, "no service of the host is kept");
        Demand(DllCanUnloadNow() == S_OK, "no object is left");
        TheWorld().Demand();
    }

    static World& TheWorld()
    {
        static World theWorld;
        return theWorld;
    }

private:
    struct Held
    {
        ComPtr<IDispatch> Object;
        const IID* Interface;
    };

    static constexpr TextView EmptyScript = u"<pg.param name=link>";

    /// Hands in services, or takes back those that are there, and a script, by the slots of the newest object.
    void HandIn(QelDatabase* myDatabase, QelBuildHelper* myHelper, TextView myScript)
    {
        const ComPtr<QelPlugin> thePlugin = myObjects.back().Object.Query<QelPlugin>();
        Bstr myText(myScript);
        Demand(thePlugin->putref_QelDatabase(&myDatabase) == S_OK &&
                   thePlugin->putref_QelBuildHelper(&myHelper) == S_OK &&
                   thePlugin->put_Script(myText.Pointer()) == S_OK,
               "services and scripts can be handed in");
    }

    /// A module whose page can be built.
    void Prepare()
    {
        const auto myDatabase = MakeCounted<CountedService<ComTestDatabase>>(myHost);
        const auto myHelper = MakeCounted<CountedService<ComTestBuildHelper>>(myHost);
        Create(CLSID_Main, IID_QelPlugin);
        HandIn(myDatabase.Get(), myHelper.Get(), theChoices.Below(2) == 0 ? LinkedScript : TuneScript);
    }

    void Step()
    {
        switch (theChoices.Below(16))
        {
        case 0:
            CreateAny();
            break;
        case 1:
            Forget();
            break;
        case 2:
            Query(Pick().Object.Get());
            break;
        case 3:
            FindNumbers();
            break;
        case 4:
            AskForTypes();
            break;
        case 5:
            ChangeHost();
            break;
        case 6:
            theChoices.Below(2) == 0 ? Prepare() : Lock();
            break;
        default:
            Invoke();
            break;
        }
    }

    /// A step from inside the host, or a failure.
    void HostIsCalled()
    {
        if (myIsOver || myDepth == 3)
        {
            return;
        }
        ++myDepth;
        const size_t myChoice = theChoices.Below(8);
        if (myChoice < 3)
        {
            Step();
        }
        --myDepth;
        if (myChoice == 7)
        {
            throw Error{HostErrorNumber, u"the host"};
        }
    }

    Held Pick()
    {
        if (myObjects.empty())
        {
            Create(CLSID_Main, IID_QelPlugin);
        }
        return myObjects[theChoices.Below(myObjects.size())];
    }

    void Keep(void* myPointer, const IID* myInterface)
    {
        if (SameId(*myInterface, IID_ISupportErrorInfo) || SameId(*myInterface, IID_IUnknown))
        {
            ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(myPointer)); // cannot be called late
            return;
        }
        myObjects.push_back({ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(myPointer)), myInterface});
    }

    /// An object of the component, now and then of a class that it does not have, or one of the host.
    void CreateAny()
    {
        constexpr const CLSID* Classes[] = {&CLSID_Main, &CLSID_Main, &CLSID_classStringSort, &IID_QelInfo};
        switch (theChoices.Below(8))
        {
        case 0:
            Keep(MakeCounted<CountedService<ComTestDatabase>>(myHost).Detach(), &IID_QelDatabase);
            break;
        case 1:
            Keep(MakeCounted<CountedService<ComTestBuildHelper>>(myHost).Detach(), &IID_QelBuildHelper);
            break;
        default:
            const CLSID* const myClass = theChoices.Pick(Classes);
            Create(*myClass, *theChoices.Pick(Interfaces));
            break;
        }
    }

    void Create(const CLSID& myClass, const IID& myInterface)
    {
        void* myFactory = nullptr;
        SetMark();
        const HRESULT myFound = DllGetClassObject(myClass, IID_IClassFactory, &myFactory);
        Demand(FAILED(myFound) == (myFactory == nullptr), "a factory or a failure");
        if (FAILED(myFound))
        {
            DemandOwnError(myFound, TakenDescription());
            return;
        }
        const auto theFactory = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myFactory));
        void* myObject = nullptr;
        SetMark();
        const HRESULT myMade = theFactory->CreateInstance(nullptr, myInterface, &myObject);
        Demand(FAILED(myMade) == (myObject == nullptr), "an object or a failure");
        if (FAILED(myMade))
        {
            DemandOwnError(myMade, TakenDescription());
            return;
        }
        const auto* const theInterface =
            std::ranges::find_if(Interfaces, [&](const IID* myId) { return SameId(*myId, myInterface); });
        const bool isMain = SameId(myClass, CLSID_Main);
        const IID* const myDefault = isMain ? &IID_QelPluginAnimationMain : &IID_QelStringSort;
        Keep(myObject, SameId(myInterface, IID_IDispatch) ? myDefault : *theInterface);
    }

    void Forget()
    {
        if (!myObjects.empty())
        {
            const auto myPlace = myObjects.begin() + static_cast<ptrdiff_t>(theChoices.Below(myObjects.size()));
            const Held myLast = std::move(*myPlace); // released when the list is whole again
            myObjects.erase(myPlace);
        }
    }

    void Query(IDispatch* myObject)
    {
        const IID* const myInterface = theChoices.Pick(Interfaces);
        void* theObject = nullptr;
        const HRESULT myResult = myObject->QueryInterface(*myInterface, theChoices.Rarely() ? nullptr : &theObject);
        Demand(myResult == S_OK || myResult == E_NOINTERFACE || myResult == E_POINTER, "an interface, or none");
        Demand((myResult == S_OK) == (theObject != nullptr), "an object or a failure");
        if (theObject != nullptr && SameId(*myInterface, IID_IDispatch))
        {
            ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(theObject)); // whichever its default interface is
        }
        else if (theObject != nullptr)
        {
            Keep(theObject, myInterface);
        }
    }

    void Lock()
    {
        void* theFactory = nullptr;
        Demand(DllGetClassObject(CLSID_Main, IID_IClassFactory, &theFactory) == S_OK, "there is a factory");
        const auto myFactory = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(theFactory));
        Demand(myFactory->LockServer(1) == S_OK && DllCanUnloadNow() == S_FALSE, "a lock holds");
        Demand(myFactory->LockServer(0) == S_OK, "a lock is undone");
    }

    void AskForTypes()
    {
        const Held myTarget = Pick();
        UINT theCount = 77;
        const bool hasPlace = !theChoices.Rarely();
        SetMark();
        HRESULT myResult = myTarget.Object->GetTypeInfoCount(hasPlace ? &theCount : nullptr);
        Demand(myResult == (hasPlace ? S_OK : E_POINTER) && theCount == (hasPlace ? 0U : 77U), "there are no types");
        SetMark();
        ITypeInfo* theInfo = nullptr;
        myResult = myTarget.Object->GetTypeInfo(theChoices.Byte(), theChoices.Byte(), hasPlace ? &theInfo : nullptr);
        Demand(myResult == (hasPlace ? DISP_E_BADINDEX : E_POINTER) && theInfo == nullptr, "there is no type");
        DemandOwnError(myResult, TakenDescription());
    }

    void ChangeHost()
    {
        myHost.RecordType = static_cast<int32_t>(theChoices.Below(8));
        myHost.AtEnd = theChoices.Rarely();
        myHost.RecordFilename = theChoices.Below(2) == 0 ? u"a.txt" : u"a.gif";
    }

    void SetMark() const { ReportFailure(E_FAIL, OlderFailure); }

    void FindNumbers()
    {
        const Held myTarget = Pick();
        std::array<Text, 3> myTexts;
        std::array<LPOLESTR, 3> myNames{};
        std::array<DISPID, 3> theNumbers{77, 77, 77};
        const std::span<const DispatchMember> myMembers = MembersOf(*myTarget.Interface);
        for (size_t i = 0; i < myTexts.size(); ++i)
        {
            if (!theChoices.Rarely() && !myMembers.empty())
            {
                myTexts[i] = myMembers[theChoices.Below(myMembers.size())].Name;
                char16_t& theLetter = myTexts[i][theChoices.Below(myTexts[i].size())];
                theLetter = static_cast<char16_t>(theLetter ^ (theChoices.Below(2) * 0x20)); // in the other case
            }
            else
            {
                myTexts[i] = FromUtf8(theChoices.Rest());
            }
            myNames[i] = theChoices.Rarely() ? nullptr : InputText(myTexts[i].c_str());
        }
        const auto myCount = static_cast<UINT>(theChoices.Rarely() ? theChoices.Below(4) : 1);
        const IID& myReserved = theChoices.Rarely() ? IID_IUnknown : GUID_NULL;
        LPOLESTR* const myList = theChoices.Rarely() ? nullptr : myNames.data();
        DISPID* const myPlace = theChoices.Rarely() ? nullptr : theNumbers.data();
        SetMark();
        ++myCounts.Names;
        const HRESULT myResult =
            myTarget.Object->GetIDsOfNames(myReserved, myList, myCount, theChoices.Byte(), myPlace);
        Demand(IsOneOf(myResult, NameResults), "a result of GetIDsOfNames is documented");
        if (FAILED(myResult))
        {
            DemandOwnError(myResult, TakenDescription());
        }
        else
        {
            Demand(theNumbers[0] > 0 && theNumbers[1] == 77 && theNumbers[2] == 77, "a name has a number");
        }
    }

    /// A new value of the type, which the caller frees.
    VARIANT MakeValue(VARTYPE myType)
    {
        VARIANT theValue{};
        theValue.vt = myType;
        switch (myType)
        {
        case VT_BSTR:
            theValue.bstrVal = theChoices.Rarely()        ? nullptr
                               : theChoices.Below(4) == 0 ? NewBstr(FromUtf8(theChoices.Rest()))
                                                          : NewBstr(theChoices.Pick(Texts));
            break;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            theValue.punkVal = MakeObject().Detach();
            break;
        case VT_I4: // CallBack has an effect with 0 alone
            theValue.lVal =
                theChoices.Below(2) == 0 ? static_cast<int32_t>(theChoices.Below(4)) : theChoices.Any<int32_t>();
            break;
        default:
            theValue.dblVal = theChoices.Any<double>();
            break;
        }
        return theValue;
    }

    /// An object to hand in; nothing if it is null.
    ComPtr<IUnknown> MakeObject()
    {
        switch (theChoices.Below(5))
        {
        case 0:
            return {};
        case 1:
            return Pick().Object.Query<IUnknown>();
        case 2:
            return MakeCounted<CountedService<ComTestBuildHelper>>(myHost).Query<IUnknown>();
        default:
            return MakeCounted<CountedService<ComTestDatabase>>(myHost).Query<IUnknown>();
        }
    }

    void Invoke()
    {
        const Held myTarget = Pick(); // a caller holds the object during its call
        const std::span<const DispatchMember> myMembers = MembersOf(*myTarget.Interface);
        const DispatchMember* const myMember =
            myMembers.empty() || theChoices.Rarely() ? nullptr : &myMembers[theChoices.Below(myMembers.size())];
        Arguments myArguments;
        const size_t myCount = myMember != nullptr && !theChoices.Rarely() ? myMember->ArgumentCount
                                                                           : theChoices.Below(Arguments::Most + 1);
        for (size_t i = 0; i < myCount; ++i)
        {
            const bool fits = myMember != nullptr && i < myMember->Types.size() && theChoices.Below(4) != 3;
            const VARTYPE myType = fits ? myMember->Types[i] : theChoices.Pick(ValueTypes);
            myArguments.Set(myCount - 1 - i, MakeValue(myType), theChoices);
        }
        const DISPID myNumber = myMember != nullptr ? myMember->Number : theChoices.Any<DISPID>() % 32;
        const auto myFlags = static_cast<WORD>(myMember == nullptr || theChoices.Rarely() ? theChoices.Any<WORD>()
                                                                                          : FlagsOf(myMember->Kind));
        const bool isPut = myMember != nullptr && (myFlags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        std::array<DISPID, 2> myNames{theChoices.Rarely() ? theChoices.Any<DISPID>() : DISPID_PROPERTYPUT, 0};
        const size_t myNameCount = theChoices.Rarely() ? theChoices.Below(3) : isPut ? 1 : 0;
        DISPPARAMS myParams{theChoices.Rarely() ? nullptr : myArguments.Values.data(),
                            theChoices.Rarely() ? nullptr : myNames.data(), static_cast<UINT>(myCount),
                            static_cast<UINT>(myNameCount)};
        Call(myTarget, myNumber, myFlags, myArguments, theChoices.Rarely() ? nullptr : &myParams);
    }

    static uint16_t FlagsOf(MemberKind myKind)
    {
        constexpr uint16_t Flags[] = {DISPATCH_METHOD, DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT,
                                      DISPATCH_PROPERTYPUTREF};
        return Flags[static_cast<size_t>(myKind)];
    }

    void Call(const Held& myTarget, DISPID myNumber, WORD myFlags, const Arguments& myArguments, DISPPARAMS* myParams)
    {
        const std::array<VARIANT, Arguments::Most> myBefore = myArguments.Values;
        VARIANT theResult{};
        theResult.vt = VT_ERROR; // not written yet
        EXCEPINFO theException{};
        UINT theArgument = 99;
        const bool wantsResult = !theChoices.Rarely();
        const bool wantsException = theChoices.Below(2) == 0;
        const bool wantsArgument = !theChoices.Rarely();
        const IID& myReserved = theChoices.Rarely() ? IID_IUnknown : GUID_NULL;
        const auto myLocale = theChoices.Byte();
        SetMark();
        ++myCounts.Invoked;
        const HRESULT myResult = myTarget.Object->Invoke(
            myNumber, myReserved, myLocale, myFlags, myParams, wantsResult ? &theResult : nullptr,
            wantsException ? &theException : nullptr, wantsArgument ? &theArgument : nullptr);
        Demand(IsOneOf(myResult, InvokeResults), "a result of Invoke is documented");
        Demand(std::memcmp(&myBefore, &myArguments.Values, sizeof(myBefore)) == 0, "the arguments stay as they are");
        myCounts.Succeeded += SUCCEEDED(myResult) ? 1 : 0;
        myCounts.Failed += myResult == DISP_E_EXCEPTION ? 1 : 0;
        if (FAILED(myResult))
        {
            Demand(theResult.vt == VT_EMPTY || theResult.vt == VT_ERROR, "a failed call has no result");
            const bool isException = myResult == DISP_E_EXCEPTION && wantsException;
            const Text myLeft = TakenDescription();
            Demand(!isException || myLeft.empty(), "the record takes the error information");
            DemandOwnError(myResult, isException ? TextOfBstr(theException.bstrDescription) : myLeft);
            Demand(!isException || IsOneOf(theException.scode, MemberResults), "a member's failure is documented");
        }
        else
        {
            Demand(!wantsResult || theResult.vt == VT_EMPTY || theResult.vt == VT_BSTR || theResult.vt == VT_I4 ||
                       theResult.vt == VT_BOOL,
                   "a result is a text, a number or a truth value");
        }
        Demand(theArgument == 99 || (FAILED(myResult) && myParams != nullptr && theArgument < myParams->cArgs),
               "a wrong argument is one of those given");
        VariantClear(&theResult);
        SysFreeString(theException.bstrSource);
        SysFreeString(theException.bstrDescription);
        SysFreeString(theException.bstrHelpFile);
    }

    Choices& theChoices;
    TestHost myHost;
    std::vector<Held> myObjects;
    int myDepth = 0;
    bool myIsOver = false;
};

} // namespace
} // namespace qel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize)
{
    using namespace qel;
    Session::TheWorld(); // before the component asks for the temporary folder
    Choices theChoices(Characters(myBytes, mySize));
    Session mySession(theChoices);
    mySession.Run();
    mySession.End();
    return 0;
}
