// A component with planted faults: it forwards to the real one, whose file QEL_REAL names, except for the faults that
// QEL_FAULT chooses: those whose names it contains, with ";" before and after each, or with "each" those that the
// running check has to find.
//
// Its objects are stand-ins, with a table of members that call the same slot of the real object with the same
// arguments, whatever they are: pointers and numbers all travel alike in the calling conventions of 64 bits.
#include "checkedProcess.h"
#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "com/QelHelperInterfaces.h"
#include "common/SharedLibrary.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace
{

using namespace qel;

constexpr size_t SlotCount = 28;

/// A member of an interface; null stands for any interface.
struct Member
{
    const IID* Interface;
    size_t Slot;
};
constexpr Member PluginMember(size_t myNumber)
{
    return {&IID_QelPlugin, 6 + myNumber};
}
constexpr Member EntryPoint{nullptr, SlotCount}; // such faults are where the entry points are
constexpr Member AnyQuery{nullptr, 0};
constexpr Member InfoQuery{&IID_QelInfo, 0};
constexpr Member Create{&IID_IClassFactory, 3};
constexpr Member SupportsErrors{&IID_ISupportErrorInfo, 3};
constexpr Member AnyNames{nullptr, 5};
constexpr Member AnyInvoke{nullptr, 6};
constexpr Member Version{&IID_QelInfo, 8};
constexpr Member AddValue{&IID_QelStringSort, 8};
constexpr Member Value{&IID_QelStringSort, 9};
constexpr Member Sort{&IID_QelStringSort, 11};
constexpr Member PutHelper = PluginMember(4);
constexpr Member Page = PluginMember(6);
constexpr Member Summary = PluginMember(10);
constexpr Member PutScript = PluginMember(17);
constexpr Member GetScript = PluginMember(18);
constexpr Member ErrorText = PluginMember(19);

using Word = uintptr_t;

struct StandIn
{
    bool Has(const Member& myMember) const { return myMember.Interface == nullptr || SameId(Id, *myMember.Interface); }

    const void* const* Members;
    IUnknown* Real;
    IID Id;
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
    HRESULT With(size_t myIndex, Word myWord) { return W.at(myIndex) = myWord, Forward(); }
    HRESULT WithScript(TextView myText) { return With(0, reinterpret_cast<Word>(Bstr(myText).Pointer())); }
    template <class Type>
    Type& Argument(size_t myIndex)
    {
        return *reinterpret_cast<Type*>(W.at(myIndex));
    }
    bool Asks(const IID& myId) { return W[0] != 0 && SameId(Argument<IID>(0), myId); }
    bool Is(const Member& myMember) const { return Object.Has(myMember) && Slot == myMember.Slot; }
    /// The text that the call takes or has given; empty without one.
    Text Script() { return W[0] == 0 ? Text() : TextOfBstr(Argument<BSTR>(0)); }
    HRESULT Answer(size_t myIndex, VARIANT_BOOL myAnswer) { return Argument<VARIANT_BOOL>(myIndex) = myAnswer, S_OK; }

    StandIn& Object;
    size_t Slot;
    std::array<Word, 8> W;
};

// ---- What faults need ----

IUnknown* TheHelper = nullptr; ///< the host's, without a reference
StandIn* TheWriter = nullptr;  ///< the object that has written a script last
Text TheLastScript;
std::mutex TheLock;

HRESULT RememberScript(Call& theCall)
{
    const std::scoped_lock myGuard(TheLock);
    TheLastScript = theCall.Script();
    return theCall.Forward();
}

/// The settings of whichever thread wrote last.
HRESULT LastScript(Call& theCall)
{
    const std::scoped_lock myGuard(TheLock);
    const HRESULT theResult = theCall.Forward();
    SysFreeString(std::exchange(theCall.Argument<BSTR>(0), NewBstr(TheLastScript)));
    return theResult;
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

HRESULT KeepTopic(Call& theCall)
{
    if (theCall.Argument<QelTopic*>(0) != nullptr)
    {
        theCall.Argument<QelTopic*>(0)->AddRef();
    }
    return theCall.Forward();
}

HRESULT LoseDuplicates(Call& theCall)
{
    static Text theLast;
    return theCall.W[0] != 0 && std::exchange(theLast, theCall.Script()) == theLast ? S_OK : theCall.Forward();
}

// The current folder is that of the check.
constexpr char Archive[] = "data/archivo.dat";
constexpr char StagedTune[] = "media/qelmid17.mid";

std::string Contents(const std::filesystem::path& myFile)
{
    std::ifstream myStream(myFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(myStream), {}};
}

void PutIf(bool myCondition, const std::filesystem::path& myFile, const std::string& myBytes)
{
    if (myCondition)
    {
        std::ofstream(myFile, std::ios::binary) << myBytes;
    }
}

/// The page, with another file beside it afterwards.
HRESULT PageThen(Call& theCall, const std::function<void()>& myChange)
{
    const HRESULT theResult = theCall.Forward();
    myChange();
    return theResult;
}

/// The page of another archive in place of the site's.
HRESULT PageOf(Call& theCall, const std::function<std::string(std::string)>& myChange)
{
    const bool myIsThere = std::filesystem::exists(Archive);
    const std::string myArchive = Contents(Archive);
    PutIf(myIsThere, Archive, myChange(myArchive));
    return PageThen(theCall, [&] { PutIf(myIsThere, Archive, myArchive); });
}

std::string LoseFolders(std::string myArchive)
{
    const size_t myPlace = myArchive.find("\\sub\\");
    return myPlace == std::string::npos ? myArchive : myArchive.replace(myPlace, 5, "\\sup\\");
}

/// The archive with the tune of the one before if it has none.
std::string KeepTune(const std::string& myArchive)
{
    const std::string myEntry = std::string("\x0B\0\0\0", 4) + "\\qelmid.mid" + std::string("\x04\0\0\0MThd", 8);
    const bool isLost = myArchive.size() > 17 && myArchive.find("qelmid") == std::string::npos;
    return isLost ? myArchive.substr(0, 13) + myEntry + myArchive.substr(13) : myArchive;
}

// ---- The faults ----

struct Fault
{
    const char* Check; ///< the one that has to find it; empty: none does
    const char* Name;
    Member Where;
    HRESULT (*Act)(Call& c) = nullptr;
    const char16_t* From = u""; ///< without an operation, a part of the text that the member takes or gives
    const char16_t* To = u"";   ///< and what replaces it
};

// check_test.py reads this table: a fault a line.
// clang-format off
constexpr Fault Faults[] = {
    {"entry.opening", "dies-in-opening", EntryPoint},
    {"entry.opening", "exits-in-opening", EntryPoint},
    {"entry.opening", "hangs-in-opening", EntryPoint},
    {"entry.exports", "one_more_export", EntryPoint}, // a component of its own
    {"entry.unknown-class", "any-class", EntryPoint},
    {"entry.unknown-interface", "wild-pointer", Create, WildPointer},
    {"entry.null-pointers", "no-null-test", EntryPoint},
    {"entry.aggregation", "aggregates", Create, [](Call& c) { return c.With(0, 0); }},
    {"entry.unload-count", "unloads-any-time", EntryPoint},
    {"entry.registration", "stays-registered", EntryPoint},
    {"entry.unloading", "last-word", EntryPoint},
    {"identity.unknown", "wrong-identity", InfoQuery, NoIdentity},
    {"identity.query", "one-way-query", InfoQuery, [](Call& c) { return c.Asks(IID_QelPlugin) ? E_NOINTERFACE : c.Forward(); }},
    {"identity.counts", "query-keeps-reference", AnyQuery, [](Call& c) { return c.Forward(), c.Forward(); }},
    {"identity.error-info", "no-error-info", SupportsErrors, [](Call&) { return S_FALSE; }},
    {"members.fixed-texts", "other-requirements", PluginMember(8), nullptr, u"ninguna", u"alguna"},
    {"members.answers", "true-is-one", PluginMember(12), [](Call& c) { return c.Forward(), c.Answer(0, 1); }},
    {"members.version", "zeros-in-version", Version, nullptr, u"1.0.", u"1.00.00"},
    {"members.null-pointers", "takes-null", PluginMember(13), [](Call& c) { return c.W[0] == 0 ? S_OK : c.Forward(); }},
    {"members.bitmaps", "bitmap-with-folder", PluginMember(15), nullptr, u"Qel", u"/opt/Qel"},
    {"members.string-sort", "sorts-nothing", Sort, [](Call&) { return S_OK; }},
    {"sort.order", "sorts-without-case", AddValue, [](Call& c) { return c.W[0] == 0 ? c.Forward() : c.WithScript(LowerCase(TextView(c.Script()))); }},
    {"sort.many", "loses-duplicates", AddValue, LoseDuplicates},
    {"sort.bounds", "value-zero-fails", Value, [](Call& c) { return c.W[0] != 0 && c.Argument<int32_t>(0) == 0 ? QEL_RESULT(0x800A0009U) : c.Forward(); }},
    {"late.names", "exact-names", AnyNames, [](Call& c) { return *c.Argument<LPOLESTR>(1) >= u'a' ? DISP_E_UNKNOWNNAME : c.Forward(); }},
    {"late.kinds", "any-kind", AnyInvoke, [](Call& c) { return c.With(3, DISPATCH_METHOD | DISPATCH_PROPERTYGET); }},
    {"late.values", "numbers-for-booleans", AnyInvoke, NumberForBoolean},
    {"late.failures", "no-exception", AnyInvoke, [](Call& c) { return c.With(6, 0); }},
    // What is written to Script, and read from it.
    {"script.initial", "other-initial-script", PluginMember(5), nullptr, u"1.0", u"1.1"},
    {"script.round-trip", "half-escaped", GetScript, nullptr, u"&amp;", u"&"},
    {"script.other-version", "any-version", PutScript, nullptr, u"\"2.0\"", u"\"1.0\""},
    {"script.random", "crash-on-surrogate", PutScript, [](Call& c) { return c.Script().find(u'\xD800') != Text::npos ? (__builtin_trap(), S_OK) : c.Forward(); }},
    {"script.huge", "short-scripts", PutScript, [](Call& c) { return c.WithScript(c.Script().substr(0, UINT16_MAX)); }},
    {"reading.entities", "reads-apos", PutScript, nullptr, u"&apos;", u"'"},
    {"reading.case", "no-upper-prefix", PutScript, nullptr, u"<PG.", u"<no."},
    {"reading.like-names", "first-param-counts", PutScript, nullptr, u"<pg.param name=\"link\" value=\"b\">", u""},
    {"reading.tags", "reads-unclosed-tags", PutScript, [](Call& c) { return c.WithScript(c.Script() + u">"); }},
    {"reading.attributes", "reads-unclosed-values", PutScript, nullptr, u"\"a\n>", u"\"a\">"},
    {"reading.line-ends", "line-feed-ends-nothing", PutScript, nullptr, u">\n<", u">"},
    {"reading.truth-values", "false-is-false", PutScript, nullptr, u"\"false\"", u"\"0\""},
    {"reading.image-modes", "modes-of-any-case", PutScript, nullptr, u"\"JPG\"", u"\"jpg\""},
    {"reading.dates", "halves-go-up", PutScript, nullptr, u"38354.5", u"38355"},
    {"reading.versions", "version-begins-so", PutScript, nullptr, u"version=\"1.00\"", u"version=\"1.0\""},
    {"reading.reset", "forgets-link", PutScript, [](Call& c) { return c.WithScript(u"<pg.param name=\"link\">" + c.Script()); }},
    {"reading.one-record", "record-per-object", PutScript, [](Call& c) { return TheWriter = &c.Object, c.Forward(); }},
    {"reading.one-record", "record-per-object", GetScript, [](Call& c) { return TheWriter == &c.Object ? c.Forward() : S_OK; }},
    // Texts about a module.
    {"texts.summaries", "blank-after-own-tune", Summary, nullptr, u"usuario.El", u"usuario. El"},
    {"texts.short-names", "short-names-pass", Summary, [](Call& c) { return c.Forward(), S_OK; }},
    {"texts.reasons", "other-reason", ErrorText, nullptr, u"El vínculo", u"El enlace"},
    {"texts.error-numbers", "no-error-number", ErrorText, nullptr, u"\"53: ", u"\""},
    // Pages, and the files of a page.
    {"output.period", "ends-a-day-early", Page, nullptr, u"2006, 0, 1", u"2005, 11, 31"},
    {"output.staging", "width-for-height", Page, nullptr, u"height:2px", u"height:3px"},
    {"output.links", "no-empty-link", Page, nullptr, u"<a>", u""},
    {"output.library", "library-fails", Page, nullptr, u"images/", u"imagenes/"},
    {"output.library-tune", "tune-at-picture", Page, nullptr, u"media/", u"images/"},
    {"output.endings", "jpeg-turned", Page, nullptr, u"width=\"5\" height=\"3\"", u"width=\"3\" height=\"5\""},
    {"output.records", "cuts-fragments", Page, nullptr, u"otra.html#a", u"otra.html"},
    {"output.whole", "turns-faster", Page, nullptr, u"treshold>10", u"treshold>9"},
    {"output.link-texts", "escapes-address", Page, nullptr, u"?a=1&b", u"?a=1&amp;b"},
    {"output.days", "months-from-one", Page, nullptr, u"(2005, 0, 31)", u"(2005, 1, 31)"},
    {"files.addresses", "double-slash", Page, nullptr, u"files/nota", u"files//nota"},
    {"files.joins", "joins-with-slash", Page, nullptr, u"\"xqelspr", u"\"x/qelspr"},
    {"files.copied-once", "copies-each-time", Page, [](Call& c) { return PageThen(c, [] { PutIf(Contents("files/nota.pdf") == "first", "files/nota.pdf", Contents("data/nota.pdf")); }); }},
    {"files.replaced", "keeps-older-tune", Page, [](Call& c) { return PageThen(c, [b = Contents(StagedTune)] { PutIf(!b.empty(), StagedTune, b); }); }},
    {"files.needed-alone", "stages-everything", Page, [](Call& c) { return PageThen(c, [] { PutIf(true, StagedTune, "x"); }); }},
    {"archives.sizes", "first-block-alone", Page, [](Call& c) { return PageThen(c, [] { PutIf(true, StagedTune, Contents(StagedTune).substr(0, 32'000)); }); }},
    {"archives.names", "loses-folders", Page, [](Call& c) { return PageOf(c, LoseFolders); }},
    {"archives.hostile-names", "leaves-its-folder", Page, [](Call& c) { return PageThen(c, [] { PutIf(Contents(Archive).find("..\\escaped") != std::string::npos, "escaped.txt", ""); }); }},
    {"archives.links", "follows-links", Page, [](Call& c) { return PageThen(c, [] { PutIf(std::filesystem::exists("outside/kept.txt"), "outside/kept.txt", "hostile"); }); }},
    {"archives.magic", "any-magic", Page, [](Call& c) { return PageOf(c, [](const std::string& a) { return a.size() < 13 ? a : "qelarchive1.0" + a.substr(13); }); }},
    {"archives.truncated", "whole-archives-only", Page, [](Call& c) { return PageOf(c, [](const std::string& a) { return a.ends_with(std::string(4, '\0')) ? a : ""; }); }},
    {"archives.emptied", "empties-nothing", Page, [](Call& c) { return PageOf(c, KeepTune); }},
    // The host, threads and leaks.
    {"host.call-order", "asks-twice", Page, [](Call& c) { return c.Forward(), c.Forward(); }},
    {"host.failing-calls", "other-number", ErrorText, nullptr, u"\"2017:", u"\"17:"},
    {"host.no-services", "no-reason", ErrorText, nullptr, u"91", u"0"},
    {"host.references", "keeps-topic", PluginMember(3), KeepTopic},
    {"dialog.no-display", "confirms-unseen", PluginMember(16), [](Call& c) { return c.Forward(), c.Answer(1, VARIANT_TRUE); }},
    {"threads.records", "one-record", PutScript, RememberScript},
    {"threads.records", "one-record", GetScript, LastScript},
    {"leaks.texts", "leaks-text", PluginMember(11), [](Call& c) { return NewBstr(u"lost"), c.Forward(); }},
    {"leaks.objects", "objects-keep-reference", AnyQuery, [](Call& c) { return c.Forward(), c.Forward(); }},
    {"leaks.pages", "leaks-page", Page, [](Call& c) { return NewBstr(u"lost"), c.Forward(); }},
    // What no check finds.
    {"", "help-fails", PluginMember(20), [](Call& c) { return c.W[0] != 0 && c.Argument<int32_t>(0) == 100 ? E_FAIL : c.Forward(); }},
    {"", "reads-copy", PutScript, nullptr, u"&copy;", u"\u00A9"},
    {"", "one-leap-day-less", Page, nullptr, u"(2004, 1, 29)", u"(2004, 2, 1)"},
    // For other tests of the program.
    {"-", "crash", EntryPoint},
    {"-", "hangs", PluginMember(5), [](Call&) -> HRESULT { Hang(); }},
};
// clang-format on

bool Chosen(const Fault& myFault)
{
    static const std::string myCommand = CommandLine();
    const std::string_view myCheck = myFault.Check;
    const char* const mySetting = std::getenv("QEL_FAULT");
    const std::string myChoice = mySetting == nullptr ? "" : mySetting;
    if (myChoice == "each" && myCheck != "entry.opening") // without which no other runs
    {
        const size_t myPlace = myCommand.find(myCheck);
        const auto IsEnd = [](char c)
        {
            return c == '\0' || c == '"' || c == ' ';
        };
        return !myCheck.empty() && myPlace != std::string::npos && IsEnd(myCommand[myPlace + myCheck.size()]);
    }
    return myChoice.find(std::string(";") + myFault.Name + ";") != std::string::npos;
}

bool Chosen(std::string_view myName)
{
    return Chosen(*std::ranges::find(Faults, myName, &Fault::Name));
}

// ---- The stand-ins ----

StandIn* StandInFor(void* myReal, const IID& myInterface);

/// The call with a part of the text replaced that it takes or gives.
HRESULT Edited(Call& theCall, const Fault& myFault)
{
    if (theCall.W[0] == 0)
    {
        return theCall.Forward();
    }
    if (theCall.Is(PutScript))
    {
        return theCall.WithScript(ReplaceAll(theCall.Script(), myFault.From, myFault.To));
    }
    const HRESULT theResult = theCall.Forward();
    if (SUCCEEDED(theResult))
    {
        const Text myText = ReplaceAll(theCall.Script(), myFault.From, myFault.To);
        SysFreeString(std::exchange(theCall.Argument<BSTR>(0), NewBstr(myText)));
    }
    return theResult;
}

template <size_t Slot>
HRESULT Enter(StandIn* theObject, Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h)
{
    Call myCall{*theObject, Slot, {a, b, c, d, e, f, g, h}};
    if (myCall.Is(PutHelper) && a != 0)
    {
        TheHelper = myCall.Argument<IUnknown*>(0);
    }
    const auto* const myFault =
        std::ranges::find_if(Faults, [&](const Fault& myOne) { return myCall.Is(myOne.Where) && Chosen(myOne); });
    const HRESULT theResult = myFault == std::end(Faults) ? myCall.Forward()
                              : myFault->Act != nullptr   ? myFault->Act(myCall)
                                                          : Edited(myCall, *myFault);
    if ((Slot == AnyQuery.Slot || myCall.Is(Create)) && SUCCEEDED(theResult))
    {
        const size_t myId = Slot == AnyQuery.Slot ? 0 : 1;
        auto& theGiven = myCall.Argument<void*>(myId + 1);
        theGiven = StandInFor(theGiven, myCall.Argument<IID>(myId));
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
    const std::scoped_lock myGuard(TheLock);
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
    }
    host::SharedLibrary File{std::getenv("QEL_REAL")};
};

template <class Function>
Function RealEntryPoint(const char* myName)
{
    static RealComponent theReal;
    return theReal.File.Find<Function>(myName);
}

} // namespace

STDAPI DllRegisterServer()
{
    return RealEntryPoint<DllRegisterServerFunction>("DllRegisterServer")();
}

STDAPI DllUnregisterServer()
{
    return Chosen("stays-registered") ? S_OK : RealEntryPoint<DllUnregisterServerFunction>("DllUnregisterServer")();
}

STDAPI DllGetClassObject(REFCLSID myClass, REFIID myInterface, void** theObject)
{
    const bool myIsNull = theObject == nullptr;
    const bool myIsKnown = myIsNull || SameId(myClass, CLSID_Main) || SameId(myClass, CLSID_classStringSort);
    if (Chosen("dies-in-opening") || (Chosen("crash") && !myIsKnown) || (Chosen("no-null-test") && myIsNull))
    {
        __builtin_trap();
    }
    if (Chosen("exits-in-opening"))
    {
        std::_Exit(0);
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

STDAPI DllCanUnloadNow()
{
    return Chosen("unloads-any-time") ? S_OK : RealEntryPoint<DllCanUnloadNowFunction>("DllCanUnloadNow")();
}

#ifdef QEL_ONE_MORE_EXPORT
STDAPI DllInstall()
{
    return S_OK;
}
#endif
