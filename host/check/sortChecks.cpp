// Checks of the list of texts.
#include "check/OpenedComponent.h"
#include "com/Bstr.h"
#include "text/encodings.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

// What OpenedComponent gives is never null; a check ends where it would be.
// NOLINTBEGIN(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)

namespace qel::host
{

namespace
{

Text ValuesOf(QelStringSort& mySort)
{
    int32_t theCount = 0;
    Text theValues;
    ExpectResult("ValueCount", S_OK, mySort.get_ValueCount(&theCount));
    for (int32_t i = 1; i <= theCount; ++i)
    {
        Bstr theValue;
        ExpectResult("Value", S_OK, mySort.get_Value(&i, theValue.Pointer()));
        theValues += theValue.Value() + u"|";
    }
    return theValues;
}

void StringSort(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myHeld = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    QelStringSort& mySort = *myHeld.Get();
    const auto Add = [&](TextView myText)
    {
        Bstr myValue(myText);
        ExpectResult("AddValue", S_OK, mySort.AddValue(myValue.Pointer()));
    };
    ExpectResult("Sort of nothing", S_OK, mySort.Sort());
    for (const TextView myText : {u"b", u"Zebra", u"apple", u"", u"b", u"B"})
    {
        Add(myText);
    }
    ExpectText("the values before Sort", u"b|Zebra|apple||b|B|", ValuesOf(mySort));
    ExpectResult("Sort", S_OK, mySort.Sort());
    ExpectText("the values after Sort", u"|B|Zebra|apple|b|b|", ValuesOf(mySort));
    Add(u"A");
    ExpectText("a value added after Sort", u"|B|Zebra|apple|b|b|A|", ValuesOf(mySort));
    for (int32_t myIndex : {-1, 1000})
    {
        BSTR theValue = nullptr; // not freed: it need not be a text
        ExpectResult("Value " + std::to_string(myIndex), QEL_RESULT(0x800A0009U),
                     mySort.get_Value(&myIndex, &theValue));
        Expect("a failed Value returns no text", theValue == nullptr);
    }
    BSTR myNull = nullptr;
    ExpectResult("AddValue of a null text", S_OK, mySort.AddValue(&myNull));
    ExpectText("an empty text added", u"|B|Zebra|apple|b|b|A||", ValuesOf(mySort));
    ExpectResult("Clear", S_OK, mySort.Clear());
    ExpectText("the values after Clear", u"", ValuesOf(mySort));
}

/// Adds texts to a list.
void AddAll(QelStringSort& mySort, const std::vector<Text>& myTexts)
{
    for (const Text& myText : myTexts)
    {
        Bstr myValue(myText);
        ExpectResult("AddValue", S_OK, mySort.AddValue(myValue.Pointer()));
        ExpectText("the caller's text after AddValue", myText, myValue.Value());
    }
}

/// Sorts texts by the component, and expects them in the order of their character codes.
void ExpectSorted(QelStringSort& mySort, const std::string& myWhat, std::vector<Text> myTexts)
{
    ExpectResult("Clear", S_OK, mySort.Clear());
    AddAll(mySort, myTexts);
    std::ranges::sort(myTexts);
    Text mySorted;
    for (const Text& myText : myTexts)
    {
        mySorted += myText + u"|";
    }
    for (int i = 0; i < 2; ++i) // sorting what is sorted changes nothing
    {
        ExpectResult("Sort of " + myWhat, S_OK, mySort.Sort());
        ExpectText(myWhat + ", sorted", mySorted, ValuesOf(mySort));
    }
}

void Order(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    ExpectSorted(*mySort.Get(), "texts of every kind",
                 {u"b",
                  u"B",
                  u"a",
                  u"A",
                  u"Z",
                  u"z",
                  u"_",
                  u"[",
                  u"0",
                  u"9",
                  u"10",
                  u"2",
                  u" a",
                  u"a ",
                  u"",
                  u"ab",
                  u"a-b",
                  u"a_b",
                  u"A-b",
                  u"ñ",
                  u"Ñ",
                  u"é",
                  u"e",
                  u"É",
                  u"zz",
                  u"ÿ",
                  u"\u0130",
                  u"\uFFFF",
                  u"\xD800",
                  u"\U0001F388",
                  u"\uFF21",
                  Text(u"a\0b", 3),
                  Text(u"a\0a", 3),
                  Text(1, u'\0'),
                  u"\t",
                  u"a",
                  u"a",
                  u"",
                  Text(5000, u'x'),
                  Text(5000, u'x') + u"y"});
    for (const auto& myTexts : std::vector<std::vector<Text>>{
             {u"a"}, {u"b", u"a"}, {u"a", u"b"}, {u"a", u"a", u"a"}, {u"c", u"b", u"a"}, {u"a", u"c", u"b"}})
    {
        ExpectSorted(*mySort.Get(), std::to_string(myTexts.size()) + " texts", myTexts);
    }
}

constexpr int64_t ManyTexts = 1000;

/// Different texts in an order in which the middle one of each range is its least: for a quicksort that takes the
/// middle one as its pivot, each partition takes off one text alone.
std::vector<Text> WorstOrder(size_t myCount)
{
    constexpr int64_t Base = 1'000'000; // so that all texts have one length
    std::vector<size_t> myPlaces(myCount + 1);
    std::iota(myPlaces.begin(), myPlaces.end(), 0);
    std::vector<Text> theTexts(myCount);
    for (size_t myFirst = 1; myFirst <= myCount; ++myFirst)
    {
        const size_t myMiddle = myFirst / 2 + myCount / 2;
        theTexts[myPlaces[myMiddle] - 1] = NumberText(Base + static_cast<int64_t>(myFirst));
        std::swap(myPlaces[myFirst], myPlaces[myMiddle]);
    }
    return theTexts;
}

void Many(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    std::minstd_rand myRandom(1); // the same texts each time
    std::vector<Text> myTexts;
    for (int64_t i = 0; i < ManyTexts; ++i)
    {
        myTexts.push_back(NumberText(static_cast<int64_t>(myRandom()) % (2 * ManyTexts)));
    }
    ExpectSorted(*mySort.Get(), "a thousand texts, some of them alike", myTexts);
    std::ranges::sort(myTexts);
    ExpectSorted(*mySort.Get(), "a thousand texts in order", myTexts);
    std::ranges::reverse(myTexts);
    ExpectSorted(*mySort.Get(), "a thousand texts in the opposite order", myTexts);
    ExpectSorted(*mySort.Get(), "a thousand texts that are alike", std::vector<Text>(ManyTexts, u"a"));
    std::vector<Text> myMany;
    for (int64_t i = 0; i < 70 * ManyTexts; ++i)
    {
        myMany.push_back(NumberText(static_cast<int64_t>(myRandom())));
    }
    ExpectSorted(*mySort.Get(), "70,000 texts", myMany);
    ExpectSorted(*mySort.Get(), "70,000 texts in a bad order for a quicksort", WorstOrder(70 * ManyTexts));
}

/// Expects the empty text up to an index beyond the values, and error 9 from there on, and below 0.
void ExpectBounds(QelStringSort& mySort, int32_t myCount, int32_t myHighest)
{
    const std::string myWhat = " of a list of " + std::to_string(myCount);
    for (int32_t myIndex : {0, myCount + 1, myHighest})
    {
        Bstr theValue;
        ExpectResult("Value " + std::to_string(myIndex) + myWhat, S_OK, mySort.get_Value(&myIndex, theValue.Pointer()));
        if (myIndex < 1 || myIndex > myCount)
        {
            ExpectText("Value " + std::to_string(myIndex) + myWhat, u"", theValue.Value());
        }
    }
    for (int32_t myIndex : {-1, INT32_MIN, myHighest + 1, INT32_MAX})
    {
        BSTR theValue = nullptr; // not freed: it need not be a text
        ExpectResult("Value " + std::to_string(myIndex) + myWhat, QEL_RESULT(0x800A0009U),
                     mySort.get_Value(&myIndex, &theValue));
        const FailureTexts myFailure;
        ExpectText("the source of its failure", u"QelPluginAnimation", myFailure.Source);
        Expect("it says why it failed", !myFailure.Description.empty());
    }
}

void Bounds(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    ExpectBounds(*mySort.Get(), 0, 2);
    // The highest index after so many values.
    for (const auto& [myCount, myHighest] : {std::pair(1, 2), {3, 6}, {6, 6}, {7, 14}, {14, 14}, {15, 30}, {31, 62}})
    {
        ExpectResult("Clear", S_OK, mySort->Clear());
        AddAll(*mySort.Get(), std::vector<Text>(static_cast<size_t>(myCount), u"a"));
        ExpectResult("Sort", S_OK, mySort->Sort());
        if (myCount < myHighest)
        {
            ExpectBounds(*mySort.Get(), myCount, myHighest);
        }
    }
    ExpectResult("Clear", S_OK, mySort->Clear());
    ExpectBounds(*mySort.Get(), 0, 2);
    const auto myOther = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    AddAll(*mySort.Get(), {u"b", u"a"});
    ExpectText("the values of another list", u"", ValuesOf(*myOther.Get()));
}

constexpr Check SortCheckList[] = {
    {"members.string-sort", "The list of texts keeps its values and sorts them by character code", StringSort},
    {"sort.order", "Texts are sorted by character code, whatever the locale", Order},
    {"sort.many", "Many texts are sorted, in whatever order they come, and none is lost", Many},
    {"sort.bounds", "Entries of the table without a value are empty, and beyond the table is error 9", Bounds},
};

} // namespace

std::span<const Check> SortChecks()
{
    return SortCheckList;
}

} // namespace qel::host

// NOLINTEND(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)
