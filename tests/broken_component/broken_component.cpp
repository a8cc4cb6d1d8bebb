// A component with a fault: it forwards to the real one, except for the fault that QEL_FAULT names. QEL_REAL is the
// real component's file.
//
// Its objects are stand-ins, with a table of members that call the same slot of the real object with the same
// arguments, whatever they are: pointers and numbers all travel alike in this system's calling convention.
#include "com/Bstr.h"
#include "com/QelHelperInterfaces.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include <dlfcn.h>
#include <unistd.h>

namespace
{

using namespace qel;

constexpr size_t SlotCount = 28;
constexpr size_t QuerySlot = 0;
constexpr size_t CreateSlot = 3; ///< of a factory
constexpr size_t NamesSlot = 5;
constexpr size_t InvokeSlot = 6;

/// The slot of a member by its number.
constexpr size_t Member(size_t myNumber)
{
    return InvokeSlot + myNumber;
}

enum class Kind : uint8_t
{
    Unknown,
    Factory,
    Plugin,
    Info,
    Main,
    Sort,
    ErrorSupport,
    Any
};

using Word = uintptr_t;
using Words = std::array<Word, 8>;

struct StandIn
{
    const void* const* Members;
    void** Real;
    Kind TheKind;
};

/// A call on its way, which a fault can bend.
struct Call
{
    HRESULT Forward()
    {
        using Function = HRESULT (*)(void*, Word, Word, Word, Word, Word, Word, Word, Word);
        const auto mySlot = reinterpret_cast<Function>((*static_cast<void***>(static_cast<void*>(Object.Real)))[Slot]);
        return mySlot(Object.Real, W[0], W[1], W[2], W[3], W[4], W[5], W[6], W[7]);
    }
    template <class Value>
    Value& Argument(size_t myIndex)
    {
        return *reinterpret_cast<Value*>(W.at(myIndex));
    }
    bool Asks(const IID& myId) { return W[0] != 0 && std::memcmp(&Argument<IID>(0), &myId, sizeof(IID)) == 0; }

    StandIn& Object;
    size_t Slot;
    Words W;
};

struct Fault
{
    const char* Name;
    Kind TheKind;
    size_t Slot;
    HRESULT (*Act)(Call& theCall); ///< null: replaces a part of the text that the member gives
    const char16_t* From = nullptr;
    const char16_t* To = nullptr;
};

void Replace(BSTR& theText, TextView myNew)
{
    SysFreeString(std::exchange(theText, NewBstr(myNew)));
}

IUnknown* TheHelper = nullptr; ///< the host's, without a reference
std::mutex TheLock;
Text TheLastScript;

/// Another script instead of the one that is written.
HRESULT PutInstead(Call& theCall, TextView myScript)
{
    Bstr myText(myScript);
    theCall.W[0] = reinterpret_cast<Word>(myText.Pointer());
    return theCall.Forward();
}

/// Does nothing when an argument has a value.
template <size_t Index, Word Value, HRESULT Result = S_OK>
HRESULT Skip(Call& theCall)
{
    return theCall.W[Index] == Value ? Result : theCall.Forward();
}

template <HRESULT Result>
HRESULT Give(Call& /*theCall*/)
{
    return Result;
}

/// Passes another argument on.
template <size_t Index, Word Value>
HRESULT Pass(Call& theCall)
{
    theCall.W[Index] = Value;
    return theCall.Forward();
}

template <size_t Index, VARIANT_BOOL Value>
HRESULT GiveBoolean(Call& theCall)
{
    theCall.Forward();
    theCall.Argument<VARIANT_BOOL>(Index) = Value;
    return S_OK;
}

HRESULT QueryTwice(Call& theCall)
{
    theCall.Forward();
    return theCall.Forward();
}

HRESULT LeakText(Call& theCall)
{
    SysAllocString(u"lost");
    return theCall.Forward();
}

/// Leaves a temporary file, or lets it go but keeps it open.
template <bool Open>
HRESULT LeaveFile(Call& theCall)
{
    std::string myPattern = std::string(std::getenv("TMPDIR")) + "/XXXXXX";
    const int myFile = mkstemp(myPattern.data());
    Open ? unlink(myPattern.c_str()) : close(myFile);
    return theCall.Forward();
}

template <const IID* Interface>
HRESULT Deny(Call& theCall)
{
    return theCall.Asks(*Interface) ? E_NOINTERFACE : theCall.Forward();
}

/// Values of one type come late-bound as another.
template <VARTYPE From, VARTYPE To>
HRESULT OtherType(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    auto* const myResult = reinterpret_cast<VARIANT*>(theCall.W[5]);
    if (myResult != nullptr && myResult->vt == From)
    {
        myResult->vt = To;
    }
    return theResult;
}

HRESULT NoIdentity(Call& theCall)
{
    if (!theCall.Asks(IID_IUnknown))
    {
        return theCall.Forward();
    }
    theCall.Argument<void*>(1) = static_cast<void*>(theCall.Object.Real);
    using Count = uint32_t (*)(void*);
    reinterpret_cast<Count>((*static_cast<void***>(static_cast<void*>(theCall.Object.Real)))[1])(theCall.Object.Real);
    return S_OK;
}

template <size_t Index>
HRESULT WildPointer(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    if (FAILED(theResult) && theCall.W[Index] != 0)
    {
        theCall.Argument<void*>(Index) = &theCall;
    }
    return theResult;
}

HRESULT ExactNames(Call& theCall)
{
    const char16_t* const myName = *reinterpret_cast<char16_t**>(theCall.W[1]);
    return *myName >= u'a' ? DISP_E_UNKNOWNNAME : theCall.Forward();
}

HRESULT AnyVersion(Call& theCall)
{
    const Text myScript = TextOfBstr(theCall.Argument<BSTR>(0));
    return PutInstead(theCall, ReplaceAll(myScript, u"version=\"2.0\"", u"version=\"1.0\""));
}

HRESULT CrashOnSurrogate(Call& theCall)
{
    if (TextOfBstr(theCall.Argument<BSTR>(0)).find(u'\xD800') != Text::npos)
    {
        std::raise(SIGSEGV);
    }
    return theCall.Forward();
}

HRESULT ShortScripts(Call& theCall)
{
    constexpr size_t myLongest = 65535;
    return PutInstead(theCall, TextOfBstr(theCall.Argument<BSTR>(0)).substr(0, myLongest));
}

HRESULT KeepTopic(Call& theCall)
{
    if (theCall.Argument<QelTopic*>(0) != nullptr)
    {
        theCall.Argument<QelTopic*>(0)->AddRef();
    }
    return theCall.Forward();
}

HRESULT RememberScript(Call& theCall)
{
    const std::lock_guard myGuard(TheLock);
    TheLastScript = TextOfBstr(theCall.Argument<BSTR>(0));
    return theCall.Forward();
}

/// The settings of whichever thread wrote last.
HRESULT LastScript(Call& theCall)
{
    const std::lock_guard myGuard(TheLock);
    const HRESULT theResult = theCall.Forward();
    Replace(theCall.Argument<BSTR>(0), TheLastScript);
    return theResult;
}

HRESULT Hang(Call& /*theCall*/)
{
    if (fork() != 0) // one more that has to go
    {
        setpgid(0, getpgid(getppid())); // beyond the reach of what ends its group
    }
    for (;;)
    {
        pause();
    }
}

HRESULT RefuseNullText(Call& theCall)
{
    return theCall.W[0] != 0 && theCall.Argument<BSTR>(0) == nullptr ? E_POINTER : theCall.Forward();
}

/// Asks the host once more, for any page or for those whose link has no address.
template <bool ForEmptyLink>
HRESULT AskTwice(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    int32_t myNumber = 0;
    if (TheHelper != nullptr && (!ForEmptyLink || TextOfBstr(theCall.Argument<BSTR>(0)).find(u"<a>") != Text::npos))
    {
        static_cast<QelBuildHelper*>(TheHelper)->get_InstanceNumber(&myNumber);
    }
    return theResult;
}

// Named by what goes wrong. Those of the entry points stand there.
constexpr Fault Faults[] = {
    {"wild-pointer", Kind::Factory, CreateSlot, WildPointer<2>},
    {"aggregates", Kind::Factory, CreateSlot, Pass<0, 0>},
    {"wrong-identity", Kind::Info, QuerySlot, NoIdentity},
    {"one-way-query", Kind::Info, QuerySlot, Deny<&IID_QelPlugin>},
    {"query-keeps-reference", Kind::Any, QuerySlot, QueryTwice},
    {"no-error-info", Kind::ErrorSupport, 3, Give<S_FALSE>},
    {"other-requirements", Kind::Plugin, Member(8), nullptr, u"ninguna", u"alguna"},
    {"true-is-one", Kind::Plugin, Member(12), GiveBoolean<0, 1>},
    {"zeros-in-version", Kind::Info, Member(2), nullptr, u"1.0.", u"1.00.00"},
    {"takes-null", Kind::Plugin, Member(13), Skip<0, 0>},
    {"bitmap-with-folder", Kind::Plugin, Member(15), nullptr, u"Qel", u"/opt/Qel"},
    {"sorts-nothing", Kind::Sort, Member(5), Give<S_OK>},
    {"exact-names", Kind::Any, NamesSlot, ExactNames},
    {"any-kind", Kind::Any, InvokeSlot, Pass<3, DISPATCH_METHOD | DISPATCH_PROPERTYGET>},
    {"numbers-for-booleans", Kind::Any, InvokeSlot, OtherType<VT_BOOL, VT_I2>},
    {"no-exception", Kind::Any, InvokeSlot, Pass<6, 0>},
    {"other-initial-script", Kind::Plugin, Member(5), nullptr, u"1.0", u"1.1"},
    {"half-escaped", Kind::Plugin, Member(18), nullptr, u"&amp;", u"&"},
    {"any-version", Kind::Plugin, Member(17), AnyVersion},
    {"crash-on-surrogate", Kind::Plugin, Member(17), CrashOnSurrogate},
    {"short-scripts", Kind::Plugin, Member(17), ShortScripts},
    {"ends-a-day-early", Kind::Plugin, Member(6), nullptr, u"2006, 0, 1", u"2005, 11, 31"},
    {"width-for-height", Kind::Plugin, Member(6), nullptr, u"height:2px", u"height:3px"},
    {"no-empty-link", Kind::Plugin, Member(6), nullptr, u"<a>", u""},
    {"library-fails", Kind::Plugin, Member(6), nullptr, u"images/", u"imagenes/"},
    {"asks-twice", Kind::Plugin, Member(6), AskTwice<false>},
    {"other-number", Kind::Plugin, Member(19), nullptr, u"\"2017:", u"\"17:"},
    {"no-reason", Kind::Plugin, Member(19), nullptr, u"91", u"0"},
    {"keeps-topic", Kind::Plugin, Member(3), KeepTopic},
    {"confirms-unseen", Kind::Plugin, Member(16), GiveBoolean<1, VARIANT_TRUE>},
    {"one-record", Kind::Plugin, Member(17), RememberScript},
    {"one-record", Kind::Plugin, Member(18), LastScript},
    {"leaks-text", Kind::Plugin, Member(11), LeakText},
    {"leaks-page", Kind::Plugin, Member(6), LeakText},
    {"leaks-late", Kind::Plugin, InvokeSlot, LeakText},
    {"leaks-handle", Kind::Plugin, Member(6), LeaveFile<true>},
    {"leaves-file", Kind::Plugin, Member(6), LeaveFile<false>},
    {"factory-has-no-identity", Kind::Factory, QuerySlot, Deny<&IID_IUnknown>},
    {"factory-is-anything", Kind::Factory, QuerySlot, WildPointer<1>},
    {"lock-fails", Kind::Factory, 4, Give<E_FAIL>},
    {"supports-null", Kind::ErrorSupport, 3, Skip<0, 0>},
    {"takes-null-index", Kind::Sort, Member(3), Skip<0, 0>},
    {"takes-null-place", Kind::Sort, Member(3), Skip<1, 0>},
    {"refuses-null-text", Kind::Sort, Member(2), RefuseNullText},
    {"text-in-failure", Kind::Sort, Member(3), WildPointer<1>},
    {"counts-no-types", Kind::Plugin, 3, Give<S_OK>},
    {"gives-types", Kind::Sort, 4, Give<S_OK>},
    {"late-number-for-text", Kind::Plugin, InvokeSlot, OtherType<VT_BSTR, VT_I4>},
    {"late-empty-version", Kind::Info, InvokeSlot, Skip<0, 2>},
    {"late-empty-value", Kind::Sort, InvokeSlot, Skip<0, 3>},
    {"late-database-lost", Kind::Plugin, InvokeSlot, Skip<0, 2>},
    {"late-helper-fails", Kind::Main, InvokeSlot, Skip<0, 4, E_FAIL>},
    {"late-help-fails", Kind::Main, InvokeSlot, Skip<0, 20, E_FAIL>},
    {"late-script-lost", Kind::Plugin, InvokeSlot, Skip<0, 17>},
    {"late-about-unseen", Kind::Info, InvokeSlot, Skip<0, 1>},
    {"no-summary", Kind::Plugin, Member(10), nullptr, u"El control", u"Un control"},
    {"asks-for-empty-link", Kind::Plugin, Member(6), AskTwice<true>},
    {"other-link-number", Kind::Plugin, Member(19), nullptr, u"\"2010:", u"\"10:"},
    {"hangs", Kind::Plugin, Member(5), Hang},
};

bool Chosen(const char* myName)
{
    const char* const myFault = std::getenv("QEL_FAULT");
    return myFault != nullptr && std::strcmp(myFault, myName) == 0;
}

StandIn* StandInFor(void* myReal, const IID* myInterface);

template <size_t Slot>
HRESULT Enter(StandIn* theObject, Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h)
{
    Call myCall{*theObject, Slot, {a, b, c, d, e, f, g, h}};
    if (theObject->TheKind == Kind::Plugin && Slot == Member(4) && a != 0)
    {
        TheHelper = myCall.Argument<IUnknown*>(0);
    }
    HRESULT (*myAct)(Call&) = nullptr;
    const Fault* myEdit = nullptr;
    for (const Fault& myFault : Faults)
    {
        const bool isHere =
            (myFault.TheKind == Kind::Any || myFault.TheKind == theObject->TheKind) && myFault.Slot == Slot;
        if (isHere && Chosen(myFault.Name))
        {
            myAct = myFault.Act;
            myEdit = myFault.Act == nullptr ? &myFault : nullptr;
        }
    }
    const HRESULT theResult = myAct != nullptr ? myAct(myCall) : myCall.Forward();
    if (myEdit != nullptr && a != 0 && SUCCEEDED(theResult))
    {
        auto& theText = myCall.Argument<BSTR>(0);
        Replace(theText, ReplaceAll(TextOfBstr(theText), myEdit->From, myEdit->To));
    }
    const bool isCreation = theObject->TheKind == Kind::Factory && Slot == CreateSlot;
    if ((Slot == QuerySlot || isCreation) && SUCCEEDED(theResult))
    {
        auto& theGiven = myCall.Argument<void*>(isCreation ? 2 : 1);
        theGiven = StandInFor(theGiven, reinterpret_cast<const IID*>(isCreation ? b : a));
    }
    return theResult;
}

template <size_t... Slots>
auto TableOf(std::index_sequence<Slots...> /*unused*/)
{
    return std::array<const void*, sizeof...(Slots)>{reinterpret_cast<const void*>(&Enter<Slots>)...};
}

StandIn* StandInFor(void* myReal, const IID* myInterface)
{
    static const auto Table = TableOf(std::make_index_sequence<SlotCount>());
    constexpr std::pair<const IID*, Kind> Kinds[] = {
        {&IID_IClassFactory, Kind::Factory}, {&IID_QelPlugin, Kind::Plugin},
        {&IID_QelInfo, Kind::Info},          {&IID_QelPluginAnimationMain, Kind::Main},
        {&IID_QelStringSort, Kind::Sort},    {&IID_ISupportErrorInfo, Kind::ErrorSupport},
    };
    Kind myKind = Kind::Unknown;
    for (const auto& [myId, myOwn] : Kinds)
    {
        myKind = std::memcmp(myId, myInterface, sizeof(IID)) == 0 ? myOwn : myKind;
    }
    // They stay, so that one object has one stand-in for each kind.
    static std::map<std::pair<void*, Kind>, StandIn> StandIns;
    const std::lock_guard myGuard(TheLock);
    return &StandIns.try_emplace({myReal, myKind}, StandIn{Table.data(), static_cast<void**>(myReal), myKind})
                .first->second;
}

/// The real component, which goes with this one.
struct RealComponent
{
    ~RealComponent()
    {
        if (Chosen("last-word") && TheHelper != nullptr)
        {
            TheHelper->Release(); // when it is too late
        }
        dlclose(Library);
    }
    void* Library = dlopen(std::getenv("QEL_REAL"), RTLD_NOW | RTLD_LOCAL);
};

RealComponent& Real()
{
    static RealComponent theReal;
    return theReal;
}

template <class Function>
Function RealEntryPoint(const char* myName)
{
    return reinterpret_cast<Function>(dlsym(Real().Library, myName));
}

} // namespace

QEL_EXTERN_C QEL_EXPORT HRESULT DllRegisterServer()
{
    return RealEntryPoint<DllRegisterServerFunction>("DllRegisterServer")();
}

QEL_EXTERN_C QEL_EXPORT HRESULT DllUnregisterServer()
{
    return Chosen("stays-registered") ? S_OK : RealEntryPoint<DllRegisterServerFunction>("DllUnregisterServer")();
}

QEL_EXTERN_C QEL_EXPORT HRESULT DllGetClassObject(const CLSID* myClass, const IID* myInterface, void** theObject)
{
    if (Chosen("crash") || (Chosen("no-null-test") && (myClass == nullptr || theObject == nullptr)))
    {
        std::raise(SIGSEGV);
    }
    const auto myGetClass = RealEntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
    HRESULT theResult = myGetClass(myClass, myInterface, theObject);
    if (theResult == CLASS_E_CLASSNOTAVAILABLE && Chosen("any-class"))
    {
        theResult = myGetClass(&CLSID_Main, myInterface, theObject);
    }
    if (SUCCEEDED(theResult))
    {
        *theObject = StandInFor(*theObject, myInterface);
    }
    return theResult;
}

QEL_EXTERN_C QEL_EXPORT HRESULT DllCanUnloadNow()
{
    return Chosen("unloads-any-time") ? S_OK : RealEntryPoint<DllCanUnloadNowFunction>("DllCanUnloadNow")();
}

#ifdef QEL_ONE_MORE_EXPORT
QEL_EXTERN_C QEL_EXPORT HRESULT DllInstall()
{
    return S_OK;
}
#endif
