/// The sortable list of texts.
#include "errorOf.h"
#include "utilities/classStringSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace qel
{
namespace
{

using Texts = std::vector<Text>;

Texts Sorted(const Texts& myValues, classStringSort mySort = {})
{
    std::for_each(myValues.begin(), myValues.end(), [&](const Text& myValue) { mySort.AddValue(myValue); });
    mySort.Sort();
    Texts theValues;
    for (int32_t i = 1; i <= mySort.ValueCount(); ++i)
    {
        theValues.push_back(mySort.Value(i));
    }
    return theValues;
}

Text Padded(size_t myNumber)
{
    const Text myDigits = NumberText(static_cast<int64_t>(myNumber));
    return Text(6 - myDigits.size(), u'0') + myDigits;
}

/// An order in which the middle value of each range is its smallest, so that a partition takes off one value alone.
Texts WorstOrder(size_t myCount)
{
    std::vector<size_t> myPlaces(myCount + 1);
    std::iota(myPlaces.begin(), myPlaces.end(), 0);
    Texts theValues(myCount);
    for (size_t myFirst = 1; myFirst <= myCount; ++myFirst)
    {
        const size_t myMiddle = myFirst / 2 + myCount / 2;
        theValues[myPlaces[myMiddle] - 1] = Padded(myFirst);
        std::swap(myPlaces[myFirst], myPlaces[myMiddle]);
    }
    return theValues;
}

TEST(StringSort, Sort_LongListInAnyOrder)
{
    std::mt19937 myRandom(1);
    for (const size_t myCount : {2U, 3U, 100U, 127U, 128U, 129U, 5000U})
    {
        const Texts myWorst = WorstOrder(myCount);
        Texts mySorted = myWorst;
        std::sort(mySorted.begin(), mySorted.end());
        Texts myShuffled = mySorted;
        std::shuffle(myShuffled.begin(), myShuffled.end(), myRandom);
        for (const Texts& myList : {myWorst, mySorted, myShuffled, Texts(mySorted.rbegin(), mySorted.rend())})
        {
            EXPECT_TRUE(Sorted(myList) == mySorted) << myCount;
        }
        EXPECT_TRUE(Sorted(Texts(myCount, u"same")) == Texts(myCount, u"same")) << myCount;
    }
}

} // namespace
} // namespace qel
