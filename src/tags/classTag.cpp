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

constexpr std::pair<TextView, char16_t> Entities[] = {
    {u"&quot;", u'"'}, {u"&gt;", u'>'}, {u"&lt;", u'<'}, {u"&amp;", u'&'}};

} // namespace

void classTag::Tag(TextView theTag)
{
    myTag = theTag;
    ParseTag();
}

void classTag::ParseTag()
{
    myAttributeCount = 0;
    const size_t myNameEnd = EndOfWord(myTag, 0);
    myBaseTag.assign(myTag, 0, myNameEnd);
    for (size_t myPosition = myNameEnd + 1; myPosition < myTag.size();)
    {
        myPosition = ParseAttribute(myPosition);
    }
}

/// Reads a name, "=" and a value, and gives the position behind them. Without "=" there is no attribute, and the rest
/// of the text is dropped.
size_t classTag::ParseAttribute(size_t myPosition)
{
    const size_t myEquals = myTag.find(u'=', myPosition);
    if (myEquals == Text::npos)
    {
        return myTag.size();
    }
    AppendAttribute(TextView(myTag).substr(myPosition, myEquals - myPosition));
    return ParseValue(myEquals + 1);
}

/// Reads the value of the last attribute. A quoted value without its closing mark stays empty.
size_t classTag::ParseValue(size_t myPosition)
{
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
    myAttributes[myAttributeCount - 1].Value.assign(myTag, myStart, myEnd - myStart);
    return myEnd + 1;
}

/// The table ends one entry behind the new attribute. What an earlier tag left in that last entry stays, unless the
/// table has been shorter since.
void classTag::AppendAttribute(TextView myName)
{
    ++myAttributeCount;
    const size_t myNewSize = myAttributeCount + 1;
    myAttributes.resize(std::max(myAttributes.size(), myNewSize));
    for (; myTableSize < myNewSize; ++myTableSize)
    {
        myAttributes[myTableSize].Name.clear();
        myAttributes[myTableSize].Value.clear();
    }
    myTableSize = myNewSize;

    Attribute& myAttribute = myAttributes[myAttributeCount - 1];
    myAttribute.Value.clear();
    myAttribute.Name.clear();
    for (const char16_t myCharacter : myName)
    {
        const bool myIsLeadingBlank = myCharacter == u' ' && myAttribute.Name.empty();
        if (!myIsLeadingBlank && !IsDroppedInName(myCharacter))
        {
            myAttribute.Name += LowerCase(myCharacter);
        }
    }
    myAttribute.Name.resize(TrimBlanks(myAttribute.Name).size());
}

uint8_t classTag::AttributeCount() const
{
    if (myAttributeCount > UINT8_MAX)
    {
        Raise(ErrorNumber::Overflow);
    }
    return static_cast<uint8_t>(myAttributeCount);
}

const Text& classTag::AttributeName(int32_t num) const
{
    return AttributeAt(num).Name;
}

const Text& classTag::AttributeValue(int32_t num) const
{
    return AttributeAt(num).Value;
}

const classTag::Attribute& classTag::AttributeAt(int32_t num) const
{
    if (num < 0 || static_cast<size_t>(num) >= myTableSize)
    {
        Raise(ErrorNumber::SubscriptOutOfRange);
    }
    return myAttributes[static_cast<size_t>(num)];
}

Text classTag::QueryAttribute(TextView theAttribute, bool noUnquote) const
{
    const auto HasName = [&](const Attribute& a)
    {
        return std::equal(theAttribute.begin(), theAttribute.end(), a.Name.begin(), a.Name.end(),
                          [](char16_t w, char16_t n) { return LowerCase(w) == n; });
    };
    const auto myEnd = myAttributes.begin() + static_cast<std::ptrdiff_t>(myAttributeCount);
    const auto myFound = std::find_if(myAttributes.begin(), myEnd, HasName);
    if (myFound == myEnd)
    {
        return {};
    }
    return noUnquote ? myFound->Value : UnQuote(myFound->Value);
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
