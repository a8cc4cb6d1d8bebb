/// The record of the module in hand: script, summary and page, on real files and with a host that keeps a record.
#include "ErrorOf.h"
#include "module/FormMain.h"
#include "module/ModuleScript.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace qel
{
namespace
{

using namespace std::string_literals;

/// What the host answers, and what it was asked.
struct Host
{
    std::string Calls; ///< one word for each
    std::string FailingCall;
    int32_t RecordType = 1;
    bool AtEnd = false;
    Text FileURL = u"files/";
    Text Folder; ///< of the build and of the data alike
};

/// Both services of the host.
class RecordingHost : public BuildHelper, public Database
{
public:
    explicit RecordingHost(Host& theHost) : myHost(theHost) {}

    Text UniqueName() override { return Give("UniqueName", Text(u"17")); }
    int32_t InstanceNumber() override { return Give("InstanceNumber", 3); }
    Text MediaFolder() override { return Give("MediaFolder", myHost.Folder + u"media\\"); }
    Text MediaURL() override { return Give("MediaURL", Text(u"media/")); }
    Text ImageFolder() override { return Give("ImageFolder", myHost.Folder + u"images\\"); }
    Text ImageURL() override { return Give("ImageURL", Text(u"images/")); }
    Text FileFolder() override { return Give("FileFolder", myHost.Folder + u"files\\"); }
    Text FileURL() override { return Give("FileURL", myHost.FileURL); }
    Text ArchiveName() override { return Give("ArchiveName", Text()); }
    int32_t RecordType() override { return Give("RecordType", myHost.RecordType); }
    bool AtEnd() override { return Give("EOF", myHost.AtEnd); }
    Text RecordFilename() override { return Give("RecordFilename", Text(u"Doc.pdf")); }
    void SeekUID(TextView myUID) override { Give("SeekUID:" + ToUtf8(myUID), 0); }
    Text RecordURL() override { return Give("RecordURL", Text(u"https://example.org/?a=1&b=2")); }
    Text DataFolder() override { return Give("DataFolder", myHost.Folder + u"data\\"); }
    Text ChooseLink(TextView) override { return Give("ChooseLink", Text()); }

private:
    template <class Answer>
    Answer Give(const std::string& myCall, Answer theAnswer)
    {
        myHost.Calls += myCall + " ";
        return myCall == myHost.FailingCall ? throw Error{1004, u"La base de datos no responde"} : theAnswer;
    }

    Host& myHost;
};

/// A picture of 120 by 80 in one colour; its codes are a byte each because the code table is cleared before it grows.
std::string Gif()
{
    std::string theBytes = "GIF89a\x78\0\x50\0\xF6\0\0"s + std::string(128 * 3, 'c') + ",\0\0\0\0\x78\0\x50\0\0\7"s;
    for (int i = 0; i < 120 * 80; i += 100)
    {
        theBytes += "\x65\x80"s + std::string(100, 1);
    }
    return theBytes + "\1\x81\0;"s;
}

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
        setenv("TMPDIR", myFolder.Native().c_str(), 1);
        for (const char* const myName : {"media", "images", "files", "component"})
        {
            myFolder.MakeFolder(myName);
        }
        for (const char* const myName : {"Globo.gif", "Globo.jpeg", "g"})
        {
            myFolder.Write("Designs/Fiestas/"s + myName, Gif());
        }
        myFolder.Write("Designs/Fiestas/Roto.gif", "GIF89a");
        myFolder.Write("Designs/Fiestas/Vals.mid", "MThd");
        myHost.Folder = myFolder.Logical();
        myPorts.componentFolder = myFolder.Logical(u"component");
        Restart();
    }
    ~Module() override { unsetenv("TMPDIR"); }

    void Restart()
    {
        myForm = std::make_unique<FormMain>(myPorts, myConstants, myLead);
        myForm->myBuildHelper = std::make_unique<RecordingHost>(myHost);
        myForm->myDatabase = std::make_unique<RecordingHost>(myHost);
        myHost.Calls.clear();
    }

    /// The page text of a module with the library picture alone, changed by further settings.
    Text Output(const Text& mySettings)
    {
        myHost.Calls.clear();
        myForm->Script(Params(
            u"image=Globo.gif|imagefolder=Fiestas|midi=Vals.mid|midifolder=Fiestas|playmidi=0|link=|" + mySettings));
        return myForm->Output();
    }

    std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    Files& myFiles = mySystem->Ports().files;
    TemporaryFolder myFolder;
    Platform myPorts{mySystem->Ports()};
    localConstants myConstants{myFolder.Logical(u"Designs\\"), {}};
    FormLead myLead{myPorts};
    Host myHost;
    std::unique_ptr<FormMain> myForm;
};

TEST_F(Module, PageIsTheOneInTheFileAndTheHostIsAskedInOrder)
{
    const std::string myGif = Gif();
    myFolder.Write("data/m.dat", "qelarchive1.0\x0B\0\0\0\\qelspr.gif"s + static_cast<char>(myGif.size() & 0xFF) +
                                     static_cast<char>(myGif.size() >> 8) + "\0\0"s + myGif + "\0\0\0\0"s);
    myFolder.Write("qelpluginanimtemp/stale", "");
    myFolder.Write("qelpluginanimtemp/sub/kept", "");
    myFolder.Write("images/qelspr17.gif", "an old one that is longer" + myGif);
    myFolder.Write("media/qelmid17.mid", "an old one");
    Restart();
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/stale")) << "a start changes nothing in the folder";

    myForm->Script(Params(
        u"image=qelspr.gif|imagefolder=(USER)|midi=Vals.mid|midifolder=Fiestas|from=38353|to=38717|link=UID:4711",
        u"<pg.file filename=\"m.dat\">"));
    std::ifstream myFile(QEL_TEST_DATA "/page.html", std::ios::binary);
    const std::string myExpected{std::istreambuf_iterator<char>(myFile), {}};
    EXPECT_EQ(ToUtf8(myForm->Output()), myExpected);
    EXPECT_EQ(myExpected.size() - ToUtf8(ReplaceAll(FromUtf8(myExpected), u" \r\n", u"\r\n")).size(), 38U)
        << "the file has lost the blanks that its lines end in";
    EXPECT_EQ(myHost.Calls,
              "DataFolder InstanceNumber InstanceNumber InstanceNumber InstanceNumber UniqueName SeekUID:4711 EOF "
              "RecordType RecordURL ImageFolder ImageURL UniqueName MediaFolder InstanceNumber MediaURL ");
    EXPECT_EQ(myFolder.Read("images/qelspr17.gif"), myGif);
    EXPECT_EQ(myFolder.Read("media/qelmid17.mid"), "MThd");
    EXPECT_FALSE(myFolder.Exists("qelpluginanimtemp/stale"));
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/sub/kept"));
}

TEST_F(Module, PeriodCoversItsDaysWhole)
{
    const std::tuple<Text, Text, Text> myCases[] = {
        // from, to, the comparisons in the page
        {u"38353", u"38383", u"<new Date(2005, 0, 1)|>new Date(2005, 1, 1)|"},
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

TEST_F(Module, LinkLeadsWhereItsFormAndItsRecordSay)
{
    const std::string myAddress = "<a href=\"https://example.org/?a=1&b=2\">";
    const std::tuple<Text, int32_t, bool, std::string, std::string> myCases[] = {
        // link, kind of record, nothing found, tag in the page (none: the page fails), calls
        {u"URL:", 1, false, "<a>", ""},
        {u"URL:x 'y' ñ", 1, false, "<a href=\"x 'y' ñ\">", ""},
        {u"URL:%3,%4,%5,%7,%1,%2", 1, false, "<a href=\"images/qelspr17.gif,120,80,</a>,%1,%2\">", ""},
        {u"URL:ERROR", 1, false, "", ""},
        {u"url:x", 1, false, "<a>", ""},
        {u"UR", 1, false, "<a>", ""},
        {u"UID:", 1, true, "", "SeekUID: EOF "},
        {u"UID:7", 0, false, "", "SeekUID:7 EOF RecordType "},
        {u"UID:7", 1, false, myAddress, "SeekUID:7 EOF RecordType RecordURL "},
        {u"UID:7", 2, false, myAddress, "SeekUID:7 EOF RecordType RecordURL "},
        {u"UID:7", 3, false, myAddress, "SeekUID:7 EOF RecordType RecordURL "},
        {u"UID:7", 6, false, myAddress, "SeekUID:7 EOF RecordType RecordURL "},
        {u"UID:7", 4, false, "<a href=\"images/Doc.pdf\">",
         "SeekUID:7 EOF RecordType DataFolder RecordFilename ImageFolder RecordFilename ImageURL RecordFilename "},
        {u"UID:7", 5, false, "<a href=\"files/Doc.pdf\">",
         "SeekUID:7 EOF RecordType DataFolder RecordFilename FileFolder RecordFilename FileURL RecordFilename "},
        {u"UID:7", 7, false, "<a>", "SeekUID:7 EOF RecordType "},
    };
    for (const auto& [myLink, myType, myAtEnd, myTag, myCalls] : myCases)
    {
        myHost.RecordType = myType;
        myHost.AtEnd = myAtEnd;
        const std::string myPage = ToUtf8(Output(u"link=" + myLink));
        const std::string myFrame = "InstanceNumber InstanceNumber UniqueName " + myCalls;
        EXPECT_EQ(myHost.Calls, myFrame + (myTag.empty() ? "" : "ImageFolder ImageURL ")) << myType;
        EXPECT_EQ(myForm->ErrorText(), myTag.empty() ? u"El vínculo no funciona." : u"") << ToUtf8(myLink) << myType;
        EXPECT_NE(myPage.find(myTag.empty() ? "[Error de plug-in]" : "50\">" + myTag + "<img"), std::string::npos)
            << myPage;
    }
    EXPECT_FALSE(myFolder.Exists("files/Doc.pdf")) << "there is none to stage, and that is no failure";
    myHost.RecordType = 5;
    myHost.FileURL = u"files";
    for (const char* const myContent : {"first", "second"})
    {
        myFolder.Write("data/Doc.pdf", myContent);
        EXPECT_NE(Output(u"link=UID:7").find(u"<a href=\"files/Doc.pdf\">"), Text::npos);
        EXPECT_EQ(myFolder.Read("files/Doc.pdf"), "first") << "an old copy is left in place";
    }
}

TEST_F(Module, EndingOfAStagedNameIsTheLastFourCharacters)
{
    const Text myImage = u"50\"><img src=\"images/qelspr17g\" width=\"120\" height=\"80\" alt=\"\" border=0></div>');";
    EXPECT_NE(Output(u"image=g").find(myImage), Text::npos);
    EXPECT_NE(Output(u"image=Globo.jpeg").find(u"\"images/qelspr17jpeg\""), Text::npos);
}

Text FailureText(const Text& myReason)
{
    return u"El plug-in \"Orvenal\" ha provocado el error \"" + myReason + u"\".";
}

TEST_F(Module, FailureGivesItsReasonAndNothingOfThePage)
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
        EXPECT_EQ(myForm->ErrorText(), FailureText(myReason));
        EXPECT_EQ(myFolder.Exists("images/qelspr17.gif"), mySettings.starts_with(u"midi")) << "what was staged stays";
    }
    EXPECT_EQ(myHost.Calls, "InstanceNumber InstanceNumber UniqueName ImageFolder ImageURL UniqueName MediaFolder ");
    myFolder.Write("Designs/Fiestas/Falta.mid", "MThd");
    EXPECT_TRUE(myForm->Output().starts_with(u"<script"));
    EXPECT_NE(myForm->ErrorText(), u"") << "a success does not clear the reason";

    myHost.RecordType = 5;
    for (const char* const myCall :
         {"InstanceNumber", "UniqueName", "SeekUID:1", "EOF", "RecordType", "DataFolder", "RecordFilename",
          "FileFolder", "FileURL", "ImageFolder", "ImageURL", "MediaFolder", "MediaURL"})
    {
        myHost.FailingCall = myCall;
        EXPECT_EQ(Output(u"link=UID:1|playmidi=1"), u"[Error de plug-in]") << myCall;
        EXPECT_EQ(myForm->ErrorText(), FailureText(u"1004: La base de datos no responde")) << myCall;
        EXPECT_TRUE(myHost.Calls.ends_with(myCall + " "s)) << myHost.Calls;
    }
    myForm->myBuildHelper = nullptr;
    Output(u"");
    EXPECT_EQ(myForm->ErrorText(), FailureText(u"91: " + Text(ErrorDescription(91))));
    myForm->Script(u"");
    EXPECT_EQ(myForm->ErrorText(), u"");
}

TEST_F(Module, WithoutAPictureNothingIsTouched)
{
    myFolder.Write("qelpluginanimtemp/stale", "");
    EXPECT_EQ(Output(u"image=|playmidi=1") + FromUtf8(myHost.Calls), u"");
    EXPECT_EQ(myForm->ErrorText(), u"No se ha seleccionado ningún motivo.");
    EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/stale"));
}

TEST_F(Module, TemporaryFolderIsOneOfItsOwn)
{
    std::filesystem::rename(myFolder.Native("qelpluginanimtemp"), myFolder.Native("elsewhere"));
    myFolder.Write("elsewhere/mine", "");
    std::filesystem::create_directory_symlink(myFolder.Native("elsewhere"), myFolder.Native("qelpluginanimtemp"));
    Restart();
    EXPECT_EQ(Output(u""), u"[Error de plug-in]");
    EXPECT_NE(myForm->ErrorText().find(u"\"75: "), Text::npos);
    EXPECT_TRUE(myFolder.Exists("elsewhere/mine")) << "emptied through a link";

    setenv("TMPDIR", "/nonexistent", 1); // and so on: the system has no temporary path
    unsetenv("XDG_RUNTIME_DIR");
    setenv("XDG_CACHE_HOME", "/dev/null", 1);
    Restart();
    EXPECT_TRUE(myFolder.Exists("component/qelpluginanimtemp"));
    EXPECT_EQ(myForm->TempMIDI(), myFolder.Logical(u"component\\qelmid.mid"));
}

TEST_F(Module, ScriptComesOutInItsOrderAndResetKeepsTheLinkAlone)
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

    ModuleSettings mySettings;
    mySettings.myImageMode = static_cast<ImageMode>(3);
    EXPECT_NE(WriteScript(mySettings).find(u"<pg.param name=\"imagemode\">\r\n"), Text::npos);
}

TEST_F(Module, ScriptIsReadWithTolerance)
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
        {u"<pg.Param name=image value=x></pg.param name=image value=x><pg.param name=Image value=x><pg.x name=image "
         u"value=x>"
         u"text<PG.param VALUE=x NAME=midi><pg.param name=midifolder value=a><pg.param name=midifolder value=b value=c "
         u"name=midi><pg.param name=imagemode value=gif><pg.param name=from value=38352.5>",
         u"image=|imagefolder=|midi=x|midifolder=b|imagemode=gif|midimode=0|showimage=1|playmidi=1|from=38352|to=0|"
         u"link=",
         false},
        {u"<pg.plugin uid=other version=1.0><pg.param name=image value=a>", myStart + myRest, false},
        {u"<pg.param name=image value=a><pg.plugin version=1.00><pg.param name=image value=b>", myStart + myRest, true},
        {u"<pg.param name=image value=a><pg.plugin><pg.param name=image value=b>", myStart + myRest, true},
    };
    for (const auto& [myScript, mySettings, myIsOther] : myCases)
    {
        myForm->Script(myScript);
        EXPECT_EQ(myForm->Script(), Params(mySettings));
        EXPECT_EQ(myForm->ErrorText(), myIsOther ? u"No se ha seleccionado ningún motivo." : u"");
    }
    for (const Text myDate : {u"2958466", u"-657435", u"1e999"})
    {
        EXPECT_EQ(ErrorOf([&] { myForm->Script(Params(u"image=a|to=" + myDate + u"|image=b")); }),
                  ErrorNumber::Overflow);
        EXPECT_EQ(myForm->Script(), Params(myStart + myRest)) << "what stands before it is in force";
    }
}

TEST_F(Module, SummaryIsJoinedFromItsSentences)
{
    const std::pair<Text, TextView> myCases[] = {
        {u"midi=Vals.mid|from=1", LoadResString(500)},
        {u"image=Globo.gif|midi=Vals.mid|to=38353", u"Se muestra el motivo <b>\"Globo\"</b>. Se reproduce el sonido de "
                                                    u"fondo <b>\"Vals\"</b>. El control de tiempo "
                                                    u"se ha activado."},
        {u"image=x|imagefolder=(USER)|midi=y|midifolder=(USER)|from=38353",
         u"Se muestra el motivo personalizado por el usuario. Se reproduce un sonido de fondo personalizado por el "
         u"usuario.El control de tiempo se ha activado."},
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
    myForm->Script(Params(u"image=abc|playmidi=0"));
    EXPECT_EQ(ErrorOf([&] { myForm->TextSettings(); }), ErrorNumber::InvalidArgument);
    myForm->Script(Params(u"image=Globo.gif"));
    EXPECT_EQ(ErrorOf([&] { myForm->TextSettings(); }), ErrorNumber::InvalidArgument);
}

TEST_F(Module, FileIsCopiedOnce)
{
    const auto At = [&](TextView myName)
    {
        return myFolder.Logical(myName);
    };
    myFolder.Write("a", "1");
    EXPECT_TRUE(CopyFileOnce(myFiles, At(u"a"), At(u"b")));
    myFolder.Write("a", "2");
    EXPECT_TRUE(CopyFileOnce(myFiles, At(u"a"), At(u"b")) && CopyFileOnce(myFiles, At(u"missing"), At(u"b")));
    EXPECT_EQ(myFolder.Read("b"), "1");
    EXPECT_FALSE(CopyFileOnce(myFiles, At(u"missing"), At(u"c")) || CopyFileOnce(myFiles, At(u"a"), At(u"missing\\c")));
    EXPECT_FALSE(FileIsReadable(myFiles, At(u"media"))) << "a folder";
    const auto myHolder = myFiles.OpenForReading(At(u"b"));
    EXPECT_FALSE(FileIsReadable(myFiles, At(u"b"))) << "someone else holds it";
}

} // namespace
} // namespace qel
