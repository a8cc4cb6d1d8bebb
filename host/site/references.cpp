#include "site/references.h"

#include "site/PageText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

namespace qel::host
{

namespace
{

constexpr std::string_view Spaces = " \t\n\f\r";

bool IsLetter(char myCharacter)
{
    return std::isalpha(static_cast<unsigned char>(myCharacter)) != 0;
}

std::string Lowered(std::string_view myText)
{
    std::string theText(myText);
    std::ranges::transform(theText, theText.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
    return theText;
}

/// Takes the characters up to the first of some others off the head of a text.
std::string_view TakeUpTo(std::string_view& theText, std::string_view myOthers)
{
    const std::string_view theHead = theText.substr(0, theText.find_first_of(myOthers));
    theText.remove_prefix(theHead.size());
    return theHead;
}

void SkipSpaces(std::string_view& theText)
{
    theText.remove_prefix(std::min(theText.find_first_not_of(Spaces), theText.size()));
}

/// Takes everything up to a text, and that text.
void SkipPast(std::string_view& theText, std::string_view myEnd)
{
    theText.remove_prefix(std::min(theText.find(myEnd), theText.size()));
    theText.remove_prefix(std::min(myEnd.size(), theText.size()));
}

/// Takes the value after an attribute's "=".
std::string_view TakeValue(std::string_view& theText)
{
    SkipSpaces(theText);
    if (theText.empty() || (theText.front() != '"' && theText.front() != '\''))
    {
        return TakeUpTo(theText, " \t\n\f\r>");
    }
    const char myQuote = theText.front();
    theText.remove_prefix(1);
    const std::string_view theValue = TakeUpTo(theText, {&myQuote, 1});
    theText.remove_prefix(std::min<std::size_t>(1, theText.size()));
    return theValue;
}

std::string PercentDecoded(std::string_view myText)
{
    std::string theText;
    for (std::size_t i = 0; i < myText.size(); ++i)
    {
        unsigned char myByte = 0;
        const char* const myDigits = myText.data() + i + 1;
        if (myText[i] == '%' && i + 2 < myText.size() &&
            std::from_chars(myDigits, myDigits + 2, myByte, 16).ptr == myDigits + 2)
        {
            theText += static_cast<char>(myByte);
            i += 2;
        }
        else
        {
            theText += myText[i];
        }
    }
    return theText;
}

/// The path that an address leads to below the page's folder; empty when it is not a relative one.
std::string RelativePath(std::string_view myValue)
{
    std::string myAddress = UnescapedFromHtml(myValue);
    myAddress.erase(std::min(myAddress.find_first_of("?#"), myAddress.size()));
    const bool myHasScheme = myAddress.substr(0, myAddress.find('/')).find(':') != std::string::npos;
    return myHasScheme || myAddress.starts_with('/') ? std::string() : PercentDecoded(myAddress);
}

/// Reads the attributes of a tag up to its ">", and adds the references among them.
void ReadAttributes(std::string_view& theText, std::vector<std::string>& theReferences)
{
    constexpr std::array<std::string_view, 5> Names{"href", "src", "data", "poster", "background"};
    for (SkipSpaces(theText); !theText.empty() && theText.front() != '>'; SkipSpaces(theText))
    {
        const std::string myName = Lowered(TakeUpTo(theText, " \t\n\f\r=>"));
        SkipSpaces(theText);
        if (!theText.starts_with('='))
        {
            continue;
        }
        theText.remove_prefix(1);
        const std::string myPath = RelativePath(TakeValue(theText));
        if (!myPath.empty() && std::ranges::find(Names, myName) != Names.end() &&
            std::ranges::find(theReferences, myPath) == theReferences.end())
        {
            theReferences.push_back(myPath);
        }
    }
}

} // namespace

std::vector<std::string> RelativeReferences(std::string_view myPage)
{
    std::vector<std::string> theReferences;
    while (myPage.find('<') != std::string_view::npos)
    {
        SkipPast(myPage, "<");
        if (myPage.starts_with("!--"))
        {
            SkipPast(myPage, "-->");
            continue;
        }
        if (myPage.empty() || !IsLetter(myPage.front()))
        {
            continue;
        }
        const std::string myTag = Lowered(TakeUpTo(myPage, " \t\n\f\r>"));
        std::vector<std::string> myIgnored; // the address of a base is no reference to a file
        ReadAttributes(myPage, myTag == "base" ? myIgnored : theReferences);
        if (myTag == "script" || myTag == "style")
        {
            SkipPast(myPage, "</");
        }
    }
    return theReferences;
}

} // namespace qel::host
