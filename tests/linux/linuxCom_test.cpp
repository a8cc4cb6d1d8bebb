// What libqelcom brings where the system has no component object model: texts, variants, error information, the class
// registry.
#include "comTest.h"
#include "Environment.h"
#include "failingMemory.h"
#include "TemporaryFolder.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace qel
{
namespace
{

namespace fs = std::filesystem;

TEST(Bstr, SysAllocString_LengthInFrontAndZeroAtTheEnd)
{
    for (const TextView myText : {TextView(u""), TextView(u"a\0b", 3), TextView(u"ñ")})
    {
        const BSTR myBstr = NewBstr(myText);
        ASSERT_NE(myBstr, nullptr);
        uint32_t myByteCount = 0;
        std::memcpy(&myByteCount, reinterpret_cast<char*>(myBstr) - 4, 4);
        EXPECT_EQ(myByteCount, 2 * myText.size());
        EXPECT_EQ(myBstr[myText.size()], 0);
        EXPECT_EQ(TextOfBstr(myBstr), myText);
        SysFreeString(myBstr);
    }
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0U);
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
        HRESULT Result = S_OK;
        std::string Target = "BSTR untouched";
    } myCases[] = {{Value(), VT_I4, S_OK, "I4 0"},
                   {Value(5), VT_BSTR, S_OK, "BSTR 5"},
                   {Value(-70000), VT_I2, DISP_E_OVERFLOW},
                   {Value(2.5), VT_I4, S_OK, "I4 2"},
                   {Value(3.5), VT_I4, S_OK, "I4 4"},
                   {Value(-2147483648.0), VT_I4, S_OK, "I4 -2147483648"},
                   {Value(2147483647.5), VT_I4, DISP_E_OVERFLOW},
                   {Value(std::nan("")), VT_I4, DISP_E_OVERFLOW},
                   {Value(100000.0), VT_BSTR, S_OK, "BSTR 100000"},
                   {Value(true), VT_I4, S_OK, "I4 -1"},
                   {Value(2), VT_BOOL, S_OK, "BOOL -1"},
                   {Value(u" +12.5 "), VT_R8, S_OK, "R8 12.500000"},
                   {Value(u"1e400"), VT_R8, DISP_E_OVERFLOW},
                   {Value(u"1,5"), VT_R8, DISP_E_TYPEMISMATCH},
                   {Value(u"inf"), VT_R8, DISP_E_TYPEMISMATCH},
                   {Value(u""), VT_I4, DISP_E_TYPEMISMATCH},
                   {Value(u"tRUE"), VT_BOOL, S_OK, "BOOL -1"},
                   {Value(u"true"), VT_I4, DISP_E_TYPEMISMATCH},
                   {Value(VT_NULL, nullptr), VT_BSTR, DISP_E_TYPEMISMATCH},
                   {Value(VT_DISPATCH, nullptr), VT_UNKNOWN, S_OK, "type 13"},
                   {Value(VT_BYREF | VT_VARIANT, &myInner), VT_I4, S_OK, "I4 7"},
                   {Value(VT_BYREF | VT_VARIANT, &myOuter), VT_I4, DISP_E_BADVARTYPE},
                   {Value(VT_BYREF | VT_VARIANT, nullptr), VT_I4, E_POINTER},
                   {Value(VT_BYREF | VT_EMPTY, &mySmall), VT_I4, DISP_E_BADVARTYPE},
                   {Value(999, nullptr), VT_I4, DISP_E_BADVARTYPE},
                   {Value(5), VT_BYREF | VT_I4, DISP_E_BADVARTYPE}};
    for (const auto& myCase : myCases)
    {
        SCOPED_TRACE(Show(myCase.Source) + " to " + std::to_string(myCase.Type));
        Value theTarget(u"untouched");
        EXPECT_EQ(VariantChangeType(&theTarget, &myCase.Source, 0, myCase.Type), myCase.Result);
        EXPECT_EQ(Show(theTarget), myCase.Target);
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

TEST(ErrorInformation, Create_ReturnsWhatWasSet)
{
    ComPtr<ICreateErrorInfo> myWriter;
    ASSERT_EQ(CreateErrorInfo(myWriter.Receive()), S_OK);
    const auto myReader = myWriter.Query<IErrorInfo>();
    EXPECT_EQ(myWriter->SetGUID(IID_QelPlugin), S_OK);
    EXPECT_EQ(myWriter->SetHelpContext(100), S_OK);
    EXPECT_EQ(myWriter->SetHelpFile(InputText(u"ayuda.chm")), S_OK);
    GUID theInterface = GUID_NULL;
    EXPECT_EQ(myReader->GetGUID(&theInterface), S_OK);
    EXPECT_TRUE(SameId(theInterface, IID_QelPlugin));
    uint32_t theContext = 0;
    EXPECT_EQ(myReader->GetHelpContext(&theContext), S_OK);
    EXPECT_EQ(theContext, 100U);
    Bstr theFile;
    EXPECT_EQ(myReader->GetHelpFile(theFile.Pointer()), S_OK);
    EXPECT_EQ(theFile.Value(), u"ayuda.chm");
    EXPECT_EQ(myReader->GetHelpFile(nullptr), E_POINTER);
    EXPECT_EQ(myWriter->SetHelpFile(nullptr), S_OK) << "null is the empty text";
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
        const HRESULT myResult = CoCreateInstance(myClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &theObject);
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
    ASSERT_EQ(QelRegisterClass(CLSID_Main, u"Other.Main", "/none/older.so"), S_OK);
    ASSERT_EQ(QelRegisterClass(CLSID_Main, u"Año.Main", "/none/newer.so"), S_OK);
    EXPECT_EQ(CLSIDFromProgID(u"aÑO.mAIN", &theClass), S_OK);
    EXPECT_TRUE(SameId(theClass, CLSID_Main));
    EXPECT_EQ(CLSIDFromProgID(u"Other.Main", &theClass), CO_E_CLASSSTRING);
    EXPECT_NE(ReasonNotLoaded(CLSID_Main).find("/none/newer.so"), std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(myUser), {}), 1) << "no temporary file stays";

    EXPECT_EQ(QelUnregisterClass(CLSID_Main), S_OK);
    EXPECT_EQ(QelUnregisterClass(CLSID_Main), S_FALSE);
    EXPECT_EQ(CLSIDFromProgID(u"Año.Main", &theClass), CO_E_CLASSSTRING);
    EXPECT_EQ(ReasonNotLoaded(CLSID_Main), std::to_string(REGDB_E_CLASSNOTREG));
}

TEST_F(ClassRegistry, Find_SkipsMalformedEntriesAndPrefersTheUsers)
{
    Write(mySystem / myFilename, "Comment=1\r\nProgID=Package.Main\r\nLibrary=/none/system.so\r\n");
    fs::create_directories(myUser);
    const std::string myWhole = "ProgID=User.Main\nLibrary=/none/user.so";
    CLSID theClass{};
    for (const std::string& myBytes :
         {myWhole, std::string(), std::string("ProgID=User.Main\n"),
          std::string("Library=/none/user.so\nProgId=User.Main\n"), std::string("ProgID=\xFF\nLibrary=/none/user.so\n"),
          myWhole + '\0', myWhole + "\n" + std::string(8192, '#')})
    {
        SCOPED_TRACE(myBytes.substr(0, 60));
        Write(myUser / myFilename, myBytes);
        const std::string myReason = ReasonNotLoaded(CLSID_Main);
        EXPECT_EQ(myReason.find("/none/user.so") != std::string::npos, myBytes == myWhole) << myReason;
        EXPECT_EQ(CLSIDFromProgID(u"user.main", &theClass) == S_OK, myBytes == myWhole);
        EXPECT_EQ(CLSIDFromProgID(u"package.main", &theClass) == S_OK, myBytes != myWhole) << "hidden by the user's";
    }
    fs::remove(myUser / myFilename);
    ASSERT_EQ(mkfifo((myUser / myFilename).c_str(), 0600), 0);
    EXPECT_EQ(CLSIDFromProgID(u"package.main", &theClass), S_OK) << "a pipe does not block";
    fs::remove(myUser / myFilename);
    Write(myUser / "{4fcc59ca-c869-4963-a843-14d7c29afa23}.class", "ProgID=Lower.Main\nLibrary=/none/user.so\n");
    EXPECT_EQ(CLSIDFromProgID(u"Lower.Main", &theClass), CO_E_CLASSSTRING);
}

TEST_F(ClassRegistry, Register_RelativeDataFolderAndNoStandardInput_UsesTheHomeFolder)
{
    myEnvironment.Set("XDG_DATA_HOME", "relative");
    const int myInput = dup(STDIN_FILENO);
    close(STDIN_FILENO); // the next file that is opened has its number
    CLSID theClass{};
    EXPECT_EQ(QelRegisterClass(CLSID_Main, u"A.Main", "/none/a.so"), S_OK);
    EXPECT_EQ(CLSIDFromProgID(u"A.Main", &theClass), S_OK);
    EXPECT_TRUE(fs::exists(myRoot / ".local/share/qel/classes" / myFilename));
    EXPECT_EQ(close(STDIN_FILENO), -1) << "left open";
    dup2(myInput, STDIN_FILENO);
    close(myInput);
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
        EXPECT_EQ(QelRegisterClass(CLSID_Main, myName, myLibrary.c_str()), E_INVALIDARG) << myLibrary.substr(0, 20);
    }
    fs::create_directories(myUser / myFilename); // a folder in the place of the file
    EXPECT_EQ(QelRegisterClass(CLSID_Main, u"A.Main", "/none/a.so"), E_ACCESSDENIED);
    EXPECT_EQ(std::distance(fs::directory_iterator(myUser), {}), 1) << "no temporary file stays";
    Write(myRoot / "file", "");
    myEnvironment.Set("XDG_DATA_HOME", myRoot.Native("file"));
    EXPECT_EQ(QelRegisterClass(CLSID_Main, u"A.Main", "/none/a.so"), E_ACCESSDENIED);
}

TEST_F(ClassRegistry, RefusedCall_LeavesItsOwnErrorInformation)
{
    CLSID theClass{};
    void* theObject = nullptr;
    IUnknown* const myOuter = reinterpret_cast<IUnknown*>(&theClass);
    const auto Creates = [&](const CLSID& myClass, IUnknown* myOwner, uint32_t myContext)
    {
        return CoCreateInstance(myClass, myOwner, myContext, IID_IUnknown, &theObject);
    };
    const std::vector<FailingCall> myCalls = {
        {[&] { return CLSIDFromProgID(u"A.Main", &theClass); }, CO_E_CLASSSTRING,
         "No hay ninguna clase registrada con ese nombre"},
        {[&] { return CLSIDFromProgID(nullptr, &theClass); }, E_POINTER, "Falta un puntero"},
        {[&] { return Creates(CLSID_Main, nullptr, 0); }, REGDB_E_CLASSNOTREG, "La clase no está registrada"},
        {[&] { return Creates(CLSID_Main, myOuter, CLSCTX_INPROC_SERVER); }, CLASS_E_NOAGGREGATION,
         "La clase no admite agregación"},
        {[&] { return CoCreateInstance(CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, nullptr); }, E_POINTER,
         "Falta un puntero"},
        {[&] { return QelRegisterClass(CLSID_Main, u"A.Main", "a.so"); }, E_INVALIDARG,
         "Llamada a procedimiento o argumento no válidos"},
        {[&] { return QelRegisterClass(CLSID_Main, nullptr, "/none/a.so"); }, E_POINTER, "Falta un puntero"},
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
    EXPECT_EQ(Outcomes([&] { return QelRegisterClass(CLSID_classStringSort, u"A.Sort", "/none.so"); }, LeavesNoPart),
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
        return CoCreateInstance(CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &theObject);
    };
    EXPECT_EQ(Outcomes(Creates, Unloads), (std::set{E_OUTOFMEMORY, QEL_RESULT(0x800A0007U), S_OK}));
}

TEST_F(ClassRegistry, FreeUnusedLibraries_UnloadsAfterTheLastObject)
{
    fs::create_symlink(QEL_STAGE "/QelPluginAnimation.so", mySystem / "../component.so");
    Write(mySystem / myFilename, "ProgID=QelPluginAnimation.Main\nLibrary=../component.so\n"); // as a package does
    void* theObject = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &theObject), S_OK)
        << TakenDescription();
    auto myMain = ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(theObject));
    CoFreeUnusedLibraries();
    EXPECT_TRUE(ComponentIsLoaded());
    myMain.Reset();
    EXPECT_TRUE(ComponentIsLoaded());
    CoFreeUnusedLibraries();
    EXPECT_FALSE(ComponentIsLoaded());
}

} // namespace
} // namespace qel
