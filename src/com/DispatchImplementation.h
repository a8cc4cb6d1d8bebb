/// Late binding by a table: an interface lists its members once, and the rest follows from their signatures.
///
/// Nothing here throws. qelcom.h documents the calls at IDispatch. A call that fails leaves error information.
#pragma once

#include "com/ComPtr.h"
#include "com/failure.h"
#include "com/qelcom.h"
#include "com/typeInformation.h"
#include "text/text.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <utility>

namespace qel
{

/// How a member is called. The last parameter of a Function and of a Get is its result.
enum class MemberKind : uint8_t
{
    Procedure,
    Function,
    Get,
    Put,
    PutRef
};

constexpr bool HasResult(MemberKind myKind)
{
    return myKind == MemberKind::Function || myKind == MemberKind::Get;
}

/// One call of a member.
struct MemberCall
{
    void* Object;           ///< the pointer for the member's interface
    VARIANT* Arguments;     ///< the last one first
    uint32_t ArgumentCount; ///< as many as the member takes
    VARIANT* Result;        ///< empty; null for a member without one
    uint32_t Position;      ///< index in `Arguments` of the argument that is being read
    bool Entered;           ///< all arguments fit, and the member is called
};

/// One row of an interface's table.
struct DispatchMember
{
    TextView Name;
    DISPID Number;
    MemberKind Kind;
    std::span<const VARTYPE> Types; ///< of the values that the parameters point to, in their order, the result last
    uint32_t ArgumentCount;         ///< without the result
    const IID* Interface;
    HRESULT (*Call)(MemberCall& theCall) noexcept;
};

/// Points to the argument's value where it has the type, by value or by reference; else converts it into `theOwn` and
/// points there.
HRESULT PointerToArgument(VARIANT& myArgument, VARTYPE myType, VARIANT& theOwn, void*& thePointer) noexcept;

/// Asks the argument's object for an interface; a null object stays null.
HRESULT ObjectOfArgument(VARIANT& myArgument, const IID& myInterface, void** theObject) noexcept;

template <class Value>
inline constexpr VARTYPE VariantType = VT_EMPTY;
template <>
inline constexpr VARTYPE VariantType<BSTR> = VT_BSTR;
template <>
inline constexpr VARTYPE VariantType<int32_t> = VT_I4;
template <>
inline constexpr VARTYPE VariantType<VARIANT_BOOL> = VT_BOOL;
template <std::derived_from<IDispatch> Interface>
inline constexpr VARTYPE VariantType<Interface*> = VT_DISPATCH;

/// What a member's parameter points to: an argument, or the place for the result.
template <class Value>
class Parameter
{
public:
    static_assert(VariantType<Value> != VT_EMPTY);

    Parameter() noexcept { myOwn.vt = VariantType<Value>; }
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;
    ~Parameter() { VariantClear(&myOwn); }

    HRESULT Take(VARIANT& myArgument) noexcept
    {
        return PointerToArgument(myArgument, VariantType<Value>, myOwn, myPointer);
    }
    Value* Pointer() noexcept { return static_cast<Value*>(myPointer); }
    void Store(VARIANT& theResult) noexcept { std::swap(theResult, myOwn); }

private:
    VARIANT myOwn{};
    void* myPointer = &myOwn.byref; // every value begins where this one does
};

template <std::derived_from<IDispatch> Interface>
class Parameter<Interface*>
{
public:
    Parameter() noexcept = default;
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;
    ~Parameter() { ComPtr<Interface>::Adopt(myObject); }

    HRESULT Take(VARIANT& myArgument) noexcept
    {
        void* myFound = nullptr;
        const HRESULT theResult = ObjectOfArgument(myArgument, *InterfaceId<Interface>, &myFound);
        myObject = static_cast<Interface*>(myFound);
        return theResult;
    }
    Interface** Pointer() noexcept { return &myObject; }
    void Store(VARIANT& theResult) noexcept
    {
        theResult.vt = VariantType<Interface*>;
        theResult.pdispVal = std::exchange(myObject, nullptr);
    }

private:
    Interface* myObject = nullptr;
};

template <auto myMember>
struct MemberSignature;

template <class Owner, class... Values, HRESULT (STDMETHODCALLTYPE Owner::*myMember)(Values*...)>
struct MemberSignature<myMember>
{
    using Interface = Owner;
    static constexpr uint32_t Count = sizeof...(Values);
    static constexpr std::array<VARTYPE, Count> Types = {VariantType<Values>...};

    static HRESULT Call(MemberCall& theCall) noexcept { return Call(theCall, std::index_sequence_for<Values...>()); }

private:
    template <size_t... Indexes>
    static HRESULT Call(MemberCall& theCall, std::index_sequence<Indexes...> /*unused*/) noexcept
    {
        std::tuple<Parameter<Values>...> myParameters;
        HRESULT theResult = S_OK;
        [[maybe_unused]] const auto TakesNext = [&](auto& theParameter, size_t myIndex)
        {
            if (myIndex >= theCall.ArgumentCount)
            {
                return true; // the result
            }
            theCall.Position = theCall.ArgumentCount - 1 - static_cast<uint32_t>(myIndex);
            theResult = theParameter.Take(theCall.Arguments[theCall.Position]);
            return SUCCEEDED(theResult);
        };
        if (!(TakesNext(std::get<Indexes>(myParameters), Indexes) && ...))
        {
            return theResult;
        }
        theCall.Entered = true;
        theResult = (static_cast<Owner*>(theCall.Object)->*myMember)(std::get<Indexes>(myParameters).Pointer()...);
        if constexpr (Count > 0)
        {
            if (SUCCEEDED(theResult) && theCall.Result != nullptr)
            {
                std::get<Count - 1>(myParameters).Store(*theCall.Result);
            }
        }
        return theResult;
    }
};

/// Makes a row of a table: Member<&QelPlugin::put_Script>(u"Script", 17, MemberKind::Put).
template <auto myMember>
constexpr DispatchMember Member(TextView myName, DISPID myNumber, MemberKind myKind)
{
    using Signature = MemberSignature<myMember>;
    return {myName,
            myNumber,
            myKind,
            Signature::Types,
            Signature::Count - (HasResult(myKind) ? 1 : 0),
            InterfaceId<typename Signature::Interface>,
            &Signature::Call};
}

/// The table of an interface of QelHelperInterfaces.h; empty for one without members of its own.
std::span<const DispatchMember> MembersOf(const IID& myInterface) noexcept;

/// IDispatch::GetIDsOfNames over a table.
HRESULT FindMemberNumbers(std::span<const DispatchMember> myMembers, REFIID myReserved, LPOLESTR* myNames,
                          UINT myNameCount, DISPID* theNumbers) noexcept;

/// IDispatch::Invoke over a table. The object is asked for the interface of the member.
HRESULT InvokeMember(std::span<const DispatchMember> myMembers, IDispatch& myObject, DISPID myNumber, REFIID myReserved,
                     WORD myFlags, DISPPARAMS* myParams, VARIANT* theResult, EXCEPINFO* theException,
                     UINT* theArgument) noexcept;

/// A dual interface with its late binding, by its table.
template <class Interface>
class DispatchImplementation : public Interface
{
public:
    STDMETHODIMP GetTypeInfoCount(UINT* theCount) override
    {
        return Answer(theCount, [] { return TypeInfoCount(*InterfaceId<Interface>); });
    }

    STDMETHODIMP GetTypeInfo(UINT myIndex, LCID /*myLocale*/, ITypeInfo** theInfo) override
    {
        if (theInfo == nullptr)
        {
            return Refuse(E_POINTER);
        }
        *theInfo = nullptr;
        const HRESULT theResult = myIndex == 0 ? FindTypeInfo(*InterfaceId<Interface>, theInfo) : DISP_E_BADINDEX;
        return FAILED(theResult) ? Refuse(theResult) : theResult;
    }

    STDMETHODIMP GetIDsOfNames(REFIID myReserved, LPOLESTR* myNames, UINT myNameCount, LCID /*myLocale*/,
                               DISPID* theNumbers) override
    {
        return FindMemberNumbers(MembersOf(*InterfaceId<Interface>), myReserved, myNames, myNameCount, theNumbers);
    }

    STDMETHODIMP Invoke(DISPID myMember, REFIID myReserved, LCID /*myLocale*/, WORD myFlags, DISPPARAMS* myParams,
                        VARIANT* theResult, EXCEPINFO* theException, UINT* theArgument) override
    {
        return InvokeMember(MembersOf(*InterfaceId<Interface>), *this, myMember, myReserved, myFlags, myParams,
                            theResult, theException, theArgument);
    }

protected:
    ~DispatchImplementation() = default;
};

} // namespace qel
