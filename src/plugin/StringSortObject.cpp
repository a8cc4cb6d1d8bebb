#include "plugin/StringSortObject.h"

#include "com/failure.h"

namespace qel
{

HRESULT StringSortObject::InterfaceSupportsErrorInfo(const IID* myInterface)
{
    if (myInterface == nullptr)
    {
        return E_POINTER;
    }
    return SameId(*myInterface, IID_QelStringSort) ? S_OK : S_FALSE;
}

HRESULT StringSortObject::Clear()
{
    return Guarded([&] { mySort.Clear(); });
}

HRESULT StringSortObject::AddValue(BSTR* myString)
{
    return Accept(myString, [&](TextView myText) { mySort.AddValue(myText); });
}

HRESULT StringSortObject::get_Value(int32_t* myIndex, BSTR* theValue)
{
    return AnswerTo(myIndex, theValue, [&](int32_t i) { return TextView(mySort.Value(i)); });
}

HRESULT StringSortObject::get_ValueCount(int32_t* theCount)
{
    return Answer(theCount, [&] { return mySort.ValueCount(); });
}

HRESULT StringSortObject::Sort()
{
    return Guarded([&] { mySort.Sort(); });
}

} // namespace qel
