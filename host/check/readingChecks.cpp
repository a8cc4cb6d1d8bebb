// Checks of how a script is read: which setting each written form becomes.
#include "check/moduleTexts.h"
#include "check/OpenedComponent.h"
#include "text/encodings.h"

#include <utility>
#include <vector>

namespace qel::host
{

namespace
{

/// A setting by its name, and its value as the script that comes back has it.
using Setting = std::pair<TextView, TextView>;

/// A script, and what is different from a module with nothing chosen once it has been read.
struct ReadingCase
{
    Text Script;
    std::vector<Setting> Settings{};
    HRESULT Result = S_OK;
    TextView Reason{}; ///< what ErrorText says
};

/// The script of a module with these settings. The name "filename" stands for the archive.
Text ScriptWith(const std::vector<Setting>& mySettings)
{
    Text theScript(DefaultScript);
    for (const auto& [myName, myValue] : mySettings)
    {
        const size_t myTag = theScript.find(JoinTexts({u"<pg.param name=\"", myName, u"\""}));
        const Text myLine = myValue.empty() ? EmptyParam(myName) : Param(myName, myValue);
        const Text myFile = JoinTexts({u"\r\n<pg.file filename=\"", myValue, u"\">"});
        const size_t myStart = myTag == Text::npos ? theScript.find(u"\r\n") : myTag;
        const size_t myEnd = theScript.find(u"\r\n", myStart);
        theScript.replace(myStart, myEnd - myStart, myTag == Text::npos ? myFile : myLine);
    }
    return theScript;
}

void ExpectReadings(const CheckContext& myContext, const std::vector<ReadingCase>& myCases)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    for (const ReadingCase& myCase : myCases)
    {
        ExpectResult("writing an empty link", S_OK, Write(*myPlugin.Get(), EmptyParam(u"link")));
        const std::string myWhat = Shown(myCase.Script);
        ExpectResult("writing " + myWhat, myCase.Result, Write(*myPlugin.Get(), myCase.Script));
        ExpectText("the script after " + myWhat, ScriptWith(myCase.Settings), ScriptOf(*myPlugin.Get()));
        ExpectText("ErrorText after " + myWhat, myCase.Reason, Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
    }
}

/// A value as it is written, and as it comes back.
constexpr std::pair<TextView, TextView> WrittenValues[] = {
    {u"a&amp;b", u"a&amp;b"},
    {u"&quot;a&quot;", u"&quot;a&quot;"},
    {u"&lt;pg.param&gt;", u"&lt;pg.param&gt;"},
    {u"&lt;&gt;&quot;&amp;", u"&lt;&gt;&quot;&amp;"},
    {u"a&b", u"a&amp;b"},
    {u"a<b", u"a&lt;b"},
    {u"&amp;lt;", u"&amp;lt;"},
    {u"&amp;amp;", u"&amp;amp;"},
    {u"&amp;quot;", u"&amp;quot;"},
    {u"&amp;amp;lt;", u"&amp;amp;lt;"},
    {u"&&quot;amp;", u"&amp;&quot;amp;"},
    {u"&AMP;&Lt;", u"&amp;AMP;&amp;Lt;"},
    {u"&apos;&#65;&nbsp;", u"&amp;apos;&amp;#65;&amp;nbsp;"},
    {u"&amp", u"&amp;amp"},
    {u"&lt &gt;", u"&amp;lt &gt;"},
    {u"it's", u"it's"},
    {u" a  b ", u" a  b "},
    {u"a\tb\r\nc", u"a\tb\r\nc"},
    {u"%1%20+\\/", u"%1%20+\\/"},
    {u"ñ€\U0001F388\u0130", u"ñ€\U0001F388\u0130"},
};

void Entities(const CheckContext& myContext)
{
    std::vector<ReadingCase> myCases;
    for (const auto& [myWritten, myRead] : WrittenValues)
    {
        for (const TextView myName : {u"image", u"imagefolder", u"midi", u"midifolder", u"link"})
        {
            myCases.push_back({Param(myName, myWritten), {{myName, myRead}}});
        }
        myCases.push_back({JoinTexts({u"<pg.file filename=\"", myWritten, u"\">"}), {{u"filename", myRead}}});
    }
    ExpectReadings(myContext, myCases);
}

void LetterCase(const CheckContext& myContext)
{
    ExpectReadings(myContext, {
                                  {u"<PG.param name=\"link\" value=\"a\">", {{u"link", u"a"}}},
                                  {u"<Pg.param name=\"link\" value=\"a\">", {{u"link", u"a"}}},
                                  {u"<PG.file filename=\"a\">", {{u"filename", u"a"}}},
                                  {u"<pg.param NAME=\"link\" Value=\"a\">", {{u"link", u"a"}}},
                                  {u"<pg.file FileName=\"A.Dat\">", {{u"filename", u"A.Dat"}}},
                                  {u"<pg.plugin UID=\"x\" VERSION=\"1.0\">" + Param(u"link", u"a"), {{u"link", u"a"}}},
                                  {u"<pg.Param name=\"link\" value=\"a\">"},
                                  {u"<pg.PARAM name=\"link\" value=\"a\">"},
                                  {u"<pg.File filename=\"a\">"},
                                  {u"<pg.Plugin version=\"2.0\">" + Param(u"link", u"a"), {{u"link", u"a"}}},
                                  {Param(u"Link", u"a")},
                                  {Param(u"IMAGE", u"a")},
                                  {Param(u"imageFolder", u"a")},
                                  {Param(u"ShowImage", u"0")},
                                  {Param(u"From", u"5")},
                                  {Param(u"link", u"AbC"), {{u"link", u"AbC"}}},
                              });
}

void LikeNames(const CheckContext& myContext)
{
    ExpectReadings(
        myContext,
        {
            {u"<pg.param name=\"link\" value=\"a\" value=\"b\">", {{u"link", u"a"}}},
            {u"<pg.param name=\"link\" VALUE=\"a\" value=\"b\">", {{u"link", u"a"}}},
            {u"<pg.param name=\"link\" name=\"image\" value=\"a\">", {{u"link", u"a"}}},
            {u"<pg.param value=\"a\" name=\"link\">", {{u"link", u"a"}}},
            {u"<pg.param name=\"link\" value=\"\" value=\"b\">"},
            {u"<pg.file filename=\"a\" filename=\"b\">", {{u"filename", u"a"}}},
            {u"<pg.plugin version=\"1.0\" version=\"2.0\">" + Param(u"link", u"a"), {{u"link", u"a"}}},
            {Param(u"link", u"a") + Param(u"link", u"b"), {{u"link", u"b"}}},
            {Param(u"link", u"a") + EmptyParam(u"link")},
            {Param(u"image", u"a") + Param(u"midi", u"x") + Param(u"image", u"b"), {{u"image", u"b"}, {u"midi", u"x"}}},
            {Param(u"showimage", u"0") + Param(u"showimage", u"1")},
            {Param(u"from", u"5") + Param(u"from", u"6"), {{u"from", u"6"}}},
            {u"<pg.file filename=\"a\"><pg.file filename=\"b\">", {{u"filename", u"b"}}},
            {u"<pg.file filename=\"a\"><pg.file>"},
            {u"<pg.plugin version=\"1.0\"><pg.plugin version=\"1.0\">" + Param(u"link", u"a"), {{u"link", u"a"}}},
        });
}

void Tags(const CheckContext& myContext)
{
    const Text myLink = Param(u"link", u"a");
    const std::vector<Setting> myLinked{{u"link", u"a"}};
    ExpectReadings(myContext, {
                                  {u"<pg.param name=\"link\" value=\"a\""},
                                  {myLink + u"<pg.param name=\"image\" value=\"b\"", myLinked},
                                  {myLink + u"<pg", myLinked},
                                  {u"<pg.param name=\"image\" value=\"b\" " + myLink, {{u"image", u"b"}}},
                                  {u"<pg.param name=\"link\" value=\"a>b\">"},
                                  {u"<pg.param name=\"link\" value=a>b\">", myLinked},
                                  {u"</pg.param name=\"link\" value=\"a\">"},
                                  {u"</PG.file filename=\"a\">"},
                                  {myLink + u"</pg.param></pg.plugin>", myLinked},
                                  {u"a > b <b>" + myLink + u"</b> & < \"", myLinked},
                                  {u"<param name=\"link\" value=\"b\">" + myLink, myLinked},
                                  {u"<xpg.param name=\"link\" value=\"a\">"},
                                  {u"< pg.param name=\"link\" value=\"a\">"},
                                  {u"<pg.params name=\"link\" value=\"a\">"},
                                  {u"<pg. param name=\"link\" value=\"a\">"},
                                  {u"<pg.><pg.>" + myLink, myLinked},
                                  {u"<pg.other name=\"link\" value=\"b\">" + myLink, myLinked},
                                  {Param(u"other", u"b") + myLink, myLinked},
                                  {u"<pg.param value=\"b\">" + myLink, myLinked},
                                  {u"<<pg.param name=\"link\" value=\"a\">", myLinked},
                                  {u"<pg.param name=\"link\" value=\"a\" />", myLinked},
                                  {u"<pg.param name=\"link\" value=a/>", {{u"link", u"a/"}}},
                              });
}

void Attributes(const CheckContext& myContext)
{
    Text myMany;
    for (int64_t i = 0; i < 300; ++i)
    {
        myMany += u" a" + NumberText(i) + u"=" + NumberText(i);
    }
    const std::vector<Setting> myLinked{{u"link", u"a"}};
    ExpectReadings(myContext, {
                                  {u"<pg.param name=link value=a>", myLinked},
                                  {u"<pg.param name = \"link\" value =  \"a\">", myLinked},
                                  {u"<pg.param  name=\"link\"  value=\"a\"  >", myLinked},
                                  {u"<pg.param\tname=\"link\"\r\nvalue=\"a\"\n>", myLinked},
                                  {u"<pg.param name=\"link\"value=\"a\">", myLinked},
                                  {u"<pg.param \"name=\"link\" va\"lue=\"a\">", myLinked},
                                  {u"<pg.param name=\"link\" value=a b>", myLinked},
                                  {u"<pg.param name=\"link\" value=a\tb>", myLinked},
                                  {u"<pg.param name=\"link\" value=a=b>", {{u"link", u"a=b"}}},
                                  {u"<pg.param name=\"link\" value=a\"b>", {{u"link", u"a&quot;b"}}},
                                  {u"<pg.param name=\"link\" value='a'>", {{u"link", u"'a'"}}},
                                  {u"<pg.param name=\"link\" value=\"a b\"c>", {{u"link", u"a b"}}},
                                  {u"<pg.param name=\"link\" value=\"a\n>"},
                                  {u"<pg.param name=\"link\" value=>"},
                                  {u"<pg.param name=\"link\" value>"},
                                  {u"<pg.param name=\"link\" empty value=\"a\">"},
                                  {u"<pg.param name=\"link\" my value=\"b\" value=\"a\">", myLinked},
                                  {u"<pg.param =x name=\"link\" value=\"a\">", myLinked},
                                  {u"<pg.param name=\"link\" value=\ta>", {{u"link", u"\ta"}}},
                                  {u"<pg.param" + myMany + u" name=\"link\" value=\"a\">", myLinked},
                              });
}

void LineEnds(const CheckContext& myContext)
{
    std::vector<ReadingCase> myCases;
    for (const TextView myEnd : {u"", u"\n", u"\r", u"\r\n", u"\r\n\r\n", u" \r\n\t"})
    {
        myCases.push_back({JoinTexts({myEnd, u"<pg.plugin version=\"1.0\">", myEnd, Param(u"image", u"b"), myEnd,
                                      Param(u"link", u"a"), myEnd}),
                           {{u"image", u"b"}, {u"link", u"a"}}});
    }
    // A line end after the opening mark belongs to the tag, but not after a text.
    myCases.push_back({u"<pg.\r\nparam name=\"link\" value=\"a\">"});
    myCases.push_back({u"x<pg.\r\nparam name=\"link\" value=\"a\">", {{u"link", u"a"}}});
    ExpectReadings(myContext, myCases);
}

/// A text, and the Boolean value that it is read as.
constexpr std::pair<TextView, TextView> TruthTexts[] = {
    {u"0", u"0"},   {u" 0 ", u"0"},  {u" ", u"0"},   {u"   ", u"0"}, {u"1", u"1"},     {u"-1", u"1"},     {u"2", u"1"},
    {u"00", u"1"},  {u"0.0", u"1"},  {u"+0", u"1"},  {u"no", u"1"},  {u"false", u"1"}, {u"-", u"1"},      {u"0x", u"1"},
    {u"\t0", u"1"}, {u"true", u"1"}, {u" 1 ", u"1"}, {u"0 0", u"1"}, {u"Falso", u"1"}, {u"\u00A0", u"1"},
};

void TruthValues(const CheckContext& myContext)
{
    std::vector<ReadingCase> myCases;
    for (const TextView myName : {u"showimage", u"playmidi", u"midimode"})
    {
        for (const auto& [myText, myValue] : TruthTexts)
        {
            myCases.push_back({Param(myName, myText), {{myName, myValue}}});
        }
        myCases.push_back({EmptyParam(myName), {{myName, u"0"}}});
    }
    ExpectReadings(myContext, myCases);
}

void ImageModes(const CheckContext& myContext)
{
    std::vector<ReadingCase> myCases;
    for (const TextView myMode : {u"gif", u"jpg"})
    {
        myCases.push_back({Param(u"imagemode", myMode), {{u"imagemode", myMode}}});
    }
    for (const TextView myMode : {u"none", u"GIF", u"JPG", u"jpeg", u" gif", u"1", u"2"})
    {
        myCases.push_back({Param(u"imagemode", u"gif") + Param(u"imagemode", myMode)});
    }
    ExpectReadings(myContext, myCases);
}

/// A text, and the days that it is read as.
constexpr std::pair<TextView, TextView> DateTexts[] = {
    {u"38353", u"38353"},
    {u"38353.4", u"38353"},
    {u"38353.5", u"38354"},
    {u"38354.5", u"38354"},
    {u"38353.51", u"38354"},
    {u"0.5", u"0"},
    {u"1.5", u"2"},
    {u"2.5", u"2"},
    {u"-1", u"-1"},
    {u"-1.5", u"-2"},
    {u"38353x", u"38353"},
    {u"  38353", u"38353"},
    {u"x38353", u"0"},
    {u"0", u"0"},
    {u"+5", u"5"},
    {u".6", u"1"},
    {u"38353,9", u"38353"},
    {u"1e3", u"1000"},
    {u"2958465", u"2958465"},
    {u"-657434", u"-657434"},
    {u"00012", u"12"},
    {u"1.2.3", u"1"},
    {u"2005-01-01", u"2005"},
};

void Dates(const CheckContext& myContext)
{
    constexpr HRESULT OutOfRange = QEL_RESULT(0x800A0006U);
    std::vector<ReadingCase> myCases;
    for (const TextView myName : {u"from", u"to"})
    {
        for (const auto& [myText, myDays] : DateTexts)
        {
            myCases.push_back({Param(myName, myText), {{myName, myDays}}});
        }
        myCases.push_back({Param(myName, u"38353") + EmptyParam(myName)});
        for (const TextView myText : {u"2958466", u"-657435", u"1e9", u"-1e300"})
        {
            myCases.push_back({Param(u"image", u"a.gif") + Param(myName, myText) + Param(u"midi", u"b.mid"),
                               {{u"image", u"a.gif"}},
                               OutOfRange});
        }
    }
    ExpectReadings(myContext, myCases);
}

void Versions(const CheckContext& myContext)
{
    const Text myLink = Param(u"link", u"a");
    std::vector<ReadingCase> myCases;
    for (const TextView myVersion :
         {u"version=\"1.00\"", u"version=\"1\"", u"version=\"1.0 \"", u"version=\" 1.0\"", u"version=\"1.1\"",
          u"version=\"2.0\"", u"version=\"1,0\"", u"version=\"\"", u"version=\"01.0\"", u"uid=\"1.0\"", u""})
    {
        const Text myTag = JoinTexts({u"<pg.plugin ", myVersion, u">"});
        myCases.push_back({myTag + myLink, {}, S_OK, NothingChosen});
        myCases.push_back(
            {JoinTexts({Param(u"image", u"b.gif"), myTag, myLink}), {{u"image", u"b.gif"}}, S_OK, NothingChosen});
    }
    for (const TextView myVersion : {u"uid=\"Another\" version=\"1.0\"", u"version=1.0", u"version=\"1.0\" x=\"2.0\""})
    {
        myCases.push_back({JoinTexts({u"<pg.plugin ", myVersion, u">", myLink}), {{u"link", u"a"}}});
    }
    myCases.push_back({u"</pg.plugin version=\"2.0\">" + myLink, {{u"link", u"a"}}});
    myCases.push_back({myLink + u"<pg.plugin version=\"1.0\"><pg.plugin version=\"2.0\">" + Param(u"link", u"b"),
                       {{u"link", u"a"}},
                       S_OK,
                       NothingChosen});
    ExpectReadings(myContext, myCases);
}

void Reset(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const Text myKept = ScriptWith({{u"link", u"UID:4711"}});
    for (const Text& myScript : {Text(), Text(u"<pg.plugin version=\"1.0\">"), Text(u"no tags"), Text(u"<pg.param>")})
    {
        ExpectResult("writing a script of everything", S_OK, Write(*myPlugin.Get(), FullScript));
        ExpectResult("writing " + Shown(myScript) + " after it", S_OK, Write(*myPlugin.Get(), myScript));
        ExpectText("the script after " + Shown(myScript) + ", with the link of the one before", myKept,
                   ScriptOf(*myPlugin.Get()));
    }
    const Text myFailing = Param(u"to", u"1e9");
    ExpectResult("writing a script of everything", S_OK, Write(*myPlugin.Get(), FullScript));
    Write(*myPlugin.Get(), myFailing);
    ExpectText("the script after one that fails at its first tag", myKept, ScriptOf(*myPlugin.Get()));
    ExpectResult("writing an empty link", S_OK, Write(*myPlugin.Get(), EmptyParam(u"link")));
    ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
}

void OneRecord(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    auto myFirst = myComponent.Plugin();
    const auto mySecond = myComponent.Plugin();
    ExpectResult("writing Script of one object", S_OK, Write(*myFirst.Get(), FullScript));
    ExpectText("Script of another one", FullScript, ScriptOf(*mySecond.Get()));
    myFirst.Reset();
    ExpectText("Script after the first has gone", FullScript, ScriptOf(*mySecond.Get()));
    ExpectText("Script of a third one", FullScript, ScriptOf(*myComponent.Plugin().Get()));
}

constexpr Check ReadingCheckList[] = {
    {"reading.entities", "The four entities stand for their characters in every value, and nothing else does",
     Entities},
    {"reading.case", "Prefix and attribute names are read in any case, names of tags and params in theirs alone",
     LetterCase},
    {"reading.like-names", "The first of like-named attributes counts, and the last of like-named tags", LikeNames},
    {"reading.tags", "Closing, unclosed and unknown tags and texts between tags are skipped", Tags},
    {"reading.attributes", "Attributes are read with and without quotation marks, blanks and line ends", Attributes},
    {"reading.line-ends", "Line ends of every kind stand between tags", LineEnds},
    {"reading.truth-values", "Blanks, an empty value and 0 are false, any other text is true", TruthValues},
    {"reading.image-modes", "The formats gif and jpg are known, any other text is none", ImageModes},
    {"reading.dates", "A date is the number that a text begins with, and is written back rounded", Dates},
    {"reading.versions", "The version 1.0 alone is read, and reading ends at another one", Versions},
    {"reading.reset", "Each script begins with nothing chosen but the link", Reset},
    {"reading.one-record", "All objects of a thread share one module in hand", OneRecord},
};

} // namespace

std::span<const Check> ReadingChecks()
{
    return ReadingCheckList;
}

} // namespace qel::host
