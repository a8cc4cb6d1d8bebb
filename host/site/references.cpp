#include "site/references.h"

#include "site/PageText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <optional>
#include <utility>

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

/// The path of a relative address, with query and fragment cut off; nothing for an address with a scheme or a host and
/// for an absolute path.
std::optional<std::string> RelativePath(std::string_view myAddress)
{
    myAddress = myAddress.substr(0, myAddress.find_first_of("?#"));
    const bool myHasScheme = myAddress.substr(0, myAddress.find('/')).find(':') != std::string_view::npos;
    return myHasScheme || myAddress.starts_with('/') ? std::nullopt : std::optional(PercentDecoded(myAddress));
}

bool StartsWithWord(std::string_view myText, std::string_view myLowerWord)
{
    return Lowered(myText.substr(0, myLowerWord.size())) == myLowerWord;
}

/// Reads a page and collects the addresses in it.
class ReferenceReader
{
public:
    explicit ReferenceReader(std::string_view myPage)
    {
        while (myPage.find('<') != std::string_view::npos)
        {
            SkipPast(myPage, "<");
            if (myPage.starts_with("!--"))
            {
                SkipPast(myPage, "-->");
            }
            else if (!myPage.empty() && IsLetter(myPage.front()))
            {
                ReadTag(myPage);
            }
        }
    }

    /// The addresses that are paths below the page's folder.
    std::vector<std::string> RelativePaths() const
    {
        const auto myBase = RelativePath(Base.value_or(""));
        std::vector<std::string> thePaths;
        for (const std::string& myAddress : Addresses)
        {
            const auto myPath = RelativePath(myAddress);
            if (!myBase || !myPath || myPath->empty())
            {
                continue;
            }
            std::string theFullPath = myBase->substr(0, myBase->rfind('/') + 1) + *myPath;
            if (std::ranges::find(thePaths, theFullPath) == thePaths.end())
            {
                thePaths.push_back(std::move(theFullPath));
            }
        }
        return thePaths;
    }

private:
    void ReadTag(std::string_view& theText)
    {
        const std::string myTag = Lowered(TakeUpTo(theText, " \t\n\f\r>"));
        for (SkipSpaces(theText); !theText.empty() && theText.front() != '>'; SkipSpaces(theText))
        {
            const std::string myName = Lowered(TakeUpTo(theText, " \t\n\f\r=>"));
            SkipSpaces(theText);
            if (theText.starts_with('='))
            {
                theText.remove_prefix(1);
                ReadAttribute(myTag, myName, UnescapedFromHtml(TakeValue(theText)));
            }
        }
        if (myTag == "script" || myTag == "style")
        {
            const std::string_view myContent = TakeContent(theText, myTag);
            ReadStyle(myTag == "style" ? myContent : std::string_view());
        }
    }

    void ReadAttribute(std::string_view myTag, std::string_view myName, const std::string& myValue)
    {
        constexpr std::array<std::string_view, 5> AddressNames{"href", "src", "data", "poster", "background"};
        if (myTag == "base")
        {
            // The first one holds for the whole page.
            Base = Base || myName != "href" ? Base : std::optional(myValue);
        }
        else if (std::ranges::find(AddressNames, myName) != AddressNames.end())
        {
            Add(myValue);
        }
        else if (myName == "srcset" || myName == "imagesrcset")
        {
            ReadSources(myValue);
        }
        else if (myName == "style")
        {
            ReadStyle(myValue);
        }
    }

    /// The content of an element that contains no tags, up to its closing tag.
    static std::string_view TakeContent(std::string_view& theText, const std::string& myTag)
    {
        const std::string_view myAll = theText;
        do
        {
            SkipPast(theText, "</");
        } while (!theText.empty() && !StartsWithWord(theText, myTag));
        return myAll.substr(0, myAll.size() - theText.size());
    }

    /// Reads a list of pictures, each an address with its conditions, separated by commas.
    void ReadSources(std::string_view myList)
    {
        while (myList.find_first_not_of(" \t\n\f\r,") != std::string_view::npos)
        {
            myList.remove_prefix(myList.find_first_not_of(" \t\n\f\r,"));
            const std::string_view myAddress = TakeUpTo(myList, Spaces);
            Add(myAddress.substr(0, myAddress.find_last_not_of(',') + 1));
            if (!myAddress.ends_with(','))
            {
                TakeUpTo(myList, ",");
            }
        }
    }

    /// Reads the url(...) and @import of a style sheet, outside of its comments and strings.
    void ReadStyle(std::string_view myStyle)
    {
        while (!myStyle.empty())
        {
            if (myStyle.starts_with("/*"))
            {
                SkipPast(myStyle, "*/");
            }
            else if (StartsWithQuote(myStyle))
            {
                TakeValue(myStyle);
            }
            else if (StartsWithWord(myStyle, "url("))
            {
                SkipPast(myStyle, "(");
                SkipSpaces(myStyle);
                Add(StartsWithQuote(myStyle) ? TakeValue(myStyle) : TakeUpTo(myStyle, ")"));
            }
            else if (StartsWithWord(myStyle, "@import"))
            {
                TakeUpTo(myStyle, " \t\n\f\r\"'(;");
                SkipSpaces(myStyle);
                Add(StartsWithQuote(myStyle) ? TakeValue(myStyle) : std::string_view());
            }
            else
            {
                myStyle.remove_prefix(1);
            }
        }
    }

    static bool StartsWithQuote(std::string_view myText) { return myText.starts_with('"') || myText.starts_with('\''); }

    void Add(std::string_view myAddress)
    {
        SkipSpaces(myAddress);
        Addresses.emplace_back(myAddress.substr(0, myAddress.find_last_not_of(Spaces) + 1));
    }

    std::vector<std::string> Addresses; ///< in the order of the page
    std::optional<std::string> Base;
};

} // namespace

std::vector<std::string> RelativeReferences(std::string_view myPage)
{
    return ReferenceReader(myPage).RelativePaths();
}

} // namespace qel::host
