// Checks of the list of texts.
#include "check/OpenedComponent.h"
#include "com/Bstr.h"

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
        Expect("a failed Value gives no text", theValue == nullptr);
    }
    BSTR myNull = nullptr;
    ExpectResult("AddValue of a null text", S_OK, mySort.AddValue(&myNull));
    ExpectText("an empty text added", u"|B|Zebra|apple|b|b|A||", ValuesOf(mySort));
    ExpectResult("Clear", S_OK, mySort.Clear());
    ExpectText("the values after Clear", u"", ValuesOf(mySort));
}

constexpr Check Checks[] = {
    {"members.string-sort", "The list of texts keeps its values and sorts them by character code", StringSort},
};

} // namespace

std::span<const Check> SortChecks()
{
    return Checks;
}

} // namespace qel::host

// NOLINTEND(clang-analyzer-core.CallAndMessage, clang-analyzer-core.NonNullParamChecker)
