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
    return myCharacter == u' ' || myCharacter == u'\t' || myCharacter == u'\r' || myCharacter == u'\n';
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

TextView classTag::Part(TextView myText, Span mySpan)
{
    return myText.substr(mySpan.Start, mySpan.Length);
}

void classTag::Tag(TextView theTag)
{
    if (myAttributeCount > 0)
    {
        myTag.swap(myFormerTag);
    }
    myTag = theTag;
    myPlainValues.clear();
    const size_t myNameEnd = EndOfWord(myTag, 0);
    myBaseTag.assign(myTag, 0, myNameEnd);
    ParseAttributes(myNameEnd + 1);
    if (myAttributeCount > 0)
    {
        KeepEntryBehind(std::exchange(myTableCount, myAttributeCount));
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
        bool myNameIsClean = true;
        size_t myEquals = myPosition;
        while (myEquals < myTag.size() && myTag[myEquals] != u'=')
        {
            myNameIsClean &= IsSmallLetter(myTag[myEquals]);
            ++myEquals;
        }
        if (myEquals >= myTag.size())
        {
            return;
        }
        if (myAttributeCount == myTable.size())
        {
            myTable.emplace_back();
        }
        Attribute& myAttribute = myTable[myAttributeCount++];
        myAttribute.Name = {myPosition, myEquals - myPosition};
        myAttribute.NameIsClean = myNameIsClean;
        myAttribute.Plain.reset();
        myPosition = ParseValue(myEquals + 1, myAttribute.Value);
    }
}

/// Reads a value and gives the position behind it. A quoted value without its closing mark stays empty.
size_t classTag::ParseValue(size_t myPosition, Span& theValue) const
{
    theValue = {};
    myPosition = std::min(myTag.find_first_not_of(u' ', myPosition), myTag.size());
    if (myPosition == myTag.size())
    {
        return myPosition;
    }
    const bool myIsQuoted = myTag[myPosition] == u'"';
    const size_t myStart = myIsQuoted ? myPosition + 1 : myPosition;
    // The first character of a plain value belongs to it whatever it is.
    const size_t myEnd = myIsQuoted ? myTag.find(u'"', myStart) : EndOfWord(myTag, myStart + 1);
    if (myEnd == Text::npos)
    {
        return myTag.size();
    }
    theValue = {myStart, myEnd - myStart};
    return myEnd + 1;
}

/// The table grows and shrinks with each attribute found, so that the entry behind them is new, unless the first one
/// has cut the table down to itself and the entry behind. The table that was left had `myFormerCount` attributes in the
/// former text.
void classTag::KeepEntryBehind(size_t myFormerCount)
{
    if (myTableCount > 1)
    {
        myNameBehind.clear();
        myValueBehind.clear();
    }
    else if (myFormerCount > 1)
    {
        myNameBehind = CleanName(Part(myFormerTag, myTable[1].Name));
        myValueBehind = Part(myFormerTag, myTable[1].Value);
    }
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
    const size_t myIndex = DemandEntry(num);
    return myIndex == myTableCount ? myNameBehind : CleanName(Part(TableText(), myTable[myIndex].Name));
}

Text classTag::AttributeValue(int32_t num) const
{
    const size_t myIndex = DemandEntry(num);
    return myIndex == myTableCount ? myValueBehind : Text(Part(TableText(), myTable[myIndex].Value));
}

size_t classTag::DemandEntry(int32_t num) const
{
    if (num < 0 || myTableCount == 0 || static_cast<size_t>(num) > myTableCount)
    {
        Raise(ErrorNumber::SubscriptOutOfRange);
    }
    return static_cast<size_t>(num);
}

TextView classTag::QueryAttribute(TextView theAttribute, bool noUnquote) const
{
    for (size_t i = 0; i < myAttributeCount; ++i)
    {
        if (IsNamed(myTable[i], theAttribute))
        {
            const TextView myValue = Part(myTag, myTable[i].Value);
            return noUnquote || myValue.find(u'&') == TextView::npos ? myValue : PlainValue(myTable[i]);
        }
    }
    return {};
}

TextView classTag::PlainValue(const Attribute& myAttribute) const
{
    if (!myAttribute.Plain)
    {
        // Unescaping makes no text longer.
        myPlainValues.reserve(myTag.size());
        const Text myValue = UnQuote(Part(myTag, myAttribute.Value));
        myAttribute.Plain = {myPlainValues.size(), myValue.size()};
        myPlainValues += myValue;
    }
    return Part(myPlainValues, *myAttribute.Plain);
}

bool classTag::IsNamed(const Attribute& myAttribute, TextView myWanted) const
{
    const TextView myName = Part(myTag, myAttribute.Name);
    if (!myAttribute.NameIsClean)
    {
        return CleanName(myName) == LowerCase(myWanted);
    }
    return std::equal(myWanted.begin(), myWanted.end(), myName.begin(), myName.end(),
                      [](char16_t w, char16_t n) { return LowerCase(w) == n; });
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
