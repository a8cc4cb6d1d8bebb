#include "platform/Locale.h"

#include <sstream>
#include <stdexcept>

namespace qel
{
namespace
{

/// The user's locale, whether the process has taken it over or not.
std::locale UserLocale()
{
    try
    {
        return std::locale("");
    }
    catch (const std::runtime_error&)
    {
        return std::locale::classic();
    }
}

} // namespace

NumberGrouping::NumberGrouping() : myLocale(UserLocale()) {}

Text NumberGrouping::GroupedNumberText(int64_t myNumber) const
{
    std::wostringstream myStream;
    myStream.imbue(myLocale);
    myStream << myNumber;
    const std::wstring myDigits = myStream.str();
    Text theResult;
    for (const wchar_t myCharacter : myDigits)
    {
        theResult += static_cast<char16_t>(myCharacter); // digits and separators lie within one unit
    }
    return theResult;
}

} // namespace qel
