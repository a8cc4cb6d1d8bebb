/// Sorting a million file names, against the standard library's sort of the same texts with the same comparison.
#include "compare.h"
#include "text/text.h"
#include "utilities/classStringSort.h"

#include <numeric>
#include <random>

namespace
{

using namespace qel;
using namespace qel::bench;

constexpr size_t Count = 1'000'000;

/// Names as in a library of pictures, all different, in ascending order.
std::vector<Text> MakeNames()
{
    const TextView myWords[] = {
        u"Árbol de Navidad", u"Bola",  u"Campana",    u"Copo de nieve", u"Estrella fugaz", u"Globo", u"Mariposa",
        u"Regalo",           u"Tarta", u"globo rojo", u"luna",          u"sol y mar",      u"Ángel"};
    std::vector<Text> theResult;
    theResult.reserve(Count);
    for (size_t i = 0; i < Count; ++i)
    {
        Text myName(myWords[i % std::size(myWords)]);
        myName.append(u" ").append(NumberText(static_cast<int64_t>(i / std::size(myWords)))).append(u".gif");
        theResult.push_back(std::move(myName));
    }
    std::sort(theResult.begin(), theResult.end());
    return theResult;
}

/// Puts the smallest value left at the middle of each range that the partitioning will see: the pivot of a range from
/// First to Last is the entry at First / 2 + Last / 2, here with indexes from 1. Each partition then cuts off one
/// value.
std::vector<Text> MakeAdversarial(const std::vector<Text>& mySorted)
{
    // The entry at each index, while the partitioning swaps the pivot to the front of its range.
    std::vector<size_t> myPlaces(mySorted.size() + 1);
    std::iota(myPlaces.begin(), myPlaces.end(), size_t{0});
    std::vector<Text> theResult(mySorted.size());
    for (size_t myFirst = 1; myFirst <= mySorted.size(); ++myFirst)
    {
        const size_t myPivot = myFirst / 2 + mySorted.size() / 2;
        theResult[myPlaces[myPivot] - 1] = mySorted[myFirst - 1];
        std::swap(myPlaces[myFirst], myPlaces[myPivot]);
    }
    return theResult;
}

std::vector<Text> Sorted(std::vector<Text> myValues)
{
    classStringSort mySort;
    for (const Text& myValue : myValues)
    {
        mySort.AddValue(myValue);
    }
    mySort.Sort();
    for (size_t i = 0; i < myValues.size(); ++i)
    {
        myValues[i] = mySort.Value(static_cast<int32_t>(i) + 1);
    }
    return myValues;
}

void CompareOrder(const Bench& myBench, const std::string& myOrder, const std::vector<Text>& myNames)
{
    std::vector<Text> myValues = myNames;
    std::sort(myValues.begin(), myValues.end());
    Require(Sorted(myNames) == myValues, "both sorts give the same order: " + myOrder);

    classStringSort myFilled;
    myFilled.Clear();
    for (const Text& myName : myNames)
    {
        myFilled.AddValue(myName);
    }
    classStringSort mySort;
    // Both sides sort a new copy, because half of the time depends on where the texts are in memory.
    myBench.Compare("sort: a million names, " + myOrder, 1.0,
                    {[&] { mySort.Sort(); },
                     [&]
                     {
                         mySort = {};
                         mySort = myFilled;
                     }},
                    {[&] { std::sort(myValues.begin(), myValues.end()); },
                     [&]
                     {
                         myValues = {};
                         myValues = myNames;
                     }});
}

} // namespace

int main(int argc, char** argv)
{
    const Bench myBench(argc, argv);
    std::vector<Text> myNames = MakeNames();
    const std::vector<Text> mySorted = myNames;
    std::shuffle(myNames.begin(), myNames.end(), std::mt19937(1));
    const std::pair<const char*, std::vector<Text>> myOrders[] = {
        {"random", myNames},
        {"sorted", mySorted},
        {"reversed", {mySorted.rbegin(), mySorted.rend()}},
        {"all equal", std::vector<Text>(Count, mySorted.front())},
        {"adversarial", MakeAdversarial(mySorted)},
    };
    for (const auto& myOrder : myOrders)
    {
        RunInChild([&] { CompareOrder(myBench, myOrder.first, myOrder.second); });
    }
}
