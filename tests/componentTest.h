/// What the tests of the built component share: the loaded component, calls of it, and a folder of their own.
#pragma once

#include "com/Bstr.h"
#include "comTestHost.h"
#include "Environment.h"
#include "Library.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

namespace qel
{

/// The loaded component. It is closed when the object goes.
class LoadedComponent
{
public:
    explicit LoadedComponent(const std::string& myPath = QEL_STAGE "/" + LibraryFile("QelPluginAnimation"))
        : myLibrary(myPath)
    {
        EXPECT_TRUE(myLibrary.IsLoaded()) << myPath;
    }

    template <class Function>
    Function EntryPoint(const char* myName) const
    {
        return myLibrary.EntryPoint<Function>(myName);
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
    const Library myLibrary;
};

/// A module with a motif and a tune of the library that ships.
constexpr TextView LibraryModule = u"<pg.param name=image value=Globo.gif><pg.param name=imagefolder value=Fiestas>"
                                   u"<pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas>";

inline Text Read(QelPlugin& myPlugin, HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(BSTR*))
{
    Bstr theText;
    EXPECT_EQ((myPlugin.*myMember)(theText.Pointer()), S_OK);
    return theText.Value();
}

inline HRESULT Write(QelPlugin& myPlugin, TextView myScript)
{
    Bstr myText(myScript);
    return myPlugin.put_Script(myText.Pointer());
}

using Call = std::function<HRESULT(QelPlugin&)>;

inline Call Reads(HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(BSTR*))
{
    return [=](QelPlugin& myPlugin)
    {
        Bstr theText;
        return (myPlugin.*myMember)(theText.Pointer());
    };
}

template <class Service>
Call TakesBack(HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(Service**))
{
    return [=](QelPlugin& myPlugin)
    {
        Service* myNone = nullptr;
        return (myPlugin.*myMember)(&myNone);
    };
}

inline Call CallsBack(int32_t myLink)
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
    Environment myEnvironment{{"TMPDIR", myFolder.Native()},
                              {"TMP", myFolder.Native()}, // of Windows
                              {"XDG_DATA_HOME", myFolder.Native("data")},
                              {"XDG_DATA_DIRS", myFolder.Native()}};
};

} // namespace qel
