// The built component, opened through its entry points as a host opens it. qelhost check tests what every component has
// to do; these tests are about this one alone.
#include "com/Bstr.h"
#include "comTestHost.h"
#include "Environment.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

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

/// The loaded component. It is closed when the object goes.
class LoadedComponent
{
public:
    explicit LoadedComponent(const char* myPath = QEL_STAGE "/QelPluginAnimation.so")
        : myLibrary(dlopen(myPath, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(myLibrary, nullptr) << dlerror();
    }
    ~LoadedComponent() { dlclose(myLibrary); }

    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return reinterpret_cast<Function>(dlsym(myLibrary, myName));
    }

    ComPtr<IClassFactory> Factory() const
    {
        const auto myClassObject = EntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
        void* theFactory = nullptr;
        EXPECT_EQ(myClassObject(CLSID_Main, IID_IClassFactory, &theFactory), S_OK);
        return ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(theFactory));
    }

    ComPtr<QelPlugin> Plugin() const
    {
        void* thePlugin = nullptr;
        EXPECT_EQ(Factory()->CreateInstance(nullptr, IID_QelPlugin, &thePlugin), S_OK);
        return ComPtr<QelPlugin>::Adopt(static_cast<QelPlugin*>(thePlugin));
    }

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

using Call = std::function<HRESULT(QelPlugin&)>;

Call Reads(HRESULT (QelPlugin::*myMember)(BSTR*))
{
    return [=](QelPlugin& myPlugin)
    {
        Bstr theText;
        return (myPlugin.*myMember)(theText.Pointer());
    };
}

template <class Service>
Call TakesBack(HRESULT (QelPlugin::*myMember)(Service**))
{
    return [=](QelPlugin& myPlugin)
    {
        Service* myNone = nullptr;
        return (myPlugin.*myMember)(&myNone);
    };
}

Call CallsBack(int32_t myLink)
{
    return [=](QelPlugin& myPlugin)
    {
        int32_t myNumber = myLink;
        VARIANT_BOOL theAnswer = VARIANT_TRUE;
        return myPlugin.CallBack(&myNumber, &theAnswer);
    };
}

/// Each test has temporary files and a class registry of its own.
class Component : public testing::Test
{
protected:
    Component()
    {
        for (const char* myDisplay : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        {
            myEnvironment.Unset(myDisplay); // no window may come up
        }
    }

    /// The page of the library's module, built with a service of this folder.
    Text LibraryPage(QelPlugin& myPlugin)
    {
        TestHost myHost;
        myHost.BuildInto(FromUtf8(myFolder.Native()) + u"/");
        const auto myHelper = MakeCounted<ComTestBuildHelper>(myHost);
        QelBuildHelper* myService = myHelper.Get();
        EXPECT_EQ(myPlugin.putref_QelBuildHelper(&myService), S_OK);
        EXPECT_EQ(Write(myPlugin, LibraryModule), S_OK);
        const Text thePage = Read(myPlugin, &QelPlugin::get_Output);
        EXPECT_EQ(TakesBack(&QelPlugin::putref_QelBuildHelper)(myPlugin), S_OK);
        return thePage;
    }

    const TemporaryFolder myFolder;
    Environment myEnvironment{{TemporaryFolderVariable, myFolder.Native()},
                              {"XDG_DATA_HOME", myFolder.Native("data")},
                              {"XDG_DATA_DIRS", myFolder.Native()}};
};

// First, before another test loads what this one must not find.
TEST_F(Component, Output_LoadsNeitherToolkitNorSynthesiser)
{
    const LoadedComponent myComponent;
    const auto myPlugin = myComponent.Plugin();
    EXPECT_TRUE(LibraryPage(*myPlugin.Get()).starts_with(u"<script"));
    EXPECT_TRUE(Read(*myPlugin.Get(), &QelPlugin::get_TextSettings).starts_with(u"Se muestra"));
    std::ifstream myMaps("/proc/self/maps");
    const std::string myMapped((std::istreambuf_iterator<char>(myMaps)), {});
    EXPECT_NE(myMapped.find("QelPluginAnimation.so"), std::string::npos);
    for (const char* myLibrary : {"libQt", "libfluidsynth", "libX11", "libxcb", "libasound", "libpulse"})
    {
        EXPECT_EQ(myMapped.find(myLibrary), std::string::npos) << myLibrary;
    }
}

TEST_F(Component, Exports_OfTheRuntimeAreTheDocumentedOnes)
{
    const std::string myCommand =
        "[ \"$(LC_ALL=C nm -D --defined-only --format=just-symbols '" QEL_STAGE "/libqelcom.so' | tr '\\n' ' ')\" = "
        "'CLSIDFromProgID CoCreateInstance CoFreeUnusedLibraries CreateErrorInfo GetErrorInfo QelRegisterClass "
        "QelUnregisterClass SetErrorInfo SysAllocString SysAllocStringLen SysFreeString SysStringLen VariantChangeType "
        "VariantClear VariantInit ' ]";
    EXPECT_EQ(std::system(myCommand.c_str()), 0) << myCommand;
}

TEST_F(Component, Members_MakeTheRecordOnlyWhereTheyNeedIt)
{
    const struct
    {
        std::string Name;
        Call Member;
        bool Makes;
    } Cases[] = {
        {"QelThumbnails", TakesBack(&QelPlugin::putref_QelThumbnails), false},
        {"InitialScript", Reads(&QelPlugin::get_InitialScript), false},
        {"CallBack 1", CallsBack(1), false},
        {"QelDatabase", TakesBack(&QelPlugin::putref_QelDatabase), true},
        {"QelBuildHelper", TakesBack(&QelPlugin::putref_QelBuildHelper), true},
        {"put Script", [](QelPlugin& myPlugin) { return Write(myPlugin, u""); }, true},
        {"get Script", Reads(&QelPlugin::get_Script), true},
        {"Output", Reads(&QelPlugin::get_Output), true},
        {"TextSettings", Reads(&QelPlugin::get_TextSettings), true},
        {"ErrorText", Reads(&QelPlugin::get_ErrorText), true},
        {"CallBack 0", CallsBack(0), true},
    };
    const LoadedComponent myComponent;
    const fs::path myRecord = myFolder / "qelpluginanimtemp";
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(myCase.Name);
        HRESULT theResult = E_FAIL;
        std::thread([&] { theResult = myCase.Member(*myComponent.Plugin().Get()); }).join(); // each has its own record
        EXPECT_EQ(FAILED(theResult), myCase.Name == "CallBack 0");
        EXPECT_EQ(fs::exists(myRecord), myCase.Makes);
        fs::remove_all(myRecord);
    }
}

TEST_F(Component, Register_LoadedByARelativePath_WritesTheAbsoluteOne)
{
    const fs::path myWorkingFolder = fs::current_path();
    fs::current_path(QEL_STAGE);
    {
        const LoadedComponent myComponent("./QelPluginAnimation.so");
        fs::current_path(myFolder.Native());
        EXPECT_EQ(myComponent.EntryPoint<DllRegisterServerFunction>("DllRegisterServer")(), S_OK);
        void* myObject = nullptr;
        ASSERT_EQ(CoCreateInstance(CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &myObject), S_OK);
        static_cast<IDispatch*>(myObject)->Release();
        CoFreeUnusedLibraries();
    }
    fs::current_path(myWorkingFolder);
}

TEST_F(Component, Register_LoadedThroughALink_WritesTheLinkAndWorksFromTheRealFolder)
{
    const fs::path myLink = myFolder / "enlace.so";
    fs::create_symlink(QEL_STAGE "/QelPluginAnimation.so", myLink);
    const LoadedComponent myComponent(myLink.c_str());
    EXPECT_TRUE(LibraryPage(*myComponent.Plugin().Get()).starts_with(u"<script")) << "the library lies beside the file";
    EXPECT_EQ(myComponent.EntryPoint<DllRegisterServerFunction>("DllRegisterServer")(), S_OK);
    const std::string myLines = myFolder.Read("data/qel/classes/{4FCC59CA-C869-4963-A843-14D7C29AFA23}.class");
    EXPECT_NE(myLines.find("Library=" + myLink.string() + "\n"), std::string::npos) << myLines;
}

TEST_F(Component, RefusedCall_LeavesErrorInformationOfTheComponent)
{
    const LoadedComponent myComponent;
    const auto myClassObject = myComponent.EntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
    const auto myFactory = myComponent.Factory();
    const auto myPlugin = myComponent.Plugin();
    void* theObject = nullptr;
    VARIANT_BOOL theAnswer = VARIANT_TRUE;
    const std::pair<std::function<HRESULT()>, HRESULT> myCases[] = {
        {[&] { return myClassObject(IID_IUnknown, IID_IClassFactory, &theObject); }, CLASS_E_CLASSNOTAVAILABLE},
        {[&] { return myClassObject(CLSID_Main, IID_QelPlugin, &theObject); }, E_NOINTERFACE},
        {[&] { return myFactory->CreateInstance(myFactory.Get(), IID_QelPlugin, &theObject); }, CLASS_E_NOAGGREGATION},
        {[&] { return myFactory->CreateInstance(nullptr, IID_QelDatabase, &theObject); }, E_NOINTERFACE},
        {[&] { return myFactory->CreateInstance(nullptr, IID_QelPlugin, nullptr); }, E_POINTER},
        {[&] { return myPlugin->putref_QelThumbnails(nullptr); }, E_POINTER},
        {[&] { return myPlugin->put_Script(nullptr); }, E_POINTER},
        {[&] { return myPlugin->get_Output(nullptr); }, E_POINTER},
        {[&] { return myPlugin->CallBack(nullptr, &theAnswer); }, E_POINTER},
    };
    for (int i = 0; const auto& [myCall, myResult] : myCases)
    {
        SCOPED_TRACE(i++);
        ReportFailure(E_FAIL, u"older failure");
        EXPECT_EQ(myCall(), myResult);
        ComPtr<IErrorInfo> myInfo;
        ASSERT_EQ(GetErrorInfo(0, myInfo.Receive()), S_OK);
        Bstr mySource;
        EXPECT_EQ(myInfo->GetSource(mySource.Pointer()), S_OK);
        EXPECT_EQ(mySource.Value(), u"QelPluginAnimation");
    }
    EXPECT_EQ(theAnswer, VARIANT_FALSE) << "a failed call gives an empty value";
}

TEST_F(Component, LockServer_UndoneTooOften_KeepsObjectsAndLaterLocks)
{
    const LoadedComponent myComponent;
    const auto CanUnloadNow = myComponent.EntryPoint<DllCanUnloadNowFunction>("DllCanUnloadNow");
    auto myFactory = myComponent.Factory();
    EXPECT_EQ(myFactory->LockServer(0), S_OK);
    EXPECT_EQ(CanUnloadNow(), S_FALSE) << "the factory is in use";
    EXPECT_EQ(myFactory->LockServer(1), S_OK);
    myFactory.Reset();
    EXPECT_EQ(CanUnloadNow(), S_FALSE) << "locked";
    EXPECT_EQ(myComponent.Factory()->LockServer(0), S_OK);
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

} // namespace
} // namespace qel
