// Checks of the calls that a component makes into its host, of what it holds of it, and of its threads.
#include "check/pageCases.h"
#include "text/encodings.h"

#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

void CallOrder(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    ExpectNumber("calls while the services are handed in", 0, static_cast<int64_t>(myServed.State.Calls.size()));
    for (int i = 0; i < 2; ++i) // a page that is written once more asks the same
    {
        for (const LinkCase& myCase : LinkCases())
        {
            OutputOf(myCase, myServed);
            ExpectText("the calls of a page, " + NameOf(myCase), CallOrder(myCase), Joined(myServed.State.Calls));
        }
    }
    const auto ExpectCalls = [&](const std::string& myWhat, TextView myFrom, TextView myTo, const Text& myCalls)
    {
        const Text myScript = ReplaceAll(LinkedScript(u""), myFrom, myTo);
        myServed.State.Calls.clear();
        myServed.Output(myScript);
        ExpectText("the calls of a page " + myWhat, myCalls, Joined(myServed.State.Calls));
    };
    ExpectCalls("without its picture", u"\"showimage\" value=\"1\"", u"\"showimage\" value=\"0\"",
                Text(CallsForPeriod).append(CallsForTune));
    ExpectCalls("without its tune", u"\"playmidi\" value=\"1\"", u"\"playmidi\" value=\"0\"",
                Text(CallsForPeriod).append(CallsForPicture).append(CallsForStaging));
    ExpectCalls("without a motif", u"\"image\" value=\"qelspr.gif\"", u"\"image\"", u"");
    myServed.State.Calls.clear();
    Read(*myServed.Plugin.Get(), &QelPlugin::get_TextSettings);
    ScriptOf(*myServed.Plugin.Get());
    ExpectText("the calls of reading script and summary", u"", Joined(myServed.State.Calls));
}

/// The number of the failure of the first call; those of the others follow.
constexpr int32_t FirstFailure = 2000;

/// Makes each call from one position to another fail, and expects the page to fail there for that reason.
void ExpectFailures(ServedPlugin& theServed, const LinkCase& myCase, int64_t myFirst, int64_t myEnd)
{
    HostState& theState = theServed.State;
    for (int64_t i = myFirst; i < myEnd; ++i)
    {
        for (const Error& myReason :
             {Error{FirstFailure + static_cast<int32_t>(i), u"fallo"}, Error{E_ACCESSDENIED, u"no"}})
        {
            theState.FailingCall = static_cast<size_t>(i);
            theState.Reason = myReason;
            const Text myPage = OutputOf(myCase, theServed);
            const std::string myWhat = "when call " + std::to_string(i) + " fails, " +
                                       (theState.Calls.empty() ? "which does not come" : theState.Calls.back()) + ", " +
                                       NameOf(myCase);
            ExpectText("the page " + myWhat, ErrorPage, myPage);
            ExpectNumber("the number of calls " + myWhat, i, static_cast<int64_t>(theState.Calls.size()));
            ExpectText("ErrorText " + myWhat, PluginFailure(myReason.Number, myReason.Description),
                       Read(*theServed.Plugin.Get(), &QelPlugin::get_ErrorText));
        }
    }
    theState.FailingCall = 0;
}

void FailingCalls(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    const int64_t myFirstOfLink = 1 + CallCount(CallsForPeriod) + CallCount(CallsForPicture);
    for (const LinkCase& myCase : LinkCases())
    {
        ExpectFailures(myServed, myCase, myFirstOfLink, myFirstOfLink + CallCount(myCase.Calls));
    }
    ExpectFailures(myServed, LongestCase(), 1, 1 + CallCount(CallOrder(LongestCase())));
    ExpectPart("the page when nothing fails any more", u"</script>", OutputOf(LongestCase(), myServed));
}

void NoServices(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    ExpectResult("writing Script", S_OK, Write(*myPlugin.Get(), FullScript));
    ExpectText("the page without services", ErrorPage, Read(*myPlugin.Get(), &QelPlugin::get_Output));
    ExpectPart("ErrorText", u"El plug-in \"Orvenal\" ha provocado el error \"91: ",
               Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
}

/// Hands an object in, another one, and none, and expects `myKept` references while it is in hand.
template <class Interface>
void ExpectHolding(const char* myName, QelPlugin& myPlugin,
                   HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(Interface**), Interface& myFirst,
                   Interface& mySecond, int64_t myKept)
{
    const std::string myWhat(myName);
    Interface* const myOrder[] = {&myFirst, &mySecond, nullptr};
    for (Interface* myObject : myOrder)
    {
        Interface* myPassed = myObject;
        ExpectResult(myWhat, S_OK, (myPlugin.*myMember)(&myPassed));
        Expect(myWhat + " leaves the caller's reference alone", myPassed == myObject);
        ExpectNumber("references to the first object of " + myWhat, myObject == &myFirst ? 1 + myKept : 1,
                     HoldersOf(myFirst)); // NOLINT(clang-analyzer-cplusplus.NewDelete): the caller holds both
        ExpectNumber("references to the second object of " + myWhat, myObject == &mySecond ? 1 + myKept : 1,
                     HoldersOf(mySecond)); // NOLINT(clang-analyzer-cplusplus.NewDelete)
    }
}

void References(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myHeld = myComponent.Plugin();
    QelPlugin& myPlugin = *myHeld.Get();
    HostState myState;
    const auto Holding = [&]<class Object, class Interface>(
                             const char* myName, HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(Interface**),
                             int64_t myKept, const ComPtr<Object>& myFirst, const ComPtr<Object>& mySecond)
    {
        ExpectHolding<Interface>(myName, myPlugin, myMember, *myFirst.Get(), *mySecond.Get(), myKept);
    };
    Holding("QelBuildHelper", &QelPlugin::putref_QelBuildHelper, 1, MakeCounted<CheckedHelper>(myState),
            MakeCounted<CheckedHelper>(myState));
    Holding("QelDatabase", &QelPlugin::putref_QelDatabase, 1, MakeCounted<CheckedDatabase>(myState),
            MakeCounted<CheckedDatabase>(myState));
    Holding("QelThumbnails", &QelPlugin::putref_QelThumbnails, 0, MakeCounted<Thumbnails>(), MakeCounted<Thumbnails>());
    Holding("QelTopic", &QelPlugin::putref_QelTopic, 0, MakeCounted<Topic>(), MakeCounted<Topic>());
    ServedPlugin myServed(myComponent, myContext);
    for (const size_t myFailing : {0U, 8U})
    {
        myServed.State.FailingCall = myFailing;
        myServed.Output(FullScript);
        ExpectNumber("references to the build service after a page", 2, HoldersOf(*myServed.Helper.Get()));
        ExpectNumber("references to the database after a page", 2, HoldersOf(*myServed.Database.Get()));
    }
}

void NoDisplay(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const auto ExpectRefusal = [](const std::string& myWhat, HRESULT myResult)
    {
        Expect(myWhat + " fails", FAILED(myResult));
        const FailureTexts myFailure;
        Expect(myWhat + " says why it failed", !myFailure.Description.empty());
    };
    int32_t myLink = 0;
    VARIANT_BOOL theAnswer = VARIANT_TRUE;
    ExpectRefusal("CallBack of 0", myPlugin->CallBack(&myLink, &theAnswer));
    ExpectNumber("its answer", VARIANT_FALSE, theAnswer);
    ExpectRefusal("About", myPlugin.Query<QelInfo>()->About());
}

// ---- Threads ----

constexpr int Rounds = 25;

/// Where two threads wait for each other. The barrier of the standard library misses wake-ups on Windows as mingw-w64
/// builds it, and then waits for ever.
class Meeting
{
public:
    /// Returns when the other thread has come too, or has left.
    void Await()
    {
        std::unique_lock myLock(myMutex);
        const int myRound = myArrivals / 2;
        ++myArrivals;
        myChange.notify_one();
        myChange.wait(myLock, [&] { return myArrivals / 2 != myRound || myHasLeft; });
    }
    void Leave()
    {
        const std::unique_lock myLock(myMutex);
        myHasLeft = true;
        myChange.notify_one();
    }

private:
    std::mutex myMutex;
    std::condition_variable myChange;
    int myArrivals = 0;
    bool myHasLeft = false;
};

/// What a thread does at the same time as another: it keeps a module of its own and writes its page. In each round it
/// waits for the other between writing and reading.
void KeepModule(const OpenedComponent& myComponent, const CheckContext& myContext, int32_t myNumber,
                Meeting& theMeeting)
{
    ServedPlugin myServed(myComponent, {myContext.File, fs::absolute(std::to_string(myNumber))});
    myServed.State.Instance = myNumber;
    const Text myDigits = NumberText(int64_t{myNumber});
    const Text myScript = Param(u"image", u"a.gif") + Param(u"showimage", u"0") + Param(u"playmidi", u"0");
    for (int i = 0; i < Rounds; ++i)
    {
        theMeeting.Await();
        ExpectPart("the page of a thread", u"var showme" + myDigits + u"=true;",
                   myServed.Output(myScript + Param(u"link", myDigits)));
        theMeeting.Await();
        ExpectPart("the script of a thread", Param(u"link", myDigits), ScriptOf(*myServed.Plugin.Get()));
    }
}

void Threads(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    std::array<std::exception_ptr, 2> theFailures;
    Meeting theMeeting;
    const auto Work = [&](size_t myIndex)
    {
        try
        {
            fs::create_directory(std::to_string(myIndex));
            KeepModule(myComponent, myContext, static_cast<int32_t>(myIndex), theMeeting);
        }
        catch (...)
        {
            theFailures.at(myIndex) = std::current_exception();
            theMeeting.Leave();
        }
    };
    std::thread mySecond(Work, 1);
    Work(0);
    mySecond.join();
    for (const std::exception_ptr& myFailure : theFailures)
    {
        if (myFailure)
        {
            std::rethrow_exception(myFailure);
        }
    }
    ExpectResult("DllCanUnloadNow after both threads", S_OK, myComponent.CanUnloadNow());
}

constexpr Check HostCheckList[] = {
    {"host.call-order", "A page asks the host what it needs, in the documented order, and nothing else", CallOrder},
    {"host.failing-calls", "A failed call of the host, whichever it is, ends the page and is named as the reason",
     FailingCalls},
    {"host.no-services", "A page without services fails with error 91", NoServices},
    {"host.references", "Services are held while they are in hand; what is not needed is not held", References},
    {"dialog.no-display", "Without a display the dialog and the box about the plug-in fail, and say why", NoDisplay},
    {"threads.records", "Two threads at the same time have a module each", Threads},
};

} // namespace

std::span<const Check> HostChecks()
{
    return HostCheckList;
}

} // namespace qel::host
