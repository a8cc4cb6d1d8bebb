/// What the tests of the component object model share: values, late-bound calls, error information, a host's object.
#pragma once

#include "com/comHostServices.h"
#include "comTestHost.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace qel
{

/// A variant that frees what it holds.
struct Value : VARIANT
{
    Value() { VariantInit(this); } // it sets every byte
    Value(VARTYPE myType, void* myReference) : Value()
    {
        vt = myType;
        byref = myReference;
    }
    Value(const char16_t* myText) : Value(VT_BSTR, SysAllocString(ToOle(myText))) {}
    Value(int32_t myNumber) : Value(VT_I4, nullptr) { lVal = myNumber; }
    Value(double myNumber) : Value(VT_R8, nullptr) { dblVal = myNumber; }
    Value(bool myAnswer) : Value(VT_BOOL, nullptr) { boolVal = myAnswer ? VARIANT_TRUE : VARIANT_FALSE; }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(this); }
};

inline std::string Show(const VARIANT& myValue)
{
    switch (myValue.vt)
    {
    case VT_EMPTY:
        return "empty";
    case VT_I2:
        return "I2 " + std::to_string(myValue.iVal);
    case VT_I4:
        return "I4 " + std::to_string(myValue.lVal);
    case VT_R8:
        return "R8 " + std::to_string(myValue.dblVal);
    case VT_BOOL:
        return "BOOL " + std::to_string(myValue.boolVal);
    case VT_BSTR:
        return "BSTR " + ToUtf8(TextOfBstr(myValue.bstrVal));
    default:
        return "type " + std::to_string(myValue.vt);
    }
}

/// The database of a host whose calls succeed or fail in a way of their own: RecordURL with a number and a text,
/// DataFolder with a number alone, RecordFilename with neither.
class TestDatabase final : private TestHost, public ComTestDatabase
{
public:
    explicit TestDatabase(std::shared_ptr<int> theLife = nullptr)
        : ComTestDatabase(static_cast<TestHost&>(*this)), myLife(std::move(theLife))
    {
        RecordType = 4;
        AtEnd = true;
        Link = u"UID:9";
        Called = [](const std::string& myMember)
        {
            myMember == "RecordURL" ? throw Error{53, u"No está"} : void();
        };
    }

    STDMETHODIMP get_RecordFilename(BSTR* /*theFilename*/) override { return E_ACCESSDENIED; }
    STDMETHODIMP SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond) override
    {
        mySeeks.emplace_back(TextOfBstr(*myUID), *myFirst, *mySecond);
        *myFirst += 100;
        return S_OK;
    }
    STDMETHODIMP get_DataFolder(BSTR* /*theFolder*/) override { return QEL_RESULT(0x800A0035U); }

    using TestHost::Called;
    using TestHost::PresentLink;

    using Seek = std::tuple<Text, int32_t, int32_t>;
    std::vector<Seek> mySeeks;

private:
    const std::shared_ptr<int> myLife; ///< shared with who wants to know whether the object lives
};

struct TakenError
{
    std::string Source = "-";
    std::string Description = "-";
};

/// This thread's error information, which is taken away.
inline TakenError TakeError()
{
    ComPtr<IErrorInfo> myInfo;
    if (GetErrorInfo(0, myInfo.Receive()) != S_OK)
    {
        return {};
    }
    Bstr mySource;
    Bstr myDescription;
    EXPECT_EQ(myInfo->GetSource(mySource.Pointer()), S_OK);
    EXPECT_EQ(myInfo->GetDescription(myDescription.Pointer()), S_OK);
    return {ToUtf8(mySource.Value()), ToUtf8(myDescription.Value())};
}

inline std::string TakenDescription()
{
    return TakeError().Description;
}

/// A call that fails, with the error information that it leaves.
struct FailingCall
{
    std::function<HRESULT()> Call;
    HRESULT Result = S_OK;
    std::string Description;
};

inline void ExpectOwnErrors(const std::string& mySource, const std::vector<FailingCall>& myCalls)
{
    for (const FailingCall& myCall : myCalls)
    {
        SCOPED_TRACE(myCall.Description);
        Guarded([] { throw Error{6, u"older failure"}; });
        EXPECT_EQ(myCall.Call(), myCall.Result);
        const TakenError myError = TakeError();
        EXPECT_EQ(myError.Description, myCall.Description);
        EXPECT_EQ(myError.Source, mySource);
    }
}

} // namespace qel
