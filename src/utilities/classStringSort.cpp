#include "utilities/classStringSort.h"

#include "text/errors.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace qel
{

void classStringSort::Clear()
{
    myValueCount = 0;
    myValues.assign(3, Text());
}

void classStringSort::AddValue(TextView myString)
{
    const auto myIndex = static_cast<size_t>(myValueCount) + 1;
    if (myIndex >= myValues.size())
    {
        myValues.resize(2 * myIndex + 1);
    }
    myValues[myIndex] = myString;
    ++myValueCount;
}

const Text& classStringSort::Value(int32_t myIndex) const
{
    if (myIndex < 0 || static_cast<size_t>(myIndex) >= myValues.size())
    {
        Raise(ErrorNumber::SubscriptOutOfRange);
    }
    return myValues[static_cast<size_t>(myIndex)];
}

void classStringSort::Sort()
{
    QuickSort(1, myValueCount, 2 * static_cast<int32_t>(std::bit_width(static_cast<uint32_t>(myValueCount))));
}

/// Partitions around a middle value and recurses into the smaller side first. The standard library sorts a short range,
/// and one that is left when `myDepth` is used up, so that no order of the values is a bad case. A partition that cuts
/// off almost nothing counts as much as twenty others.
void classStringSort::QuickSort(int32_t myFirst, int32_t myLast, int32_t myDepth)
{
    constexpr int32_t ShortRange = 16;
    while (myLast - myFirst >= ShortRange && myDepth > 0)
    {
        int32_t i = myFirst;
        int32_t j = myLast;
        const Text myPivot = At(myFirst / 2 + myLast / 2);
        do
        {
            while (At(i) < myPivot)
            {
                ++i;
            }
            while (myPivot < At(j))
            {
                --j;
            }
            if (i <= j)
            {
                std::swap(At(i++), At(j--));
            }
        } while (i <= j);

        const int32_t mySmaller = std::min(j - myFirst, myLast - i);
        myDepth -= mySmaller < (myLast - myFirst) / 64 ? 20 : 1;
        if (j - myFirst < myLast - i)
        {
            QuickSort(myFirst, j, myDepth);
            myFirst = i;
        }
        else
        {
            QuickSort(i, myLast, myDepth);
            myLast = j;
        }
    }
    std::sort(myValues.begin() + myFirst, myValues.begin() + myLast + 1);
}

} // namespace qel
