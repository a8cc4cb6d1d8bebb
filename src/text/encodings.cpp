#include "text/encodings.h"

#include <algorithm>
#include <array>

namespace qel
{
namespace
{

constexpr char16_t ReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t myUnit)
{
    return myUnit >= 0xD800 && myUnit < 0xDC00;
}

constexpr bool IsLowSurrogate(char32_t myUnit)
{
    return myUnit >= 0xDC00 && myUnit < 0xE000;
}

void AppendUtf8(std::string& theBytes, char32_t myCharacter)
{
    const auto Append = [&](char32_t myByte)
    {
        theBytes += static_cast<char>(myByte);
    };
    const auto AppendTail = [&](int myShift)
    {
        Append(0x80 | ((myCharacter >> myShift) & 0x3F));
    };
    if (myCharacter < 0x80)
    {
        Append(myCharacter);
    }
    else if (myCharacter < 0x800)
    {
        Append(0xC0 | (myCharacter >> 6));
        AppendTail(0);
    }
    else if (myCharacter < 0x10000)
    {
        Append(0xE0 | (myCharacter >> 12));
        AppendTail(6);
        AppendTail(0);
    }
    else
    {
        Append(0xF0 | (myCharacter >> 18));
        AppendTail(12);
        AppendTail(6);
        AppendTail(0);
    }
}

/// Encodes a text as UTF-8; false when it has an unpaired surrogate, which is written as U+FFFD.
bool EncodeUtf8(TextView myText, std::string& theBytes)
{
    bool theResult = true;
    theBytes.reserve(myText.size());
    while (!myText.empty())
    {
        char32_t myCharacter = myText[0];
        const bool myIsPair = IsHighSurrogate(myCharacter) && myText.size() > 1 && IsLowSurrogate(myText[1]);
        if (myIsPair)
        {
            myCharacter = 0x10000 + ((myCharacter - 0xD800) << 10) + (myText[1] - 0xDC00U);
        }
        else if (IsHighSurrogate(myCharacter) || IsLowSurrogate(myCharacter))
        {
            myCharacter = ReplacementCharacter;
            theResult = false;
        }
        AppendUtf8(theBytes, myCharacter);
        myText.remove_prefix(myIsPair ? 2 : 1);
    }
    return theResult;
}

/// The first character of some bytes, and the number of its bytes; 0 when they are not valid.
struct DecodedCharacter
{
    char32_t Character = 0;
    size_t Length = 0;
};

DecodedCharacter DecodeCharacter(std::string_view myBytes)
{
    const auto Byte = [&](size_t i)
    {
        return static_cast<unsigned char>(myBytes[i]);
    };
    const unsigned char myLead = Byte(0);
    if (myLead < 0x80)
    {
        return {myLead, 1};
    }
    const size_t myLength = myLead >= 0xF0 ? 4 : myLead >= 0xE0 ? 3 : 2;
    if (myLead < 0xC2 || myLead > 0xF4 || myBytes.size() < myLength)
    {
        return {};
    }
    char32_t myCharacter = myLead & (0xFFU >> (myLength + 1));
    for (size_t i = 1; i < myLength; ++i)
    {
        if ((Byte(i) & 0xC0) != 0x80)
        {
            return {};
        }
        myCharacter = (myCharacter << 6) | (Byte(i) & 0x3F);
    }
    constexpr std::array<char32_t, 5> Smallest = {0, 0, 0x80, 0x800, 0x10000};
    const bool myIsSurrogate = IsHighSurrogate(myCharacter) || IsLowSurrogate(myCharacter);
    if (myCharacter < Smallest[myLength] || myCharacter > 0x10FFFF || myIsSurrogate)
    {
        return {};
    }
    return {myCharacter, myLength};
}

/// Decodes UTF-8; false when a byte is not part of a valid sequence; such a byte becomes U+FFFD.
bool DecodeUtf8(std::string_view myBytes, Text& theText)
{
    bool theResult = true;
    theText.reserve(myBytes.size());
    while (!myBytes.empty())
    {
        const DecodedCharacter myDecoded = DecodeCharacter(myBytes);
        if (myDecoded.Length == 0)
        {
            theText += ReplacementCharacter;
            theResult = false;
        }
        else if (myDecoded.Character < 0x10000)
        {
            theText += static_cast<char16_t>(myDecoded.Character);
        }
        else
        {
            theText += static_cast<char16_t>(0xD800 + ((myDecoded.Character - 0x10000) >> 10));
            theText += static_cast<char16_t>(0xDC00 + (myDecoded.Character & 0x3FF));
        }
        myBytes.remove_prefix(std::max<size_t>(myDecoded.Length, 1));
    }
    return theResult;
}

/// The characters of the bytes 0x80 to 0x9F; every other byte is the character with the same number.
constexpr std::array<char16_t, 32> Windows1252HighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

std::string ToUtf8(TextView myText)
{
    std::string theBytes;
    EncodeUtf8(myText, theBytes);
    return theBytes;
}

std::optional<std::string> ToUtf8Exactly(TextView myText)
{
    std::string theBytes;
    return EncodeUtf8(myText, theBytes) ? std::optional(std::move(theBytes)) : std::nullopt;
}

Text FromUtf8(std::string_view myBytes)
{
    Text theText;
    DecodeUtf8(myBytes, theText);
    return theText;
}

bool IsUtf8(std::string_view myBytes)
{
    while (!myBytes.empty())
    {
        const size_t myLength = DecodeCharacter(myBytes).Length;
        if (myLength == 0)
        {
            return false;
        }
        myBytes.remove_prefix(myLength);
    }
    return true;
}

std::optional<Text> FromUtf8Exactly(std::string_view myBytes)
{
    Text theText;
    return DecodeUtf8(myBytes, theText) ? std::optional(std::move(theText)) : std::nullopt;
}

std::optional<std::string> ToWindows1252(TextView myText)
{
    std::string theBytes;
    theBytes.reserve(myText.size());
    for (const char16_t myUnit : myText)
    {
        char16_t myByte = myUnit;
        if (myUnit > 0xFF || (myUnit >= 0x80 && myUnit < 0xA0))
        {
            const auto* myFound = std::find(Windows1252HighControls.begin(), Windows1252HighControls.end(), myUnit);
            if (myFound == Windows1252HighControls.end())
            {
                return std::nullopt;
            }
            myByte = static_cast<char16_t>(0x80 + (myFound - Windows1252HighControls.begin()));
        }
        theBytes += static_cast<char>(myByte);
    }
    return theBytes;
}

Text FromWindows1252(std::string_view myBytes)
{
    Text theText;
    theText.reserve(myBytes.size());
    for (const char myCharacter : myBytes)
    {
        const auto myByte = static_cast<unsigned char>(myCharacter);
        theText +=
            myByte >= 0x80 && myByte < 0xA0 ? Windows1252HighControls[myByte - 0x80U] : static_cast<char16_t>(myByte);
    }
    return theText;
}

} // namespace qel
