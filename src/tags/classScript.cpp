#include "tags/classScript.h"

#include "platform/MessageQueue.h"
#include "text/errors.h"

#include <algorithm>

namespace qel
{

void classScript::Script(TextView theScript)
{
    CountLines();
    myScript = theScript;
    myPosition = myCounted = 0;
    myScanState = ScanState::PlainText;
}

void classScript::GetBufferedTag(int32_t /*num*/)
{
    Raise(ErrorNumber::SubscriptOutOfRange);
}

void classScript::GetNextTag()
{
    if (myPosition == 0)
    {
        myCurrentTag.Line = 1;
    }
    ScanToken();
    myMessageQueue.ProcessPending();
}

/// Line ends at the start of a token are dropped, later ones are not. A tag whose mark is at the start begins directly
/// after its mark.
void classScript::ScanToken()
{
    size_t myStart = myPosition;
    while (myStart < myScript.size() && (myScript[myStart] == u'\r' || myScript[myStart] == u'\n'))
    {
        ++myStart;
    }
    myPosition = myStart;
    if (myScanState != ScanState::PlainText)
    {
        ScanTag(myStart);
    }
    else if (!ScanPlainText(myStart))
    {
        ScanTag(myPosition);
    }
}

/// Scans up to the next tag's mark or the end of the script. False: the mark is at the start, so there is no plain text
/// and the tag follows.
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
    myPosition = myEnd;
    if (myMark == myStart && myScanState != ScanState::PlainText)
    {
        return false;
    }
    SetToken(myMark == myStart ? TokenType::None : TokenType::PlainText, myStart, myMark);
    return true;
}

/// Scans the tag whose inner text begins at `myStart` up to its ">". A tag without one is dropped with the rest of the
/// script.
void classScript::ScanTag(size_t myStart)
{
    const size_t myEnd = Find(myScript, u'>', myStart);
    if (myEnd == TextView::npos)
    {
        myPosition = myScript.size();
        SetToken(TokenType::None, 0, 0);
        return;
    }
    myPosition = myEnd + 1;
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
    if (IsPrefixAt(myNext))
    {
        theEnd = myNext + myPrefix.size();
        return ScanState::OpeningTag;
    }
    if (myNext < myScript.size() && myScript[myNext] == u'/' && IsPrefixAt(myNext + 1))
    {
        theEnd = myNext + 1 + myPrefix.size();
        return ScanState::ClosingTag;
    }
    return ScanState::PlainText;
}

bool classScript::IsPrefixAt(size_t myStart) const
{
    const TextView myText = myScript.substr(myStart, myPrefix.size());
    return std::equal(myPrefix.begin(), myPrefix.end(), myText.begin(), myText.end(),
                      [](char16_t p, char16_t t) { return LowerCase(t) == p; });
}

void classScript::CountLines() const
{
    const TextView myText = myScript.substr(myCounted, myPosition - myCounted);
    myCurrentTag.Line += static_cast<int32_t>(std::count(myText.begin(), myText.end(), u'\r'));
    myCounted = myPosition;
}

void classScript::SetToken(TokenType myType, size_t myStart, size_t myEnd)
{
    myCurrentTag.Type = myType;
    myCurrentTag.Value = myScript.substr(myStart, myEnd - myStart);
    if (IsTag())
    {
        myTagParser.Tag(myCurrentTag.Value);
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

int32_t classScript::TagLine() const
{
    CountLines();
    return TagType() == TokenType::None ? 0 : myCurrentTag.Line;
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
