// The built component, opened through its entry points as a host opens it. qelhost check tests what every component has
// to do; these tests are about this one alone. What it does on Linux alone is tested in linux/linuxComponent_test.cpp.
#include "componentTest.h"

#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace qel
{

const char16_t* const ErrorSource = u"component_test";

namespace
{

namespace fs = std::filesystem;

// First, before another test loads what this one must not find.
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
