// The built component, opened through its entry points as a host opens it.
#include "com/Bstr.h"
#include "com/CountedObject.h"
#include "com/Failure.h"
#include "com/InterfaceTables.h"
#include "text/encodings.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

namespace qel
{

const char16_t* const ErrorSource = u"component_test";

namespace
{

namespace fs = std::filesystem;

const fs::path ComponentPath = fs::path(QEL_STAGE) / "QelPluginAnimation.so";

/// The loaded component, closed again when it goes.
class Component
{
public:
    explicit Component(const char* myPath = ComponentPath.c_str()) : myLibrary(dlopen(myPath, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(myLibrary, nullptr) << dlerror();
    }
    ~Component() { dlclose(myLibrary); }

    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return reinterpret_cast<Function>(dlsym(myLibrary, myName));
    }

    HRESULT ClassObject(const CLSID* myClass, const IID* myInterface, void** theObject) const
    {
        return EntryPoint<DllGetClassObjectFunction>("DllGetClassObject")(myClass, myInterface, theObject);
    }

    HRESULT CanUnloadNow() const { return EntryPoint<DllCanUnloadNowFunction>("DllCanUnloadNow")(); }

    template <class Interface>
    ComPtr<Interface> Create(const CLSID& myClass) const
    {
        void* myFactory = nullptr;
        EXPECT_EQ(ClassObject(&myClass, &IID_IClassFactory, &myFactory), S_OK);
        const auto myHeld = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myFactory));
        void* myObject = nullptr;
        EXPECT_EQ(myHeld->CreateInstance(nullptr, InterfaceId<Interface>, &myObject), S_OK);
        return ComPtr<Interface>::Adopt(static_cast<Interface*>(myObject));
    }

    ComPtr<QelPlugin> Plugin() const { return Create<QelPlugin>(CLSID_Main); }

private:
    void* myLibrary;
};

/// A module with a motif and a tune of the library that ships.
constexpr TextView LibraryModule = u"<pg.param name=image value=Globo.gif><pg.param name=imagefolder value=Fiestas>"
                                   u"<pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas>";

Text Read(QelPlugin& myPlugin, HRESULT (QelPlugin::*myMember)(BSTR*))
{
    Bstr theText;
    EXPECT_EQ((myPlugin.*myMember)(theText.Pointer()), S_OK);
    return theText.Value();
}

HRESULT Write(QelPlugin& myPlugin, TextView myScript)
{
    Bstr myText(myScript);
    return myPlugin.put_Script(myText.Pointer());
}

/// What the last failure on this thread left behind: its source, "/" and its description.
Text FailureText()
{
    ComPtr<IErrorInfo> myInfo;
    if (GetErrorInfo(0, myInfo.Receive()) != S_OK)
    {
        return u"none";
    }
    Bstr mySource;
    Bstr myDescription;
    myInfo->GetSource(mySource.Pointer());
    myInfo->GetDescription(myDescription.Pointer());
    return mySource.Value() + u"/" + myDescription.Value();
}

/// A host's build service with one folder for everything, which can be made to fail in all its members.
class TestHelper final : public CountedObject<QelBuildHelper>
{
public:
    HRESULT get_UniqueName(BSTR* theName) override
    {
        if (InUniqueName)
        {
            InUniqueName();
        }
        return Answered(theName, u"1");
    }
    HRESULT get_InstanceNumber(int32_t* theNumber) override
    {
        *theNumber = 1;
        return Answered(nullptr, {});
    }
    HRESULT get_MediaFolder(BSTR* theFolder) override { return Answered(theFolder, Folder); }
    HRESULT get_MediaURL(BSTR* theURL) override { return Answered(theURL, u"./"); }
    HRESULT get_ImageFolder(BSTR* theFolder) override { return Answered(theFolder, Folder); }
    HRESULT get_ImageURL(BSTR* theURL) override { return Answered(theURL, u"./"); }
    HRESULT get_FileFolder(BSTR* theFolder) override { return Answered(theFolder, Folder); }
    HRESULT get_FileURL(BSTR* theURL) override { return Answered(theURL, u"./"); }
    HRESULT get_ArchiveName(BSTR* theName) override { return Answered(theName, u"1.dat"); }

    Text Folder;
    std::function<void()> InUniqueName;
    HRESULT Result = S_OK;
    Text Description;

private:
    HRESULT Answered(BSTR* theText, TextView myText) const
    {
        ComPtr<ICreateErrorInfo> myInfo;
        if (!Description.empty() && SUCCEEDED(CreateErrorInfo(myInfo.Receive())))
        {
            myInfo->SetDescription(Description.c_str());
            SetErrorInfo(0, myInfo.Query<IErrorInfo>().Get());
        }
        if (SUCCEEDED(Result) && theText != nullptr)
        {
            *theText = NewBstr(myText);
        }
        return Result;
    }
};

void TakeBackHelper(QelPlugin& myPlugin)
{
    QelBuildHelper* myService = nullptr;
    EXPECT_EQ(myPlugin.putref_QelBuildHelper(&myService), S_OK);
}

/// Each test has temporary files and a class registry of its own.
class ComponentTest : public testing::Test
{
protected:
    ComponentTest()
    {
        std::string myPattern = (fs::temp_directory_path() / "component_test.XXXXXX").string();
        myFolder = mkdtemp(myPattern.data());
        setenv("TMPDIR", myFolder.c_str(), 1);
        setenv("XDG_DATA_HOME", (myFolder / "data").c_str(), 1);
        setenv("XDG_DATA_DIRS", myFolder.c_str(), 1);
        for (const char* myDisplay : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        {
            unsetenv(myDisplay); // no window may come up
        }
    }
    ~ComponentTest() override
    {
        unsetenv("TMPDIR");
        fs::remove_all(myFolder);
    }

    bool RecordWasMade() const { return fs::exists(myFolder / "qelpluginanimtemp"); }

    fs::path myFolder;
};

// First, before another test loads what this one must not find.
TEST_F(ComponentTest, MapsNeitherToolkitNorSynthesiserToReadATextAndWriteAPage)
{
    const Component myComponent;
    const auto myPlugin = myComponent.Plugin();
    const auto myHelper = MakeCounted<TestHelper>();
    myHelper->Folder = FromUtf8((myFolder / "").string());
    QelBuildHelper* myService = myHelper.Get();
    ASSERT_EQ(myPlugin->putref_QelBuildHelper(&myService), S_OK);
    Write(*myPlugin.Get(), LibraryModule);
    EXPECT_TRUE(Read(*myPlugin.Get(), &QelPlugin::get_TextSettings).starts_with(u"Se muestra"));
    EXPECT_TRUE(Read(*myPlugin.Get(), &QelPlugin::get_Output).starts_with(u"<script"));
    std::ifstream myMaps("/proc/self/maps");
    const std::string myMapped((std::istreambuf_iterator<char>(myMaps)), {});
    EXPECT_NE(myMapped.find("QelPluginAnimation.so"), std::string::npos);
    for (const char* myLibrary : {"libQt", "libfluidsynth", "libX11", "libxcb", "libasound", "libpulse"})
    {
        EXPECT_EQ(myMapped.find(myLibrary), std::string::npos) << myLibrary;
    }
    TakeBackHelper(*myPlugin.Get());
}

TEST_F(ComponentTest, ExportsItsFourEntryPointsAndNothingElse)
{
    const std::string myCommand = "nm -D --defined-only --format=just-symbols '" + ComponentPath.string() + "'";
    std::FILE* myPipe = popen(myCommand.c_str(), "r");
    ASSERT_NE(myPipe, nullptr);
    std::array<char, 4096> myBuffer{};
    const std::string mySymbols(myBuffer.data(), std::fread(myBuffer.data(), 1, myBuffer.size(), myPipe));
    EXPECT_EQ(pclose(myPipe), 0);
    EXPECT_EQ(mySymbols, "DllCanUnloadNow\nDllGetClassObject\nDllRegisterServer\nDllUnregisterServer\n");
}

TEST_F(ComponentTest, RefusesWhatItDoesNotHave)
{
    const Component myComponent;
    void* myObject = &myFolder;
    EXPECT_EQ(myComponent.ClassObject(&IID_QelPlugin, &IID_IClassFactory, &myObject), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(myObject, nullptr);
    EXPECT_EQ(myComponent.ClassObject(&CLSID_Main, &IID_QelPlugin, &myObject), E_NOINTERFACE);
    EXPECT_EQ(myComponent.ClassObject(&CLSID_Main, &IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(myComponent.ClassObject(nullptr, &IID_IClassFactory, &myObject), E_POINTER);

    ComPtr<IClassFactory> myFactory;
    ASSERT_EQ(myComponent.ClassObject(&CLSID_Main, &IID_IClassFactory, &myObject), S_OK);
    *myFactory.Receive() = static_cast<IClassFactory*>(myObject);
    EXPECT_EQ(myFactory->CreateInstance(myFactory.Get(), &IID_IUnknown, &myObject), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(myFactory->CreateInstance(nullptr, &IID_QelDatabase, &myObject), E_NOINTERFACE);
    EXPECT_EQ(myFactory->CreateInstance(nullptr, &IID_QelPlugin, nullptr), E_POINTER);

    const auto myPlugin = myComponent.Plugin();
    VARIANT_BOOL myAnswer = VARIANT_TRUE;
    EXPECT_EQ(myPlugin->get_Output(nullptr), E_POINTER);
    EXPECT_EQ(myPlugin->put_Script(nullptr), E_POINTER);
    EXPECT_EQ(myPlugin->putref_QelDatabase(nullptr), E_POINTER);
    EXPECT_EQ(myPlugin->putref_QelTopic(nullptr), E_POINTER);
    EXPECT_EQ(myPlugin->ShowHelp(nullptr), E_POINTER);
    EXPECT_EQ(myPlugin->CallBack(nullptr, &myAnswer), E_POINTER);
    EXPECT_EQ(myAnswer, VARIANT_FALSE);
}

TEST_F(ComponentTest, HasOneIdentityWhicheverInterfaceItIsAskedOf)
{
    const Component myComponent;
    const auto myPlugin = myComponent.Plugin();
    const auto myIdentity = myPlugin.Query<IUnknown>();
    EXPECT_EQ(myPlugin.Query<QelInfo>().Query<IUnknown>().Get(), myIdentity.Get());
    EXPECT_EQ(myPlugin.Query<QelPluginAnimationMain>().Query<IUnknown>().Get(), myIdentity.Get());
    EXPECT_EQ(myPlugin.Query<QelInfo>().Query<QelPlugin>().Get(), myPlugin.Get());
    EXPECT_FALSE(myPlugin.Query<QelStringSort>());
    EXPECT_EQ(myPlugin.Query<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(&IID_QelPlugin), S_OK);
    EXPECT_EQ(myPlugin.Query<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(&IID_QelDatabase), S_FALSE);
}

TEST_F(ComponentTest, StaysLoadedWhileAnObjectOrALockIsLeft)
{
    const Component myComponent;
    void* myObject = nullptr;
    ASSERT_EQ(myComponent.ClassObject(&CLSID_classStringSort, &IID_IClassFactory, &myObject), S_OK);
    auto myFactory = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myObject));
    EXPECT_EQ(myComponent.CanUnloadNow(), S_FALSE);
    myFactory->LockServer(1);
    IClassFactory* myBare = myFactory.Get();
    myBare->AddRef();
    myFactory.Reset();
    myBare->LockServer(0);
    EXPECT_EQ(myComponent.CanUnloadNow(), S_FALSE);
    myBare->Release();
    EXPECT_EQ(myComponent.CanUnloadNow(), S_OK);
}

TEST_F(ComponentTest, IsUnloadedWithoutACallIntoTheHost)
{
    const auto myHelper = MakeCounted<TestHelper>();
    for (int i = 0; i < 2; ++i) // the second time everything is made anew
    {
        const Component myComponent;
        const auto myPlugin = myComponent.Plugin();
        QelBuildHelper* myService = myHelper.Get();
        EXPECT_EQ(myPlugin->putref_QelBuildHelper(&myService), S_OK);
    }
    EXPECT_EQ(myHelper->AddRef(), 4U); // the component's two references were not given back
    myHelper->Release();
    myHelper->Release();
    myHelper->Release();
}

TEST_F(ComponentTest, MakesTheRecordForTheMembersThatNeedItAndForNoOther)
{
    using Call = std::function<void(QelPlugin&)>;
    const auto Reads = [](HRESULT (QelPlugin::*myMember)(BSTR*))
    {
        return [=](QelPlugin& p)
        {
            Read(p, myMember);
        };
    };
    const auto CallsBack = [](int32_t myLink)
    {
        return [=](QelPlugin& p)
        {
            int32_t myNumber = myLink;
            VARIANT_BOOL myAnswer = VARIANT_TRUE;
            EXPECT_EQ(SUCCEEDED(p.CallBack(&myNumber, &myAnswer)), myLink != 0);
            EXPECT_EQ(myAnswer, VARIANT_FALSE);
        };
    };
    const struct
    {
        const char* Name;
        Call Member;
        bool Makes;
    } Cases[] = {
        {"QelThumbnails",
         [](QelPlugin& p)
         {
             QelThumbnails* o = nullptr;
             p.putref_QelThumbnails(&o);
         },
         false},
        {"QelTopic",
         [](QelPlugin& p)
         {
             QelTopic* o = nullptr;
             p.putref_QelTopic(&o);
         },
         false},
        {"InitialScript", Reads(&QelPlugin::get_InitialScript), false},
        {"TextFunction", Reads(&QelPlugin::get_TextFunction), false},
        {"CallBack 1", CallsBack(1), false},
        {"ShowHelp",
         [](QelPlugin& p)
         {
             int32_t n = 7;
             EXPECT_EQ(p.ShowHelp(&n), S_OK);
         },
         false},
        {"Version",
         [](QelPlugin& p)
         {
             Bstr t;
             ComPtr<QelPlugin>(&p).Query<QelInfo>()->get_Version(t.Pointer());
             EXPECT_EQ(t.Value(), u"1.0.19");
         },
         false},
        {"QelDatabase",
         [](QelPlugin& p)
         {
             QelDatabase* o = nullptr;
             p.putref_QelDatabase(&o);
         },
         true},
        {"QelBuildHelper",
         [](QelPlugin& p)
         {
             QelBuildHelper* o = nullptr;
             p.putref_QelBuildHelper(&o);
         },
         true},
        {"put Script", [](QelPlugin& p) { Write(p, u""); }, true},
        {"get Script", Reads(&QelPlugin::get_Script), true},
        {"Output", Reads(&QelPlugin::get_Output), true},
        {"TextSettings", Reads(&QelPlugin::get_TextSettings), true},
        {"ErrorText", Reads(&QelPlugin::get_ErrorText), true},
        {"CallBack 0", CallsBack(0), true},
    };
    const Component myComponent;
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(myCase.Name);
        std::thread([&] { myCase.Member(*myComponent.Plugin().Get()); }).join(); // a record of its own for each
        EXPECT_EQ(RecordWasMade(), myCase.Makes);
        fs::remove_all(myFolder / "qelpluginanimtemp");
    }
}

TEST_F(ComponentTest, KeepsOneRecordForAllObjectsOfAThread)
{
    const Component myComponent;
    const auto myFirst = myComponent.Plugin();
    EXPECT_EQ(Write(*myFirst.Get(), u"<pg.param name=\"image\" value=\"Globo.gif\">"), S_OK);
    EXPECT_NE(Read(*myComponent.Plugin().Get(), &QelPlugin::get_Script).find(u"Globo.gif"), Text::npos);
    std::thread(
        [&] { EXPECT_EQ(Read(*myComponent.Plugin().Get(), &QelPlugin::get_Script).find(u"Globo.gif"), Text::npos); })
        .join();
}

TEST_F(ComponentTest, ReportsAFailureWithNumberDescriptionAndSource)
{
    const Component myComponent;
    const auto myPlugin = myComponent.Plugin();
    EXPECT_EQ(Write(*myPlugin.Get(), u"<pg.param name=\"from\" value=\"1e9\">"), QEL_RESULT(0x800A0006U));
    EXPECT_EQ(FailureText(), u"QelPluginAnimation/Desbordamiento");
    Bstr myText;
    Write(*myPlugin.Get(), u"<pg.param name=image value=abc>");
    EXPECT_EQ(myPlugin->get_TextSettings(myText.Pointer()), QEL_RESULT(0x800A0005U));
    EXPECT_EQ(FailureText(), u"QelPluginAnimation/Llamada a procedimiento o argumento no válidos");
    EXPECT_EQ(myPlugin.Query<QelInfo>()->About(), QEL_RESULT(0x800A0039U)); // no display
    EXPECT_TRUE(FailureText().starts_with(u"QelPluginAnimation/"));

    const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
    int32_t myIndex = 3;
    EXPECT_EQ(mySort->get_Value(&myIndex, myText.Pointer()), QEL_RESULT(0x800A0009U));
}

TEST_F(ComponentTest, TellsTheHostsOwnFailureInTheErrorText)
{
    const Component myComponent;
    const auto myPlugin = myComponent.Plugin();
    const auto myHelper = MakeCounted<TestHelper>();
    QelBuildHelper* myService = myHelper.Get();
    const auto Reason = [&]
    {
        Write(*myPlugin.Get(), u"<pg.param name=image value=a.gif><pg.param name=imagefolder value=(USER)>");
        EXPECT_EQ(Read(*myPlugin.Get(), &QelPlugin::get_Output), u"[Error de plug-in]");
        return Read(*myPlugin.Get(), &QelPlugin::get_ErrorText);
    };
    const auto Orvenal = [](TextView myReason)
    {
        return Text(u"El plug-in \"Orvenal\" ha provocado el error \"").append(myReason).append(u"\".");
    };
    EXPECT_EQ(Reason(), Orvenal(u"91: El programa anfitrión no ha facilitado el servicio necesario"));
    ASSERT_EQ(myPlugin->putref_QelBuildHelper(&myService), S_OK);
    myHelper->Description = u"Disk on fire";
    myHelper->Result = QEL_RESULT(0x800A0BADU);
    EXPECT_EQ(Reason(), Orvenal(u"2989: Disk on fire"));
    myHelper->Result = E_ACCESSDENIED;
    EXPECT_EQ(Reason(), Orvenal(u"-2147024891: Disk on fire"));
    myHelper->Description.clear(); // an old text must not stand for a new failure
    EXPECT_EQ(Reason().find(u"fire"), Text::npos);
    TakeBackHelper(*myPlugin.Get());
    EXPECT_EQ(myHelper->AddRef(), 2U);
    myHelper->Release();
}

TEST_F(ComponentTest, SurvivesAHostThatPutsAnotherModuleInHandInTheMiddleOfAnOutput)
{
    const Component myComponent;
    const auto myPlugin = myComponent.Plugin();
    const auto myHelper = MakeCounted<TestHelper>();
    myHelper->Folder = FromUtf8((myFolder / "").string());
    myHelper->InUniqueName = [&]
    {
        Write(*myPlugin.Get(), u"<pg.param name=playmidi value=0>");
    };
    QelBuildHelper* myService = myHelper.Get();
    ASSERT_EQ(myPlugin->putref_QelBuildHelper(&myService), S_OK);
    Write(*myPlugin.Get(), LibraryModule);
    EXPECT_NE(Read(*myPlugin.Get(), &QelPlugin::get_Output).find(u"qelspr1.gif"), Text::npos);
    TakeBackHelper(*myPlugin.Get());
}

TEST_F(ComponentTest, AnswersTheNamesOfBothInterfacesLateBound)
{
    const Component myComponent;
    const auto myMain = myComponent.Create<QelPluginAnimationMain>(CLSID_Main);
    const auto NumberOf = [&](IDispatch& myObject, Text myName)
    {
        char16_t* myNames = myName.data();
        DISPID theNumber = 0;
        EXPECT_EQ(myObject.GetIDsOfNames(&GUID_NULL, &myNames, 1, 0, &theNumber), S_OK);
        return theNumber;
    };
    const auto Get = [&](DISPID myNumber)
    {
        VARIANT myResult{};
        DISPPARAMS myParams{};
        EXPECT_EQ(myMain->Invoke(myNumber, &GUID_NULL, 0, DISPATCH_PROPERTYGET, &myParams, &myResult, nullptr, nullptr),
                  S_OK);
        const Text theText = TextOfBstr(myResult.bstrVal);
        VariantClear(&myResult);
        return theText;
    };
    EXPECT_EQ(NumberOf(*myMain.Get(), u"INITIALSCRIPT"), 5);
    EXPECT_EQ(NumberOf(*myMain.Get(), u"version"), 23);
    EXPECT_EQ(NumberOf(*myMain.Query<QelInfo>().Get(), u"version"), 2);
    EXPECT_EQ(Get(23), u"1.0.19");

    Bstr myScript(u"<pg.param name=\"link\" value=\"URL:x\">");
    VARIANT myArgument{};
    myArgument.vt = VT_BYREF | VT_BSTR;
    myArgument.pbstrVal = myScript.Pointer();
    DISPID myPut = DISPID_PROPERTYPUT;
    DISPPARAMS myParams{&myArgument, &myPut, 1, 1};
    const DISPID myNumber = NumberOf(*myMain.Get(), u"script");
    EXPECT_EQ(myMain->Invoke(myNumber, &GUID_NULL, 0, DISPATCH_PROPERTYPUT, &myParams, nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_NE(Get(myNumber).find(u"URL:x"), Text::npos);
}

TEST_F(ComponentTest, RegistersBothClassesAndTakesThemBack)
{
    const fs::path myWorkingFolder = fs::current_path();
    fs::current_path(QEL_STAGE);
    {
        const Component myComponent("./QelPluginAnimation.so"); // the registry must hold an absolute path all the same
        fs::current_path(myFolder);
        ASSERT_EQ(myComponent.EntryPoint<DllRegisterServerFunction>("DllRegisterServer")(), S_OK);
        for (const char16_t* myName : {u"QelPluginAnimation.Main", u"qelpluginanimation.CLASSSTRINGSORT"})
        {
            CLSID myClass{};
            void* myObject = nullptr;
            ASSERT_EQ(CLSIDFromProgID(myName, &myClass), S_OK);
            ASSERT_EQ(CoCreateInstance(&myClass, nullptr, CLSCTX_INPROC_SERVER, &IID_IDispatch, &myObject), S_OK);
            static_cast<IDispatch*>(myObject)->Release();
        }
        const auto Unregister = myComponent.EntryPoint<DllUnregisterServerFunction>("DllUnregisterServer");
        CLSID myClass{};
        EXPECT_EQ(Unregister(), S_OK);
        EXPECT_EQ(CLSIDFromProgID(u"QelPluginAnimation.Main", &myClass), CO_E_CLASSSTRING);
        EXPECT_EQ(Unregister(), S_OK);
        CoFreeUnusedLibraries();
    }
    fs::current_path(myWorkingFolder);
}

} // namespace
} // namespace qel
