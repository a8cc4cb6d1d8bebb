/// The record of the module in hand: script, summary and page, on real files.
#include "Environment.h"
#include "errorOf.h"
#include "madePictures.h"
#include "module/FormMain.h"
#include "module/moduleScript.h"
#include "platform/shared/SystemPlatform.h"
#include "resources/stringTable.h"
#include "TemporaryFolder.h"
#include "TestHost.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

namespace qel
{
namespace
{

using namespace std::string_literals;

/// The script of some settings as the format has it, from "name=value|name=value" with escaped values.
Text Params(const Text& mySettings, const Text& myFileTag = {})
{
    Text theScript = u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n" + myFileTag;
    for (size_t i = 0, myEnd = 0; i < mySettings.size(); i = myEnd + 1)
    {
        myEnd = std::min(mySettings.find(u'|', i), mySettings.size());
        const Text myOne = ReplaceAll(mySettings.substr(i, myEnd - i), u"=", u"\" value=\"");
        theScript += u"<pg.param name=\"" + ReplaceAll(myOne + u"\"", u" value=\"\"", u"") + u">\r\n";
    }
    return theScript;
}

class Module : public testing::Test
{
protected:
    Module()
    {
        myHost.UniqueName = u"17";
        myHost.InstanceNumber = 3;
        myHost.MediaFolder = myFolder.Logical(u"media\\");
        myHost.ImageFolder = myFolder.Logical(u"images\\");
        myHost.FileFolder = myFolder.Logical(u"files\\");
        myHost.FileURL = u"files";
        myHost.RecordType = 1;
        myHost.RecordFilename = u"Doc.pdf";
        myHost.RecordURL = u"https://example.org/?a=1&b=2";
        myHost.DataFolder = myFolder.Logical(u"data\\");
        for (const char* const myName : {"media", "images", "files", "component"})
        {
            myFolder.MakeFolder(myName);
        }
        for (const char* const myName : {"Globo.gif", "Globo.jpeg", "g"})
        {
            myFolder.Write("Designs/Fiestas/"s + myName, Gif(120, 80));
        }
        myFolder.Write("Designs/Fiestas/Roto.gif", "GIF89a");
        myFolder.Write("Designs/Fiestas/Vals.mid", "MThd");
        myPorts.componentFolder = myFolder.Logical(u"component");
        Restart();
    }

    void Restart()
    {
        myForm = std::make_unique<FormMain>(myPorts, myConstants, myLead);
        myForm->myBuildHelper = std::make_unique<TestHostServices>(myHost);
        myForm->myDatabase = std::make_unique<TestHostServices>(myHost);
    }

    /// The page text of a module with the library picture alone, changed by further settings.
    Text Output(const Text& mySettings)
    {
        myForm->Script(Params(
            u"image=Globo.gif|imagefolder=Fiestas|midi=Vals.mid|midifolder=Fiestas|playmidi=0|link=|" + mySettings));
        return myForm->Output();
    }

    std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    TemporaryFolder myFolder;
    Environment myEnvironment{{"TMPDIR", myFolder.Native()}};
    Platform myPorts{mySystem->Ports()};
    localConstants myConstants{myFolder.Logical(u"Designs\\"), {}};
    FormLead myLead{myPorts};
    TestHost myHost;
    std::unique_ptr<FormMain> myForm;
};

TEST_F(Module, Output_IsThePageInTheFile)
{
    const std::string myGif = Gif(120, 80);
    myFolder.Write("data/m.dat", "qelarchive1.0\x0B\0\0\0\\qelspr.gif"s + static_cast<char>(myGif.size() & 0xFF) +
                                     static_cast<char>(myGif.size() >> 8) + "\0\0"s + myGif + "\0\0\0\0"s);
    myFolder.Write("qelpluginanimtemp/stale", "");
    myFolder.Write("qelpluginanimtemp/sub/kept", "");
    myFolder.Write("images/qelspr17.gif", "an old one that is longer" + myGif);
    myFolder.Write("media/qelmid17.mid", "an old one");
    Restart();
    EXPECT_EQ(Output(u"image=|playmidi=1"), u"");
    EXPECT_EQ(myForm->ErrorText(), u"No se ha seleccionado ningún motivo.");
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/stale")) << "emptied by a start or for a module without a picture";

    myForm->Script(Params(
        u"image=qelspr.gif|imagefolder=(USER)|midi=Vals.mid|midifolder=Fiestas|from=38353|to=38717|link=UID:4711",
        u"<pg.file filename=\"m.dat\">"));
    std::ifstream myFile(QEL_TEST_DATA "/page.html", std::ios::binary);
    const std::string myExpected{std::istreambuf_iterator<char>(myFile), {}};
    EXPECT_EQ(ToUtf8(myForm->Output()), myExpected);
    EXPECT_EQ(myFolder.Read("images/qelspr17.gif"), myGif);
    EXPECT_EQ(myFolder.Read("media/qelmid17.mid"), "MThd");
    EXPECT_FALSE(myFolder.Exists("qelpluginanimtemp/stale"));
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/sub/kept"));
}

TEST_F(Module, Output_PeriodCoversWholeDays)
{
    const std::tuple<Text, Text, Text> myCases[] = {
        // from, to, the comparisons in the page
        {u"38045", u"38045", u"<new Date(2004, 1, 28)|>new Date(2004, 1, 29)|"},
        {u"38717", u"0", u"<new Date(2005, 11, 31)|"},
        {u"0", u"38717.4", u">new Date(2006, 0, 1)|"},
        {u"0.5", u"-0.5", u""},
        {u"0.6", u"0.6", u"<new Date(1899, 11, 30)|>new Date(1899, 11, 31)|"},
        {u"38352.5", u"2958464", u"<new Date(2004, 11, 31)|>new Date(9999, 11, 31)|"},
    };
    for (const auto& [myFrom, myTo, myComparisons] : myCases)
    {
        Text myLines = ReplaceAll(myComparisons, u"|", u") showme3=false;\r\n");
        myLines = ReplaceAll(ReplaceAll(myLines, u"<", u"if (new Date()<"), u">", u"if (new Date()>");
        EXPECT_EQ(Output(u"showimage=|link=URL:ERROR|from=" + myFrom + u"|to=" + myTo),
                  u"<script type=\"text/javascript\">\r\nvar showme3=true;\r\n" + myLines + u"</script>\r\n");
    }
}

TEST_F(Module, Output_WritesTheLinkUnchanged)
{
    const std::tuple<Text, int32_t, Text> myCases[] = {
        // link, kind of record, tag in the page
        {u"URL:x 'y' ñ", 1, u"<a href=\"x 'y' ñ\">"},
        {u"URL:%3,%4,%5,%7,%1,%2", 1, u"<a href=\"images/qelspr17.gif,120,80,</a>,%1,%2\">"},
        {u"UR", 1, u"<a>"},
        {u"UID:7", 1, u"<a href=\"https://example.org/?a=1&b=2\">"},
        {u"UID:7", 5, u"<a href=\"files/Doc.pdf\">"},
    };
    for (const auto& [myLink, myType, myTag] : myCases)
    {
        myHost.RecordType = myType;
        const Text myPage = Output(u"link=" + myLink);
        EXPECT_NE(myPage.find(u"50\">" + myTag + u"<img"), Text::npos) << ToUtf8(myPage);
    }
}

TEST_F(Module, Output_PictureKeepsItsLastFourCharactersAsEnding)
{
    EXPECT_NE(Output(u"image=g").find(u"\"images/qelspr17g\""), Text::npos);
    EXPECT_NE(Output(u"image=Globo.jpeg").find(u"\"images/qelspr17jpeg\""), Text::npos);
}

TEST_F(Module, Output_StagesALinkedFileOnce)
{
    myHost.RecordType = 5;
    EXPECT_TRUE(Output(u"link=UID:7").starts_with(u"<script")) << "a missing file is no failure";
    EXPECT_FALSE(myFolder.Exists("files/Doc.pdf"));
    for (const char* const myContent : {"first", "second"})
    {
        myFolder.Write("data/Doc.pdf", myContent);
        Output(u"link=UID:7");
        EXPECT_EQ(myFolder.Read("files/Doc.pdf"), "first") << "a copy that is there stays";
    }
}

TEST_F(Module, Output_AsksTheHostInOrderAndHostMayChangeTheModule)
{
    const Text myScript = Params(
        u"image=Globo.gif|imagefolder=Fiestas|midi=Vals.mid|midifolder=Fiestas|from=38353|to=38717|link=UID:4711",
        u"<pg.file filename=\"m.dat\">");
    const Text myOtherScript = Params(u"image=g|imagefolder=Fiestas|midi=|playmidi=0|link=URL:other");
    std::string myCalls;
    int myCount = 0, myChangingCall = 0;
    myHost.RecordType = 5;
    myHost.Called = [&](const std::string& myMember)
    {
        myCalls += myMember + " ";
        if (++myCount == myChangingCall)
        {
            myForm->Script(myOtherScript);
            myForm->myBuildHelper.reset();
            myForm->myDatabase.reset();
        }
    };
    myForm->Script(myScript);
    const Text myPage = myForm->Output();
    EXPECT_EQ(myCalls, "DataFolder "                                   // for the archive
                       "InstanceNumber InstanceNumber InstanceNumber " // for the start and the period
                       "InstanceNumber UniqueName "                    // for the picture
                       "SeekUID EOF RecordType DataFolder RecordFilename FileFolder RecordFilename FileURL "
                       "RecordFilename "                                   // for its link
                       "ImageFolder ImageURL "                             // for its copy
                       "UniqueName MediaFolder InstanceNumber MediaURL "); // for the tune
    for (const int myCalled = std::exchange(myCount, 0); myChangingCall < myCalled; myCount = 0)
    {
        ++myChangingCall;
        Restart();
        myForm->Script(myScript);
        EXPECT_EQ(ToUtf8(myForm->Output()), ToUtf8(myPage)) << myChangingCall;
        EXPECT_NE(myForm->Script().find(u"URL:other"), Text::npos) << "what the host wrote is in hand";
    }
}

TEST_F(Module, Output_FailureGivesItsReasonAndNoPage)
{
    const std::pair<Text, int32_t> myCases[] = {
        {u"image=Falta.gif", 53},
        {u"imagefolder=Falta", 76},
        {u"imagefolder=(USER)|image=qelspr.gif", 53},
        {u"image=Roto.gif|link=URL:ERROR", 481},
        {u"to=2958465", 6},
        {u"midi=Falta.mid|playmidi=1", 53},
    };
    for (const auto& [mySettings, myNumber] : myCases)
    {
        EXPECT_EQ(Output(mySettings), u"[Error de plug-in]");
        const Text myReason = NumberText(int64_t{myNumber}) + u": " + Text(ErrorDescription(myNumber));
        EXPECT_EQ(myForm->ErrorText(), u"El plug-in \"Orvenal\" ha provocado el error \"" + myReason + u"\".");
        EXPECT_EQ(myFolder.Exists("images/qelspr17.gif"), mySettings.starts_with(u"midi")) << "what was staged stays";
    }
    myFolder.Write("Designs/Fiestas/Falta.mid", "MThd");
    EXPECT_TRUE(myForm->Output().starts_with(u"<script"));
    EXPECT_NE(myForm->ErrorText(), u"") << "a success does not clear the reason";

    myForm->Script(u"");
    EXPECT_EQ(myForm->ErrorText(), u"");
}

TEST_F(Module, Start_RefusesALinkAsTemporaryFolder)
{
    std::filesystem::rename(myFolder.Native("qelpluginanimtemp"), myFolder.Native("elsewhere"));
    myFolder.Write("elsewhere/mine", "");
    std::filesystem::create_directory_symlink(myFolder.Native("elsewhere"), myFolder.Native("qelpluginanimtemp"));
    Restart();
    EXPECT_EQ(Output(u""), u"[Error de plug-in]");
    EXPECT_NE(myForm->ErrorText().find(u"\"75: "), Text::npos);
    EXPECT_TRUE(myFolder.Exists("elsewhere/mine")) << "emptied through a link";
}

TEST_F(Module, Start_WithoutATemporaryPathWorksInTheComponentsFolder)
{
    myEnvironment.Set("TMPDIR", "/nonexistent"); // and so on: the system has no temporary path
    myEnvironment.Unset("XDG_RUNTIME_DIR");
    myEnvironment.Set("XDG_CACHE_HOME", "/dev/null");
    Restart();
    EXPECT_TRUE(myFolder.Exists("component/qelpluginanimtemp"));
    EXPECT_EQ(myForm->TempMIDI(), myFolder.Logical(u"component\\qelmid.mid"));
}

TEST_F(Module, Script_IsReadInItsOrderAndResetKeepsOnlyTheLink)
{
    const Text myNew = u"image=|imagefolder=|midi=|midifolder=|imagemode=none|midimode=0|";
    const Text myRest = u"showimage=1|playmidi=1|from=0|to=0|link=";
    const Text myExample =
        Params(u"image=Globo.gif|imagefolder=Fiestas|midi=qelmid.mid|midifolder=(USER)|imagemode=jpg|"
               u"midimode=1|showimage=1|playmidi=0|from=38353|to=38383|link=&quot;&lt;&gt;&amp;amp;",
               u"<pg.file filename=\"archive7.dat\">\r\n");
    EXPECT_EQ(InitialScript() + u"\r\n", Params(u""));
    EXPECT_EQ(myForm->Script(), Params(myNew + u"showimage=0|playmidi=0|from=0|to=0|link="))
        << "before the first script nothing is on";
    myForm->Script(InitialScript());
    EXPECT_EQ(myForm->Script(), Params(myNew + myRest));
    myForm->Script(myExample);
    EXPECT_EQ(myForm->Script(), myExample);
    myForm->Script(u"");
    EXPECT_EQ(myForm->Script(), Params(myNew + myRest + u"&quot;&lt;&gt;&amp;amp;"));
    myForm->Script(u"<pg.param name=link>");
    EXPECT_EQ(myForm->Script(), Params(myNew + myRest));
}

TEST_F(Module, Script_ToleratesUnusualText)
{
    const Text myStart = u"image=a|imagefolder=|midi=|midifolder=|imagemode=none|midimode=0|";
    const Text myRest = u"showimage=1|playmidi=1|from=0|to=0|link=";
    const std::tuple<Text, Text, bool> myCases[] = {
        // script, the settings that come out, whether it is of another version
        {u"<pg.param name=showimage><pg.param name=playmidi value=\" 0 \"><pg.param name=midimode value=no>"
         u"<pg.param name=imagemode value=JPG><pg.param name=from value=38353x><pg.param name=to value=\" +38353.5\">",
         u"image=|imagefolder=|midi=|midifolder=|imagemode=none|midimode=1|showimage=0|playmidi=0|from=38353|to=38354|"
         u"link=",
         false},
        {u"<pg.param name=image value=a><pg.param name=from value=1e2><pg.param name=to value=+2.5E+2e9>",
         myStart + u"showimage=1|playmidi=1|from=100|to=250|link=", false},
        {u"<pg.Param name=image value=x></pg.param name=image value=x><pg.param name=Image value=x><pg.x name=image "
         u"value=x>"
         u"text<PG.param VALUE=x NAME=midi><pg.param name=midifolder value=a><pg.param name=midifolder value=b value=c "
         u"name=midi><pg.param name=imagemode value=gif><pg.param name=from value=38352.5>",
         u"image=|imagefolder=|midi=x|midifolder=b|imagemode=gif|midimode=0|showimage=1|playmidi=1|from=38352|to=0|"
         u"link=",
         false},
        {u"<pg.plugin uid=other version=1.0><pg.param name=image value=a>", myStart + myRest, false},
        {u"<pg.param name=image value=a><pg.plugin><pg.param name=image value=b>", myStart + myRest, true},
    };
    for (const auto& [myScript, mySettings, myIsOther] : myCases)
    {
        myForm->Script(myScript);
        EXPECT_EQ(myForm->Script(), Params(mySettings));
        EXPECT_EQ(myForm->ErrorText(), myIsOther ? u"No se ha seleccionado ningún motivo." : u"");
    }
    EXPECT_EQ(ErrorOf([&] { myForm->Script(Params(u"image=a|to=2958466|image=b")); }), ErrorNumber::Overflow);
    EXPECT_EQ(myForm->Script(), Params(myStart + myRest)) << "the settings before it are in force";
}

TEST_F(Module, TextSettings_JoinsSentences)
{
    const std::pair<Text, TextView> myCases[] = {
        {u"midi=Vals.mid|from=1", LoadResString(StringId::SummaryNoImage)},
        {u"image=Globo.gif|midi=Vals.mid|to=38353", u"Se muestra el motivo <b>\"Globo\"</b>. Se reproduce el sonido de "
                                                    u"fondo <b>\"Vals\"</b>. El control de tiempo "
                                                    u"se ha activado."},
        {u"image=x|showimage=0|playmidi=0|from=0.5",
         u"No se muestra ninguna animación. No se reproduce ningún sonido de fondo. "},
        {u"image=Globo.jpeg|playmidi=0",
         u"Se muestra el motivo <b>\"Globo.\"</b>. No se reproduce ningún sonido de fondo. "},
        {u"image=.gif|midi=.mid", u"Se muestra el motivo <b>\"\"</b>. Se reproduce el sonido de fondo <b>\"\"</b>. "},
    };
    for (const auto& [mySettings, mySummary] : myCases)
    {
        myForm->Script(Params(mySettings));
        EXPECT_EQ(myForm->TextSettings(), mySummary);
    }
    myForm->Script(Params(u"image=abc|playmidi=0")); // shorter than an ending
    EXPECT_EQ(ErrorOf([&] { myForm->TextSettings(); }), ErrorNumber::InvalidArgument);
}

} // namespace
} // namespace qel
