#include "platform/locale.h"

#include "platform/windows/localeGrouping.h"
#include "platform/windows/wideText.h"
#include "platform/windows/windowsHeaders.h"

#include <array>

namespace qel
{
namespace
{

/// A text of the user's locale, with the user's own changes.
Text LocaleText(LCTYPE myType)
{
    std::array<wchar_t, 16> myText = {}; // the longest of these texts has 10 units
    const int myLength =
        GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, myType, myText.data(), static_cast<int>(myText.size()));
    return myLength > 0 ? TextOfWide(myText.data()) : Text();
}

} // namespace

NumberGrouping UserNumberGrouping()
{
    return GroupingOfSizes(LocaleText(LOCALE_STHOUSAND), LocaleText(LOCALE_SGROUPING));
}

} // namespace qel
