// Checks of what a module is for: its script, its page, the calls that this takes, and what is left behind.
#include "check/CheckSupport.h"

#include "site/siteFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <barrier>
#include <cstdlib>
#include <exception>
#include <random>
#include <thread>
#include <type_traits>

namespace qel::host
{

namespace
{

constexpr TextView ErrorPage = u"[Error de plug-in]";
constexpr TextView NothingChosen = u"No se ha seleccionado ningún motivo.";
constexpr TextView DefaultScript = u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
                                   u"<pg.param name=\"image\">\r\n"
                                   u"<pg.param name=\"imagefolder\">\r\n"
                                   u"<pg.param name=\"midi\">\r\n"
                                   u"<pg.param name=\"midifolder\">\r\n"
                                   u"<pg.param name=\"imagemode\" value=\"none\">\r\n"
                                   u"<pg.param name=\"midimode\" value=\"0\">\r\n"
                                   u"<pg.param name=\"showimage\" value=\"1\">\r\n"
                                   u"<pg.param name=\"playmidi\" value=\"1\">\r\n"
                                   u"<pg.param name=\"from\" value=\"0\">\r\n"
                                   u"<pg.param name=\"to\" value=\"0\">\r\n"
                                   u"<pg.param name=\"link\">\r\n";

Text Param(TextView myName, TextView myValue)
{
    return JoinTexts({u"<pg.param name=\"", myName, u"\" value=\"", myValue, u"\">"});
}

Text PluginFailure(int64_t myNumber, TextView myReason)
{
    return u"El plug-in \"Orvenal\" ha provocado el error \"" + NumberText(myNumber) + u": " + Text(myReason) + u"\".";
}

Text ScriptOf(QelPlugin& myPlugin)
{
    return Read(myPlugin, &QelPlugin::get_Script);
}

Text Joined(const std::vector<std::string>& myCalls)
{
    Text theText;
    for (const std::string& myCall : myCalls)
    {
        theText += FromUtf8(myCall) + u" ";
    }
    return theText;
}

// ---- Scripts -----------------------------------------------------------------------------------------------------

void Initial(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    for (const Text& myScript : {Read(*myPlugin.Get(), &QelPlugin::get_InitialScript), Text()})
    {
        ExpectResult("writing " + Shown(myScript), S_OK, Write(*myPlugin.Get(), myScript));
        ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
        ExpectText("ErrorText after it", u"", Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
        ExpectPart("TextSettings after it", u"<callback type=0 icon=1 caption=\"aquí\">",
                   Read(*myPlugin.Get(), &QelPlugin::get_TextSettings));
    }
    BSTR myNull = nullptr;
    ExpectResult("writing a null text", S_OK, myPlugin->put_Script(&myNull));
    ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
}

void RoundTrip(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    const Text myEscaped = ReplaceAll(FullScript, u"UID:4711", u"URL:a&amp;b&lt;&gt;&quot;'ñ\U0001F388");
    for (const Text& myScript : {Text(FullScript), myEscaped, Text(DefaultScript)})
    {
        Bstr myText(myScript);
        ExpectResult("writing a script", S_OK, myPlugin->put_Script(myText.Pointer()));
        ExpectText("the caller's text after it", myScript, myText.Value());
        ExpectText("the script that comes back", myScript, ScriptOf(*myPlugin.Get()));
    }
    ExpectResult("writing a script of everything", S_OK, Write(*myPlugin.Get(), FullScript));
    ExpectText("its summary, TextSettings",
               u"Se muestra el motivo personalizado por el usuario. Se reproduce un sonido de fondo personalizado por "
               u"el usuario.El control de tiempo se ha activado.",
               Read(*myPlugin.Get(), &QelPlugin::get_TextSettings));
}

void OtherVersion(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    for (const TextView myVersion : {u" version=\"1.00\"", u" version=\"2.0\"", u""})
    {
        const Text myScript = ReplaceAll(FullScript, u" version=\"1.0\"", myVersion);
        ExpectResult("writing a script of another version", S_OK, Write(*myPlugin.Get(), myScript));
        ExpectText("ErrorText after it", NothingChosen, Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
        ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
        ExpectText("its page", u"", Read(*myPlugin.Get(), &QelPlugin::get_Output));
    }
}

void RandomScripts(const Trial& myTrial)
{
    constexpr std::array<TextView, 26> myPieces{u"<pg.param",
                                                u"<pg.plugin",
                                                u"<pg.file",
                                                u"</pg.param>",
                                                u"<",
                                                u">",
                                                u" name=",
                                                u" value=",
                                                u" filename=",
                                                u"\"image\"",
                                                u"\"link\"",
                                                u"\"from\"",
                                                u"\"to\"",
                                                u"\"midi\"",
                                                u"\"",
                                                u"'",
                                                u"\r\n",
                                                u"&amp;",
                                                u"&quot;",
                                                u"&",
                                                u"38353.5",
                                                u"-1e99",
                                                u"\xD800",
                                                u"\xDC00",
                                                TextView(u"\0", 1),
                                                u" version=\"1.0\""};
    constexpr int myScripts = 2000;
    constexpr size_t myLongest = 40;
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    std::minstd_rand myRandom(1); // the same scripts each time
    for (int i = 0; i < myScripts; ++i)
    {
        Text myScript;
        for (size_t myRest = myRandom() % myLongest; myRest > 0; --myRest)
        {
            myScript += myPieces[myRandom() % myPieces.size()];
            myScript += myRandom() % 4 == 0 ? Text(1, static_cast<char16_t>(myRandom())) : Text();
        }
        const std::string myWhat = "script " + std::to_string(i) + ", " + Shown(myScript);
        const HRESULT myResult = Write(*myPlugin.Get(), myScript);
        ExpectResult(myWhat, myResult == S_OK ? S_OK : QEL_RESULT(0x800A0006U), myResult); // a date out of range
        const Text myFirst = ScriptOf(*myPlugin.Get());
        ExpectResult("writing back what came of " + myWhat, S_OK, Write(*myPlugin.Get(), myFirst));
        ExpectText("what came of " + myWhat + " comes back", myFirst, ScriptOf(*myPlugin.Get()));
    }
}

void HugeScripts(const Trial& myTrial)
{
    constexpr size_t myLength = 8U << 20U; // 16 MB in UTF-16
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    const auto ExpectLink = [&](const std::string& myWhat, const Text& myScript, TextView myLink)
    {
        ExpectResult("writing " + myWhat, S_OK, Write(*myPlugin.Get(), myScript));
        const Text theScript = ScriptOf(*myPlugin.Get());
        ExpectText("the script after " + myWhat,
                   ReplaceAll(DefaultScript, u"\"link\"", Text(u"\"link\" value=\"").append(myLink).append(u"\"")),
                   theScript);
    };
    const Text myValue(myLength, u'x');
    ExpectLink("16 MB in one value", Param(u"link", myValue), myValue);
    Text myTags;
    while (myTags.size() < myLength)
    {
        myTags += Param(u"link", u"a");
    }
    ExpectLink("16 MB of tags", myTags, u"a");
    ExpectLink("16 MB without an end of a tag", Param(u"link", u"b") + Text(myLength, u'<'), u"b");
}

// ---- Pages -------------------------------------------------------------------------------------------------------

void Period(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const ServedPlugin myServed(myComponent, myTrial);
    const Text myScript = Param(u"image", u"a.gif") + Param(u"showimage", u"0") + Param(u"playmidi", u"0");
    const auto ExpectLines = [&](const char* myWhat, const Text& myDates, TextView myLines)
    {
        ExpectText(myWhat,
                   Text(u"<script type=\"text/javascript\">\r\nvar showme3=true;\r\n").append(myLines) +
                       u"</script>\r\n",
                   myServed.Output(myScript + myDates));
    };
    constexpr TextView myFrom = u"if (new Date()<new Date(2005, 0, 1)) showme3=false;\r\n";
    constexpr TextView myTo = u"if (new Date()>new Date(2005, 1, 1)) showme3=false;\r\n";
    ExpectLines("the page without a period", u"", u"");
    ExpectLines("the page from a day", Param(u"from", u"38353"), myFrom);
    ExpectLines("the page up to a day", Param(u"to", u"38383"), myTo);
    ExpectLines("the page of a month", Param(u"from", u"38353") + Param(u"to", u"38383"), Text(myFrom).append(myTo));
    ExpectLines("the page up to a year's end", Param(u"to", u"38717"),
                u"if (new Date()>new Date(2006, 0, 1)) showme3=false;\r\n");
}

Text Bytes(const fs::path& myFile)
{
    return FromAnsi(ReadWholeFile(myFile));
}

void Staging(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const ServedPlugin myServed(myComponent, myTrial);
    const Text myPage = myServed.Output(FullScript);
    ExpectPart("the page",
               u"document.write('<div id=\"qelanimsprite3\" style=\"position:absolute;top:10px;left:10px;"
               u"width:3px;height:2px;z-index:50\"><a href=\"files/nota.pdf\"><img "
               u"src=\"images/qelspr17.gif\" width=\"3\" height=\"2\" alt=\"\" border=0></a></div>'); \r\n",
               myPage);
    ExpectPart("the page",
               u"if (showme3) { \r\ndocument.write('<embed src=\"media/qelmid17.mid\" autostart=true "
               u"loop=false width=0 height=0></embed>'); \r\n}\r\n</script>\r\n",
               myPage);
    ExpectText("ErrorText", u"", Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText));
    ExpectText("the staged picture", FromAnsi(PictureBytes()), Bytes("images/qelspr17.gif"));
    ExpectText("the staged tune", FromAnsi(TuneBytes), Bytes("media/qelmid17.mid"));
    ExpectText("the staged file of the link", u"paper", Bytes("files/nota.pdf"));
    ExpectText("the script after the page", FullScript, ScriptOf(*myServed.Plugin.Get()));
}

constexpr const char16_t* LinkFails = nullptr;

/// A link, what the record that it leads to is, what stands in front of the picture, and what the host is asked about
/// the link.
constexpr struct
{
    const char16_t* Link;
    int32_t Kind;
    bool AtEnd;
    const char16_t* Tag;
    TextView Calls;
} LinkCases[] = {
    {u"URL:http://x/?a=1", 0, false, u"<a href=\"http://x/?a=1\">", u""},
    {u"URL:", 0, false, u"<a>", u""},
    {u"url:x", 0, false, u"<a>", u""},
    {u"URL:ERROR", 0, false, LinkFails, u""},
    {u"", 0, false, u"", u""},
    {u"UID:4711", 0, false, LinkFails, u"SeekUID EOF RecordType "},
    {u"UID:4711", 1, true, LinkFails, u"SeekUID EOF "},
    {u"UID:4711", 1, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 2, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 3, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 4, false, u"<a href=\"images/nota.pdf\">",
     u"SeekUID EOF RecordType DataFolder RecordFilename ImageFolder RecordFilename ImageURL RecordFilename "},
    {u"UID:4711", 5, false, u"<a href=\"files/nota.pdf\">",
     u"SeekUID EOF RecordType DataFolder RecordFilename FileFolder RecordFilename FileURL RecordFilename "},
    {u"UID:4711", 6, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 7, false, u"<a>", u"SeekUID EOF RecordType "},
};
using LinkCase = std::remove_cvref_t<decltype(LinkCases[0])>;

std::string NameOf(const LinkCase& myCase)
{
    return "link \"" + ToUtf8(myCase.Link) + "\" with a record of kind " + std::to_string(myCase.Kind) +
           (myCase.AtEnd ? " that is not found" : "");
}

/// The page of FullScript with another link. The host's answers are set for it, and its calls begin anew.
Text OutputOf(const LinkCase& myCase, ServedPlugin& theServed)
{
    theServed.State.Kind = myCase.Kind;
    theServed.State.AtEnd = myCase.AtEnd;
    theServed.State.Calls.clear();
    return theServed.Output(ReplaceAll(FullScript, u"UID:4711", myCase.Link));
}

void Links(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    ServedPlugin myServed(myComponent, myTrial);
    for (const auto& myCase : LinkCases)
    {
        const std::string myWhat = NameOf(myCase);
        const Text myPage = OutputOf(myCase, myServed);
        const Text myReason = Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText);
        if (myCase.Tag == LinkFails)
        {
            ExpectText(myWhat, ErrorPage, myPage);
        }
        else
        {
            ExpectPart(myWhat, Text(u"z-index:50\">") + myCase.Tag + u"<img ", myPage);
        }
        ExpectText("ErrorText of " + myWhat, myCase.Tag == LinkFails ? u"El vínculo no funciona." : u"", myReason);
    }
}

/// A picture of the library beside the component, the first by name; the empty path without one.
fs::path LibraryPicture(const fs::path& myLibrary)
{
    std::vector<fs::path> myPictures;
    for (const std::string& myFolder : NamesInFolder(myLibrary))
    {
        const std::vector<std::string> myNames =
            fs::is_directory(myLibrary / myFolder) ? NamesInFolder(myLibrary / myFolder) : std::vector<std::string>();
        for (const std::string& myName : myNames)
        {
            if (LowerCase(FromUtf8(myName)).ends_with(u".gif"))
            {
                myPictures.push_back(myLibrary / myFolder / myName);
            }
        }
    }
    return myPictures.empty() ? fs::path() : *std::ranges::min_element(myPictures);
}

void LibraryMotif(const Trial& myTrial)
{
    const fs::path myPicture = LibraryPicture(myTrial.File.parent_path() / "QelPluginAnimationDesigns");
    if (myPicture.empty())
    {
        throw Outcome{CheckResult::Skipped, "a folder QelPluginAnimationDesigns with motifs beside the component",
                      "there is none"};
    }
    const OpenedComponent myComponent(myTrial);
    const ServedPlugin myServed(myComponent, myTrial);
    const Text myPage = myServed.Output(Param(u"image", FromUtf8(myPicture.filename().string())) +
                                        Param(u"imagefolder", FromUtf8(myPicture.parent_path().filename().string())) +
                                        Param(u"playmidi", u"0"));
    const std::string myStaged = "images/qelspr17" + myPicture.extension().string();
    ExpectPart("the page with " + myPicture.filename().string(), u"<img src=\"" + FromUtf8(myStaged) + u"\"", myPage);
    ExpectText("the calls of the page with it", u"InstanceNumber InstanceNumber UniqueName ImageFolder ImageURL ",
               Joined(myServed.State.Calls));
    ExpectText("the staged motif", Bytes(myPicture), Bytes(myStaged));
}

// ---- The host ----------------------------------------------------------------------------------------------------

// What a page of FullScript asks the host, in this order: before the link, and after it.
constexpr TextView CallsForPeriod = u"DataFolder InstanceNumber InstanceNumber InstanceNumber ";
constexpr TextView CallsForPicture = u"InstanceNumber UniqueName ";
constexpr TextView CallsForStaging = u"ImageFolder ImageURL ";
constexpr TextView CallsForTune = u"UniqueName MediaFolder InstanceNumber MediaURL ";

Text CallOrder(const LinkCase& myCase)
{
    Text theCalls = Text(CallsForPeriod).append(CallsForPicture).append(myCase.Calls);
    return myCase.Tag == LinkFails ? theCalls : theCalls.append(CallsForStaging).append(CallsForTune);
}

/// The row whose page makes the most calls: a link to a file.
const LinkCase& LongestCase()
{
    return *std::ranges::find(LinkCases, 5, &LinkCase::Kind);
}

void Order(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    ServedPlugin myServed(myComponent, myTrial);
    ExpectNumber("calls while the services are handed in", 0, static_cast<int64_t>(myServed.State.Calls.size()));
    for (int i = 0; i < 2; ++i) // a page that is written once more asks the same
    {
        for (const LinkCase& myCase : LinkCases)
        {
            OutputOf(myCase, myServed);
            ExpectText("the calls of a page, " + NameOf(myCase), CallOrder(myCase), Joined(myServed.State.Calls));
        }
    }
    const auto ExpectCalls = [&](const std::string& myWhat, TextView myFrom, TextView myTo, const Text& myCalls)
    {
        const Text myScript = ReplaceAll(ReplaceAll(FullScript, u"UID:4711", u""), myFrom, myTo);
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

/// Lets each call from one place on to another fail, and expects the page to end there for that reason.
void ExpectFailures(ServedPlugin& theServed, const LinkCase& myCase, int64_t myFirst, int64_t myEnd)
{
    constexpr int32_t myFirstNumber = 2000;
    HostState& theState = theServed.State;
    for (int64_t i = myFirst; i < myEnd; ++i)
    {
        for (const Error& myReason :
             {Error{myFirstNumber + static_cast<int32_t>(i), u"fallo"}, Error{E_ACCESSDENIED, u"no"}})
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

int64_t CallsIn(TextView myCalls)
{
    return std::ranges::count(myCalls, u' ');
}

void FailingCalls(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    ServedPlugin myServed(myComponent, myTrial);
    const int64_t myFirstOfLink = 1 + CallsIn(CallsForPeriod) + CallsIn(CallsForPicture);
    for (const LinkCase& myCase : LinkCases)
    {
        ExpectFailures(myServed, myCase, myFirstOfLink, myFirstOfLink + CallsIn(myCase.Calls));
    }
    ExpectFailures(myServed, LongestCase(), 1, 1 + CallsIn(CallOrder(LongestCase())));
    ExpectPart("the page when nothing fails any more", u"</script>", OutputOf(LongestCase(), myServed));
}

void NoServices(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    ExpectResult("writing Script", S_OK, Write(*myPlugin.Get(), FullScript));
    ExpectText("the page without services", ErrorPage, Read(*myPlugin.Get(), &QelPlugin::get_Output));
    ExpectPart("ErrorText", u"El plug-in \"Orvenal\" ha provocado el error \"91: ",
               Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
}

/// Hands an object in, another one, and none, and expects `myKept` references while it is in hand.
template <class Interface>
void ExpectHolding(const char* myName, QelPlugin& myPlugin, HRESULT (QelPlugin::*myMember)(Interface**),
                   Interface& myFirst, Interface& mySecond, int64_t myKept)
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

void References(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myHeld = myComponent.Plugin();
    QelPlugin& myPlugin = *myHeld.Get();
    HostState myState;
    const auto Holding = [&]<class Object, class Interface>(
                             const char* myName, HRESULT (QelPlugin::*myMember)(Interface**), int64_t myKept,
                             const ComPtr<Object>& myFirst, const ComPtr<Object>& mySecond)
    {
        ExpectHolding<Interface>(myName, myPlugin, myMember, *myFirst.Get(), *mySecond.Get(), myKept);
    };
    Holding("QelBuildHelper", &QelPlugin::putref_QelBuildHelper, 1, MakeCounted<CheckedHelper>(myState),
            MakeCounted<CheckedHelper>(myState));
    Holding("QelDatabase", &QelPlugin::putref_QelDatabase, 1, MakeCounted<CheckedDatabase>(myState),
            MakeCounted<CheckedDatabase>(myState));
    Holding("QelThumbnails", &QelPlugin::putref_QelThumbnails, 0, MakeCounted<Thumbnails>(), MakeCounted<Thumbnails>());
    Holding("QelTopic", &QelPlugin::putref_QelTopic, 0, MakeCounted<Topic>(), MakeCounted<Topic>());
    ServedPlugin myServed(myComponent, myTrial);
    for (const size_t myFailing : {0U, 8U})
    {
        myServed.State.FailingCall = myFailing;
        myServed.Output(FullScript);
        ExpectNumber("references to the build service after a page", 2, HoldersOf(*myServed.Helper.Get()));
        ExpectNumber("references to the database after a page", 2, HoldersOf(*myServed.Database.Get()));
    }
}

void NoDisplay(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
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

// ---- Threads -----------------------------------------------------------------------------------------------------

/// What a thread does at the same time as another: it keeps a module of its own and writes its page. In each round it
/// waits for the other between writing and reading.
void KeepModule(const OpenedComponent& myComponent, const Trial& myTrial, int32_t myNumber, std::barrier<>& theMeeting)
{
    constexpr int myRounds = 25;
    ServedPlugin myServed(myComponent, {myTrial.File, fs::absolute(std::to_string(myNumber))});
    myServed.State.Instance = myNumber;
    const Text myDigits = NumberText(int64_t{myNumber});
    const Text myScript = Param(u"image", u"a.gif") + Param(u"showimage", u"0") + Param(u"playmidi", u"0");
    for (int i = 0; i < myRounds; ++i)
    {
        theMeeting.arrive_and_wait();
        ExpectPart("the page of a thread", u"var showme" + myDigits + u"=true;",
                   myServed.Output(myScript + Param(u"link", myDigits)));
        theMeeting.arrive_and_wait();
        ExpectPart("the script of a thread", Param(u"link", myDigits), ScriptOf(*myServed.Plugin.Get()));
    }
}

void Threads(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    std::array<std::exception_ptr, 2> theFailures;
    std::barrier theMeeting(2);
    const auto Work = [&](size_t myIndex)
    {
        try
        {
            fs::create_directory(std::to_string(myIndex));
            KeepModule(myComponent, myTrial, static_cast<int32_t>(myIndex), theMeeting);
        }
        catch (...)
        {
            theFailures.at(myIndex) = std::current_exception();
            theMeeting.arrive_and_drop();
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

// ---- Leaks -------------------------------------------------------------------------------------------------------

void TextLeaks(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    const auto myPlugin = myComponent.Plugin();
    const auto myInfo = myPlugin.Query<QelInfo>();
    for (const auto& [myName, myMember] : TextMembers)
    {
        ExpectNoGrowth("reading " + ToUtf8(myName), [&, myRead = myMember] { Read(*myPlugin.Get(), myRead); });
    }
    ExpectNoGrowth(
        "reading InitialScript late-bound",
        [&]
        {
            DISPPARAMS myNone{};
            VARIANT theText{};
            ExpectResult("Invoke", S_OK,
                         myPlugin->Invoke(5, &GUID_NULL, 0, DISPATCH_PROPERTYGET, &myNone, &theText, nullptr, nullptr));
            VariantClear(&theText);
        });
    ExpectNoGrowth("reading Version",
                   [&]
                   {
                       Bstr theText;
                       myInfo->get_Version(theText.Pointer());
                   });
    ExpectNoGrowth("writing a script", [&] { Write(*myPlugin.Get(), FullScript); });
    ExpectNoGrowth("writing a script that fails",
                   [&] { Write(*myPlugin.Get(), Text(FullScript) + Param(u"to", u"1e9")); });
}

void ObjectLeaks(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    ExpectNoGrowth("making objects and letting them go",
                   [&]
                   {
                       const auto myPlugin = myComponent.Plugin();
                       myPlugin.Query<QelInfo>();
                       Bstr myText(u"a");
                       const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
                       mySort->AddValue(myText.Pointer());
                       mySort->Sort();
                   });
    ExpectResult("DllCanUnloadNow after it", S_OK, myComponent.CanUnloadNow());
}

void PageLeaks(const Trial& myTrial)
{
    const OpenedComponent myComponent(myTrial);
    ServedPlugin myServed(myComponent, myTrial);
    for (const size_t myFailing : {size_t{0}, static_cast<size_t>(CallsIn(CallOrder(LongestCase())))})
    {
        ExpectNoGrowth(myFailing == 0 ? "writing a page" : "writing a page that fails",
                       [&]
                       {
                           myServed.State.Calls.clear();
                           myServed.State.FailingCall = myFailing;
                           myServed.State.Reason = {2000, u"fallo"};
                           myServed.Output(FullScript);
                       });
    }
}

constexpr Check Checks[] = {
    {"script.initial", "The initial script and the empty one give a module with nothing chosen", Initial},
    {"script.round-trip", "What was written to Script comes back", RoundTrip},
    {"script.other-version", "A script of another version gives a module with nothing chosen, and the reason",
     OtherVersion},
    {"script.random", "Malformed scripts have a reading, and it comes back", RandomScripts},
    {"script.huge", "Scripts of 16 MB are read in good time and nothing of them is lost", HugeScripts},
    {"output.period", "A page holds the days of its period", Period},
    {"output.staging", "A page with everything is written, and its files are where it says", Staging},
    {"output.links", "Links lead where their form and the kind of their record say", Links},
    {"output.library", "A motif of the library beside the component reaches the page", LibraryMotif},
    {"host.call-order", "A page asks the host what it needs, in the settled order, and nothing else", Order},
    {"host.failing-calls", "A failed call of the host, whichever it is, ends the page and is named as the reason",
     FailingCalls},
    {"host.no-services", "A page without services fails with error 91", NoServices},
    {"host.references", "Services are held while they are in hand; what is not needed is not held", References},
    {"dialog.no-display", "Without a display the dialog and the box about the plug-in fail, and say why", NoDisplay},
    {"threads.records", "Two threads at the same time have a module each", Threads},
    {"leaks.texts", "Reading and writing texts keeps no memory", TextLeaks},
    {"leaks.objects", "Making objects and letting them go keeps no memory", ObjectLeaks},
    {"leaks.pages", "Writing pages, also ones that fail, keeps no memory and no text of the host", PageLeaks},
};

} // namespace

std::span<const Check> ModuleChecks()
{
    return Checks;
}

} // namespace qel::host
