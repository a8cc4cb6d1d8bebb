#include "com/DispatchImplementation.h"

#include "com/convertVariant.h"
#include "com/failure.h"

#include <algorithm>
#include <utility>

namespace qel
{
namespace
{

/// The flags with which a kind of member is called. A client that puts an object does not have to know that the member
/// takes it by reference.
WORD FlagsOf(MemberKind myKind)
{
    switch (myKind)
    {
    case MemberKind::Get:
        return DISPATCH_PROPERTYGET;
    case MemberKind::Put:
        return DISPATCH_PROPERTYPUT;
    case MemberKind::PutRef:
        return DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    default:
        return DISPATCH_METHOD;
    }
}

bool IsPut(const DispatchMember& myMember)
{
    return myMember.Kind == MemberKind::Put || myMember.Kind == MemberKind::PutRef;
}

/// The member of that number and kind; null if there is none. A property with two slots has both numbers.
const DispatchMember* FindMember(std::span<const DispatchMember> myMembers, DISPID myNumber, WORD myFlags)
{
    const auto myNamed = std::ranges::find(myMembers, myNumber, &DispatchMember::Number);
    if (myNamed == myMembers.end())
    {
        return nullptr;
    }
    const auto theMember =
        std::ranges::find_if(myMembers, [&](const DispatchMember& myEntry)
                             { return myEntry.Name == myNamed->Name && (FlagsOf(myEntry.Kind) & myFlags) != 0; });
    return theMember == myMembers.end() ? nullptr : &*theMember;
}

HRESULT CheckParams(const DispatchMember& myMember, const DISPPARAMS& myParams)
{
    if ((myParams.cArgs > 0 && myParams.rgvarg == nullptr) ||
        (myParams.cNamedArgs > 0 && myParams.rgdispidNamedArgs == nullptr))
    {
        return E_POINTER;
    }
    const uint32_t myNameCount = IsPut(myMember) ? 1 : 0;
    if (myParams.cNamedArgs < myNameCount)
    {
        return DISP_E_PARAMNOTOPTIONAL;
    }
    if (myParams.cNamedArgs > myNameCount || (myNameCount == 1 && *myParams.rgdispidNamedArgs != DISPID_PROPERTYPUT))
    {
        return DISP_E_NONAMEDARGS;
    }
    return myParams.cArgs == myMember.ArgumentCount ? S_OK : DISP_E_BADPARAMCOUNT;
}

/// Moves the thread's error information into the record.
void TakeException(HRESULT myFailure, EXCEPINFO& theException)
{
    theException = EXCEPINFO{};
    theException.scode = myFailure;
    ComPtr<IErrorInfo> myInfo;
    if (GetErrorInfo(0, myInfo.Receive()) == S_OK)
    {
        myInfo->GetSource(&theException.bstrSource);
        myInfo->GetDescription(&theException.bstrDescription);
        myInfo->GetHelpFile(&theException.bstrHelpFile);
        myInfo->GetHelpContext(&theException.dwHelpContext);
    }
}

/// The variant that an argument refers to, or the argument itself; null for a null reference.
VARIANT* Referenced(VARIANT& myArgument)
{
    return myArgument.vt == (VT_BYREF | VT_VARIANT) ? myArgument.pvarVal : &myArgument;
}

/// Calls the member and stores its result or its failure where the caller wants it.
HRESULT CallMember(const DispatchMember& myMember, void* myObject, const DISPPARAMS& myParams, VARIANT* theResult,
                   EXCEPINFO* theException, UINT* theArgument)
{
    VARIANT myResult{};
    MemberCall myCall{
        myObject, myParams.rgvarg, myMember.ArgumentCount, HasResult(myMember.Kind) ? &myResult : nullptr, 0, false};
    SetErrorInfo(0, nullptr); // the error of an older call must not count as one of this call
    const HRESULT theOutcome = myMember.Call(myCall);
    if (theResult != nullptr)
    {
        *theResult = std::exchange(myResult, VARIANT{});
    }
    VariantClear(&myResult);
    if (FAILED(theOutcome) && !myCall.Entered)
    {
        if (theArgument != nullptr)
        {
            *theArgument = myCall.Position;
        }
        return Refuse(theOutcome);
    }
    if (FAILED(theOutcome) && theException != nullptr)
    {
        TakeException(theOutcome, *theException);
    }
    return FAILED(theOutcome) ? DISP_E_EXCEPTION : S_OK;
}

/// Finds the number of the first name. The others would be parameters, which have no names.
HRESULT FindNumbers(std::span<const DispatchMember> myMembers, REFIID myReserved, LPOLESTR* myNames, UINT myNameCount,
                    DISPID* theNumbers)
{
    if (myNames == nullptr || theNumbers == nullptr)
    {
        return E_POINTER;
    }
    if (!SameId(myReserved, GUID_NULL))
    {
        return DISP_E_UNKNOWNINTERFACE;
    }
    if (myNameCount == 0)
    {
        return E_INVALIDARG;
    }
    std::fill_n(theNumbers, myNameCount, DISPID_UNKNOWN);
    if (myNames[0] == nullptr)
    {
        return E_POINTER;
    }
    const auto theMember = std::ranges::find_if(myMembers, [myName = TextView(FromOle(myNames[0]))](const auto& myEntry)
                                                { return EqualInLowerCase(myEntry.Name, myName); });
    if (theMember == myMembers.end())
    {
        return DISP_E_UNKNOWNNAME;
    }
    theNumbers[0] = theMember->Number;
    return myNameCount == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

} // namespace

HRESULT PointerToArgument(VARIANT& myArgument, VARTYPE myType, VARIANT& theOwn, void*& thePointer) noexcept
{
    VARIANT* const myVariant = Referenced(myArgument);
    if (myVariant == nullptr)
    {
        return E_POINTER;
    }
    if (myVariant->vt == myType)
    {
        thePointer = &myVariant->byref;
        return S_OK;
    }
    if (myVariant->vt == (VT_BYREF | myType))
    {
        thePointer = myVariant->byref;
        return thePointer == nullptr ? E_POINTER : S_OK;
    }
    thePointer = &theOwn.byref;
    return ConvertVariant(theOwn, *myVariant, myType);
}

HRESULT ObjectOfArgument(VARIANT& myArgument, const IID& myInterface, void** theObject) noexcept
{
    VARIANT* const myVariant = Referenced(myArgument);
    if (myVariant == nullptr)
    {
        return E_POINTER;
    }
    const auto myType = static_cast<VARTYPE>(myVariant->vt & ~VT_BYREF);
    if (myType != VT_DISPATCH && myType != VT_UNKNOWN)
    {
        return DISP_E_TYPEMISMATCH;
    }
    const bool isReference = myType != myVariant->vt;
    if (isReference && myVariant->byref == nullptr)
    {
        return E_POINTER;
    }
    IUnknown* const myObject = isReference ? *myVariant->ppunkVal : myVariant->punkVal;
    *theObject = nullptr;
    return myObject == nullptr || SUCCEEDED(myObject->QueryInterface(myInterface, theObject)) ? S_OK
                                                                                              : DISP_E_TYPEMISMATCH;
}

HRESULT FindMemberNumbers(std::span<const DispatchMember> myMembers, REFIID myReserved, LPOLESTR* myNames,
                          UINT myNameCount, DISPID* theNumbers) noexcept
{
    const HRESULT theResult = FindNumbers(myMembers, myReserved, myNames, myNameCount, theNumbers);
    return FAILED(theResult) ? Refuse(theResult) : theResult;
}

HRESULT InvokeMember(std::span<const DispatchMember> myMembers, IDispatch& myObject, DISPID myNumber, REFIID myReserved,
                     WORD myFlags, DISPPARAMS* myParams, VARIANT* theResult, EXCEPINFO* theException,
                     UINT* theArgument) noexcept
{
    if (myParams == nullptr)
    {
        return Refuse(E_POINTER);
    }
    if (!SameId(myReserved, GUID_NULL))
    {
        return Refuse(DISP_E_UNKNOWNINTERFACE);
    }
    const DispatchMember* const myMember = FindMember(myMembers, myNumber, myFlags);
    if (myMember == nullptr)
    {
        return Refuse(DISP_E_MEMBERNOTFOUND);
    }
    if (const HRESULT myFailure = CheckParams(*myMember, *myParams); FAILED(myFailure))
    {
        return Refuse(myFailure);
    }
    void* myPointer = nullptr;
    if (FAILED(myObject.QueryInterface(*myMember->Interface, &myPointer)))
    {
        return Refuse(DISP_E_MEMBERNOTFOUND);
    }
    const auto myHold = ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(myPointer));
    return CallMember(*myMember, myPointer, *myParams, theResult, theException, theArgument);
}

} // namespace qel
