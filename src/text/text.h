/// Text as it crosses the binary interface, and the small operations on it that every layer shares.
///
/// All of them work on UTF-16 units, by character code and without a locale, and may be called on any thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace qel
{

using Text = std::u16string;
using TextView = std::u16string_view;

/// The part of LowerCase for units from 0x80. Call LowerCase instead.
char16_t LowerCaseBeyondAscii(char16_t myUnit);

/// The simple Unicode lower case of one unit. Returns the unit itself when it has none, as a surrogate has.
inline char16_t LowerCase(char16_t myUnit)
{
    if (myUnit < 0x80)
    {
        return myUnit >= u'A' && myUnit <= u'Z' ? static_cast<char16_t>(myUnit + 32) : myUnit;
    }
    return LowerCaseBeyondAscii(myUnit);
}

/// The same for each unit of a text; the length does not change.
Text LowerCase(TextView myText);

/// True when both texts have the same lower case.
bool EqualInLowerCase(TextView myFirst, TextView mySecond);

/// The first position of a unit at or after `myPosition`; npos when there is none. Faster than TextView::find.
inline size_t Find(TextView myText, char16_t myUnit, size_t myPosition)
{
    const auto* const myStart = myText.begin() + std::min(myPosition, myText.size());
    const auto* const myFound = std::find(myStart, myText.end(), myUnit);
    return myFound == myText.end() ? TextView::npos : static_cast<size_t>(myFound - myText.begin());
}

/// Concatenates the texts.
Text JoinTexts(std::initializer_list<TextView> myTexts);

/// The text without the blanks (U+0020 alone) at both ends; a view into the argument.
TextView TrimBlanks(TextView myText);

/// The text with every occurrence of `myOld` replaced, from the left, in one pass: replacements are not searched again.
/// An empty `myOld` is never found.
Text ReplaceAll(TextView myText, TextView myOld, TextView myNew);

/// Plain decimal digits, with "-" in front of a negative number.
Text NumberText(int64_t myNumber);

/// The shortest text that reads back as the same number, without an exponent: 120 for 120.0.
Text NumberText(float myNumber);

/// The number that a text begins with: blanks, a sign ("+" or "-"), digits with at most one ".", and an exponent.
/// Reading stops at the first character that cannot continue the number; a text without one gives 0.
/// Error 6: the number is too large for 64 bits of floating point.
double NumericPrefix(TextView myText);

} // namespace qel
