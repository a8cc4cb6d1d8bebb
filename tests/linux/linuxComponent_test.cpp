// What the built component and its runtime do on Linux alone: loading of other libraries, exports, and the registry.
#include "componentTest.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace qel
{
namespace
{

namespace fs = std::filesystem;

TEST_F(Component, Output_LoadsNeitherToolkitNorSynthesiser)
{
    const LoadedComponent myComponent(QEL_COMPONENT);
    const auto myPlugin = myComponent.Plugin();
    EXPECT_TRUE(MakesAPage(*myPlugin.Get()));
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

TEST_F(Component, Register_LoadedByARelativePath_WritesTheAbsoluteOne)
{
    const fs::path myWorkingFolder = fs::current_path();
    fs::current_path(QEL_STAGE);
    void* const myComponent = dlopen("./QelPluginAnimation.so", RTLD_NOW | RTLD_LOCAL);
    fs::current_path(myFolder.Native());
    EXPECT_EQ(reinterpret_cast<DllRegisterServerFunction>(dlsym(myComponent, "DllRegisterServer"))(), S_OK);
    void* myObject = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_Main, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &myObject), S_OK);
    static_cast<IDispatch*>(myObject)->Release();
    CoFreeUnusedLibraries();
    dlclose(myComponent);
    fs::current_path(myWorkingFolder);
}

TEST_F(Component, Register_LoadedThroughALink_WritesTheLinkAndWorksFromTheRealFolder)
{
    const fs::path myLink = myFolder / "enlace.so";
    fs::create_symlink(QEL_STAGE "/QelPluginAnimation.so", myLink);
    const LoadedComponent myComponent(myLink.c_str());
    EXPECT_TRUE(MakesAPage(*myComponent.Plugin().Get())) << "the library lies beside the file";
    EXPECT_EQ(myComponent.EntryPoint<DllRegisterServerFunction>("DllRegisterServer")(), S_OK);
    const std::string myLines = myFolder.Read("data/qel/classes/{4FCC59CA-C869-4963-A843-14D7C29AFA23}.class");
    EXPECT_NE(myLines.find("Library=" + myLink.string() + "\n"), std::string::npos) << myLines;
}

} // namespace
} // namespace qel
