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

/// The end of the word at a position: the next separator or the end of the text.
size_t EndOfWord(TextView myText, size_t myPosition)
{
    while (myPosition < myText.size() && !IsSeparator(myText[myPosition]))
    {
        ++myPosition;
    }
    return myPosition;
}

/// True for the characters that are dropped everywhere in an attribute name. Blanks are dropped at its ends only.
bool IsDroppedInName(char16_t myCharacter)
{
    return myCharacter == u'"' || myCharacter == u'\t' || myCharacter == u'\r' || myCharacter == u'\n';
}

/// The name without blanks and dropped characters at its ends.
TextView TrimmedName(TextView myName)
{
    constexpr TextView Outside = u" \"\t\r\n";
    const size_t myStart = std::min(myName.find_first_not_of(Outside), myName.size());
    return myName.substr(myStart, myName.find_last_not_of(Outside) + 1 - myStart);
}

/// True when a trimmed name, without the dropped characters inside it, has the same lower case as the other text.
bool IsNamed(TextView myName, TextView myWanted)
{
    size_t myMatched = 0;
    for (const char16_t myCharacter : myName)
    {
        if (!IsDroppedInName(myCharacter))
        {
            if (myMatched == myWanted.size() || LowerCase(myCharacter) != LowerCase(myWanted[myMatched]))
            {
                return false;
            }
            ++myMatched;
        }
    }
    return myMatched == myWanted.size();
}

constexpr std::pair<TextView, char16_t> Entities[] = {
    {u"&quot;", u'"'}, {u"&gt;", u'>'}, {u"&lt;", u'<'}, {u"&amp;", u'&'}};

} // namespace

void classTag::Tag(TextView theTag)
{
    myTag = theTag;
    myUnquoted.clear();
    const size_t myNameEnd = EndOfWord(myTag, 0);
    myBaseTag = myTag.substr(0, myNameEnd);
    ParseAttributes(myNameEnd + 1);
}

/// Reads names, "=" and values. Without "=" there is no attribute, and the rest of the text is dropped.
void classTag::ParseAttributes(size_t myPosition)
{
    myAttributeCount = 0;
    for (size_t myEquals = 0; (myEquals = Find(myTag, u'=', myPosition)) != TextView::npos;)
    {
        ++myAttributeCount;
        myTable.resize(myAttributeCount + 1); // entries of an earlier tag stay
        Attribute& myAttribute = myTable[myAttributeCount - 1];
        myAttribute.Name = TrimmedName(myTag.substr(myPosition, myEquals - myPosition));
        myPosition = ParseValue(myEquals + 1, myAttribute.Value);
    }
}

/// Reads a value and returns the position after it. A quoted value without its closing mark is empty.
size_t classTag::ParseValue(size_t myPosition, TextView& theValue) const
{
    theValue = {};
    size_t myStart = myTag.find_first_not_of(u' ', myPosition);
    if (myStart == TextView::npos)
    {
        return myTag.size();
    }
    size_t myEnd = 0;
    if (myTag[myStart] == u'"')
    {
        ++myStart;
        myEnd = Find(myTag, u'"', myStart);
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
    theValue = myTag.substr(myStart, myEnd - myStart);
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
    Text theName = LowerCase(DemandEntry(num).Name);
    std::erase_if(theName, IsDroppedInName);
    return theName;
}

Text classTag::AttributeValue(int32_t num) const
{
    return Text(DemandEntry(num).Value);
}

const classTag::Attribute& classTag::DemandEntry(int32_t num) const
{
    if (num < 0 || static_cast<size_t>(num) >= myTable.size())
    {
        Raise(ErrorNumber::SubscriptOutOfRange);
    }
    return myTable[static_cast<size_t>(num)];
}

TextView classTag::QueryAttribute(TextView theAttribute, bool noUnquote) const
{
    const auto myEnd = myTable.begin() + static_cast<std::ptrdiff_t>(myAttributeCount);
    const auto myFound =
        std::find_if(myTable.begin(), myEnd, [&](const Attribute& a) { return IsNamed(a.Name, theAttribute); });
    if (myFound == myEnd)
    {
        return {};
    }
    const TextView myValue = myFound->Value;
    return noUnquote || Find(myValue, u'&', 0) == TextView::npos ? myValue : myUnquoted.emplace_front(UnQuote(myValue));
}

Text classTag::UnQuote(TextView myText)
{
    // No replacement yields a part of another entity except "&", and "&amp;" comes last: one pass is enough.
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
