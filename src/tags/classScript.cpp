#include "tags/classScript.h"

#include "platform/Platform.h"
#include "text/errors.h"

#include <algorithm>
#include <utility>

namespace qel
{

void classScript::Script(Text theScript)
{
    myScript = std::move(theScript);
    myPosition = 0;
    myLine = 1;
    myScanState = ScanState::PlainText;
}

void classScript::GetBufferedTag(int32_t /*num*/)
{
    Raise(ErrorNumber::SubscriptOutOfRange);
}

void classScript::GetNextTag()
{
    ScanToken();
    myMessageQueue.ProcessPending();
}

/// The line ends that open a token are dropped, those that come later are not. A tag whose mark comes first thing
/// begins right behind its mark.
void classScript::ScanToken()
{
    const size_t myStart = std::min(myScript.find_first_not_of(u"\r\n", myPosition), myScript.size());
    Consume(myStart);
    if (myScanState != ScanState::PlainText)
    {
        ScanTag(myStart);
    }
    else if (!ScanPlainText(myStart))
    {
        ScanTag(myPosition);
    }
}

/// Scans up to the next tag's mark or the end of the script. False: the mark came first thing, so there is no plain
/// text and the tag follows.
bool classScript::ScanPlainText(size_t myStart)
{
    size_t myMark = myStart;
    size_t myEnd = myStart;
    while ((myMark = Find(myScript, u'<', myMark)) != TextView::npos)
    {
        myScanState = MarkAt(myMark, myEnd);
        if (myScanState != ScanState::PlainText)
        {
            break;
        }
        ++myMark;
    }
    if (myMark == TextView::npos)
    {
        myMark = myEnd = myScript.size();
    }
    Consume(myEnd);
    if (myMark == myStart && myScanState != ScanState::PlainText)
    {
        return false;
    }
    SetToken(myMark == myStart ? TokenType::None : TokenType::PlainText, myStart, myMark);
    return true;
}

/// Scans the tag whose inner text begins at `myStart` up to its ">". A tag without one is dropped with the rest.
void classScript::ScanTag(size_t myStart)
{
    const size_t myEnd = Find(myScript, u'>', myStart);
    if (myEnd == TextView::npos)
    {
        Consume(myScript.size());
        SetToken(TokenType::None, 0, 0);
        return;
    }
    Consume(myEnd + 1);
    if (myPrefix.empty() && myScript[myStart] == u'/')
    {
        SetToken(TokenType::ClosingTag, myStart + 1, myEnd);
    }
    else
    {
        SetToken(static_cast<TokenType>(myScanState), myStart, myEnd);
    }
    myScanState = ScanState::PlainText;
}

/// What the "<" at a position opens, and where its mark ends.
classScript::ScanState classScript::MarkAt(size_t myMark, size_t& theEnd) const
{
    const size_t myNext = myMark + 1;
    if (PrefixStandsAt(myNext))
    {
        theEnd = myNext + myPrefix.size();
        return ScanState::OpeningTag;
    }
    if (myNext < myScript.size() && myScript[myNext] == u'/' && PrefixStandsAt(myNext + 1))
    {
        theEnd = myNext + 1 + myPrefix.size();
        return ScanState::ClosingTag;
    }
    return ScanState::PlainText;
}

bool classScript::PrefixStandsAt(size_t myStart) const
{
    const TextView myText = TextView(myScript).substr(myStart, myPrefix.size());
    return std::equal(myPrefix.begin(), myPrefix.end(), myText.begin(), myText.end(),
                      [](char16_t p, char16_t t) { return LowerCase(t) == p; });
}

void classScript::Consume(size_t myEnd)
{
    for (; myPosition < myEnd; ++myPosition)
    {
        myLine += myScript[myPosition] == u'\r' ? 1 : 0;
    }
}

void classScript::SetToken(TokenType myType, size_t myStart, size_t myEnd)
{
    myCurrentTag.Type = myType;
    myCurrentTag.Line = myType == TokenType::None ? 0 : myLine;
    const TextView myText = TextView(myScript).substr(myStart, myEnd - myStart);
    if (IsTag())
    {
        myTagParser.Tag(myText);
    }
    else
    {
        myCurrentTag.Value = myText;
    }
}

TextView classScript::PlainText() const
{
    return TagType() == TokenType::PlainText ? myCurrentTag.Value : TextView();
}

TextView classScript::BaseTag() const
{
    return IsTag() ? myTagParser.BaseTag() : TextView();
}

TextView classScript::QueryAttribute(TextView myAttribute, bool noUnquote) const
{
    return IsTag() ? myTagParser.QueryAttribute(myAttribute, noUnquote) : TextView();
}

int32_t classScript::AttributeCount() const
{
    return IsTag() ? myTagParser.AttributeCount() : 0;
}

Text classScript::AttributeName(int32_t num) const
{
    return IsTag() ? myTagParser.AttributeName(num) : Text();
}

Text classScript::AttributeValue(int32_t num) const
{
    return IsTag() ? myTagParser.AttributeValue(num) : Text();
}

} // namespace qel
