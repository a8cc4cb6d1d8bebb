/// Tags and scripts: writing, parsing, scanning, and the small text functions.
#include "ErrorOf.h"
#include "platform/Platform.h"
#include "tags/classScript.h"
#include "tags/classTag.h"
#include "tags/classTagBuilder.h"
#include "tags/pluginFunctions.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

namespace qel
{
namespace
{

TEST(TagBuilder, WritesAttributesInTheirOrderAndKeepsTheFrame)
{
    classTagBuilder myBuilder;
    EXPECT_EQ(myBuilder.Tag(), u"<>");
    myBuilder.Prefix(u"pg.");
    myBuilder.BaseTag(u"param");
    myBuilder.AddAttribute(u"name", u"image");
    myBuilder.AddAttribute(u"", u"x");
    myBuilder.AddAttribute(u"empty", u"");
    myBuilder.AddAttribute(u"value", u"a\"b");
    EXPECT_EQ(myBuilder.Tag(), u"<pg.param name=\"image\" value=\"a&quot;b\">");
    myBuilder.SingleTag(true);
    myBuilder.Clear();
    EXPECT_EQ(myBuilder.Tag(), u"<pg.param />");
    myBuilder.AddAttribute(u"a b\"<", u" ");
    myBuilder.AddAttribute(u"N", u"1");
    myBuilder.AddAttribute(u"N", u"2");
    EXPECT_EQ(myBuilder.Tag(), u"<pg.param a b\"<=\" \" N=\"1\" N=\"2\" />");
    EXPECT_EQ(myBuilder.Tag(), u"<pg.param a b\"<=\" \" N=\"1\" N=\"2\" />") << "read for the second time";
}

TEST(TagBuilder, QuoteIsOnePassAndUnQuoteTurnsItBack)
{
    const TextView myText = u"a<b>c&d\"e &amp;lt; it's\r\n\tñ\xD83D";
    const TextView myQuoted = u"a&lt;b&gt;c&amp;d&quot;e &amp;amp;lt; it's\r\n\tñ\xD83D";
    EXPECT_EQ(classTagBuilder::Quote(myText), myQuoted);
    EXPECT_EQ(classTag::UnQuote(myQuoted), myText);
    EXPECT_EQ(classTag::UnQuote(u"&LT;&amp&gt &#38;&apos;&&quot;amp;&a&gt;mp;"),
              u"&LT;&amp&gt &#38;&apos;&\"amp;&a>mp;");
}

using Pairs = std::vector<std::pair<Text, Text>>;

TEST(Tag, ReadsEveryTextInItsDefinedWay)
{
    const std::tuple<TextView, TextView, Pairs> myCases[] = {
        // text, tag name, attributes with still escaped values
        {u"", u"", {}},
        {u" a=1", u"", {{u"a", u"1"}}},
        {u"a=1 /", u"a=1", {}},
        {u"Param NAME=\"image\"\r\n Value=a&amp;b x", u"Param", {{u"name", u"image"}, {u"value", u"a&amp;b"}}},
        {u"T\ta=1 b=\"\" c=", u"T", {{u"a", u"1"}, {u"b", u""}, {u"c", u""}}},
        {u"t a = \"x\" b=   ", u"t", {{u"a", u"x"}, {u"b", u""}}},
        {u"t a=\"x b=1 c=\"y=2 d=\"z", u"t", {{u"a", u"x b=1 c="}, {u"y", u"2"}, {u"d", u""}}},
        {u"t a=\tb c=\r\nd=1", u"t", {{u"a", u"\tb"}, {u"c", u"\r"}, {u"d", u"1"}}},
        {u"t a=\" 1\r\n\"b=\"2\"", u"t", {{u"a", u" 1\r\n"}, {u"b", u"2"}}},
        {u"t a=b=c d==\"e", u"t", {{u"a", u"b=c"}, {u"d", u"=\"e"}}},
        {u"t longName=\"&amp;, and plain\" b=\"x&amp;", u"t", {{u"longname", u"&amp;, and plain"}, {u"b", u""}}},
        {u"t a='x' b='y z=1'", u"t", {{u"a", u"'x'"}, {u"b", u"'y"}, {u"z", u"1'"}}},
        {u"t a\"b=1 c\r\n\td=2", u"t", {{u"ab", u"1"}, {u"cd", u"2"}}},
        {u"t \t a \" =1 \" b\r =2", u"t", {{u"a", u"1"}, {u"b", u"2"}}},
        {u"t foo  bar =1 =x", u"t", {{u"foo  bar", u"1"}, {u"", u"x"}}},
        {u"t A=1 a=2 Ñ=Ñ", u"t", {{u"a", u"1"}, {u"a", u"2"}, {u"ñ", u"Ñ"}}},
    };
    classTag myTag;
    for (const auto& [myText, myBaseTag, myAttributes] : myCases)
    {
        myTag.Tag(myText);
        EXPECT_EQ(myTag.Tag(), myText);
        EXPECT_EQ(myTag.BaseTag(), myBaseTag) << ToUtf8(myText);
        Pairs myFound;
        for (int32_t i = 0; i < myTag.AttributeCount(); ++i)
        {
            myFound.emplace_back(myTag.AttributeName(i), myTag.AttributeValue(i));
        }
        EXPECT_EQ(myFound, myAttributes) << ToUtf8(myText);
    }
    myTag.BaseTag(u"Other");
    EXPECT_EQ(Text(myTag.BaseTag()).append(myTag.Tag()) + myTag.AttributeValue(2), u"Othert A=1 a=2 Ñ=ÑÑ")
        << "the name alone";
}

TEST(Tag, EntriesOfAnEarlierTagEndWhereTheLastAttributePutTheBound)
{
    const std::pair<TextView, std::vector<Text>> mySteps[] = {
        // text, values of all entries, those behind the count too
        {u"none", {}},
        {u"t x=1 y=2 z=3", {u"1", u"2", u"3", u""}},
        {u"none", {u"1", u"2", u"3", u""}},
        {u"t a=9", {u"9", u"2"}},
        {u"t a=8 b=\"open", {u"8", u"", u""}},
        {u"t a=7 b=6 c=5 d=4", {u"7", u"6", u"5", u"4", u""}},
        {u"t a=3 b=2", {u"3", u"2", u""}},
        {u"t a=1", {u"1", u"2"}},
    };
    classTag myTag;
    for (const auto& [myText, myValues] : mySteps)
    {
        myTag.Tag(myText);
        const auto myEnd = static_cast<int32_t>(myValues.size());
        for (int32_t i = 0; i < myEnd; ++i)
        {
            EXPECT_EQ(myTag.AttributeValue(i), myValues[static_cast<size_t>(i)]) << ToUtf8(myText) << i;
        }
        EXPECT_EQ(ErrorOf([&] { myTag.AttributeValue(myEnd); }), ErrorNumber::SubscriptOutOfRange) << ToUtf8(myText);
        EXPECT_EQ(ErrorOf([&] { myTag.AttributeName(-1); }), ErrorNumber::SubscriptOutOfRange) << ToUtf8(myText);
    }
    EXPECT_EQ(myTag.AttributeName(1), u"b");
}

TEST(Tag, QueryFindsTheFirstOfLikeNamesAmongAnyNumber)
{
    classTag myTag;
    Text myText = u"t A=1 a=2 =x b=\"&amp;quot;\"";
    for (int i = 4; i < 255; ++i)
    {
        myText += u" c=&lt;";
    }
    myTag.Tag(myText);
    EXPECT_EQ(myTag.AttributeCount(), 255);
    myText += u" last=v";
    myTag.Tag(myText);
    EXPECT_EQ(ErrorOf([&] { myTag.AttributeCount(); }), ErrorNumber::Overflow);
    EXPECT_EQ(Text(myTag.QueryAttribute(u"A", false)).append(myTag.QueryAttribute(u"", false)), u"1x");
    const TextView myPlain = myTag.QueryAttribute(u"B", false);
    EXPECT_EQ(myTag.QueryAttribute(u"c", false), u"<");
    EXPECT_EQ(myPlain, u"&quot;") << "the first view holds after other queries";
    EXPECT_EQ(myTag.QueryAttribute(u"b", true), u"&amp;quot;");
    EXPECT_EQ(myTag.QueryAttribute(u"last", false), u"v");
    EXPECT_EQ(myTag.QueryAttribute(u" a", false), u"") << "the wanted name is not trimmed";
    myTag.Tag(u"t");
    EXPECT_EQ(myTag.QueryAttribute(u"a", false), u"") << "an attribute of the tag before";
}

class CountingQueue : public MessageQueue
{
public:
    void ProcessPending() override { ++Calls; }
    size_t Calls = 0;
};

/// Type, text, tag name and line.
using Token = std::tuple<int, Text, Text, int32_t>;

Token CurrentToken(const classScript& myScript)
{
    return {static_cast<int>(myScript.TagType()), Text(myScript.Tag()), Text(myScript.BaseTag()), myScript.TagLine()};
}

TEST(Script, IsWalkedTokenByToken)
{
    const std::tuple<TextView, Text, std::vector<Token>> myCases[] = {
        {u"pg.", u"", {}},
        {u"pg.", u"\r\n\r\n\n", {}},
        {u"pg.",
         u"ab<pg.param name=\"x\">\r\n<b>c</PG.param>\r\n",
         {{1, u"ab", u"", 1}, {2, u"param name=\"x\"", u"param", 1}, {1, u"<b>c", u"", 2}, {3, u"param", u"param", 2}}},
        {u"pg.", u"<PG.A>\r\n  \r\n<pg.b>", {{2, u"A", u"A", 1}, {1, u"  \r\n", u"", 3}, {2, u"b", u"b", 3}}},
        {u"pg.", u"\r\na\r\nb\r\n", {{1, u"a\r\nb\r\n", u"", 4}}},
        {u"pg.", u"\n\na\rb\nc<pg", {{1, u"a\rb\nc<pg", u"", 2}}},
        {u"pg.", u"<pg.></pg.><pg.br />", {{2, u"", u"", 1}, {3, u"", u"", 1}, {2, u"br /", u"br", 1}}},
        {u"pg.", u"<pg.a\r\nb=1\r\n>", {{2, u"a\r\nb=1\r\n", u"a", 3}}},
        {u"pg.", u"<pg.a <pg.b=\">\">", {{2, u"a <pg.b=\"", u"a", 1}, {1, u"\">", u"", 1}}},
        {u"pg.", u"<<pg.a><</pg.b>", {{1, u"<", u"", 1}, {2, u"a", u"a", 1}, {1, u"<", u"", 1}, {3, u"b", u"b", 1}}},
        {u"pg.", u"<pg</ pg.><pg.a>", {{1, u"<pg</ pg.>", u"", 1}, {2, u"a", u"a", 1}}},
        {u"pg.", u"x<pg.a b", {{1, u"x", u"", 1}}},
        {u"pg.", u"x<pg.\r\na>", {{1, u"x", u"", 1}, {2, u"a", u"a", 2}}},
        {u"pg.", u"<pg.a><pg.\r\nb>", {{2, u"a", u"a", 1}, {2, u"\r\nb", u"", 2}}},
        {u"PG.", u"<PG.a><pg.a>", {{1, u"<PG.a><pg.a>", u"", 1}}},
        {u"", u"<p>x</p>", {{2, u"p", u"p", 1}, {1, u"x", u"", 1}, {3, u"p", u"p", 1}}},
        {u"", u"<br/><></>a>", {{2, u"br/", u"br/", 1}, {2, u"", u"", 1}, {3, u"", u"", 1}, {1, u"a>", u"", 1}}},
    };
    CountingQueue myQueue;
    classScript myScript(myQueue); // one object for all: a script that ends inside a tag leaves nothing behind
    myScript.GetNextTag();
    EXPECT_EQ(CurrentToken(myScript), (Token{0, u"", u"", 0})) << "a script that was never set";
    for (const auto& [myPrefix, myText, myTokens] : myCases)
    {
        myScript.Prefix(myPrefix);
        myScript.Script(myText);
        myQueue.Calls = 0;
        std::vector<Token> myFound;
        for (myScript.GetNextTag(); myScript.TagType() != TokenType::None; myScript.GetNextTag())
        {
            myFound.push_back(CurrentToken(myScript));
        }
        EXPECT_EQ(myFound, myTokens) << ToUtf8(myText);
        EXPECT_EQ(myQueue.Calls, myFound.size() + 1) << "messages run once per call";
        myScript.GetNextTag();
        EXPECT_EQ(CurrentToken(myScript), (Token{0, u"", u"", 0})) << "behind the end";
    }
}

TEST(Script, ReadsAttributesOfTagsAlone)
{
    CountingQueue myQueue;
    classScript myScript(myQueue);
    myScript.Prefix(u"pg.");
    myScript.Script(u"</pg.a X=\"&lt;\" y=2>\rtext");
    myScript.GetNextTag();
    EXPECT_EQ(myScript.AttributeCount(), 2);
    EXPECT_EQ(Text(myScript.AttributeName(0) + myScript.AttributeValue(0)).append(myScript.PlainText()), u"x&lt;");
    EXPECT_EQ(Text(myScript.QueryAttribute(u"x")).append(myScript.QueryAttribute(u"x", true)), u"<&lt;");
    EXPECT_EQ(ErrorOf([&] { myScript.AttributeValue(3); }), ErrorNumber::SubscriptOutOfRange);
    myScript.GetNextTag();
    EXPECT_EQ(myScript.AttributeCount(), 0);
    EXPECT_EQ(Text(myScript.AttributeName(-1) + myScript.AttributeValue(99)).append(myScript.QueryAttribute(u"x")),
              u"");
    myScript.Script(u"<pg.other>\r<pg.b z=3>");
    EXPECT_EQ(CurrentToken(myScript), (Token{1, u"text", u"", 2})) << "setting a script leaves the current token";
    myScript.GetNextTag();
    EXPECT_EQ(myScript.AttributeCount(), 0);
    EXPECT_EQ(myScript.AttributeValue(1), u"2") << "left by a tag of the script before";
    myScript.GetNextTag();
    EXPECT_EQ(CurrentToken(myScript), (Token{2, u"b z=3", u"b", 2})) << "lines count from the new script's start";
}

TEST(PluginFunctions, MakeTagsAndTellTruthValues)
{
    const TextView myPairs[] = {u"x", u"<blank>", u"y", u"", u"z", u"\"&<", u"w", u" <blank>"};
    EXPECT_EQ(MakeTag(u"t", myPairs), u"<t x=\"\" z=\"\"&<\" w=\" <blank>\">");
    EXPECT_EQ(MakeAnchor(u"h", u"o", u"c", u"t"), u"<a href=\"h\" onclick=\"o\" target=\"t\" class=\"c\">");
    EXPECT_FALSE(TextToBoolean(u"") || TextToBoolean(u"   ") || TextToBoolean(u"  0 "));
    EXPECT_TRUE(TextToBoolean(u"-1") && TextToBoolean(u"00") && TextToBoolean(u"0 0") && TextToBoolean(u"\t"));
}

TEST(PluginFunctions, ConcatUrlCutsOneOfEachSeparatorAtTheSeam)
{
    const TextView myCases[][3] = {
        {u"a", u"b", u"a/b"},    {u"a/", u"/b", u"a/b"},  {u"a//", u"b", u"a//b"},  {u"a/\\", u"b", u"a//b"},
        {u"a\\/", u"b", u"a/b"}, {u"a", u"/\\b", u"a/b"}, {u"a", u"\\/b", u"a//b"}, {u"a\\", u"\\b", u"a/b"},
        {u"", u"b", u"/b"},      {u"a", u"", u"a/"},      {u"/", u"/", u"/"},       {u"a", u"//b", u"a//b"},
    };
    for (const auto& [myFirst, mySecond, myJoined] : myCases)
    {
        EXPECT_EQ(ConcatUrl(myFirst, mySecond), myJoined) << ToUtf8(myFirst) << " " << ToUtf8(mySecond);
    }
}

} // namespace
} // namespace qel
