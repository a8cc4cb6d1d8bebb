#include "text/text.h"

#include "text/errors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace qel
{
namespace
{

/// Units at intervals of `Step`, each with its lower case at the same offset.
struct LowerCaseRun
{
    char16_t First;
    char16_t Last;
    int32_t Step;
    int32_t Offset;
};

constexpr LowerCaseRun LowerCaseRuns[] = {
#include "text/lowercaseTable.inc"
};

bool IsDigit(char16_t myUnit)
{
    return myUnit >= u'0' && myUnit <= u'9';
}

/// ASCII characters as a Text.
Text Widened(std::string_view myDigits)
{
    return Text(myDigits.begin(), myDigits.end());
}

/// The leading characters that make up a number without its sign: digits, ".", digits, an exponent.
std::string NumberCharacters(TextView myText)
{
    std::string theResult;
    size_t myPosition = 0;
    const auto TakeDigits = [&]
    {
        const size_t myStart = myPosition;
        while (myPosition < myText.size() && IsDigit(myText[myPosition]))
        {
            theResult += static_cast<char>(myText[myPosition++]);
        }
        return myPosition - myStart;
    };
    size_t myDigits = TakeDigits();
    if (myPosition < myText.size() && myText[myPosition] == u'.')
    {
        theResult += '.';
        ++myPosition;
        myDigits += TakeDigits();
    }
    if (myDigits == 0)
    {
        return {};
    }
    if (myPosition < myText.size() && (myText[myPosition] == u'e' || myText[myPosition] == u'E'))
    {
        const size_t myKept = theResult.size();
        theResult += 'e';
        ++myPosition;
        if (myPosition < myText.size() && (myText[myPosition] == u'+' || myText[myPosition] == u'-'))
        {
            theResult += static_cast<char>(myText[myPosition++]);
        }
        if (TakeDigits() == 0)
        {
            theResult.resize(myKept);
        }
    }
    return theResult;
}

/// True when a number that does not fit is too large rather than too small: with the exponent applied, its first digit
/// other than 0 is before the decimal point.
bool IsTooLarge(const std::string& myNumber)
{
    const size_t myExponentMark = myNumber.find('e');
    const std::string myMantissa = myNumber.substr(0, myExponentMark);
    const size_t myFirstDigit = myMantissa.find_first_of("123456789");
    if (myFirstDigit == std::string::npos)
    {
        return false;
    }
    double myExponent = 0;
    if (myExponentMark != std::string::npos)
    {
        const bool myMinus = myNumber[myExponentMark + 1] == '-';
        const size_t myStart = myNumber.find_first_of("0123456789", myExponentMark);
        for (size_t i = myStart; i < myNumber.size(); ++i)
        {
            myExponent = myExponent * 10 + (myNumber[i] - '0');
        }
        myExponent = myMinus ? -myExponent : myExponent;
    }
    const size_t myPoint = std::min(myMantissa.find('.'), myMantissa.size());
    return static_cast<double>(myPoint) - static_cast<double>(myFirstDigit) + myExponent > 0;
}

} // namespace

char16_t LowerCaseBeyondAscii(char16_t myUnit)
{
    const auto* myRun = std::lower_bound(std::begin(LowerCaseRuns), std::end(LowerCaseRuns), myUnit,
                                         [](const LowerCaseRun& r, char16_t u) { return r.Last < u; });
    if (myRun == std::end(LowerCaseRuns) || myUnit < myRun->First || (myUnit - myRun->First) % myRun->Step != 0)
    {
        return myUnit;
    }
    return static_cast<char16_t>(myUnit + myRun->Offset);
}

Text LowerCase(TextView myText)
{
    Text theResult(myText);
    for (char16_t& myUnit : theResult)
    {
        myUnit = LowerCase(myUnit);
    }
    return theResult;
}

bool EqualInLowerCase(TextView myFirst, TextView mySecond)
{
    return std::equal(myFirst.begin(), myFirst.end(), mySecond.begin(), mySecond.end(),
                      [](char16_t a, char16_t b) { return a == b || LowerCase(a) == LowerCase(b); });
}

Text JoinTexts(std::initializer_list<TextView> myTexts)
{
    Text theResult;
    for (const TextView myText : myTexts)
    {
        theResult += myText;
    }
    return theResult;
}

TextView TrimBlanks(TextView myText)
{
    const size_t myFirst = myText.find_first_not_of(u' ');
    if (myFirst == TextView::npos)
    {
        return {};
    }
    return myText.substr(myFirst, myText.find_last_not_of(u' ') - myFirst + 1);
}

Text ReplaceAll(TextView myText, TextView myOld, TextView myNew)
{
    Text theResult;
    theResult.reserve(2 * myText.size()); // most results then never have to grow
    size_t myPosition = 0;
    if (!myOld.empty())
    {
        for (size_t myFound = 0; (myFound = Find(myText, myOld.front(), myFound)) != TextView::npos;)
        {
            if (!myText.substr(myFound).starts_with(myOld))
            {
                ++myFound;
                continue;
            }
            theResult.append(myText, myPosition, myFound - myPosition).append(myNew);
            myFound += myOld.size();
            myPosition = myFound;
        }
    }
    theResult.append(myText, myPosition);
    return theResult;
}

Text NumberText(int64_t myNumber)
{
    std::array<char, 24> myDigits{};
    return Widened({myDigits.data(), std::to_chars(myDigits.data(), myDigits.data() + myDigits.size(), myNumber).ptr});
}

Text NumberText(float myNumber)
{
    std::array<char, 64> myDigits{};
    return Widened(
        {myDigits.data(),
         std::to_chars(myDigits.data(), myDigits.data() + myDigits.size(), myNumber, std::chars_format::fixed).ptr});
}

double NumericPrefix(TextView myText)
{
    myText.remove_prefix(std::min(myText.find_first_not_of(u' '), myText.size()));
    const bool myMinus = myText.starts_with(u'-');
    if (myMinus || myText.starts_with(u'+'))
    {
        myText.remove_prefix(1);
    }
    const std::string myNumber = NumberCharacters(myText);
    double theResult = 0;
    const auto myEnd = std::from_chars(myNumber.data(), myNumber.data() + myNumber.size(), theResult);
    if (myEnd.ec == std::errc::result_out_of_range)
    {
        if (IsTooLarge(myNumber))
        {
            Raise(ErrorNumber::Overflow);
        }
        theResult = 0;
    }
    return myMinus ? -theResult : theResult;
}

} // namespace qel
