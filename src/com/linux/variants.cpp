// VariantInit, VariantClear and VariantChangeType.
#include "com/ComPtr.h"
#include "com/qelcom.h"
#include "text/dates.h"
#include "text/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <system_error>

namespace qel
{
namespace
{

// An empty variant has no rest of a value in it, with every compiler.
static_assert(VARIANT{}.record[0] == nullptr && VARIANT{}.record[1] == nullptr);

/// The number of bytes that a value of a type takes up; 0 for a type without a value, and for an unknown one.
size_t SizeOfValue(VARTYPE myType)
{
    switch (myType)
    {
    case VT_I2:
    case VT_BOOL:
        return sizeof(int16_t);
    case VT_I4:
    case VT_R4:
    case VT_ERROR:
        return sizeof(int32_t);
    case VT_R8:
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return sizeof(void*);
    default:
        return 0;
    }
}

bool IsValueType(VARTYPE myType)
{
    return myType == VT_EMPTY || myType == VT_NULL || SizeOfValue(myType) > 0;
}

bool IsObjectType(VARTYPE myType)
{
    return myType == VT_DISPATCH || myType == VT_UNKNOWN;
}

/// The value with its references followed. A text or an object is not copied.
HRESULT FollowReferences(const VARIANT& mySource, VARIANT& theValue)
{
    const VARIANT* myVariant = &mySource;
    if (mySource.vt == (VT_BYREF | VT_VARIANT))
    {
        myVariant = mySource.pvarVal;
        if (myVariant == nullptr)
        {
            return E_POINTER;
        }
    }
    theValue = *myVariant;
    if ((myVariant->vt & VT_BYREF) != 0)
    {
        theValue.vt = static_cast<VARTYPE>(myVariant->vt & ~VT_BYREF);
        const size_t mySize = SizeOfValue(theValue.vt);
        if (mySize == 0)
        {
            return DISP_E_BADVARTYPE;
        }
        if (myVariant->byref == nullptr)
        {
            return E_POINTER;
        }
        std::memcpy(&theValue.byref, myVariant->byref, mySize);
    }
    return IsValueType(theValue.vt) ? S_OK : DISP_E_BADVARTYPE;
}

TextView TextOf(const VARIANT& myValue)
{
    return myValue.bstrVal == nullptr ? TextView() : TextView(myValue.bstrVal, SysStringLen(myValue.bstrVal));
}

/// Reads a text that is a number as a whole, with blanks around it.
HRESULT ReadNumber(TextView myText, double& theNumber)
{
    TextView myDigits = TrimBlanks(myText);
    if (myDigits.starts_with(u'+') && !myDigits.starts_with(u"+-"))
    {
        myDigits.remove_prefix(1); // the conversion accepts no plus, but words such as "inf"
    }
    if (myDigits.find_first_not_of(u"0123456789.eE+-") != TextView::npos)
    {
        return DISP_E_TYPEMISMATCH;
    }
    const std::string myBytes(myDigits.begin(), myDigits.end());
    const char* const myEnd = myBytes.data() + myBytes.size();
    const auto [myStop, myError] = std::from_chars(myBytes.data(), myEnd, theNumber);
    if (myError == std::errc::result_out_of_range)
    {
        return DISP_E_OVERFLOW;
    }
    return myError == std::errc() && myStop == myEnd ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT NumberOf(const VARIANT& myValue, double& theNumber)
{
    switch (myValue.vt)
    {
    case VT_EMPTY:
        theNumber = 0;
        return S_OK;
    case VT_I2:
    case VT_BOOL:
        theNumber = myValue.iVal;
        return S_OK;
    case VT_I4:
        theNumber = myValue.lVal;
        return S_OK;
    case VT_R4:
        theNumber = static_cast<double>(myValue.fltVal);
        return S_OK;
    case VT_R8:
        theNumber = myValue.dblVal;
        return S_OK;
    case VT_BSTR:
        return ReadNumber(TextOf(myValue), theNumber);
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

HRESULT MakeWhole(double myNumber, int32_t myLowest, int32_t myHighest, int32_t& theNumber)
{
    // The first test excludes what cannot be rounded, also NaN.
    if (!(std::fabs(myNumber) < 2147483647.5) && myNumber != -2147483648.0)
    {
        return DISP_E_OVERFLOW;
    }
    theNumber = RoundToWhole(myNumber);
    return theNumber < myLowest || theNumber > myHighest ? DISP_E_OVERFLOW : S_OK;
}

HRESULT MakeNumber(const VARIANT& myValue, VARIANT& theResult)
{
    double myNumber = 0;
    if (const HRESULT myFailure = NumberOf(myValue, myNumber); FAILED(myFailure))
    {
        return myFailure;
    }
    HRESULT theOutcome = S_OK;
    int32_t myWhole = 0;
    switch (theResult.vt)
    {
    case VT_I2:
        theOutcome =
            MakeWhole(myNumber, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max(), myWhole);
        theResult.iVal = static_cast<int16_t>(myWhole);
        return theOutcome;
    case VT_I4:
        return MakeWhole(myNumber, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(),
                         theResult.lVal);
    case VT_R4:
        theResult.fltVal = static_cast<float>(myNumber);
        return std::isfinite(myNumber) && !std::isfinite(theResult.fltVal) ? DISP_E_OVERFLOW : S_OK;
    case VT_R8:
        theResult.dblVal = myNumber;
        return S_OK;
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

HRESULT MakeTruth(const VARIANT& myValue, VARIANT& theResult)
{
    if (myValue.vt == VT_BSTR)
    {
        const bool isTrue = EqualInLowerCase(TextOf(myValue), u"true");
        if (isTrue || EqualInLowerCase(TextOf(myValue), u"false"))
        {
            theResult.boolVal = isTrue ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        }
    }
    double myNumber = 0;
    const HRESULT theOutcome = NumberOf(myValue, myNumber);
    theResult.boolVal = myNumber != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    return theOutcome;
}

/// The shortest digits that read back as the same number; with an exponent only where it would be long without.
template <class Number>
Text DigitsOf(Number myNumber)
{
    std::array<char, 64> myDigits{};
    const double mySize = std::fabs(static_cast<double>(myNumber));
    const bool isPlain = mySize == 0 || (mySize >= 1e-5 && mySize < 1e15);
    const auto myEnd = std::to_chars(myDigits.data(), myDigits.data() + myDigits.size(), myNumber,
                                     isPlain ? std::chars_format::fixed : std::chars_format::scientific)
                           .ptr;
    return Text(myDigits.data(), myEnd);
}

HRESULT MakeText(const VARIANT& myValue, VARIANT& theResult)
{
    Text myText;
    switch (myValue.vt)
    {
    case VT_EMPTY:
        break;
    case VT_I2:
    case VT_BOOL:
        myText = NumberText(int64_t{myValue.iVal});
        break;
    case VT_I4:
        myText = NumberText(int64_t{myValue.lVal});
        break;
    case VT_R4:
        myText = DigitsOf(myValue.fltVal);
        break;
    case VT_R8:
        myText = DigitsOf(myValue.dblVal);
        break;
    case VT_BSTR:
        myText = TextOf(myValue);
        break;
    default:
        return DISP_E_TYPEMISMATCH;
    }
    theResult.bstrVal = SysAllocStringLen(myText.data(), static_cast<uint32_t>(myText.size()));
    return theResult.bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT MakeObject(const VARIANT& myValue, VARIANT& theResult)
{
    if (!IsObjectType(myValue.vt))
    {
        return DISP_E_TYPEMISMATCH;
    }
    void* myObject = nullptr;
    const IID& myInterface = theResult.vt == VT_DISPATCH ? IID_IDispatch : IID_IUnknown;
    if (myValue.punkVal != nullptr && FAILED(myValue.punkVal->QueryInterface(myInterface, &myObject)))
    {
        return DISP_E_TYPEMISMATCH;
    }
    theResult.byref = myObject;
    return S_OK;
}

/// Makes a value of the type of `theResult`.
HRESULT MakeValue(const VARIANT& myValue, VARIANT& theResult)
{
    switch (theResult.vt)
    {
    case VT_EMPTY:
    case VT_NULL:
    case VT_ERROR:
        theResult.scode = myValue.scode;
        return myValue.vt == theResult.vt ? S_OK : DISP_E_TYPEMISMATCH;
    case VT_BOOL:
        return MakeTruth(myValue, theResult);
    case VT_BSTR:
        return MakeText(myValue, theResult);
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return MakeObject(myValue, theResult);
    default:
        return MakeNumber(myValue, theResult);
    }
}

HRESULT ChangeType(VARIANT& theTarget, const VARIANT& mySource, VARTYPE myType)
{
    VARIANT myValue{};
    VARIANT myResult{};
    myResult.vt = myType;
    HRESULT theOutcome = IsValueType(myType) ? FollowReferences(mySource, myValue) : DISP_E_BADVARTYPE;
    if (SUCCEEDED(theOutcome))
    {
        theOutcome = MakeValue(myValue, myResult);
    }
    if (FAILED(theOutcome))
    {
        return theOutcome;
    }
    theOutcome = VariantClear(&theTarget);
    if (FAILED(theOutcome))
    {
        VariantClear(&myResult);
        return theOutcome;
    }
    theTarget = myResult;
    return S_OK;
}

} // namespace
} // namespace qel

void VariantInit(VARIANT* theVariant)
{
    if (theVariant != nullptr)
    {
        *theVariant = VARIANT{};
    }
}

HRESULT VariantClear(VARIANT* theVariant)
{
    if (theVariant == nullptr)
    {
        return E_POINTER;
    }
    const auto myType = static_cast<VARTYPE>(theVariant->vt & ~VT_BYREF);
    const bool isReference = myType != theVariant->vt;
    if (!qel::IsValueType(myType) && !(isReference && myType == VT_VARIANT))
    {
        return DISP_E_BADVARTYPE;
    }
    const VARIANT myOld = std::exchange(*theVariant, VARIANT{});
    if (myOld.vt == VT_BSTR)
    {
        SysFreeString(myOld.bstrVal);
    }
    else if (qel::IsObjectType(myOld.vt) && myOld.punkVal != nullptr)
    {
        myOld.punkVal->Release();
    }
    return S_OK;
}

HRESULT VariantChangeType(VARIANT* theTarget, const VARIANT* mySource, uint16_t /*myFlags*/, VARTYPE myType)
{
    if (theTarget == nullptr || mySource == nullptr)
    {
        return E_POINTER;
    }
    try
    {
        return qel::ChangeType(*theTarget, *mySource, myType);
    }
    catch (...)
    {
        return E_OUTOFMEMORY;
    }
}
