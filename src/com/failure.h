/// Translates failures at the binary interface, in both directions: no exception leaves, and none is lost.
///
/// A member of an object is written as one Answer or Accept, or as Guarded where neither fits; a call into the host as
/// one CallHost. Every failed call leaves error information of its own in the thread, never that of an older call; only
/// when memory runs out there may be none.
#pragma once

#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "com/qelcom.h"
#include "text/errors.h"

#include <cstdint>
#include <type_traits>

namespace qel
{

/// What failures name as their source. Each component, library or program that links this defines it once.
extern const char16_t* const ErrorSource;

/// For a catch clause: turns the current exception into a result, and into the thread's error information.
/// An Error becomes 0x800A0000 and its number, or its number itself if that is negative, which is a host's failure.
/// Running out of memory is error 7; any other exception is error 5.
HRESULT ReportFailure() noexcept;

/// Leaves a failure with this description in the thread's error information, and returns its result.
HRESULT ReportFailure(HRESULT myResult, const char16_t* myDescription) noexcept;

/// Leaves a refusal, one of the results that qelcom.h lists, in the thread's error information with a description in
/// Spanish, and returns it.
HRESULT Refuse(HRESULT myResult) noexcept;

/// Runs the operation. Returns its result, S_OK if it has none, or the result of what it threw. An operation that
/// returns a failure leaves the error information itself.
template <class Operation>
HRESULT Guarded(Operation&& myOperation) noexcept
{
    try
    {
        if constexpr (std::is_void_v<decltype(myOperation())>)
        {
            myOperation();
            return S_OK;
        }
        else
        {
            return myOperation();
        }
    }
    catch (...)
    {
        return ReportFailure();
    }
}

/// Stores a value where the caller wants it.
inline void Store(BSTR* theValue, TextView myText)
{
    *theValue = NewBstr(myText);
}
inline void Store(int32_t* theValue, int32_t myNumber)
{
    *theValue = myNumber;
}
inline void Store(uint32_t* theValue, uint32_t myNumber)
{
    *theValue = myNumber;
}
inline void Store(VARIANT_BOOL* theValue, bool myAnswer)
{
    *theValue = myAnswer ? VARIANT_TRUE : VARIANT_FALSE;
}

/// A member with a result: passes on what the operation returns. E_POINTER; on failure the value is empty.
template <class Value, class Operation>
HRESULT Answer(Value* theValue, Operation&& myOperation) noexcept
{
    if (theValue == nullptr)
    {
        return Refuse(E_POINTER);
    }
    *theValue = Value{};
    return Guarded([&] { Store(theValue, myOperation()); });
}

/// A member with one argument by reference and a result. E_POINTER; on failure the value is empty.
template <class Value, class Result, class Operation>
HRESULT AnswerTo(const Value* myValue, Result* theResult, Operation&& myOperation) noexcept
{
    if (myValue != nullptr)
    {
        return Answer(theResult, [&] { return myOperation(*myValue); });
    }
    if (theResult != nullptr)
    {
        *theResult = Result{};
    }
    return Refuse(E_POINTER);
}

/// A member with one argument by reference: the operation takes a text as Text, anything else as it is. E_POINTER.
template <class Value, class Operation>
HRESULT Accept(const Value* myValue, Operation&& myOperation) noexcept
{
    if (myValue == nullptr)
    {
        return Refuse(E_POINTER);
    }
    return Guarded(
        [&]
        {
            if constexpr (std::is_same_v<Value, BSTR>)
            {
                myOperation(TextOfBstr(*myValue));
            }
            else
            {
                myOperation(*myValue);
            }
        });
}

/// Throws the Error of a failed call, with the text that the call left in the thread's error information, which is
/// taken away, or a general one. Its number is the low 16 bits of 0x800A...., else the result.
void CheckHostCall(HRESULT myResult);

/// Calls a member of a host's object. Throws as CheckHostCall does; error 91: there is no object.
template <class Interface, class... Parameters>
void CallHost(ComPtr<Interface> myHost, HRESULT (STDMETHODCALLTYPE Interface::*myMember)(Parameters...),
              std::type_identity_t<Parameters>... myArguments)
{
    // The reference is a copy: the host may withdraw its object before the call returns.
    if (!myHost)
    {
        Raise(ErrorNumber::ObjectNotSet);
    }
    SetErrorInfo(0, nullptr); // the error of an older call must not count as one of this call
    CheckHostCall((myHost.Get()->*myMember)(myArguments...));
}

} // namespace qel
