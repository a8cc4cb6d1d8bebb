#include "plugin/StringSortObject.h"

#include "com/failure.h"

namespace qel
{

STDMETHODIMP StringSortObject::InterfaceSupportsErrorInfo(REFIID myInterface)
{
    return SameId(myInterface, IID_QelStringSort) ? S_OK : S_FALSE;
}

STDMETHODIMP StringSortObject::Clear()
{
    return Guarded([&] { mySort.Clear(); });
}

STDMETHODIMP StringSortObject::AddValue(BSTR* myString)
{
    return Accept(myString, [&](TextView myText) { mySort.AddValue(myText); });
}

STDMETHODIMP StringSortObject::get_Value(int32_t* myIndex, BSTR* theValue)
{
    return AnswerTo(myIndex, theValue, [&](int32_t i) { return TextView(mySort.Value(i)); });
}

STDMETHODIMP StringSortObject::get_ValueCount(int32_t* theCount)
{
    return Answer(theCount, [&] { return mySort.ValueCount(); });
}

STDMETHODIMP StringSortObject::Sort()
{
    return Guarded([&] { mySort.Sort(); });
}

} // namespace qel
