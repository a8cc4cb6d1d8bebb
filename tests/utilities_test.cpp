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

TEST(StringSort, Sort_ByCharacterCodeWithEqualValues)
{
    EXPECT_EQ(Sorted({u"b", u"", u"apple", u"B", u"b", u"ab", u"", u"Zebra", u"Ábaco"}),
              (Texts{u"", u"", u"B", u"Zebra", u"ab", u"apple", u"b", u"b", u"Ábaco"}));
    EXPECT_EQ(Sorted({u"\uFF5E", u"\U0001F600", u"10", u"9"}), (Texts{u"10", u"9", u"\U0001F600", u"\uFF5E"}));
}

TEST(StringSort, Sort_LeavesALaterValueForTheNextOne)
{
    classStringSort mySort;
    mySort.AddValue(u"b");
    mySort.Sort();
    mySort.AddValue(u"a");
    EXPECT_EQ(mySort.Value(1), u"b");
    EXPECT_EQ(mySort.Value(2), u"a");
    EXPECT_EQ(Sorted({u"A"}, mySort), (Texts{u"A", u"a", u"b"}));
}

TEST(StringSort, Value_OutsideTheTableFails)
{
    classStringSort mySort;
    // The highest number that has a value, as values are added. The table grows ahead of them.
    for (const int32_t myHighest : {2, 2, 2, 6, 6, 6, 6, 14, 2})
    {
        SCOPED_TRACE(mySort.ValueCount());
        EXPECT_EQ(mySort.Value(0), u"");
        EXPECT_EQ(mySort.Value(mySort.ValueCount() < myHighest ? myHighest : 0), u"");
        EXPECT_EQ(ErrorOf([&] { mySort.Value(-1); }), ErrorNumber::SubscriptOutOfRange);
        EXPECT_EQ(ErrorOf([&] { mySort.Value(myHighest + 1); }), ErrorNumber::SubscriptOutOfRange);
        mySort.AddValue(u"x");
        if (myHighest == 14)
        {
            mySort.Clear();
        }
    }
    EXPECT_EQ(mySort.ValueCount(), 1);
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
