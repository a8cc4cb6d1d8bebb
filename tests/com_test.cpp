// The component object model: texts, variants, failures, the class registry, and the late binding that calls of the
// component by qelhost check do not reach.
#include "com/comHostServices.h"
#include "comTestHost.h"
#include "Environment.h"
#include "errorOf.h"
#include "failingMemory.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

namespace qel
{

const char16_t* const ErrorSource = u"com_test";

namespace
{

namespace fs = std::filesystem;

/// A variant that frees what it holds.
struct Value : VARIANT
{
    Value() : VARIANT{} { VariantInit(this); }
    Value(VARTYPE myType, void* myReference) : VARIANT{}
    {
        vt = myType;
        byref = myReference;
    }
    Value(const char16_t* myText) : Value(VT_BSTR, SysAllocString(myText)) {}
    Value(int32_t myNumber) : Value(VT_I4, nullptr) { lVal = myNumber; }
    Value(double myNumber) : Value(VT_R8, nullptr) { dblVal = myNumber; }
    Value(bool myAnswer) : Value(VT_BOOL, nullptr) { boolVal = myAnswer ? VARIANT_TRUE : VARIANT_FALSE; }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(this); }
};

std::string Show(HRESULT myResult)
{
    static const std::map<HRESULT, std::string> myNames = {
        {S_OK, "ok"},
        {E_POINTER, "pointer"},
        {DISP_E_TYPEMISMATCH, "type"},
        {DISP_E_OVERFLOW, "overflow"},
        {DISP_E_BADVARTYPE, "badtype"},
        {DISP_E_NONAMEDARGS, "named"},
        {DISP_E_PARAMNOTOPTIONAL, "unnamed"},
        {DISP_E_EXCEPTION, "exception"},
    };
    const auto myName = myNames.find(myResult);
    return myName == myNames.end() ? std::to_string(myResult) : myName->second;
}

std::string Show(const VARIANT& myValue)
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

    HRESULT get_RecordFilename(BSTR* /*theFilename*/) override { return E_ACCESSDENIED; }
    HRESULT SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond) override
    {
        mySeeks.emplace_back(TextOfBstr(*myUID), *myFirst, *mySecond);
        *myFirst += 100;
        return S_OK;
    }
    HRESULT get_DataFolder(BSTR* /*theFolder*/) override { return QEL_RESULT(0x800A0035U); }

    using TestHost::Called;
    using TestHost::PresentLink;

    using Seek = std::tuple<Text, int32_t, int32_t>;
    std::vector<Seek> mySeeks;

private:
    const std::shared_ptr<int> myLife; ///< shared with who wants to know whether the object lives
};

/// A call as a script client makes it, the arguments in its order. The outcome is the result, then the value or the
/// place of a wrong argument.
struct LateCall
{
    DISPID Member;
    uint16_t Flags;
    std::vector<VARIANT> Arguments; ///< not freed
    std::vector<DISPID> Names;
    std::string Outcome;
};

void ExpectOutcomes(IDispatch& myObject, std::vector<LateCall> myCalls)
{
    for (LateCall& myCall : myCalls)
    {
        std::ranges::reverse(myCall.Arguments);
        DISPPARAMS myParams{myCall.Arguments.data(), myCall.Names.data(),
                            static_cast<uint32_t>(myCall.Arguments.size()), static_cast<uint32_t>(myCall.Names.size())};
        Value theResult;
        uint32_t theArgument = 99;
        const HRESULT myResult =
            myObject.Invoke(myCall.Member, &GUID_NULL, 0, myCall.Flags, &myParams, &theResult, nullptr, &theArgument);
        const std::string myPlace = theArgument == 99 ? "" : ", argument " + std::to_string(theArgument);
        EXPECT_EQ(Show(myResult) + (myResult == S_OK ? ", " + Show(theResult) : myPlace), myCall.Outcome)
            << "member " << myCall.Member << ", " << myCall.Arguments.size() << " arguments";
    }
}

struct TakenError
{
    std::string Source = "-";
    std::string Description = "-";
};

/// This thread's error information, which is taken away.
TakenError TakeError()
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

std::string TakenDescription()
{
    return TakeError().Description;
}

/// A call that fails, with the error information that it leaves.
struct FailingCall
{
    std::function<HRESULT()> Call;
    HRESULT Result;
    std::string Description;
};

void ExpectOwnErrors(const std::string& mySource, const std::vector<FailingCall>& myCalls)
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

TEST(Bstr, SysAllocString_LengthInFrontAndZeroAtTheEnd)
{
    for (const TextView myText : {TextView(u""), TextView(u"a\0b", 3), TextView(u"ñ")})
    {
        const BSTR myBstr = NewBstr(myText);
        ASSERT_NE(myBstr, nullptr);
        uint32_t myByteCount = 0;
        std::memcpy(&myByteCount, reinterpret_cast<char*>(myBstr) - 4, 4);
        EXPECT_EQ(myByteCount, 2 * myText.size());
        EXPECT_EQ(SysStringLen(myBstr), myText.size());
        EXPECT_EQ(myBstr[myText.size()], 0);
        EXPECT_EQ(TextOfBstr(myBstr), myText);
        SysFreeString(myBstr);
    }
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0U);
    EXPECT_EQ(TextOfBstr(nullptr), u"");
    SysFreeString(nullptr);
    // Lengths whose number of bytes does not fit the 32 bits before the text.
    EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000U), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFFU), nullptr);
}

TEST(Variant, ChangeType_ByValueAndByReference)
{
    int16_t mySmall = 7;
    Value myInner(VT_BYREF | VT_I2, &mySmall);
    Value myOuter(VT_BYREF | VT_VARIANT, &myInner);
    const struct
    {
        Value Source;
        VARTYPE Type;
        std::string Outcome;
    } myCases[] = {
        {Value(), VT_I4, "I4 0"},
        {Value(5), VT_BSTR, "BSTR 5"},
        {Value(-70000), VT_I2, "overflow"},
        {Value(2.5), VT_I4, "I4 2"},
        {Value(3.5), VT_I4, "I4 4"},
        {Value(-2147483648.0), VT_I4, "I4 -2147483648"},
        {Value(2147483647.5), VT_I4, "overflow"},
        {Value(std::nan("")), VT_I4, "overflow"},
        {Value(100000.0), VT_BSTR, "BSTR 100000"},
        {Value(true), VT_I4, "I4 -1"},
        {Value(2), VT_BOOL, "BOOL -1"},
        {Value(u" +12.5 "), VT_R8, "R8 12.500000"},
        {Value(u"1e400"), VT_R8, "overflow"},
        {Value(u"1,5"), VT_R8, "type"},
        {Value(u"inf"), VT_R8, "type"},
        {Value(u""), VT_I4, "type"},
        {Value(u"tRUE"), VT_BOOL, "BOOL -1"},
        {Value(u"true"), VT_I4, "type"},
        {Value(VT_NULL, nullptr), VT_BSTR, "type"},
        {Value(VT_DISPATCH, nullptr), VT_UNKNOWN, "type 13"},
        {Value(VT_BYREF | VT_VARIANT, &myInner), VT_I4, "I4 7"},
        {Value(VT_BYREF | VT_VARIANT, &myOuter), VT_I4, "badtype"},
        {Value(VT_BYREF | VT_VARIANT, nullptr), VT_I4, "pointer"},
        {Value(VT_BYREF | VT_EMPTY, &mySmall), VT_I4, "badtype"},
        {Value(999, nullptr), VT_I4, "badtype"},
        {Value(5), VT_BYREF | VT_I4, "badtype"},
    };
    for (const auto& myCase : myCases)
    {
        SCOPED_TRACE(Show(myCase.Source) + " to " + std::to_string(myCase.Type));
        Value theTarget(u"untouched");
        const HRESULT myResult = VariantChangeType(&theTarget, &myCase.Source, 0, myCase.Type);
        EXPECT_EQ(FAILED(myResult) ? Show(myResult) : Show(theTarget), myCase.Outcome);
        EXPECT_EQ(FAILED(myResult), Show(theTarget) == "BSTR untouched");
    }
    Value mySame(u"41");
    EXPECT_EQ(VariantChangeType(&mySame, &mySame, 0, VT_I4), S_OK);
    EXPECT_EQ(Show(mySame), "I4 41");
}

TEST(Variant, ChangeType_ObjectGetsAReferenceThatClearReleases)
{
    const auto myLife = std::make_shared<int>();
    auto myObject = MakeCounted<TestDatabase>(myLife);
    Value myHolder(VT_DISPATCH, ComPtr<IDispatch>(myObject.Get()).Detach());
    Value myOther;
    EXPECT_EQ(VariantChangeType(&myOther, &myHolder, 0, VT_UNKNOWN), S_OK);
    myObject.Reset();
    VariantClear(&myHolder);
    EXPECT_EQ(myLife.use_count(), 2);
    Value myReference(VT_BYREF | VT_UNKNOWN, &myOther.punkVal);
    EXPECT_EQ(VariantClear(&myReference), S_OK);
    EXPECT_EQ(myLife.use_count(), 2) << "a reference owns nothing";
    VariantClear(&myOther);
    EXPECT_EQ(myLife.use_count(), 1);
}

TEST(Variant, Init_EmptiesAndFreesNothing)
{
    VARIANT myValue;
    std::memset(&myValue, 0x5A, sizeof myValue); // a type that is unknown, and a pointer to nowhere
    VariantInit(&myValue);
    EXPECT_EQ(myValue.vt, VT_EMPTY);
    EXPECT_EQ(myValue.byref, nullptr);
    VariantInit(nullptr);
}

TEST(ErrorInformation, Create_ReturnsWhatWasSet)
{
    ComPtr<ICreateErrorInfo> myWriter;
    ASSERT_EQ(CreateErrorInfo(myWriter.Receive()), S_OK);
    const auto myReader = myWriter.Query<IErrorInfo>();
    EXPECT_EQ(myWriter->SetGUID(&IID_QelPlugin), S_OK);
    GUID theInterface = IID_IUnknown;
    EXPECT_EQ(myReader->GetGUID(&theInterface), S_OK);
    EXPECT_TRUE(SameId(theInterface, IID_QelPlugin));
    EXPECT_EQ(myWriter->SetHelpContext(100), S_OK);
    uint32_t theContext = 1;
    EXPECT_EQ(myReader->GetHelpContext(&theContext), S_OK);
    EXPECT_EQ(theContext, 100U);

    const struct
    {
        HRESULT (ICreateErrorInfo::*Set)(const char16_t*);
        HRESULT (IErrorInfo::*Get)(BSTR*);
        const char16_t* Text;
    } myTexts[] = {{&ICreateErrorInfo::SetSource, &IErrorInfo::GetSource, u"fuente"},
                   {&ICreateErrorInfo::SetDescription, &IErrorInfo::GetDescription, u"descripción"},
                   {&ICreateErrorInfo::SetHelpFile, &IErrorInfo::GetHelpFile, u"ayuda.chm"},
                   {&ICreateErrorInfo::SetHelpFile, &IErrorInfo::GetHelpFile, nullptr}};
    for (const auto& [mySet, myGet, myText] : myTexts)
    {
        EXPECT_EQ((myWriter.Get()->*mySet)(myText), S_OK);
        EXPECT_EQ((myReader.Get()->*myGet)(nullptr), E_POINTER);
    }
    for (const auto& [mySet, myGet, myText] : myTexts)
    {
        Bstr theText;
        EXPECT_EQ((myReader.Get()->*myGet)(theText.Pointer()), S_OK);
        EXPECT_EQ(theText.Value(), myGet == &IErrorInfo::GetHelpFile ? u"" : myText);
    }
}

TEST(ErrorInformation, Set_WithoutMemoryKeepsTheText)
{
    ComPtr<ICreateErrorInfo> myWriter;
    ASSERT_EQ(CreateErrorInfo(myWriter.Receive()), S_OK);
    const auto myReader = myWriter.Query<IErrorInfo>();
    EXPECT_EQ(myWriter->SetSource(u"old"), S_OK);
    std::vector<HRESULT> myResults;
    const auto Collect = [&](HRESULT myResult)
    {
        Bstr theText;
        EXPECT_EQ(myReader->GetSource(theText.Pointer()), S_OK);
        EXPECT_EQ(theText.Value(), myResults.empty() ? u"old" : u"new");
        myResults.push_back(myResult);
    };
    FailEachPieceOfMemory([&] { return myWriter->SetSource(u"new"); }, Collect);
    Bstr theText;
    FailEachPieceOfMemory([&] { return myReader->GetSource(theText.Pointer()); }, Collect);
    EXPECT_EQ(myResults, (std::vector{E_OUTOFMEMORY, S_OK, E_OUTOFMEMORY, S_OK}));
}

TEST(ErrorInformation, Get_IsThatOfItsThread)
{
    ASSERT_EQ(Guarded([] { throw Error{6, u"mío"}; }), QEL_RESULT(0x800A0006U));
    std::string myOther = "not run";
    std::thread(
        [&]
        {
            myOther = TakenDescription();
            Guarded([] { throw Error{6, u"left behind when the thread ends"}; });
        })
        .join();
    EXPECT_EQ(myOther, "-");
    ComPtr<IErrorInfo> myInfo;
    EXPECT_EQ(SetErrorInfo(1, nullptr), E_INVALIDARG);
    EXPECT_EQ(GetErrorInfo(1, myInfo.Receive()), E_INVALIDARG);
    EXPECT_EQ(GetErrorInfo(0, nullptr), E_POINTER);
    EXPECT_EQ(CreateErrorInfo(nullptr), E_POINTER);
    EXPECT_EQ(TakenDescription(), "mío") << "refused calls leave it";
    EXPECT_EQ(TakenDescription(), "-") << "reading takes it away";
}

TEST(Guarded, Exception_BecomesAResultAndErrorInformation)
{
    const auto Throws = [](auto myFailure)
    {
        return [=]
        {
            throw myFailure;
        };
    };
    const std::tuple<std::function<void()>, uint32_t, std::string> myCases[] = {
        {[] {}, 0, "-"},
        {Throws(Error{53, u"No está"}), 0x800A0035U, "No está"},
        {Throws(Error{0, u"cero"}), 0x800A0000U, "cero"},
        {Throws(Error{E_ACCESSDENIED, u"del anfitrión"}), 0x80070005U, "del anfitrión"},
        {Throws(Error{0x10000, u"demasiado"}), 0x800A0005U, "demasiado"},
        {Throws(std::bad_alloc()), 0x800A0007U, "Memoria insuficiente"},
        {Throws(1), 0x800A0005U, "Llamada a procedimiento o argumento no válidos"},
    };
    for (const auto& [myOperation, myResult, myDescription] : myCases)
    {
        SetErrorInfo(0, nullptr);
        EXPECT_EQ(Guarded(myOperation), QEL_RESULT(myResult)) << myDescription;
        EXPECT_EQ(TakenDescription(), myDescription);
    }
}

TEST(CallHost, Failure_KeepsTheHostsNumberAndText)
{
    const auto myHost = MakeCounted<TestDatabase>();
    ComDatabase myDatabase(myHost.Get());
    EXPECT_EQ(myDatabase.RecordType(), 4);
    EXPECT_TRUE(myDatabase.AtEnd());
    EXPECT_EQ(myDatabase.ChooseLink(u"1"), u"UID:9");
    EXPECT_EQ(myHost->PresentLink, u"1");
    myDatabase.SeekUID(u"4711");
    EXPECT_EQ(myHost->mySeeks, (std::vector{TestDatabase::Seek(u"4711", 0, 0)}));

    const std::tuple<std::function<void()>, uint32_t, std::string> myCases[] = {
        {[&] { myDatabase.RecordURL(); }, 0x800A0035U, "No está"},
        {[&] { myDatabase.DataFolder(); }, 0x800A0035U, "No se encuentra el archivo"},
        {[&] { myDatabase.RecordFilename(); }, 0x80070005U,
         "Una llamada al programa anfitrión ha fallado (0x80070005)"},
    };
    for (const auto& [myCall, myResult, myDescription] : myCases)
    {
        Guarded([] { throw Error{6, u"older failure"}; });
        EXPECT_EQ(Guarded(myCall), QEL_RESULT(myResult));
        EXPECT_EQ(TakenDescription(), myDescription);
    }
}

TEST(CallHost, ServiceTakenBackMeanwhile_LivesToTheEndOfTheCall)
{
    const auto myLife = std::make_shared<int>();
    auto myHost = MakeCounted<TestDatabase>(myLife);
    auto myDatabase = std::make_unique<ComDatabase>(myHost.Get());
    myHost->Called = [&](const std::string&)
    {
        myHost.Reset();
        myDatabase.reset();
        EXPECT_EQ(myLife.use_count(), 2);
    };
    EXPECT_EQ(myDatabase->ChooseLink(u"7"), u"UID:9");
    EXPECT_EQ(myLife.use_count(), 1);
}

TEST(CallHost, AfterAbandon_FailsAndReleasesNothing)
{
    auto* const myHost = new TestDatabase();
    {
        ComDatabase myDatabase(myHost);
        myDatabase.Abandon();
        EXPECT_EQ(ErrorOf([&] { myDatabase.RecordType(); }), ErrorNumber::ObjectNotSet);
    }
    EXPECT_EQ(myHost->Release(), 1U);
    EXPECT_EQ(myHost->Release(), 0U);
}

TEST(Dispatch, GetIDsOfNames_FindsMembersButNoParameters)
{
    const auto myObject = MakeCounted<TestDatabase>();
    Text myMember = u"SEEKuid";
    Text myParameter = u"myUID";
    char16_t* myNames[] = {myMember.data(), myParameter.data()};
    DISPID theNumbers[] = {0, 0};
    EXPECT_EQ(myObject->GetIDsOfNames(&GUID_NULL, myNames, 2, 0, theNumbers), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(theNumbers[0], 4);
    EXPECT_EQ(theNumbers[1], DISPID_UNKNOWN);
    EXPECT_EQ(myObject->GetIDsOfNames(&IID_IUnknown, myNames, 1, 0, theNumbers), DISP_E_UNKNOWNINTERFACE);
}

TEST(Dispatch, Invoke_ArgumentsAndResults)
{
    const auto myHost = MakeCounted<TestDatabase>();
    int32_t myNumber = 1;
    int16_t mySmall = 2;
    const Value myUid(u"uid");
    const Value myTwo(2.0);
    const Value myText(u"x");
    Value myInner(VT_BYREF | VT_I4, &myNumber);
    const Value myByReference(VT_BYREF | VT_VARIANT, &myInner);
    const Value myOtherType(VT_BYREF | VT_I2, &mySmall);
    const Value myNothing(VT_BYREF | VT_I4, nullptr);
    constexpr uint16_t Get = DISPATCH_PROPERTYGET;
    constexpr uint16_t Method = DISPATCH_METHOD;
    const std::vector<LateCall> myCalls = {
        {1, Get, {}, {}, "ok, I4 4"},
        {2, Get, {}, {}, "ok, BOOL -1"},
        {7, Method, {myText}, {}, "ok, BSTR UID:9"},
        {4, Method, {myUid, myByReference, myOtherType}, {}, "ok, empty"},
        {4, Method | Get, {myUid, myTwo, Value()}, {}, "ok, empty"},
        {4, Method, {myTwo, myTwo, myTwo}, {}, "ok, empty"},
        {4, Method, {myUid, myText, myTwo}, {}, "type, argument 1"},
        {4, Method, {myUid, myTwo, Value(1e10)}, {}, "overflow, argument 0"},
        {4, Method, {myUid, myNothing, myTwo}, {}, "pointer, argument 1"},
        {4, Method, {Value(VT_NULL, nullptr), myTwo, myTwo}, {}, "type, argument 2"},
        {1, Get, {myTwo}, {DISPID_PROPERTYPUT}, "named"},
        {5, Get, {}, {}, "exception"},
    };
    SetErrorInfo(0, nullptr);
    const int myLivingTexts = LivingTexts;
    ExpectOutcomes(*myHost.Get(), myCalls);
    EXPECT_EQ(myHost->PresentLink, u"x");
    EXPECT_EQ(myHost->mySeeks, (std::vector{TestDatabase::Seek(u"uid", 1, 2), TestDatabase::Seek(u"uid", 2, 0),
                                            TestDatabase::Seek(u"2", 2, 2)}));
    EXPECT_EQ(myNumber, 101) << "the member works on the caller's variable";
    EXPECT_EQ(mySmall, 2);
    EXPECT_EQ(TakenDescription(), "No está") << "without a record for it the error information stays";
    EXPECT_EQ(LivingTexts, myLivingTexts);
}

TEST(Dispatch, Invoke_FailedMemberGivesTheErrorInformationOfThisCallAlone)
{
    const auto myHost = MakeCounted<TestDatabase>();
    DISPPARAMS myParams{};
    const auto DescriptionOf = [&](DISPID myMember, HRESULT myResult)
    {
        Guarded([] { throw Error{6, u"older failure"}; });
        EXCEPINFO theException{};
        EXPECT_EQ(
            myHost->Invoke(myMember, &GUID_NULL, 0, DISPATCH_PROPERTYGET, &myParams, nullptr, &theException, nullptr),
            DISP_E_EXCEPTION);
        EXPECT_EQ(theException.scode, myResult);
        Bstr mySource;
        Bstr theDescription;
        std::swap(*mySource.Pointer(), theException.bstrSource);
        std::swap(*theDescription.Pointer(), theException.bstrDescription);
        return theDescription.Value();
    };
    EXPECT_EQ(DescriptionOf(5, QEL_RESULT(0x800A0035U)), u"No está");
    EXPECT_EQ(DescriptionOf(3, E_ACCESSDENIED), u"");
}

TEST(Dispatch, Invoke_RefusedCallLeavesItsOwnErrorInformation)
{
    const auto myHost = MakeCounted<TestDatabase>();
    IDispatch& myObject = *myHost.Get();
    Text myUnknown = u"Nothing";
    char16_t* myNames[] = {myUnknown.data()};
    const auto FindsName = [&](DISPID* theNumber)
    {
        return myObject.GetIDsOfNames(&GUID_NULL, myNames, 1, 0, theNumber);
    };
    const auto Invokes = [&](DISPID myMember, uint16_t myFlags, std::vector<VARIANT> myArguments, const IID& myReserved)
    {
        DISPPARAMS myParams{myArguments.data(), nullptr, static_cast<uint32_t>(myArguments.size()), 0};
        return myObject.Invoke(myMember, &myReserved, 0, myFlags, &myParams, nullptr, nullptr, nullptr);
    };
    const Value myText(u"x");
    constexpr uint16_t Get = DISPATCH_PROPERTYGET;
    constexpr uint16_t Method = DISPATCH_METHOD;
    DISPID theNumber = 0;
    const char* const myNoPointer = "Falta un puntero";
    const std::vector<FailingCall> myCalls = {
        {[&] { return Invokes(1, Method, {}, GUID_NULL); }, DISP_E_MEMBERNOTFOUND,
         "El objeto no tiene ese miembro, o no se llama de esa manera"},
        {[&] { return Invokes(7, Method, {}, GUID_NULL); }, DISP_E_BADPARAMCOUNT,
         "El número de argumentos no es correcto"},
        {[&] { return Invokes(4, Method, std::vector<VARIANT>(3, myText), GUID_NULL); }, DISP_E_TYPEMISMATCH,
         "Los tipos no coinciden"},
        {[&] { return Invokes(4, Method, std::vector<VARIANT>(3, Value(1e10)), GUID_NULL); }, DISP_E_OVERFLOW,
         "Desbordamiento"},
        {[&] { return Invokes(4, Method, std::vector<VARIANT>(3, Value(999, nullptr)), GUID_NULL); }, DISP_E_BADVARTYPE,
         "Tipo de valor desconocido"},
        {[&] { return Invokes(1, Get, {}, IID_IUnknown); }, DISP_E_UNKNOWNINTERFACE,
         "El argumento reservado debe ser el identificador nulo"},
        {[&] { return myObject.Invoke(1, &GUID_NULL, 0, Get, nullptr, nullptr, nullptr, nullptr); }, E_POINTER,
         myNoPointer},
        {[&] { return FindsName(&theNumber); }, DISP_E_UNKNOWNNAME, "Nombre desconocido"},
        {[&] { return FindsName(nullptr); }, E_POINTER, myNoPointer},
        {[&] { return myObject.GetTypeInfoCount(nullptr); }, E_POINTER, myNoPointer},
        {[&] { return myHost->get_RecordType(nullptr); }, E_POINTER, myNoPointer},
    };
    ExpectOwnErrors("com_test", myCalls);
}

TEST(Dispatch, QueryInterface_LeavesTheErrorInformation)
{
    const auto myHost = MakeCounted<TestDatabase>();
    Guarded([] { throw Error{6, u"mío"}; });
    void* theObject = nullptr;
    EXPECT_EQ(myHost->QueryInterface(&IID_ISupportErrorInfo, &theObject), E_NOINTERFACE);
    EXPECT_EQ(myHost->QueryInterface(&IID_QelDatabase, &theObject), S_OK);
    myHost->Release();
    EXPECT_EQ(TakenDescription(), "mío");
}

/// A registry of its own, for the user and for one package.
class ClassRegistry : public testing::Test
{
public:
    ClassRegistry() { fs::create_directories(mySystem); }

protected:
    static void Write(const fs::path& myPath, const std::string& myBytes)
    {
        std::ofstream(myPath, std::ios::binary) << myBytes;
    }

    /// What the loader says about the class, whose library does not exist; or the result.
    static std::string ReasonNotLoaded(const CLSID& myClass)
    {
        void* theObject = &theObject;
        const HRESULT myResult = CoCreateInstance(&myClass, nullptr, CLSCTX_INPROC_SERVER, &IID_IUnknown, &theObject);
        EXPECT_EQ(theObject, nullptr);
        return myResult == CO_E_DLLNOTFOUND ? TakenDescription() : std::to_string(myResult);
    }

    static bool ComponentIsLoaded()
    {
        void* const myHandle = dlopen(QEL_STAGE "/QelPluginAnimation.so", RTLD_NOW | RTLD_NOLOAD);
        return myHandle != nullptr && dlclose(myHandle) == 0;
    }

    const TemporaryFolder myRoot;
    Environment myEnvironment{{"XDG_DATA_HOME", myRoot.Native("user")},
                              {"XDG_DATA_DIRS", "relative::" + myRoot.Native("system")},
                              {"TMPDIR", myRoot.Native()},
                              {"HOME", myRoot.Native()}};
    const fs::path mySystem = myRoot / "system/qel/classes";
    const fs::path myUser = myRoot / "user/qel/classes";
    const std::string myFilename = "{4FCC59CA-C869-4963-A843-14D7C29AFA23}.class"; // CLSID_Main
};

TEST_F(ClassRegistry, Register_IsFoundUntilItIsRemoved)
{
    CLSID theClass{};
    EXPECT_EQ(CLSIDFromProgID(u"Año.Main", &theClass), CO_E_CLASSSTRING);
    ASSERT_EQ(QelRegisterClass(&CLSID_Main, u"Other.Main", "/none/older.so"), S_OK);
    ASSERT_EQ(QelRegisterClass(&CLSID_Main, u"Año.Main", "/none/newer.so"), S_OK);
    EXPECT_EQ(CLSIDFromProgID(u"aÑO.mAIN", &theClass), S_OK);
    EXPECT_TRUE(SameId(theClass, CLSID_Main));
    EXPECT_EQ(CLSIDFromProgID(u"Other.Main", &theClass), CO_E_CLASSSTRING);
    EXPECT_NE(ReasonNotLoaded(CLSID_Main).find("/none/newer.so"), std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(myUser), {}), 1) << "no temporary file stays";

    EXPECT_EQ(QelUnregisterClass(&CLSID_Main), S_OK);
    EXPECT_EQ(QelUnregisterClass(&CLSID_Main), S_FALSE);
    EXPECT_EQ(CLSIDFromProgID(u"Año.Main", &theClass), CO_E_CLASSSTRING);
    EXPECT_EQ(ReasonNotLoaded(CLSID_Main), std::to_string(REGDB_E_CLASSNOTREG));
}

TEST_F(ClassRegistry, Find_SkipsMalformedEntriesAndPrefersTheUsers)
{
    Write(mySystem / myFilename, "Comment=1\r\nProgID=Package.Main\r\nLibrary=/none/system.so\r\n");
    fs::create_directories(myUser);
    const struct
    {
        std::string Bytes;
        bool Counts;
    } myCases[] = {
        {"ProgID=User.Main\nLibrary=/none/user.so", true},
        {"", false},
        {"ProgID=User.Main\n", false},
        {"Library=/none/user.so\nProgId=User.Main\n", false},
        {"ProgID=\xFF\nLibrary=/none/user.so\n", false},
        {"ProgID=User.Main\nLibrary=/none/user.so" + std::string(1, '\0'), false},
        {"ProgID=User.Main\nLibrary=/none/user.so\n" + std::string(8192, '#'), false},
    };
    CLSID theClass{};
    for (const auto& myCase : myCases)
    {
        SCOPED_TRACE(myCase.Bytes.substr(0, 60));
        Write(myUser / myFilename, myCase.Bytes);
        const std::string myReason = ReasonNotLoaded(CLSID_Main);
        EXPECT_EQ(myReason.find("/none/user.so") != std::string::npos, myCase.Counts) << myReason;
        EXPECT_EQ(CLSIDFromProgID(u"user.main", &theClass) == S_OK, myCase.Counts);
        EXPECT_EQ(CLSIDFromProgID(u"package.main", &theClass) == S_OK, !myCase.Counts) << "hidden by the user's";
    }
    fs::remove(myUser / myFilename);
    ASSERT_EQ(mkfifo((myUser / myFilename).c_str(), 0600), 0);
    EXPECT_EQ(CLSIDFromProgID(u"package.main", &theClass), S_OK) << "a pipe does not block";
    fs::remove(myUser / myFilename);
    Write(myUser / "{4fcc59ca-c869-4963-a843-14d7c29afa23}.class", "ProgID=Lower.Main\nLibrary=/none/user.so\n");
    EXPECT_EQ(CLSIDFromProgID(u"Lower.Main", &theClass), CO_E_CLASSSTRING);
}

TEST_F(ClassRegistry, Register_RefusesWhatCouldNotBeReadBack)
{
    const std::pair<const char16_t*, std::string> myCases[] = {{u"", "/none/a.so"},
                                                               {u"A\nLibrary=/b.so", "/none/a.so"},
                                                               {u"\xD800", "/none/a.so"},
                                                               {u"A.Main", "relative/a.so"},
                                                               {u"A.Main", "/none\n/a.so"},
                                                               {u"A.Main", ""},
                                                               {u"A.Main", "/" + std::string(8192, 'a')}};
    for (const auto& [myName, myLibrary] : myCases)
    {
        EXPECT_EQ(QelRegisterClass(&CLSID_Main, myName, myLibrary.c_str()), E_INVALIDARG) << myLibrary.substr(0, 20);
    }
    fs::create_directories(myUser / myFilename); // a folder in the place of the file
    EXPECT_EQ(QelRegisterClass(&CLSID_Main, u"A.Main", "/none/a.so"), E_ACCESSDENIED);
    EXPECT_EQ(std::distance(fs::directory_iterator(myUser), {}), 1) << "no temporary file stays";
    Write(myRoot / "file", "");
    myEnvironment.Set("XDG_DATA_HOME", myRoot.Native("file"));
    EXPECT_EQ(QelRegisterClass(&CLSID_Main, u"A.Main", "/none/a.so"), E_ACCESSDENIED);
}

TEST_F(ClassRegistry, Register_RelativeDataFolder_UsesTheHomeFolder)
{
    myEnvironment.Set("XDG_DATA_HOME", "relative");
    EXPECT_EQ(QelRegisterClass(&CLSID_Main, u"A.Main", "/none/a.so"), S_OK);
    EXPECT_TRUE(fs::exists(myRoot / ".local/share/qel/classes" / myFilename));
}

TEST_F(ClassRegistry, RefusedCall_LeavesItsOwnErrorInformation)
{
    CLSID theClass{};
    void* theObject = nullptr;
    IUnknown* const myOuter = reinterpret_cast<IUnknown*>(&theClass);
    const auto Creates = [&](const CLSID* myClass, IUnknown* myOwner, uint32_t myContext)
    {
        return CoCreateInstance(myClass, myOwner, myContext, &IID_IUnknown, &theObject);
    };
    const std::vector<FailingCall> myCalls = {
        {[&] { return CLSIDFromProgID(u"A.Main", &theClass); }, CO_E_CLASSSTRING,
         "No hay ninguna clase registrada con ese nombre"},
        {[&] { return CLSIDFromProgID(nullptr, &theClass); }, E_POINTER, "Falta un puntero"},
        {[&] { return Creates(&CLSID_Main, nullptr, 0); }, REGDB_E_CLASSNOTREG, "La clase no está registrada"},
        {[&] { return Creates(&CLSID_Main, myOuter, CLSCTX_INPROC_SERVER); }, CLASS_E_NOAGGREGATION,
         "La clase no admite agregación"},
        {[&] { return Creates(nullptr, nullptr, CLSCTX_INPROC_SERVER); }, E_POINTER, "Falta un puntero"},
        {[&] { return QelRegisterClass(&CLSID_Main, u"A.Main", "a.so"); }, E_INVALIDARG,
         "Llamada a procedimiento o argumento no válidos"},
        {[&] { return QelUnregisterClass(nullptr); }, E_POINTER, "Falta un puntero"},
    };
    ExpectOwnErrors("qelcom", myCalls);
}

TEST_F(ClassRegistry, AnyCall_WithoutMemory_ReportsIt)
{
    Write(mySystem / myFilename, "ProgID=A.Main\nLibrary=" QEL_STAGE "/QelPluginAnimation.so\n");
    const auto Outcomes = [](const auto& myCall, const std::function<void(HRESULT)>& myAfter)
    {
        std::set<HRESULT> theResults;
        FailEachPieceOfMemory(myCall, [&](HRESULT myResult) { theResults.insert(myResult), myAfter(myResult); });
        return theResults;
    };
    CLSID theClass{};
    EXPECT_EQ(Outcomes([&] { return CLSIDFromProgID(u"A.Main", &theClass); }, [](HRESULT) {}),
              (std::set{E_OUTOFMEMORY, S_OK}));
    const auto LeavesNoPart = [&](HRESULT myResult)
    {
        EXPECT_EQ(fs::exists(myUser) && !fs::is_empty(myUser), myResult == S_OK);
    };
    EXPECT_EQ(Outcomes([&] { return QelRegisterClass(&CLSID_classStringSort, u"A.Sort", "/none.so"); }, LeavesNoPart),
              (std::set{E_OUTOFMEMORY, S_OK}));
    void* theObject = nullptr;
    const auto Unloads = [&](HRESULT)
    {
        ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(std::exchange(theObject, nullptr)));
        CoFreeUnusedLibraries();
        EXPECT_FALSE(ComponentIsLoaded());
    };
    const auto Creates = [&]
    {
        return CoCreateInstance(&CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, &IID_IUnknown, &theObject);
    };
    EXPECT_EQ(Outcomes(Creates, Unloads), (std::set{E_OUTOFMEMORY, QEL_RESULT(0x800A0007U), S_OK}));
}

TEST_F(ClassRegistry, FreeUnusedLibraries_UnloadsAfterTheLastObject)
{
    fs::create_symlink(QEL_STAGE "/QelPluginAnimation.so", mySystem / "../component.so");
    Write(mySystem / myFilename, "ProgID=QelPluginAnimation.Main\nLibrary=../component.so\n"); // as a package does
    void* theObject = nullptr;
    ASSERT_EQ(CoCreateInstance(&CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, &IID_IDispatch, &theObject), S_OK)
        << TakenDescription();
    auto myMain = ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(theObject));
    auto myDatabase = MakeCounted<TestDatabase>();
    IDispatch* myReferenced = myDatabase.Get();
    const Value myScript(u"");
    const Value myObject(VT_DISPATCH, ComPtr<IDispatch>(myReferenced).Detach());
    constexpr uint16_t Put = DISPATCH_PROPERTYPUT;
    constexpr uint16_t PutRef = DISPATCH_PROPERTYPUTREF;
    const std::vector<LateCall> myCalls = {
        {17, Put, {myScript}, {}, "unnamed"},
        {17, Put, {myScript}, {0}, "named"},
        {2, PutRef, {Value(VT_BYREF | VT_DISPATCH, &myReferenced)}, {DISPID_PROPERTYPUT}, "ok, empty"},
        {2, PutRef, {Value(VT_BYREF | VT_DISPATCH, nullptr)}, {DISPID_PROPERTYPUT}, "pointer, argument 0"},
        {4, PutRef, {myObject}, {DISPID_PROPERTYPUT}, "type, argument 0"},
        {2, Put, {Value(VT_DISPATCH, nullptr)}, {DISPID_PROPERTYPUT}, "ok, empty"},
    };
    ExpectOutcomes(*myMain.Get(), myCalls);
    CoFreeUnusedLibraries();
    EXPECT_TRUE(ComponentIsLoaded());
    myMain.Reset();
    EXPECT_TRUE(ComponentIsLoaded());
    CoFreeUnusedLibraries();
    EXPECT_FALSE(ComponentIsLoaded());
}

} // namespace
} // namespace qel
