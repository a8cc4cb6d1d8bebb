#include "platform/windows/localeGrouping.h"

namespace qel
{

NumberGrouping GroupingOfSizes(TextView mySeparator, TextView mySizes)
{
    NumberGrouping theGrouping{Text(mySeparator), {}};
    for (const char16_t myUnit : mySizes)
    {
        if (myUnit >= u'0' && myUnit <= u'9')
        {
            theGrouping.GroupSizes.push_back(static_cast<uint8_t>(myUnit - u'0'));
        }
    }
    // The logic has the opposite rule: the last size repeats, and a 0 ends the grouping.
    if (theGrouping.GroupSizes.empty() || theGrouping.GroupSizes.back() != 0)
    {
        theGrouping.GroupSizes.push_back(0);
    }
    else
    {
        theGrouping.GroupSizes.pop_back();
    }
    return theGrouping;
}

} // namespace qel
