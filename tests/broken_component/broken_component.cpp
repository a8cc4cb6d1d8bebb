// A component with a fault: it forwards to the real one, except for the fault that QEL_FAULT names. QEL_REAL is the
// real component's file.
//
// Its objects are stand-ins, with a table of members that call the same slot of the real object with the same
// arguments, whatever they are: pointers and numbers all travel alike in this system's calling convention.
#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "com/QelHelperInterfaces.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
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

constexpr size_t Member(size_t myNumber)
{
    return InvokeSlot + myNumber;
}

using Word = uintptr_t;

struct StandIn
{
    bool Is(const IID& myId) const { return std::memcmp(&Interface, &myId, sizeof(IID)) == 0; }

    const void* const* Members;
    IUnknown* Real;
    IID Interface;
};

/// A call on its way, which a fault can bend.
struct Call
{
    HRESULT Forward()
    {
        using Function = HRESULT (*)(void*, Word, Word, Word, Word, Word, Word, Word, Word);
        const auto mySlot = reinterpret_cast<Function>((*reinterpret_cast<void***>(Object.Real))[Slot]);
        return mySlot(Object.Real, W[0], W[1], W[2], W[3], W[4], W[5], W[6], W[7]);
    }
    template <class Value>
    Value& Argument(size_t myIndex)
    {
        return *reinterpret_cast<Value*>(W.at(myIndex));
    }
    bool Asks(const IID& myId) { return W[0] != 0 && std::memcmp(&Argument<IID>(0), &myId, sizeof(IID)) == 0; }
    Text Script() { return TextOfBstr(Argument<BSTR>(0)); }

    StandIn& Object;
    size_t Slot;
    std::array<Word, 8> W;
};

struct Fault
{
    const char* Name;
    const IID* Interface; ///< null: any
    size_t Slot;
    HRESULT (*Act)(Call& theCall); ///< null: replaces a part of the text that the member takes or gives
    const char16_t* From = nullptr;
    const char16_t* To = nullptr;
};

IUnknown* TheHelper = nullptr; ///< the host's, without a reference
std::mutex TheLock;
Text TheLastScript;

[[noreturn]] void Hang()
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

/// What a single statement does to a call.
struct Bend
{
    static HRESULT HangUp(Call& /*theCall*/) { Hang(); }
    template <HRESULT Result>
    static HRESULT Give(Call& /*theCall*/)
    {
        return Result;
    }
    /// Does nothing when an argument has a value.
    template <size_t Index, Word Value, HRESULT Result = S_OK>
    static HRESULT Skip(Call& theCall)
    {
        return theCall.W[Index] == Value ? Result : theCall.Forward();
    }
    /// Passes another argument on.
    template <size_t Index, Word Value>
    static HRESULT Pass(Call& theCall)
    {
        return theCall.W[Index] = Value, theCall.Forward();
    }
    template <const IID* Interface>
    static HRESULT Deny(Call& theCall)
    {
        return theCall.Asks(*Interface) ? E_NOINTERFACE : theCall.Forward();
    }
    static HRESULT QueryTwice(Call& theCall) { return theCall.Forward(), theCall.Forward(); }
    static HRESULT LeakText(Call& theCall) { return SysAllocString(u"lost"), theCall.Forward(); }
    static HRESULT ExactNames(Call& theCall)
    {
        return *theCall.Argument<char16_t*>(1) >= u'a' ? DISP_E_UNKNOWNNAME : theCall.Forward();
    }
    static HRESULT ShortScripts(Call& theCall) { return Put(theCall, theCall.Script().substr(0, UINT16_MAX)); }
    static HRESULT CrashOnSurrogate(Call& theCall)
    {
        return theCall.Script().find(u'\xD800') != Text::npos ? std::raise(SIGSEGV) : theCall.Forward();
    }
    static HRESULT Succeed(Call& theCall) { return theCall.Forward(), S_OK; }
    static HRESULT CloseTag(Call& theCall)
    {
        return theCall.W[0] == 0 ? theCall.Forward() : Put(theCall, theCall.Script() + u">");
    }
    static HRESULT ForgetLink(Call& theCall)
    {
        return theCall.W[0] == 0 ? theCall.Forward() : Put(theCall, u"<pg.param name=\"link\">" + theCall.Script());
    }
    static HRESULT AddLower(Call& theCall)
    {
        return theCall.W[0] == 0 ? theCall.Forward() : Put(theCall, LowerCase(TextView(theCall.Script())));
    }
    static HRESULT FailAtZero(Call& theCall)
    {
        const bool isThere = theCall.W[0] != 0 && theCall.W[1] != 0;
        return isThere && theCall.Argument<int32_t>(0) == 0 ? QEL_RESULT(0x800A0009U) : theCall.Forward();
    }

private:
    static HRESULT Put(Call& theCall, TextView myScript)
    {
        return theCall.W[0] = reinterpret_cast<Word>(Bstr(myScript).Pointer()), theCall.Forward();
    }
};

template <size_t Index, VARIANT_BOOL Value>
HRESULT GiveBoolean(Call& theCall)
{
    theCall.Forward();
    theCall.Argument<VARIANT_BOOL>(Index) = Value;
    return S_OK;
}

/// Booleans come late-bound as numbers.
HRESULT NumberForBoolean(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    auto* const myResult = reinterpret_cast<VARIANT*>(theCall.W[5]);
    if (myResult != nullptr && myResult->vt == VT_BOOL)
    {
        myResult->vt = VT_I2;
    }
    return theResult;
}

HRESULT NoIdentity(Call& theCall)
{
    if (!theCall.Asks(IID_IUnknown))
    {
        return theCall.Forward();
    }
    theCall.Argument<void*>(1) = theCall.Object.Real;
    theCall.Object.Real->AddRef();
    return S_OK;
}

HRESULT WildPointer(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    if (FAILED(theResult) && theCall.W[2] != 0)
    {
        theCall.Argument<void*>(2) = &theCall;
    }
    return theResult;
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
    TheLastScript = theCall.Script();
    return theCall.Forward();
}

/// The settings of whichever thread wrote last.
HRESULT LastScript(Call& theCall)
{
    const std::lock_guard myGuard(TheLock);
    const HRESULT theResult = theCall.Forward();
    SysFreeString(std::exchange(theCall.Argument<BSTR>(0), NewBstr(TheLastScript)));
    return theResult;
}

/// Asks the host once more for each page.
HRESULT AskTwice(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    int32_t myNumber = 0;
    if (TheHelper != nullptr)
    {
        static_cast<QelBuildHelper*>(TheHelper)->get_InstanceNumber(&myNumber);
    }
    return theResult;
}

/// The object that has written a script last; others read an empty one.
StandIn* TheWriter = nullptr;

HRESULT RememberWriter(Call& theCall)
{
    TheWriter = &theCall.Object;
    return theCall.Forward();
}

HRESULT ReadOwnScript(Call& theCall)
{
    return TheWriter == &theCall.Object ? theCall.Forward() : S_OK;
}

HRESULT LoseDuplicates(Call& theCall)
{
    static Text myLast;
    const bool isAgain = theCall.W[0] != 0 && theCall.Script() == myLast;
    myLast = theCall.W[0] != 0 ? theCall.Script() : Text();
    return isAgain ? S_OK : theCall.Forward();
}

// ---- What goes wrong with files while a page is written; the current folder is the one of the check -----------------

constexpr char Archive[] = "data/archivo.dat";
constexpr char StagedTune[] = "media/qelmid17.mid";

std::string Contents(const std::filesystem::path& myFile)
{
    std::ifstream myStream(myFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(myStream), {}};
}

void Put(const std::filesystem::path& myFile, const std::string& myBytes)
{
    std::ofstream(myFile, std::ios::binary) << myBytes;
}

/// The page of another archive in place of the site's.
template <std::string (*Change)(const std::string& myArchive)>
HRESULT OtherArchive(Call& theCall)
{
    const std::string myArchive = Contents(Archive);
    const bool isThere = std::filesystem::exists(Archive);
    isThere ? Put(Archive, Change(myArchive)) : void();
    const HRESULT theResult = theCall.Forward();
    isThere ? Put(Archive, myArchive) : void();
    return theResult;
}

/// The page, with other files beside it.
template <void (*Change)()>
HRESULT OtherFiles(Call& theCall)
{
    const HRESULT theResult = theCall.Forward();
    Change();
    return theResult;
}

void StageTune()
{
    Put(StagedTune, "x");
}

/// The page, with the tune that was staged before if there is one.
HRESULT KeepStaged(Call& theCall)
{
    const std::string myBytes = Contents(StagedTune);
    const HRESULT theResult = theCall.Forward();
    myBytes.empty() ? void() : Put(StagedTune, myBytes);
    return theResult;
}

std::string LoseFolders(const std::string& myArchive)
{
    std::string theArchive = myArchive;
    const size_t myPlace = theArchive.find("\\sub\\");
    return myPlace == std::string::npos ? theArchive : theArchive.replace(myPlace, 5, "\\sup\\");
}

std::string WholeOnly(const std::string& myArchive)
{
    return myArchive.ends_with(std::string(4, '\0')) ? myArchive : std::string();
}

std::string MendMagic(const std::string& myArchive)
{
    return myArchive.size() < 13 ? myArchive : "qelarchive1.0" + myArchive.substr(13);
}

/// An archive whose tune is that of the one before if it has none.
std::string KeepTune(const std::string& myArchive)
{
    const std::string myEntry = std::string("\x0B\0\0\0", 4) + "\\qelmid.mid" + std::string("\x04\0\0\0MThd", 8);
    const bool isLost = myArchive.size() > 17 && myArchive.find("qelmid") == std::string::npos;
    return isLost ? myArchive.substr(0, 13) + myEntry + myArchive.substr(13) : myArchive;
}

void CutTune()
{
    constexpr size_t Block = 32'000;
    const std::string myBytes = Contents(StagedTune);
    myBytes.size() > Block ? Put(StagedTune, myBytes.substr(0, Block)) : void();
}
void Escape()
{
    Contents(Archive).find("..\\escaped") != std::string::npos ? Put("escaped.txt", "hostile") : void();
}
void WriteThroughLink()
{
    std::filesystem::exists("outside/kept.txt") ? Put("outside/kept.txt", "hostile") : void();
}
void CopyAgain()
{
    Contents("files/nota.pdf") == "first" ? Put("files/nota.pdf", Contents("data/nota.pdf")) : void();
}

// Named by what goes wrong. Those of the entry points stand there.
constexpr Fault Faults[] = {
    {"wild-pointer", &IID_IClassFactory, CreateSlot, WildPointer},
    {"aggregates", &IID_IClassFactory, CreateSlot, Bend::Pass<0, 0>},
    {"wrong-identity", &IID_QelInfo, QuerySlot, NoIdentity},
    {"one-way-query", &IID_QelInfo, QuerySlot, Bend::Deny<&IID_QelPlugin>},
    {"query-keeps-reference", nullptr, QuerySlot, Bend::QueryTwice},
    {"no-error-info", &IID_ISupportErrorInfo, 3, Bend::Give<S_FALSE>},
    {"other-requirements", &IID_QelPlugin, Member(8), nullptr, u"ninguna", u"alguna"},
    {"true-is-one", &IID_QelPlugin, Member(12), GiveBoolean<0, 1>},
    {"zeros-in-version", &IID_QelInfo, Member(2), nullptr, u"1.0.", u"1.00.00"},
    {"takes-null", &IID_QelPlugin, Member(13), Bend::Skip<0, 0>},
    {"bitmap-with-folder", &IID_QelPlugin, Member(15), nullptr, u"Qel", u"/opt/Qel"},
    {"sorts-nothing", &IID_QelStringSort, Member(5), Bend::Give<S_OK>},
    {"exact-names", nullptr, NamesSlot, Bend::ExactNames},
    {"any-kind", nullptr, InvokeSlot, Bend::Pass<3, DISPATCH_METHOD | DISPATCH_PROPERTYGET>},
    {"numbers-for-booleans", nullptr, InvokeSlot, NumberForBoolean},
    {"no-exception", nullptr, InvokeSlot, Bend::Pass<6, 0>},
    {"other-initial-script", &IID_QelPlugin, Member(5), nullptr, u"1.0", u"1.1"},
    {"half-escaped", &IID_QelPlugin, Member(18), nullptr, u"&amp;", u"&"},
    {"any-version", &IID_QelPlugin, Member(17), nullptr, u"\"2.0\"", u"\"1.0\""},
    {"crash-on-surrogate", &IID_QelPlugin, Member(17), Bend::CrashOnSurrogate},
    {"short-scripts", &IID_QelPlugin, Member(17), Bend::ShortScripts},
    {"ends-a-day-early", &IID_QelPlugin, Member(6), nullptr, u"2006, 0, 1", u"2005, 11, 31"},
    {"width-for-height", &IID_QelPlugin, Member(6), nullptr, u"height:2px", u"height:3px"},
    {"no-empty-link", &IID_QelPlugin, Member(6), nullptr, u"<a>", u""},
    {"library-fails", &IID_QelPlugin, Member(6), nullptr, u"images/", u"imagenes/"},
    {"asks-twice", &IID_QelPlugin, Member(6), AskTwice},
    {"other-number", &IID_QelPlugin, Member(19), nullptr, u"\"2017:", u"\"17:"},
    {"no-reason", &IID_QelPlugin, Member(19), nullptr, u"91", u"0"},
    {"keeps-topic", &IID_QelPlugin, Member(3), KeepTopic},
    {"confirms-unseen", &IID_QelPlugin, Member(16), GiveBoolean<1, VARIANT_TRUE>},
    {"one-record", &IID_QelPlugin, Member(17), RememberScript},
    {"one-record", &IID_QelPlugin, Member(18), LastScript},
    {"leaks-text", &IID_QelPlugin, Member(11), Bend::LeakText},
    {"leaks-page", &IID_QelPlugin, Member(6), Bend::LeakText},
    // What is written to Script is read otherwise.
    {"reads-apos", &IID_QelPlugin, Member(17), nullptr, u"&apos;", u"'"},
    {"no-upper-prefix", &IID_QelPlugin, Member(17), nullptr, u"<PG.", u"<no."},
    {"first-param-counts", &IID_QelPlugin, Member(17), nullptr, u"<pg.param name=\"link\" value=\"b\">", u""},
    {"reads-unclosed-tags", &IID_QelPlugin, Member(17), Bend::CloseTag},
    {"reads-unclosed-values", &IID_QelPlugin, Member(17), nullptr, u"\"a\n>", u"\"a\">"},
    {"line-feed-ends-nothing", &IID_QelPlugin, Member(17), nullptr, u">\n<", u">"},
    {"false-is-false", &IID_QelPlugin, Member(17), nullptr, u"\"false\"", u"\"0\""},
    {"modes-of-any-case", &IID_QelPlugin, Member(17), nullptr, u"\"JPG\"", u"\"jpg\""},
    {"halves-go-up", &IID_QelPlugin, Member(17), nullptr, u"38354.5", u"38355"},
    {"version-begins-so", &IID_QelPlugin, Member(17), nullptr, u"version=\"1.00\"", u"version=\"1.0\""},
    {"forgets-link", &IID_QelPlugin, Member(17), Bend::ForgetLink},
    {"record-per-object", &IID_QelPlugin, Member(17), RememberWriter},
    {"record-per-object", &IID_QelPlugin, Member(18), ReadOwnScript},
    // Sorting.
    {"sorts-without-case", &IID_QelStringSort, Member(2), Bend::AddLower},
    {"loses-duplicates", &IID_QelStringSort, Member(2), LoseDuplicates},
    {"value-zero-fails", &IID_QelStringSort, Member(3), Bend::FailAtZero},
    // Archives and files, around the writing of a page.
    {"any-magic", &IID_QelPlugin, Member(6), OtherArchive<MendMagic>},
    {"first-block-alone", &IID_QelPlugin, Member(6), OtherFiles<CutTune>},
    {"leaves-its-folder", &IID_QelPlugin, Member(6), OtherFiles<Escape>},
    {"follows-links", &IID_QelPlugin, Member(6), OtherFiles<WriteThroughLink>},
    {"empties-nothing", &IID_QelPlugin, Member(6), OtherArchive<KeepTune>},
    {"copies-each-time", &IID_QelPlugin, Member(6), OtherFiles<CopyAgain>},
    {"keeps-older-tune", &IID_QelPlugin, Member(6), KeepStaged},
    {"stages-everything", &IID_QelPlugin, Member(6), OtherFiles<StageTune>},
    {"loses-folders", &IID_QelPlugin, Member(6), OtherArchive<LoseFolders>},
    {"whole-archives-only", &IID_QelPlugin, Member(6), OtherArchive<WholeOnly>},
    // Pages and texts.
    {"tune-at-picture", &IID_QelPlugin, Member(6), nullptr, u"media/", u"images/"},
    {"jpeg-turned", &IID_QelPlugin, Member(6), nullptr, u"width=\"5\" height=\"3\"", u"width=\"3\" height=\"5\""},
    {"cuts-fragments", &IID_QelPlugin, Member(6), nullptr, u"otra.html#a", u"otra.html"},
    {"joins-with-slash", &IID_QelPlugin, Member(6), nullptr, u"\"xqelspr", u"\"x/qelspr"},
    {"short-names-pass", &IID_QelPlugin, Member(10), Bend::Succeed},
    {"double-slash", &IID_QelPlugin, Member(6), nullptr, u"files/nota", u"files//nota"},
    {"escapes-address", &IID_QelPlugin, Member(6), nullptr, u"?a=1&b", u"?a=1&amp;b"},
    {"turns-faster", &IID_QelPlugin, Member(6), nullptr, u"treshold>10", u"treshold>9"},
    {"months-from-one", &IID_QelPlugin, Member(6), nullptr, u"(2005, 0, 31)", u"(2005, 1, 31)"},
    {"blank-after-own-tune", &IID_QelPlugin, Member(10), nullptr, u"usuario.El", u"usuario. El"},
    {"other-reason", &IID_QelPlugin, Member(19), nullptr, u"El vínculo", u"El enlace"},
    {"no-error-number", &IID_QelPlugin, Member(19), nullptr, u"\"53: ", u"\""},
    {"hangs", &IID_QelPlugin, Member(5), Bend::HangUp},
};

bool Chosen(const char* myName)
{
    const char* const myFault = std::getenv("QEL_FAULT");
    return myFault != nullptr && std::strcmp(myFault, myName) == 0;
}

StandIn* StandInFor(void* myReal, const IID& myInterface);

template <size_t Slot>
HRESULT Enter(StandIn* theObject, Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h)
{
    Call myCall{*theObject, Slot, {a, b, c, d, e, f, g, h}};
    if (theObject->Is(IID_QelPlugin) && Slot == Member(4) && a != 0)
    {
        TheHelper = myCall.Argument<IUnknown*>(0);
    }
    const auto* const myFault = std::find_if(std::begin(Faults), std::end(Faults),
                                             [&](const Fault& myOne)
                                             {
                                                 const bool isHere =
                                                     myOne.Interface == nullptr || theObject->Is(*myOne.Interface);
                                                 return isHere && myOne.Slot == Slot && Chosen(myOne.Name);
                                             });
    const bool isEdit = myFault != std::end(Faults) && myFault->Act == nullptr;
    const bool isTaken = theObject->Is(IID_QelPlugin) && Slot == Member(17);
    Bstr myEdited(isEdit && isTaken && a != 0 ? ReplaceAll(myCall.Script(), myFault->From, myFault->To) : Text());
    myCall.W[0] = isEdit && isTaken && a != 0 ? reinterpret_cast<Word>(myEdited.Pointer()) : a;
    const HRESULT theResult = myFault != std::end(Faults) && !isEdit ? myFault->Act(myCall) : myCall.Forward();
    if (isEdit && !isTaken && a != 0 && SUCCEEDED(theResult))
    {
        const Text myText = ReplaceAll(myCall.Script(), myFault->From, myFault->To);
        SysFreeString(std::exchange(myCall.Argument<BSTR>(0), NewBstr(myText)));
    }
    const bool isCreation = theObject->Is(IID_IClassFactory) && Slot == CreateSlot;
    if ((Slot == QuerySlot || isCreation) && SUCCEEDED(theResult))
    {
        auto& theGiven = myCall.Argument<void*>(isCreation ? 2 : 1);
        theGiven = StandInFor(theGiven, myCall.Argument<IID>(isCreation ? 1 : 0));
    }
    return theResult;
}

template <size_t... Slots>
auto TableOf(std::index_sequence<Slots...> /*unused*/)
{
    return std::array<const void*, sizeof...(Slots)>{reinterpret_cast<const void*>(&Enter<Slots>)...};
}

StandIn* StandInFor(void* myReal, const IID& myInterface)
{
    static const auto Table = TableOf(std::make_index_sequence<SlotCount>());
    // They stay, so that one object has one stand-in for each interface.
    static std::map<std::pair<void*, std::string>, StandIn> StandIns;
    const std::lock_guard myGuard(TheLock);
    const std::string myId(reinterpret_cast<const char*>(&myInterface), sizeof(IID));
    return &StandIns.try_emplace({myReal, myId}, StandIn{Table.data(), static_cast<IUnknown*>(myReal), myInterface})
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

template <class Function>
Function RealEntryPoint(const char* myName)
{
    static RealComponent theReal;
    return reinterpret_cast<Function>(dlsym(theReal.Library, myName));
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

QEL_EXTERN_C QEL_EXPORT HRESULT DllGetClassObject(REFCLSID myClass, REFIID myInterface, void** theObject)
{
    const bool myIsNull = theObject == nullptr;
    const bool myIsKnown = myIsNull || SameId(myClass, CLSID_Main) || SameId(myClass, CLSID_classStringSort);
    if (Chosen("dies-in-opening") || (Chosen("crash") && !myIsKnown) || (Chosen("no-null-test") && myIsNull))
    {
        std::raise(SIGSEGV);
    }
    if (Chosen("exits-in-opening"))
    {
        _exit(0);
    }
    if (Chosen("hangs-in-opening"))
    {
        Hang();
    }
    const auto myGetClass = RealEntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
    HRESULT theResult = myGetClass(myClass, myInterface, theObject);
    if (theResult == CLASS_E_CLASSNOTAVAILABLE && Chosen("any-class"))
    {
        theResult = myGetClass(CLSID_Main, myInterface, theObject);
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
