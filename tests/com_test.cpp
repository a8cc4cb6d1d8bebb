// The component object model: failures, and the late binding that calls of the component by qelhost check do not reach.
// The runtime that Linux needs for it is tested in linux/linuxCom_test.cpp.
#include "comTest.h"
#include "errorOf.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

namespace qel
{

const char16_t* const ErrorSource = u"com_test";

namespace
{

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
    LPOLESTR myNames[] = {InputText(u"SEEKuid"), InputText(u"myUID")};
    DISPID theNumbers[] = {0, 0};
    EXPECT_EQ(myObject->GetIDsOfNames(GUID_NULL, myNames, 2, 0, theNumbers), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(theNumbers[0], 4);
    EXPECT_EQ(theNumbers[1], DISPID_UNKNOWN);
}

/// A call as a script client makes it, the arguments in its order.
struct LateCall
{
    DISPID Member = DISPID_UNKNOWN;
    uint16_t Flags = 0;
    std::vector<VARIANT> Arguments; ///< not freed
    std::vector<DISPID> Names;
    HRESULT Result = S_OK;
    std::string Outcome = "empty";
    uint32_t Place = 99; ///< of a wrong argument
};

void ExpectOutcomes(IDispatch& myObject, std::vector<LateCall> myCalls)
{
    for (int i = 0; LateCall & myCall : myCalls)
    {
        SCOPED_TRACE("call " + std::to_string(i++));
        std::ranges::reverse(myCall.Arguments);
        DISPPARAMS myParams{myCall.Arguments.data(), myCall.Names.data(),
                            static_cast<uint32_t>(myCall.Arguments.size()), static_cast<uint32_t>(myCall.Names.size())};
        Value theResult;
        uint32_t thePlace = LateCall().Place;
        EXPECT_EQ(myObject.Invoke(myCall.Member, GUID_NULL, 0, myCall.Flags, &myParams, &theResult, nullptr, &thePlace),
                  myCall.Result);
        EXPECT_EQ(Show(theResult), myCall.Outcome);
        EXPECT_EQ(thePlace, myCall.Place);
    }
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
        {1, Get, {}, {}, S_OK, "I4 4"},
        {2, Get, {}, {}, S_OK, "BOOL -1"},
        {7, Method, {myText}, {}, S_OK, "BSTR UID:9"},
        {4, Method, {myUid, myByReference, myOtherType}, {}},
        {4, Method | Get, {myUid, myTwo, Value()}, {}},
        {4, Method, {myTwo, myTwo, myTwo}, {}},
        {4, Method, {myUid, myText, myTwo}, {}, DISP_E_TYPEMISMATCH, "empty", 1},
        {4, Method, {myUid, myTwo, Value(1e10)}, {}, DISP_E_OVERFLOW, "empty", 0},
        {4, Method, {myUid, myNothing, myTwo}, {}, E_POINTER, "empty", 1},
        {4, Method, {Value(VT_NULL, nullptr), myTwo, myTwo}, {}, DISP_E_TYPEMISMATCH, "empty", 2},
        {1, Get, {myTwo}, {DISPID_PROPERTYPUT}, DISP_E_NONAMEDARGS},
        {5, Get, {}, {}, DISP_E_EXCEPTION},
    };
    SetErrorInfo(0, nullptr);
    ExpectOutcomes(*myHost.Get(), myCalls);
    EXPECT_EQ(myHost->PresentLink, u"x");
    EXPECT_EQ(myHost->mySeeks, (std::vector{TestDatabase::Seek(u"uid", 1, 2), TestDatabase::Seek(u"uid", 2, 0),
                                            TestDatabase::Seek(u"2", 2, 2)}));
    EXPECT_EQ(myNumber, 101) << "the member works on the caller's variable";
    EXPECT_EQ(mySmall, 2);
    EXPECT_EQ(TakenDescription(), "No está") << "without a record for it the error information stays";
}

TEST(Dispatch, Invoke_FailedMemberGivesTheErrorInformationOfThisCallAlone)
{
    const auto myHost = MakeCounted<TestDatabase>();
    DISPPARAMS myParams{};
    EXCEPINFO theException{};
    Guarded([] { throw Error{6, u"older failure"}; });
    EXPECT_EQ(myHost->Invoke(3, GUID_NULL, 0, DISPATCH_PROPERTYGET, &myParams, nullptr, &theException, nullptr),
              DISP_E_EXCEPTION);
    EXPECT_EQ(theException.scode, E_ACCESSDENIED);
    EXPECT_EQ(theException.bstrDescription, nullptr);
}

TEST(Dispatch, Invoke_RefusedCallLeavesItsOwnErrorInformation)
{
    const auto myHost = MakeCounted<TestDatabase>();
    IDispatch& myObject = *myHost.Get();
    LPOLESTR myNames[] = {InputText(u"Nothing")};
    const auto FindsName = [&](DISPID* theNumber)
    {
        return myObject.GetIDsOfNames(GUID_NULL, myNames, 1, 0, theNumber);
    };
    const auto Invokes = [&](DISPID myMember, uint16_t myFlags, std::vector<VARIANT> myArguments)
    {
        DISPPARAMS myParams{myArguments.data(), nullptr, static_cast<uint32_t>(myArguments.size()), 0};
        return myObject.Invoke(myMember, GUID_NULL, 0, myFlags, &myParams, nullptr, nullptr, nullptr);
    };
    const Value myText(u"x");
    const Value myLarge(1e10);
    const Value myStrange(999, nullptr);
    constexpr uint16_t Method = DISPATCH_METHOD;
    DISPID theNumber = 0;
    const char* const myNoPointer = "Falta un puntero";
    const std::vector<FailingCall> myCalls = {
        {[&] { return Invokes(1, Method, {}); }, DISP_E_MEMBERNOTFOUND,
         "El objeto no tiene ese miembro, o no se llama de esa manera"},
        {[&] { return Invokes(7, Method, {}); }, DISP_E_BADPARAMCOUNT, "El número de argumentos no es correcto"},
        {[&] { return Invokes(4, Method, std::vector<VARIANT>(3, myText)); }, DISP_E_TYPEMISMATCH,
         "Los tipos no coinciden"},
        {[&] { return Invokes(4, Method, std::vector<VARIANT>(3, myLarge)); }, DISP_E_OVERFLOW, "Desbordamiento"},
        {[&] { return Invokes(4, Method, std::vector<VARIANT>(3, myStrange)); }, DISP_E_BADVARTYPE,
         "Tipo de valor desconocido"},
        {[&] { return myObject.GetIDsOfNames(IID_IUnknown, myNames, 1, 0, &theNumber); }, DISP_E_UNKNOWNINTERFACE,
         "El argumento reservado debe ser el identificador nulo"},
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
    EXPECT_EQ(myHost->QueryInterface(IID_ISupportErrorInfo, &theObject), E_NOINTERFACE);
    EXPECT_EQ(myHost->QueryInterface(IID_QelDatabase, &theObject), S_OK);
    myHost->Release();
    EXPECT_EQ(TakenDescription(), "mío");
}

} // namespace
} // namespace qel
