#include "site/PageText.h"

#include "common/Failure.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace qel::host
{

namespace
{

std::string CharacterReference(uint32_t myCode)
{
    return "&#" + std::to_string(myCode) + ";";
}

/// True when a text begins with the two halves of one character.
bool IsPair(TextView myText)
{
    return myText.size() > 1 && (myText[0] & 0xFC00) == 0xD800 && (myText[1] & 0xFC00) == 0xDC00;
}

uint32_t CodeOf(TextView myCharacter)
{
    return IsPair(myCharacter) ? 0x10000 + ((myCharacter[0] & 0x3FFU) << 10) + (myCharacter[1] & 0x3FFU)
                               : myCharacter.front();
}

/// Takes the first word from the head of a text; the empty text if it has none.
std::string_view TakeWord(std::string_view& theText)
{
    constexpr std::string_view Spaces = " \t\n\v\f\r";
    theText.remove_prefix(std::min(theText.find_first_not_of(Spaces), theText.size()));
    const std::string_view theWord = theText.substr(0, theText.find_first_of(Spaces));
    theText.remove_prefix(theWord.size());
    return theWord;
}

/// True for a word that is, or was meant to be, one of those that mark a place.
bool IsLikePlace(std::string_view myWord)
{
    constexpr std::string_view Head = "qel:";
    return std::ranges::equal(myWord.substr(0, Head.size()), Head,
                              [](char myLeft, char myRight) { return (myLeft | 0x20) == (myRight | 0x20); });
}

/// Where the unnamed place is in a page that does not show it.
std::size_t DefaultPlace(std::string_view myContent)
{
    constexpr std::string_view Tag = "</body";
    const std::string_view::iterator myEnd =
        std::find_end(myContent.begin(), myContent.end(), Tag.begin(), Tag.end(),
                      [](char myLeft, char myRight) { return (myLeft | 0x20) == (myRight | 0x20); });
    return static_cast<std::size_t>(myEnd - myContent.begin());
}

} // namespace

PageText::PageText(std::string theContent) : myContent(std::move(theContent))
{
    const bool myIsAscii = std::all_of(myContent.begin(), myContent.end(),
                                       [](char myByte) { return static_cast<signed char>(myByte) >= 0; });
    myEncoding = myIsAscii ? Encoding::Ascii : IsUtf8(myContent) ? Encoding::Utf8 : Encoding::Windows1252;
    constexpr std::string_view Opening = "<!--";
    constexpr std::string_view Closing = "-->";
    std::size_t myEnd = 0;
    for (std::size_t myStart = 0; (myStart = myContent.find(Opening, myEnd)) != std::string::npos;)
    {
        myEnd = myContent.find(Closing, myStart + Opening.size());
        if (myEnd == std::string::npos)
        {
            std::string_view myRest = std::string_view(myContent).substr(myStart + Opening.size());
            if (IsLikePlace(TakeWord(myRest)))
            {
                NoteUnknown(myStart, myContent.size());
            }
            break;
        }
        myEnd += Closing.size();
        ReadPlace(myStart, myEnd);
    }
    if (!HasPlace(""))
    {
        const std::size_t myDefault = DefaultPlace(myContent);
        const auto myNext = std::find_if(myPlaces.begin(), myPlaces.end(),
                                         [&](const Place& myPlace) { return myPlace.Start >= myDefault; });
        myPlaces.insert(myNext, {myDefault, myDefault, PlaceKind::Modules, {}, true});
    }
}

void PageText::ReadPlace(std::size_t myStart, std::size_t myEnd)
{
    std::string_view myWords = std::string_view(myContent).substr(myStart + 4, myEnd - myStart - 7);
    const std::string_view myWord = TakeWord(myWords);
    const std::string myName(TakeWord(myWords));
    if (!TakeWord(myWords).empty())
    {
        if (IsLikePlace(myWord))
        {
            NoteUnknown(myStart, myEnd);
        }
    }
    else if (myWord == "qel:modules")
    {
        myPlaces.push_back({myStart, myEnd, PlaceKind::Modules, myName, !HasPlace(myName)});
    }
    else if (myWord == "qel:title" && myName.empty())
    {
        myPlaces.push_back({myStart, myEnd, PlaceKind::Title, {}, true});
    }
    else if (myWord == "qel:menu" && myName.empty())
    {
        myPlaces.push_back({myStart, myEnd, PlaceKind::Menu, {}, true});
    }
    else if (IsLikePlace(myWord))
    {
        NoteUnknown(myStart, myEnd);
    }
}

void PageText::NoteUnknown(std::size_t myStart, std::size_t myEnd)
{
    constexpr std::size_t Longest = 60;
    const auto myLine =
        1 + std::count(myContent.begin(), myContent.begin() + static_cast<std::ptrdiff_t>(myStart), '\n');
    const std::string myComment = myContent.substr(myStart, std::min(myEnd - myStart, Longest));
    const std::string myText =
        myEncoding == Encoding::Windows1252 ? ToUtf8(FromWindows1252(myComment)) : ToUtf8(FromUtf8(myComment));
    myUnknownComments.push_back("line " + std::to_string(myLine) + ": a build does not fill " + myText +
                                (myEnd - myStart > Longest ? "..." : "") +
                                "; it fills <!-- qel:modules -->, <!-- qel:modules NAME -->, <!-- qel:title --> and "
                                "<!-- qel:menu -->, with these small letters");
}

bool PageText::HasPlace(std::string_view myName) const
{
    return std::any_of(myPlaces.begin(), myPlaces.end(),
                       [&](const Place& myPlace)
                       { return myPlace.Kind == PlaceKind::Modules && myPlace.Name == myName; });
}

bool PageText::HasMenu() const
{
    return std::any_of(myPlaces.begin(), myPlaces.end(),
                       [](const Place& myPlace) { return myPlace.Kind == PlaceKind::Menu; });
}

std::string PageText::Filled(const std::map<std::string, Text>& myModules, TextView myTitle, TextView myMenu) const
{
    std::string thePage;
    std::size_t myDone = 0;
    for (const Place& myPlace : myPlaces)
    {
        thePage.append(myContent, myDone, myPlace.Start - myDone);
        myDone = myPlace.End;
        if (myPlace.Kind == PlaceKind::Title)
        {
            thePage += Encoded(myTitle);
        }
        else if (myPlace.Kind == PlaceKind::Menu)
        {
            thePage += Encoded(myMenu);
        }
        else if (const auto myFound = myModules.find(myPlace.Name); myFound != myModules.end() && myPlace.IsFirst)
        {
            thePage += Encoded(myFound->second);
        }
    }
    thePage.append(myContent, myDone);
    return thePage;
}

std::string PageText::Encoded(TextView myText) const
{
    if (myEncoding == Encoding::Utf8)
    {
        return ToUtf8(myText);
    }
    std::string theBytes;
    while (!myText.empty())
    {
        const TextView::iterator myRun =
            std::find_if(myText.begin(), myText.end(), [](char16_t myUnit) { return myUnit >= 0x80; });
        theBytes.append(myText.begin(), myRun);
        myText.remove_prefix(static_cast<std::size_t>(myRun - myText.begin()));
        const TextView myCharacter = myText.substr(0, IsPair(myText) ? 2 : 1);
        const auto myAnsi = myEncoding == Encoding::Ascii ? std::nullopt : ToWindows1252(myCharacter);
        theBytes += myAnsi ? *myAnsi : myCharacter.empty() ? "" : CharacterReference(CodeOf(myCharacter));
        myText.remove_prefix(myCharacter.size());
    }
    return theBytes;
}

void DemandPageContent(std::string_view myContent)
{
    if (myContent.find('\0') != std::string_view::npos || myContent.starts_with("\xFF\xFE") ||
        myContent.starts_with("\xFE\xFF"))
    {
        throw Failure("the page is not text in an encoding that qelhost knows; save it as UTF-8");
    }
}

std::string EscapedForHtml(std::string_view myText)
{
    constexpr std::string_view Special = "&<>\"'\\%";
    std::string theText;
    for (const char myCharacter : myText)
    {
        const auto myCode = static_cast<unsigned char>(myCharacter);
        const bool myIsPlain = myCode >= 0x20 && Special.find(myCharacter) == std::string_view::npos;
        theText += myIsPlain ? std::string(1, myCharacter) : CharacterReference(myCode);
    }
    return theText;
}

std::string EncodedForAddress(std::string_view myName)
{
    constexpr std::string_view Plain = "-._~";
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string theAddress;
    for (const char myCharacter : myName)
    {
        const auto myCode = static_cast<unsigned char>(myCharacter);
        const bool myIsLetter = (myCode | 0x20) >= 'a' && (myCode | 0x20) <= 'z';
        const bool myIsDigit = myCode >= '0' && myCode <= '9';
        if (myIsLetter || myIsDigit || Plain.find(myCharacter) != std::string_view::npos)
        {
            theAddress += myCharacter;
        }
        else
        {
            theAddress += {'%', Digits[myCode >> 4], Digits[myCode & 0xF]};
        }
    }
    return theAddress;
}

namespace
{

/// The character of ASCII that a reference, such as "&#38;" or "&amp;", stands for; 0 if it is none.
char ReferredCharacter(std::string_view myReference)
{
    constexpr std::array<std::pair<std::string_view, char>, 4> Names{
        {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}}};
    const auto* const myName = std::ranges::find(Names, myReference, &std::pair<std::string_view, char>::first);
    if (myName != Names.end())
    {
        return myName->second;
    }
    int theCode = 0;
    if (myReference.starts_with("&#"))
    {
        const char* const myEnd = myReference.data() + myReference.size() - 1;
        const auto myParsed = std::from_chars(myReference.data() + 2, myEnd, theCode);
        theCode = myParsed.ptr == myEnd && theCode > 0 && theCode < 0x80 ? theCode : 0;
    }
    return static_cast<char>(theCode);
}

} // namespace

std::string UnescapedFromHtml(std::string_view myText)
{
    constexpr std::size_t Longest = 6; // "&quot;" and "&#127;"
    std::string theText;
    while (!myText.empty())
    {
        const std::string_view myReference = myText.substr(0, myText.substr(0, Longest).find(';') + 1);
        const char myCharacter = ReferredCharacter(myReference);
        theText += myCharacter == 0 ? myText.front() : myCharacter;
        myText.remove_prefix(myCharacter == 0 ? 1 : myReference.size());
    }
    return theText;
}

} // namespace qel::host
