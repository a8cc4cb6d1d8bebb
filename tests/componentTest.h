/// What the tests of the built component share: the loaded component, calls of it, and a folder of their own.
#pragma once

#include "com/Bstr.h"
#include "comTestHost.h"
#include "Environment.h"
#include "LoadedComponent.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace qel
{

inline Text Read(QelPlugin& myPlugin, HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(BSTR*))
{
    Bstr theText;
    EXPECT_EQ((myPlugin.*myMember)(theText.Pointer()), S_OK);
    return theText.Value();
}

inline void Write(QelPlugin& myPlugin, TextView myScript)
{
    Bstr myText(myScript);
    EXPECT_EQ(myPlugin.put_Script(myText.Pointer()), S_OK);
}

/// Hands a service in, or takes it back: null.
template <class Service>
void Put(QelPlugin& myPlugin, HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(Service**), Service* myService)
{
    EXPECT_EQ((myPlugin.*myMember)(&myService), S_OK);
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

    /// True if a page comes out, with a motif and a tune of the library that ships.
    bool MakesAPage(QelPlugin& myPlugin)
    {
        TestHost myHost;
        myHost.BuildInto(FromUtf8(myFolder.Native()) + u"/");
        const auto myHelper = MakeCounted<ComTestBuildHelper>(myHost);
        Put<QelBuildHelper>(myPlugin, &QelPlugin::putref_QelBuildHelper, myHelper.Get());
        Write(myPlugin, u"<pg.param name=image value=Globo.gif><pg.param name=imagefolder value=Fiestas>"
                        u"<pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas>");
        const Text myPage = Read(myPlugin, &QelPlugin::get_Output);
        Put<QelBuildHelper>(myPlugin, &QelPlugin::putref_QelBuildHelper, nullptr);
        return myPage.starts_with(u"<script");
    }

    const TemporaryFolder myFolder;
    Environment myEnvironment{{"TMPDIR", myFolder.Native()},
                              {"TMP", myFolder.Native()}, // of Windows
                              {"XDG_DATA_HOME", myFolder.Native("data")},
                              {"XDG_DATA_DIRS", myFolder.Native()}};
};

} // namespace qel
