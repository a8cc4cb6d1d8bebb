#include "platform/locale.h"

#include <algorithm>
#include <climits>
#include <locale>
#include <stdexcept>

namespace qel
{
namespace
{

/// The user's locale, whether or not the process uses it.
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

NumberGrouping UserNumberGrouping()
{
    const std::locale myLocale = UserLocale();
    const auto& myFacet = std::use_facet<std::numpunct<wchar_t>>(myLocale);
    NumberGrouping theResult;
    theResult.Separator = static_cast<char16_t>(myFacet.thousands_sep()); // a separator is one unit
    for (const char mySize : myFacet.grouping())
    {
        const bool myIsLast = mySize <= 0 || mySize == CHAR_MAX; // the digits before it form one group
        theResult.GroupSizes.push_back(myIsLast ? 0 : static_cast<uint8_t>(mySize));
    }
    return theResult;
}

} // namespace qel
