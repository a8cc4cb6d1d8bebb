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
#include "testSystem.h"
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

/// The params of a script, each with its value as the script has it.
using Settings = std::vector<std::pair<TextView, Text>>;

/// The script of some settings as the format has it.
Text Params(const Settings& mySettings, const Text& myFileTag = {})
{
    Text theScript = u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n" + myFileTag;
    for (const auto& [myName, myValue] : mySettings)
    {
        theScript.append(u"<pg.param name=\"").append(myName).append(u"\"");
        theScript += (myValue.empty() ? u"" : u" value=\"" + myValue + u"\"") + u">\r\n";
    }
    return theScript;
}

/// All settings in the order of the format: those of a new module, changed by others.
Settings All(const Settings& myChanges)
{
    Settings theSettings = {{u"image", u""},         {u"imagefolder", u""}, {u"midi", u""},       {u"midifolder", u""},
                            {u"imagemode", u"none"}, {u"midimode", u"0"},   {u"showimage", u"1"}, {u"playmidi", u"1"},
                            {u"from", u"0"},         {u"to", u"0"},         {u"link", u""}};
    for (const auto& [myName, myValue] : myChanges)
    {
        std::ranges::find(theSettings, myName, &Settings::value_type::first)->second = myValue;
    }
    return theSettings;
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
    Text Output(const Settings& mySettings)
    {
        Settings myAll = {{u"image", u"Globo.gif"},    {u"imagefolder", u"Fiestas"}, {u"midi", u"Vals.mid"},
                          {u"midifolder", u"Fiestas"}, {u"playmidi", u"0"},          {u"link", u""}};
        myAll.insert(myAll.end(), mySettings.begin(), mySettings.end());
        myForm->Script(Params(myAll));
        return myForm->Output();
    }

    std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    TemporaryFolder myFolder;
    Environment myEnvironment{{TemporaryFolderVariable, myFolder.Native()}};
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
    EXPECT_EQ(Output({{u"image", u""}, {u"playmidi", u"1"}}), u"");
    EXPECT_EQ(myForm->ErrorText(), u"No se ha seleccionado ningún motivo.");
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/stale")) << "emptied by a start or for a module without a picture";

    myForm->Script(Params({{u"image", u"qelspr.gif"},
                           {u"imagefolder", u"(USER)"},
                           {u"midi", u"Vals.mid"},
                           {u"midifolder", u"Fiestas"},
                           {u"from", u"38353"},
                           {u"to", u"38717"},
                           {u"link", u"UID:4711"}},
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
    const std::tuple<Text, Text, std::vector<Text>> myCases[] = {
        // from, to, the comparisons in the page
        {u"38045", u"38045", {u"<new Date(2004, 1, 28)", u">new Date(2004, 1, 29)"}},
        {u"38717", u"0", {u"<new Date(2005, 11, 31)"}},
        {u"0", u"38717.4", {u">new Date(2006, 0, 1)"}},
        {u"0.5", u"-0.5", {}},
        {u"0.6", u"0.6", {u"<new Date(1899, 11, 30)", u">new Date(1899, 11, 31)"}},
        {u"38352.5", u"2958464", {u"<new Date(2004, 11, 31)", u">new Date(9999, 11, 31)"}},
    };
    for (const auto& [myFrom, myTo, myComparisons] : myCases)
    {
        Text myExpected = u"<script type=\"text/javascript\">\r\nvar showme3=true;\r\n";
        for (const Text& myComparison : myComparisons)
        {
            myExpected += u"if (new Date()" + myComparison + u") showme3=false;\r\n";
        }
        EXPECT_EQ(Output({{u"showimage", u""}, {u"link", u"URL:ERROR"}, {u"from", myFrom}, {u"to", myTo}}),
                  myExpected + u"</script>\r\n");
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
        const Text myPage = Output({{u"link", myLink}});
        EXPECT_NE(myPage.find(u"50\">" + myTag + u"<img"), Text::npos) << ToUtf8(myPage);
    }
}

TEST_F(Module, Output_PictureKeepsItsLastFourCharactersAsEnding)
{
    EXPECT_NE(Output({{u"image", u"g"}}).find(u"\"images/qelspr17g\""), Text::npos);
    EXPECT_NE(Output({{u"image", u"Globo.jpeg"}}).find(u"\"images/qelspr17jpeg\""), Text::npos);
}

TEST_F(Module, Output_StagesALinkedFileOnce)
{
    myHost.RecordType = 5;
    EXPECT_TRUE(Output({{u"link", u"UID:7"}}).starts_with(u"<script")) << "a missing file is no failure";
    EXPECT_FALSE(myFolder.Exists("files/Doc.pdf"));
    for (const char* const myContent : {"first", "second"})
    {
        myFolder.Write("data/Doc.pdf", myContent);
        Output({{u"link", u"UID:7"}});
        EXPECT_EQ(myFolder.Read("files/Doc.pdf"), "first") << "a copy that is there stays";
    }
}

TEST_F(Module, Output_AsksTheHostInOrderAndHostMayChangeTheModule)
{
    const Text myScript = Params({{u"image", u"Globo.gif"},
                                  {u"imagefolder", u"Fiestas"},
                                  {u"midi", u"Vals.mid"},
                                  {u"midifolder", u"Fiestas"},
                                  {u"from", u"38353"},
                                  {u"to", u"38717"},
                                  {u"link", u"UID:4711"}},
                                 u"<pg.file filename=\"m.dat\">");
    const Text myOtherScript = Params(
        {{u"image", u"g"}, {u"imagefolder", u"Fiestas"}, {u"midi", u""}, {u"playmidi", u"0"}, {u"link", u"URL:other"}});
    std::vector<std::string> myCalls;
    int myCount = 0, myChangingCall = 0;
    myHost.RecordType = 5;
    myHost.Called = [&](const std::string& myMember)
    {
        myCalls.push_back(myMember);
        if (++myCount == myChangingCall)
        {
            myForm->Script(myOtherScript);
            myForm->myBuildHelper.reset();
            myForm->myDatabase.reset();
        }
    };
    myForm->Script(myScript);
    const Text myPage = myForm->Output();
    const std::vector<std::string> myExpected = {"DataFolder", // for the archive
                                                 "InstanceNumber", "InstanceNumber",
                                                 "InstanceNumber",               // for the start and the period
                                                 "InstanceNumber", "UniqueName", // for the picture
                                                 "SeekUID",        "EOF",
                                                 "RecordType",     "DataFolder",
                                                 "RecordFilename", "FileFolder",
                                                 "RecordFilename", "FileURL",
                                                 "RecordFilename",             // for its link
                                                 "ImageFolder",    "ImageURL", // for its copy
                                                 "UniqueName",     "MediaFolder",
                                                 "InstanceNumber", "MediaURL"}; // for the tune
    EXPECT_EQ(myCalls, myExpected);
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
    const std::pair<Settings, int32_t> myCases[] = {
        {{{u"image", u"Falta.gif"}}, 53},
        {{{u"imagefolder", u"Falta"}}, 76},
        {{{u"imagefolder", u"(USER)"}, {u"image", u"qelspr.gif"}}, 53},
        {{{u"image", u"Roto.gif"}, {u"link", u"URL:ERROR"}}, 481},
        {{{u"to", u"2958465"}}, 6},
        {{{u"midi", u"Falta.mid"}, {u"playmidi", u"1"}}, 53},
    };
    for (const auto& [mySettings, myNumber] : myCases)
    {
        EXPECT_EQ(Output(mySettings), u"[Error de plug-in]");
        const Text myReason = NumberText(int64_t{myNumber}) + u": " + Text(ErrorDescription(myNumber));
        EXPECT_EQ(myForm->ErrorText(), u"El plug-in \"Orvenal\" ha provocado el error \"" + myReason + u"\".");
        EXPECT_EQ(myFolder.Exists("images/qelspr17.gif"), mySettings[0].first == u"midi") << "what was staged stays";
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
    LinkFolder(myFolder / "elsewhere", myFolder / "qelpluginanimtemp");
    Restart();
    EXPECT_EQ(Output({}), u"[Error de plug-in]");
    EXPECT_NE(myForm->ErrorText().find(u"\"75: "), Text::npos);
    EXPECT_TRUE(myFolder.Exists("elsewhere/mine")) << "emptied through a link";
}

TEST_F(Module, Start_WithoutATemporaryPathWorksInTheComponentsFolder)
{
    for (const auto& [myName, myValue] : NoTemporaryPath)
    {
        myEnvironment.Set(myName, myValue);
    }
    Restart();
    EXPECT_TRUE(myFolder.Exists("component/qelpluginanimtemp"));
    EXPECT_EQ(myForm->TempMIDI(), myFolder.Logical(u"component\\qelmid.mid"));
}

TEST_F(Module, Script_IsWrittenInItsOrderAndResetKeepsOnlyTheLink)
{
    const Text myExample =
        u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n<pg.file filename=\"archive7.dat\">\r\n"
        u"<pg.param name=\"image\" value=\"Globo.gif\">\r\n<pg.param name=\"imagefolder\" value=\"Fiestas\">\r\n"
        u"<pg.param name=\"midi\" value=\"qelmid.mid\">\r\n<pg.param name=\"midifolder\" value=\"(USER)\">\r\n"
        u"<pg.param name=\"imagemode\" value=\"jpg\">\r\n<pg.param name=\"midimode\" value=\"1\">\r\n"
        u"<pg.param name=\"showimage\" value=\"1\">\r\n<pg.param name=\"playmidi\" value=\"0\">\r\n"
        u"<pg.param name=\"from\" value=\"38353\">\r\n<pg.param name=\"to\" value=\"38383\">\r\n"
        u"<pg.param name=\"link\" value=\"&quot;&lt;&gt;&amp;amp;\">\r\n";
    EXPECT_EQ(InitialScript() + u"\r\n", Params({}));
    EXPECT_EQ(myForm->Script(), Params(All({{u"showimage", u"0"}, {u"playmidi", u"0"}})))
        << "before the first script nothing is on";
    myForm->Script(InitialScript());
    EXPECT_EQ(myForm->Script(), Params(All({})));
    myForm->Script(myExample);
    EXPECT_EQ(myForm->Script(), myExample);
    myForm->Script(u"");
    EXPECT_EQ(myForm->Script(), Params(All({{u"link", u"&quot;&lt;&gt;&amp;amp;"}})));
    myForm->Script(u"<pg.param name=link>");
    EXPECT_EQ(myForm->Script(), Params(All({})));
}

TEST_F(Module, Script_ToleratesUnusualText)
{
    const std::tuple<Text, Settings, bool> myCases[] = {
        // script, the settings that are not those of a new module, whether it is of another version
        {u"<pg.param name=showimage><pg.param name=playmidi value=\" 0 \"><pg.param name=midimode value=no>"
         u"<pg.param name=imagemode value=JPG><pg.param name=from value=38353x><pg.param name=to value=\" +38353.5\">",
         {{u"midimode", u"1"}, {u"showimage", u"0"}, {u"playmidi", u"0"}, {u"from", u"38353"}, {u"to", u"38354"}},
         false},
        {u"<pg.param name=image value=a><pg.param name=from value=1e2><pg.param name=to value=+2.5E+2e9>",
         {{u"image", u"a"}, {u"from", u"100"}, {u"to", u"250"}},
         false},
        {u"<pg.Param name=image value=x></pg.param name=image value=x><pg.param name=Image value=x><pg.x name=image "
         u"value=x>text<PG.param VALUE=x NAME=midi><pg.param name=midifolder value=a><pg.param name=midifolder "
         u"value=b value=c name=midi><pg.param name=imagemode value=gif><pg.param name=from value=38352.5>",
         {{u"midi", u"x"}, {u"midifolder", u"b"}, {u"imagemode", u"gif"}, {u"from", u"38352"}},
         false},
        {u"<pg.plugin uid=other version=1.0><pg.param name=image value=a>", {{u"image", u"a"}}, false},
        {u"<pg.param name=image value=a><pg.plugin><pg.param name=image value=b>", {{u"image", u"a"}}, true},
    };
    for (const auto& [myScript, mySettings, myIsOther] : myCases)
    {
        myForm->Script(myScript);
        EXPECT_EQ(myForm->Script(), Params(All(mySettings)));
        EXPECT_EQ(myForm->ErrorText(), myIsOther ? u"No se ha seleccionado ningún motivo." : u"");
    }
    const Settings myTooLate = {{u"image", u"a"}, {u"to", u"2958466"}, {u"image", u"b"}};
    EXPECT_EQ(ErrorOf([&] { myForm->Script(Params(myTooLate)); }), ErrorNumber::Overflow);
    EXPECT_EQ(myForm->Script(), Params(All({{u"image", u"a"}}))) << "the settings before it are in force";
}

TEST_F(Module, TextSettings_JoinsSentences)
{
    const std::pair<Settings, TextView> myCases[] = {
        {{{u"midi", u"Vals.mid"}, {u"from", u"1"}}, LoadResString(StringId::SummaryNoImage)},
        {{{u"image", u"Globo.gif"}, {u"midi", u"Vals.mid"}, {u"to", u"38353"}},
         u"Se muestra el motivo <b>\"Globo\"</b>. Se reproduce el sonido de fondo <b>\"Vals\"</b>. El control de "
         u"tiempo se ha activado."},
        {{{u"image", u"x"}, {u"showimage", u"0"}, {u"playmidi", u"0"}, {u"from", u"0.5"}},
         u"No se muestra ninguna animación. No se reproduce ningún sonido de fondo. "},
        {{{u"image", u"Globo.jpeg"}, {u"playmidi", u"0"}},
         u"Se muestra el motivo <b>\"Globo.\"</b>. No se reproduce ningún sonido de fondo. "},
        {{{u"image", u".gif"}, {u"midi", u".mid"}},
         u"Se muestra el motivo <b>\"\"</b>. Se reproduce el sonido de fondo <b>\"\"</b>. "},
    };
    for (const auto& [mySettings, mySummary] : myCases)
    {
        myForm->Script(Params(mySettings));
        EXPECT_EQ(myForm->TextSettings(), mySummary);
    }
    myForm->Script(Params({{u"image", u"abc"}, {u"playmidi", u"0"}})); // shorter than an ending
    EXPECT_EQ(ErrorOf([&] { myForm->TextSettings(); }), ErrorNumber::InvalidArgument);
}

} // namespace
} // namespace qel
