#include "tags/classTag.h"

#include "text/errors.h"

#include <algorithm>
#include <utility>

namespace qel
{
namespace
{

bool IsSeparator(char16_t myCharacter)
{
    return myCharacter <= u' ' &&
           (myCharacter == u' ' || myCharacter == u'\t' || myCharacter == u'\r' || myCharacter == u'\n');
}

/// True for the characters that never get into an attribute name; the blank does.
bool IsDroppedInName(char16_t myCharacter)
{
    return myCharacter == u'"' || (IsSeparator(myCharacter) && myCharacter != u' ');
}

/// Where the run of characters that are no separators ends.
size_t EndOfWord(TextView myText, size_t myPosition)
{
    while (myPosition < myText.size() && !IsSeparator(myText[myPosition]))
    {
        ++myPosition;
    }
    return myPosition;
}

/// True for the characters that most names are made of, and which stay in them as they are.
bool IsSmallLetter(char16_t myCharacter)
{
    return myCharacter >= u'a' && myCharacter <= u'z';
}

/// An attribute name as callers know it: in lower case, without what is dropped and without blanks at its ends.
Text CleanName(TextView myName)
{
    Text theName;
    for (const char16_t myCharacter : myName)
    {
        if (!IsDroppedInName(myCharacter))
        {
            theName += LowerCase(myCharacter);
        }
    }
    return Text(TrimBlanks(theName));
}

constexpr std::pair<TextView, char16_t> Entities[] = {
    {u"&quot;", u'"'}, {u"&gt;", u'>'}, {u"&lt;", u'<'}, {u"&amp;", u'&'}};

} // namespace

void classTag::Tag(TextView theTag)
{
    myTag = theTag;
    myPlainValues.clear();
    const size_t myNameEnd = EndOfWord(myTag, 0);
    myBaseTag = myTag.substr(0, myNameEnd);
    ParseAttributes(myNameEnd + 1);
    if (myAttributeCount > 0)
    {
        myTableCount = myAttributeCount + 1;
    }
    // Each attribute found resizes the table, so that the entry behind them is new, unless the first one has cut the
    // table down to itself and the entry behind.
    if (myAttributeCount > 1)
    {
        myTable[myAttributeCount] = {};
    }
}

/// Reads names, "=" and values. Without "=" there is no attribute, and the rest of the text is dropped.
void classTag::ParseAttributes(size_t myPosition)
{
    myAttributeCount = 0;
    for (;;)
    {
        while (myPosition < myTag.size() && myTag[myPosition] == u' ')
        {
            ++myPosition;
        }
        size_t myEquals = myPosition;
        while (myEquals < myTag.size() && IsSmallLetter(myTag[myEquals]))
        {
            ++myEquals;
        }
        const bool myNameIsClean = myEquals < myTag.size() && myTag[myEquals] == u'=';
        if (!myNameIsClean)
        {
            myEquals = Find(myTag, u'=', myEquals);
        }
        if (myEquals == TextView::npos)
        {
            return;
        }
        if (myTable.size() < myAttributeCount + 2)
        {
            myTable.resize(myAttributeCount + 2);
        }
        Attribute& myAttribute = myTable[myAttributeCount++];
        myAttribute.Name = myTag.substr(myPosition, myEquals - myPosition);
        myAttribute.NameIsClean = myNameIsClean;
        myAttribute.PlainStart = TextView::npos;
        myPosition = ParseValue(myEquals + 1, myAttribute);
    }
}

/// Reads a value and gives the position behind it. A quoted value without its closing mark stays empty.
size_t classTag::ParseValue(size_t myPosition, Attribute& theAttribute) const
{
    theAttribute.Value = {};
    theAttribute.ValueIsPlain = false;
    while (myPosition < myTag.size() && myTag[myPosition] == u' ')
    {
        ++myPosition;
    }
    if (myPosition == myTag.size())
    {
        return myPosition;
    }
    size_t myStart = myPosition;
    size_t myEnd = 0;
    if (myTag[myStart] == u'"')
    {
        ++myStart;
        myEnd = FindEither(myTag, u'"', u'&', myStart);
        theAttribute.ValueIsPlain = myEnd != TextView::npos && myTag[myEnd] == u'"';
        if (!theAttribute.ValueIsPlain)
        {
            myEnd = Find(myTag, u'"', myEnd);
        }
    }
    else
    {
        // The first character belongs to the value whatever it is.
        myEnd = EndOfWord(myTag, myStart + 1);
    }
    if (myEnd == TextView::npos)
    {
        return myTag.size();
    }
    theAttribute.Value = myTag.substr(myStart, myEnd - myStart);
    return myEnd + 1;
}

uint8_t classTag::AttributeCount() const
{
    if (myAttributeCount > UINT8_MAX)
    {
        Raise(ErrorNumber::Overflow);
    }
    return static_cast<uint8_t>(myAttributeCount);
}

Text classTag::AttributeName(int32_t num) const
{
    return CleanName(DemandEntry(num).Name);
}

Text classTag::AttributeValue(int32_t num) const
{
    return Text(DemandEntry(num).Value);
}

const classTag::Attribute& classTag::DemandEntry(int32_t num) const
{
    if (num < 0 || static_cast<size_t>(num) >= myTableCount)
    {
        Raise(ErrorNumber::SubscriptOutOfRange);
    }
    return myTable[static_cast<size_t>(num)];
}

inline bool classTag::IsNamed(const Attribute& myAttribute, TextView myWanted)
{
    const TextView myName = myAttribute.Name;
    if (!myAttribute.NameIsClean)
    {
        return CleanName(myName) == LowerCase(myWanted);
    }
    return std::equal(myName.begin(), myName.end(), myWanted.begin(), myWanted.end(),
                      [](char16_t n, char16_t w) { return n == w || n == LowerCase(w); });
}

TextView classTag::QueryAttribute(TextView theAttribute, bool noUnquote) const
{
    for (size_t i = 0; i < myAttributeCount; ++i)
    {
        if (IsNamed(myTable[i], theAttribute))
        {
            return noUnquote || myTable[i].ValueIsPlain ? myTable[i].Value : PlainValue(myTable[i]);
        }
    }
    return {};
}

TextView classTag::PlainValue(const Attribute& myAttribute) const
{
    if (myAttribute.PlainStart == TextView::npos)
    {
        // Unescaping makes no text longer.
        myPlainValues.reserve(myTag.size());
        const Text myValue = UnQuote(myAttribute.Value);
        myAttribute.PlainStart = myPlainValues.size();
        myAttribute.PlainLength = myValue.size();
        myPlainValues += myValue;
    }
    return TextView(myPlainValues).substr(myAttribute.PlainStart, myAttribute.PlainLength);
}

Text classTag::UnQuote(TextView myText)
{
    // No replacement brings in a character of another entity but "&", whose entity would come last: one pass serves.
    Text theResult;
    theResult.reserve(myText.size());
    while (!myText.empty())
    {
        const size_t myPlain = std::min(myText.find(u'&'), myText.size());
        theResult.append(myText, 0, myPlain);
        myText.remove_prefix(myPlain);
        const auto* myEntity = std::find_if(std::begin(Entities), std::end(Entities),
                                            [&](const auto& e) { return myText.starts_with(e.first); });
        if (myEntity != std::end(Entities))
        {
            theResult += myEntity->second;
            myText.remove_prefix(myEntity->first.size());
        }
        else if (!myText.empty())
        {
            theResult += myText.front();
            myText.remove_prefix(1);
        }
    }
    return theResult;
}

} // namespace qel
