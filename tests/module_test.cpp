/// The record of the module in hand, on real files. What a host sees of it, such as scripts, summaries, pages and the
/// files of pages, qelhost check tests on the built component; here is what a host does not see.
#include "FormTest.h"
#include "testSystem.h"
#include "text/encodings.h"

#include <utility>

namespace qel
{
namespace
{

constexpr TextView WholeScript =
    u"<pg.file filename=m.dat><pg.param name=image value=Globo.gif><pg.param name=imagefolder value=Fiestas>"
    u"<pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas><pg.param name=from value=38353>"
    u"<pg.param name=to value=38717><pg.param name=link value=UID:4711>";

using Module = FormTest;

TEST_F(Module, Output_EmptiesTheTemporaryFolderForAPageWithAPicture)
{
    myFolder.Write("qelpluginanimtemp/stale", "");
    myFolder.Write("qelpluginanimtemp/sub/kept", "");
    Restart(u"<pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas>");
    EXPECT_EQ(myForm->Output(), u"");
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/stale")) << "emptied by a start or for a module without a picture";
    myForm->Script(WholeScript);
    EXPECT_NE(myForm->Output(), u"[Error de plug-in]");
    EXPECT_FALSE(myFolder.Exists("qelpluginanimtemp/stale"));
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/sub/kept"));
}

TEST_F(Module, Output_HostMayChangeTheModuleInAnyCall)
{
    myFolder.Write("library/Fiestas/g", Gif(120, 80));
    Restart(WholeScript);
    int myCount = 0, myChangingCall = 0;
    myHost.Called = [&](const std::string& /*myMember*/)
    {
        if (++myCount == myChangingCall)
        {
            myForm->Script(u"<pg.param name=image value=g><pg.param name=imagefolder value=Fiestas>"
                           u"<pg.param name=playmidi value=0><pg.param name=link value=URL:other>");
            myForm->myBuildHelper.reset();
            myForm->myDatabase.reset();
        }
    };
    const Text myPage = myForm->Output();
    EXPECT_NE(myPage, u"[Error de plug-in]");
    for (const int myCalled = std::exchange(myCount, 0); myChangingCall < myCalled; myCount = 0)
    {
        ++myChangingCall;
        Restart(WholeScript);
        EXPECT_EQ(ToUtf8(myForm->Output()), ToUtf8(myPage)) << myChangingCall;
        EXPECT_NE(myForm->Script().find(u"URL:other"), Text::npos) << "what the host wrote is in hand";
    }
}

TEST_F(Module, Start_RefusesALinkAsTemporaryFolder)
{
    std::filesystem::rename(myFolder.Native("qelpluginanimtemp"), myFolder.Native("elsewhere"));
    myFolder.Write("elsewhere/mine", "");
    LinkFolder(myFolder / "elsewhere", myFolder / "qelpluginanimtemp");
    Restart(WholeScript);
    EXPECT_EQ(myForm->Output(), u"[Error de plug-in]");
    EXPECT_NE(myForm->ErrorText().find(u"\"75: "), Text::npos);
    EXPECT_TRUE(myFolder.Exists("elsewhere/mine")) << "emptied through a link";
}

TEST_F(Module, Start_WithoutATemporaryPathWorksInTheComponentsFolder)
{
    myFolder.MakeFolder("component");
    for (const auto& [myName, myValue] : NoTemporaryPath)
    {
        myEnvironment.Set(myName, myValue);
    }
    Restart(WholeScript);
    EXPECT_TRUE(myFolder.Exists("component/qelpluginanimtemp"));
    EXPECT_EQ(myForm->TempMIDI(), myFolder.Logical(u"component\\qelmid.mid"));
}

TEST_F(Module, Script_BeforeTheFirstOneNothingIsOn)
{
    const Text myStored = FormMain(myPorts, myConstants, myLead).Script();
    EXPECT_NE(myStored.find(u"\"showimage\" value=\"0\""), Text::npos);
    EXPECT_NE(myStored.find(u"\"playmidi\" value=\"0\""), Text::npos);
}

} // namespace
} // namespace qel
