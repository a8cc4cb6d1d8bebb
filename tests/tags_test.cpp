/// Tags and scripts: writing, parsing, scanning, and the small text functions.
#include "errorOf.h"
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

TEST(TagBuilder, Tag_AttributesInTheirOrderAndAsTheyAreNamed)
{
    classTagBuilder myBuilder;
    EXPECT_EQ(myBuilder.Tag(), u"<>");
    myBuilder.Prefix(u"pg.");
    myBuilder.BaseTag(u"param");
    myBuilder.AddAttribute(u"a b\"<", u"a\"b");
    myBuilder.AddAttribute(u"", u"x");
    myBuilder.AddAttribute(u"N", u"");
    myBuilder.AddAttribute(u"N", u" ");
    myBuilder.AddAttribute(u"N", u"2");
    const Text myTag = u"<pg.param a b\"<=\"a&quot;b\" N=\" \" N=\"2\">";
    EXPECT_EQ(myBuilder.Tag(), myTag);
    EXPECT_EQ(myBuilder.Tag(), myTag) << "read for the second time";
    myBuilder.SingleTag(true);
    myBuilder.Clear();
    EXPECT_EQ(myBuilder.Tag(), u"<pg.param />") << "prefix, name and form stay";
}

using Pairs = std::vector<std::pair<Text, Text>>;

class Parser : public testing::Test
{
protected:
    /// Expects of a tag its name, and its attributes with values as they stand in it.
    void Expect(TextView myText, TextView myBaseTag, const Pairs& myAttributes)
    {
        SCOPED_TRACE(ToUtf8(myText));
        myTag.Tag(myText);
        EXPECT_EQ(myTag.Tag(), myText);
        EXPECT_EQ(myTag.BaseTag(), myBaseTag);
        Pairs myFound;
        for (int32_t i = 0; i < myTag.AttributeCount(); ++i)
        {
            myFound.emplace_back(myTag.AttributeName(i), myTag.AttributeValue(i));
        }
        EXPECT_EQ(myFound, myAttributes);
    }

    classTag myTag; ///< one for all: a tag leaves nothing for the next
};

TEST_F(Parser, BaseTagAndAttributes)
{
    Expect(u"", u"", {});
    Expect(u" a=1", u"", {{u"a", u"1"}});
    Expect(u"a=1 /", u"a=1", {});
    Expect(u"T\ta=1 b=\"\" c=", u"T", {{u"a", u"1"}, {u"b", u""}, {u"c", u""}});
    Expect(u"t A=1 a=2 Ñ=Ñ", u"t", {{u"a", u"1"}, {u"a", u"2"}, {u"ñ", u"Ñ"}});
    Expect(u"t foo  bar =1 =x", u"t", {{u"foo  bar", u"1"}, {u"", u"x"}});
    Expect(u"Param NAME=\"image\"\r\n Value=a&amp;b x", u"Param", {{u"name", u"image"}, {u"value", u"a&amp;b"}});
}

TEST(Tag, BaseTag_ChangesTheNameAlone)
{
    classTag myTag;
    myTag.Tag(u"t a=1");
    myTag.BaseTag(u"Other");
    EXPECT_EQ(myTag.BaseTag(), u"Other");
    EXPECT_EQ(myTag.Tag(), u"t a=1");
    EXPECT_EQ(myTag.AttributeValue(0), u"1");
}

TEST(Tag, AttributeValue_EntriesOfAnEarlierTagEndAfterTheLastAttribute)
{
    const std::pair<TextView, std::vector<Text>> mySteps[] = {
        // text, values of all entries, also of those after the count
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
        SCOPED_TRACE(ToUtf8(myText));
        myTag.Tag(myText);
        const auto myEnd = static_cast<int32_t>(myValues.size());
        for (int32_t i = 0; i < myEnd; ++i)
        {
            EXPECT_EQ(myTag.AttributeValue(i), myValues[static_cast<size_t>(i)]) << i;
        }
        EXPECT_EQ(ErrorOf([&] { myTag.AttributeValue(myEnd); }), ErrorNumber::SubscriptOutOfRange);
        EXPECT_EQ(ErrorOf([&] { myTag.AttributeName(-1); }), ErrorNumber::SubscriptOutOfRange);
    }
    EXPECT_EQ(myTag.AttributeName(1), u"b");
}

TEST(Tag, AttributeCount_Over255_Overflows)
{
    classTag myTag;
    Text myText = u"t";
    for (int i = 0; i < 255; ++i)
    {
        myText += u" c=1";
    }
    myTag.Tag(myText);
    EXPECT_EQ(myTag.AttributeCount(), 255);
    myText += u" last=v";
    myTag.Tag(myText); // which it does not copy
    EXPECT_EQ(ErrorOf([&] { myTag.AttributeCount(); }), ErrorNumber::Overflow);
    EXPECT_EQ(myTag.QueryAttribute(u"last", false), u"v");
}

TEST(Tag, QueryAttribute_FirstOfEqualNames)
{
    classTag myTag;
    myTag.Tag(u"t A=1 a=2 =x b=\"&amp;quot;\" c=&lt; c=&gt;");
    EXPECT_EQ(myTag.QueryAttribute(u"A", false), u"1");
    EXPECT_EQ(myTag.QueryAttribute(u"", false), u"x");
    const TextView myPlain = myTag.QueryAttribute(u"B", false);
    EXPECT_EQ(myTag.QueryAttribute(u"c", false), u"<");
    EXPECT_EQ(myPlain, u"&quot;") << "the first view is valid after other queries";
    EXPECT_EQ(myTag.QueryAttribute(u"b", true), u"&amp;quot;");
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
using Token = std::tuple<TokenType, Text, Text, int32_t>;

Token Plain(TextView myText, int32_t myLine)
{
    return {TokenType::PlainText, Text(myText), u"", myLine};
}
Token Open(TextView myTag, TextView myBaseTag, int32_t myLine)
{
    return {TokenType::OpeningTag, Text(myTag), Text(myBaseTag), myLine};
}
Token Close(TextView myTag, int32_t myLine)
{
    return {TokenType::ClosingTag, Text(myTag), Text(myTag), myLine};
}
const Token NoToken = {TokenType::None, u"", u"", 0};

Token CurrentToken(const classScript& myScript)
{
    return {myScript.TagType(), Text(myScript.Tag()), Text(myScript.BaseTag()), myScript.TagLine()};
}

class Scanner : public testing::Test
{
protected:
    /// Expects the tokens of a script.
    void Expect(TextView myText, const std::vector<Token>& myTokens)
    {
        SCOPED_TRACE(ToUtf8(myText));
        myScript.Script(myText);
        myQueue.Calls = 0;
        std::vector<Token> myFound;
        for (myScript.GetNextTag(); myScript.TagType() != TokenType::None; myScript.GetNextTag())
        {
            myFound.push_back(CurrentToken(myScript));
        }
        EXPECT_EQ(myFound, myTokens);
        EXPECT_EQ(myQueue.Calls, myFound.size() + 1) << "messages are processed once in each call";
        myScript.GetNextTag();
        EXPECT_EQ(CurrentToken(myScript), NoToken) << "after the end";
    }

    CountingQueue myQueue;
    classScript myScript{myQueue}; ///< one for all: a script leaves nothing for the next
    const int myPrefix = (myScript.Prefix(u"pg."), 0);
};

TEST_F(Scanner, GetNextTag_NeverSetGivesNoToken)
{
    myScript.GetNextTag();
    EXPECT_EQ(CurrentToken(myScript), NoToken);
}

TEST_F(Scanner, PlainText_LosesLineEndsBeforeIt)
{
    Expect(u"", {});
    Expect(u"\r\n\r\n\n", {});
    Expect(u"\r\na\r\nb\r\n", {Plain(u"a\r\nb\r\n", 4)});
    Expect(u"\n\na\rb\nc<pg", {Plain(u"a\rb\nc<pg", 2)});
}

TEST_F(Scanner, Tag_OpensOrClosesAndCountsLines)
{
    Expect(u"ab<pg.param name=\"x\">\r\n<b>c</PG.param>\r\n",
           {Plain(u"ab", 1), Open(u"param name=\"x\"", u"param", 1), Plain(u"<b>c", 2), Close(u"param", 2)});
    Expect(u"<PG.A>\r\n  \r\n<pg.b>", {Open(u"A", u"A", 1), Plain(u"  \r\n", 3), Open(u"b", u"b", 3)});
    Expect(u"<pg.></pg.><pg.br />", {Open(u"", u"", 1), Close(u"", 1), Open(u"br /", u"br", 1)});
    Expect(u"<pg.a\r\nb=1\r\n>", {Open(u"a\r\nb=1\r\n", u"a", 3)});
    Expect(u"<pg.a><pg.\r\nb>", {Open(u"a", u"a", 1), Open(u"\r\nb", u"", 2)});
}

TEST_F(Scanner, Prefix_MayBeEmptyAndKeepsItsCase)
{
    myScript.Prefix(u"PG."); // tags are compared in lower case
    Expect(u"<PG.a><pg.a>", {Plain(u"<PG.a><pg.a>", 1)});
    myScript.Prefix(u"");
    Expect(u"<p>x</p>", {Open(u"p", u"p", 1), Plain(u"x", 1), Close(u"p", 1)});
    Expect(u"<br/><></>a>", {Open(u"br/", u"br/", 1), Open(u"", u"", 1), Close(u"", 1), Plain(u"a>", 1)});
}

TEST_F(Scanner, Attributes_OfATagAndOfPlainText)
{
    myScript.Script(u"</pg.a X=\"&lt;\" y=2>text");
    myScript.GetNextTag();
    EXPECT_EQ(myScript.AttributeCount(), 2);
    EXPECT_EQ(myScript.AttributeName(0), u"x");
    EXPECT_EQ(myScript.AttributeValue(0), u"&lt;");
    EXPECT_EQ(myScript.PlainText(), u"");
    EXPECT_EQ(myScript.QueryAttribute(u"x"), u"<");
    EXPECT_EQ(myScript.QueryAttribute(u"x", true), u"&lt;");
    EXPECT_EQ(ErrorOf([&] { myScript.AttributeValue(3); }), ErrorNumber::SubscriptOutOfRange);
    myScript.GetNextTag();
    EXPECT_EQ(myScript.PlainText(), u"text");
    EXPECT_EQ(myScript.AttributeCount(), 0);
    EXPECT_EQ(myScript.AttributeName(-1), u"");
    EXPECT_EQ(myScript.AttributeValue(99), u"");
    EXPECT_EQ(myScript.QueryAttribute(u"x"), u"");
}

TEST_F(Scanner, Setting_LeavesTheCurrentToken)
{
    myScript.Script(u"<pg.a x=1 y=2>\rtext");
    myScript.GetNextTag();
    myScript.GetNextTag();
    EXPECT_EQ(CurrentToken(myScript), Plain(u"text", 2));
    myScript.Script(u"<pg.other>\r<pg.b z=3>");
    EXPECT_EQ(CurrentToken(myScript), Plain(u"text", 2));
    myScript.GetNextTag();
    EXPECT_EQ(myScript.AttributeCount(), 0);
    EXPECT_EQ(myScript.AttributeValue(1), u"2") << "left by a tag of the script before";
    myScript.GetNextTag();
    EXPECT_EQ(CurrentToken(myScript), Open(u"b z=3", u"b", 2));
}

TEST(PluginFunctions, MakeTag_EmptyValuesAreLeftOutAndBlankStandsForEmpty)
{
    const TextView myPairs[] = {u"x", u"<blank>", u"y", u"", u"z", u"\"&<", u"w", u" <blank>"};
    EXPECT_EQ(MakeTag(u"t", myPairs), u"<t x=\"\" z=\"\"&<\" w=\" <blank>\">");
}

TEST(PluginFunctions, MakeAnchor_AttributesInTheirOrder)
{
    EXPECT_EQ(MakeAnchor(u"h", u"o", u"c", u"t"), u"<a href=\"h\" onclick=\"o\" target=\"t\" class=\"c\">");
}

} // namespace
} // namespace qel
