// The built component, opened through its entry points as a host opens it. qelhost check tests what every component has
// to do; these tests are about this one alone. What it does on Linux alone is tested in linux/linuxComponent_test.cpp.
#include "componentTest.h"

#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <tuple>

namespace qel
{

const char16_t* const ErrorSource = u"component_test";

namespace
{

namespace fs = std::filesystem;

int32_t CallBack(QelPlugin& myPlugin, int32_t myLink)
{
    VARIANT_BOOL theAnswer = VARIANT_TRUE;
    return myPlugin.CallBack(&myLink, &theAnswer);
}

// First, before another test loads what this one must not find.
TEST_F(Component, Members_MakeTheRecordOnlyWhereTheyNeedIt)
{
    using Plug = QelPlugin;
    const std::tuple<std::string, std::function<void(Plug&)>, bool> myCases[] = {
        {"QelThumbnails", [](Plug& p) { Put<QelThumbnails>(p, &Plug::putref_QelThumbnails, nullptr); }, false},
        {"InitialScript", [](Plug& p) { Read(p, &Plug::get_InitialScript); }, false},
        {"CallBack 1", [](Plug& p) { EXPECT_EQ(CallBack(p, 1), S_OK); }, false},
        {"QelDatabase", [](Plug& p) { Put<QelDatabase>(p, &Plug::putref_QelDatabase, nullptr); }, true},
        {"QelBuildHelper", [](Plug& p) { Put<QelBuildHelper>(p, &Plug::putref_QelBuildHelper, nullptr); }, true},
        {"put Script", [](Plug& p) { Write(p, u""); }, true},
        {"get Script", [](Plug& p) { Read(p, &Plug::get_Script); }, true},
        {"Output", [](Plug& p) { Read(p, &Plug::get_Output); }, true},
        {"TextSettings", [](Plug& p) { Read(p, &Plug::get_TextSettings); }, true},
        {"ErrorText", [](Plug& p) { Read(p, &Plug::get_ErrorText); }, true},
        {"CallBack 0", [](Plug& p) { EXPECT_TRUE(FAILED(CallBack(p, 0))); }, true},
    };
    const LoadedComponent myComponent(QEL_COMPONENT);
    for (const auto& [myName, myCall, myMakesIt] : myCases)
    {
        SCOPED_TRACE(myName);
        std::thread([&, &myMember = myCall] { myMember(*myComponent.Plugin().Get()); })
            .join(); // each has its own record
        EXPECT_EQ(myFolder.Exists("qelpluginanimtemp"), myMakesIt);
        fs::remove_all(myFolder / "qelpluginanimtemp");
    }
}

} // namespace
} // namespace qel
