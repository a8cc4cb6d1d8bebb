#include "text/NumberGrouping.h"

#include <algorithm>

namespace qel
{

Text GroupedNumberText(int64_t myNumber, const NumberGrouping& myGrouping)
{
    Text theResult = NumberText(myNumber);
    const size_t myFirstDigit = myNumber < 0 ? 1 : 0;
    size_t myPosition = theResult.size();
    for (size_t i = 0; !myGrouping.GroupSizes.empty(); ++i)
    {
        const uint8_t mySize = myGrouping.GroupSizes[std::min(i, myGrouping.GroupSizes.size() - 1)];
        if (mySize == 0 || myPosition <= myFirstDigit + mySize)
        {
            break;
        }
        myPosition -= mySize;
        theResult.insert(myPosition, myGrouping.Separator);
    }
    return theResult;
}

} // namespace qel
