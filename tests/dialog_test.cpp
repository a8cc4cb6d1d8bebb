/// The settings dialog on every system: the real window of the built component, opened through its entry points and
/// worked by a user with mouse and keys.
#include "DialogTest.h"
#include "platform/clock.h"
#include "resources/stringTable.h"

#include <algorithm>

namespace qel
{

const char16_t* const ErrorSource = u"dialog_test";

namespace
{

constexpr uint32_t WhitePixel = 0xFFFFFF;
constexpr uint32_t RedPixel = 0xFF0000;
constexpr uint32_t BluePixel = 0x0000FF;
const char* const ImageTitle = "Cargar motivo de animación";
const char* const TuneTitle = "Cargar sonido de fondo";

/// The columns of tests/data/form.csv, which describes the form apart from the code. Lengths in twips, 15 to the pixel.
enum Column
{
    Tab, ///< "none": not in the order
    Name,
    Kind,
    Caption,    ///< empty: not tested
    SpokenName, ///< to a screen reader; empty: not tested
    Left,
    Top,
    Width,
    Height,
    Parent ///< the box that the control lies in; empty: the form
};

TEST_F(DialogTest, Form_IsTheOneOfTheTable)
{
    std::ifstream myTable(QEL_TEST_DATA "/form.csv", std::ios::binary);
    std::string myLine;
    std::getline(myTable, myLine);
    const auto Compare = [&](DialogDriver& theUser)
    {
        std::vector<std::string> myOrder;
        while (std::getline(myTable, myLine))
        {
            std::vector<std::string> myRow = PartsOf(myLine + ";;", ';');
            const char* const myName = myRow[Name].c_str();
            SCOPED_TRACE(myName);
            const auto Pixels = [&](Column myColumn)
            {
                return std::to_string(std::stoi(myRow[myColumn]) / 15);
            };
            EXPECT_EQ(theUser.Place(myName, myRow[Parent]),
                      Pixels(Left) + "," + Pixels(Top) + " " + Pixels(Width) + "x" + Pixels(Height));
            EXPECT_EQ(myRow[Caption].empty() ? "" : theUser.TextOf(myName), myRow[Caption]);
            EXPECT_EQ(myRow[SpokenName].empty() ? "" : theUser.SpokenName(myName), myRow[SpokenName]);
            const bool myTakesFocus =
                myRow[Tab] != "none" && !myRow[SpokenName].empty() && myRow[Kind] != "picture box";
            if (myTakesFocus && theUser.IsVisible(myName) && theUser.IsEnabled(myName))
            {
                myOrder.push_back(myRow[Name]);
            }
        }
        EXPECT_EQ(theUser.FormSize(), "480x560");
        for (const std::string& myName : myOrder)
        {
            theUser.TabTo(myName.c_str(), 2); // some controls have two parts
        }
        theUser.TabTo(myOrder.front().c_str(), 2);
        theUser.CloseWindow();
    };
    EXPECT_EQ(Stored(Open("link=URL:x|imagefolder=(USER)|midifolder=(USER)", Compare), "link"), "False|URL:x");
}

TEST_F(DialogTest, Confirm_NewModule_HasTheFirstMotifAndTune)
{
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    const auto Confirm = [&](DialogDriver& theUser)
    {
        const char* const myFolders = "Fiestas|Solo tonos|animales|leame.txt|(personalizado)";
        EXPECT_EQ(theUser.Entries("cmbImageFolder"), myFolders);
        EXPECT_EQ(theUser.Entries("cmbMIDIFolder"), myFolders);
        EXPECT_EQ(theUser.Entries("lstImage"), "Globo|Vela.azul|perla");
        EXPECT_EQ(theUser.Entries("lstMIDI"), "Vals");
        EXPECT_FALSE(theUser.IsEnabled("cmdUnsetLink"));
        EXPECT_FALSE(myFolder.Exists("tmp/qelpluginanimtemp/stale"));
        theUser.Key(Keys::Return);
    };
    EXPECT_EQ(
        Stored(Open("", Confirm), "image|imagefolder|midi|midifolder|imagemode|from|to|file|link|showimage|playmidi"),
        "True|Globo.gif|Fiestas|Vals.mid|Fiestas|none|0|0|||1|1");
}

TEST_F(DialogTest, Browse_ShowsListsBoxesAndPreview)
{
    const auto Browse = [&](DialogDriver& theUser)
    {
        theUser.ExpectPreview(202, 79, RedPixel); // 40 by 30 in the middle of 445 by 189
        theUser.ExpectPreview(241, 108, RedPixel);
        theUser.ExpectPreview(201, 79, WhitePixel);
        theUser.ExpectPreview(242, 108, WhitePixel);
        EXPECT_FALSE(theUser.IsVisible("lblAnimated"));
        theUser.Pick("lstImage", "Vela.azul");
        theUser.ExpectPreview(97, 5, BluePixel); // shrunk to 251 by 179
        theUser.ExpectPreview(348, 184, WhitePixel);
        EXPECT_TRUE(theUser.IsVisible("lblAnimated"));

        myFolder.Write("QelPluginAnimationDesigns/Fiestas/Vela.azul.gif", Gif(40, 30, {0, 255, 0}, true, 0));
        theUser.Pick("lstImage", "Vela.azul");
        theUser.ExpectPreview(222, 94, WhitePixel); // as it is transparent by now
        theUser.Pick("lstImage", "Globo");
        theUser.Pick("cmbImageFolder", "Solo tonos"); // has no motif: what showed before stays
        EXPECT_EQ(theUser.Entries("lstImage"), "");
        theUser.ExpectPreview(222, 94, RedPixel);
        theUser.Pick("cmbImageFolder", "animales"); // has one that cannot be read
        theUser.ExpectPreview(222, 94, WhitePixel);
        theUser.Pick("cmbImageFolder", "(personalizado)");
        EXPECT_TRUE(theUser.IsVisible("picImage"));
        EXPECT_FALSE(theUser.IsVisible("lstImage"));
        theUser.Pick("cmbImageFolder", "leame.txt");
        theUser.Pick("cmbMIDIFolder", "animales");
        theUser.Click("cmdOK");
    };
    EXPECT_EQ(Stored(Open("", Browse), "image|imagefolder|midi|midifolder"), "True|.gif|leame.txt|.mid|animales");
}

TEST_F(DialogTest, Import_SurvivesCommitAndReopening)
{
    const std::string myPhoto = Jpeg(30, 20);
    myFolder.Write("mine.gif", Gif(30, 20));
    myFolder.Write("mine.jpg", myPhoto);
    myFolder.Write("large.gif", Gif(500, 700));
    myFolder.Write("Mine.MID", "my tune");
    const std::string myNoImage = ToUtf8(LoadResString(StringId::ImageIsNotImported));
    const std::string myImage = ToUtf8(LoadResString(StringId::ImageIsImported));
    const auto Import = [&](DialogDriver& theUser)
    {
        theUser.Pick("cmbImageFolder", "(personalizado)");
        theUser.Pick("cmbMIDIFolder", "(personalizado)");
        theUser.Click("cmdOK");
        theUser.AnswerMessage(LoadResString(StringId::ImportImageFirst));
        theUser.TabTo("lblImage");
        theUser.Key(Keys::Return);
        theUser.ChooseFile(ImageTitle, myFolder.Native("mine.gif"));
        EXPECT_EQ(theUser.TextOf("lblImage"), myImage);
        theUser.ExpectPreview(222, 94, RedPixel);
        theUser.Click("cmdOK");
        theUser.AnswerMessage(LoadResString(StringId::ImportMIDIFirst));
        theUser.TabTo("lblMIDI");
        theUser.Key(Keys::Space);
        theUser.ChooseFile(TuneTitle, myFolder.Native("Mine.MID"));
        EXPECT_EQ(theUser.TextOf("lblMIDI"), ToUtf8(LoadResString(StringId::MIDIIsImported)));
        theUser.Click("lblImage");
        theUser.ChooseFile(ImageTitle, ""); // keeps what was imported
        EXPECT_EQ(theUser.TextOf("lblImage"), myImage);
        for (const bool myAgrees : {false, true})
        {
            theUser.Click("lblImage");
            theUser.ChooseFile(ImageTitle, myFolder.Native("large.gif"));
            theUser.AnswerMessage(LoadResString(StringId::ImageIsTooLarge), true, myAgrees);
            EXPECT_EQ(theUser.TextOf("lblImage"), myAgrees ? myImage : myNoImage);
        }
        theUser.Click("lblImage");
        theUser.ChooseFile(ImageTitle, myFolder.Native("mine.jpg"));
        theUser.TabTo("chkMIDI");
        theUser.Key(Keys::Space);
        theUser.Key(Keys::Return);
    };
    EXPECT_EQ(
        Stored(Open("", Import), "image|imagefolder|midi|midifolder|imagemode|midimode|showimage|playmidi|file|link"),
        "True|qelspr.jpg|(USER)|qelmid.mid|(USER)|jpg|1|1|0|m7.dat|");
    const std::string myArchive = myFolder.Read("data/m7.dat");
    EXPECT_NE(myArchive.find(myPhoto), std::string::npos);
    EXPECT_NE(myArchive.find("my tune"), std::string::npos);
    EXPECT_EQ(myArchive.find("qelspr.gif"), std::string::npos);

    // The other way round: a library selection drops nothing, and what was imported is packed again.
    const auto SelectFromTheLibrary = [&](DialogDriver& theUser)
    {
        EXPECT_EQ(theUser.Selected("cmbImageFolder"), "(personalizado)");
        EXPECT_EQ(theUser.TextOf("lblImage"), myImage);
        theUser.Pick("cmbImageFolder", "Fiestas");
        theUser.Pick("cmbMIDIFolder", "Fiestas");
        theUser.Click("cmdOK");
    };
    EXPECT_EQ(
        Stored(Open("imagefolder=(USER)|midifolder=(USER)|imagemode=jpg|midimode=1|file=m7.dat", SelectFromTheLibrary),
               "image|imagefolder|imagemode|midimode|file"),
        "True|Globo.gif|Fiestas|jpg|1|m7.dat");
    EXPECT_EQ(myFolder.Read("data/m7.dat").size(), myArchive.size());
}

TEST_F(DialogTest, LinkAndPeriod_TakeEffectInTheirTime)
{
    const std::string mySettings = "link=URL:old|from=40000|to=39999|midifolder=(USER)|midimode=1";
    const auto Refuse = [&](DialogDriver& theUser)
    {
        EXPECT_EQ(theUser.DayOf("DateFrom"), "06/07/2009");
        theUser.Click("cmdUnsetLink");
        EXPECT_FALSE(theUser.IsEnabled("cmdUnsetLink"));
        EXPECT_EQ(theUser.Focus().substr(0, 8), "DateFrom"); // the next control
        theUser.Click("cmdSetLink");
        EXPECT_TRUE(theUser.IsEnabled("cmdUnsetLink"));
        theUser.Click("cmdOK");
        theUser.AnswerMessage(LoadResString(StringId::PeriodIsReversed));
        EXPECT_TRUE(myFolder.Exists("data/m7.dat"));
        theUser.CloseWindow();
    };
    EXPECT_EQ(Stored(Open(mySettings, Refuse), "link|from|to|image"),
              "False|URL:http://example.org/|40000|39999|Globo.gif"); // closing takes nothing of it back
    const auto Agree = [&](DialogDriver& theUser)
    {
        theUser.GoToDay("DateTo");
        theUser.Key(Keys::Up);
        EXPECT_EQ(theUser.DayOf("DateTo"), "06/07/2009");
        theUser.Click("cmdOK");
    };
    EXPECT_EQ(Stored(Open(mySettings, Agree), "from|to"), "True|40000|40000");
    const auto SwitchBoth = [&](DialogDriver& theUser)
    {
        theUser.Switch("DateFrom");
        theUser.Switch("DateTo");
        theUser.Key(Keys::Return);
    };
    EXPECT_EQ(Stored(Open("from=40000", SwitchBoth), "from|to"),
              "True|0|" + ToUtf8(NumberText(static_cast<int64_t>(Today()))));
}

TEST_F(DialogTest, Open_ADateThatCannotBeShown_IsAFailedCall)
{
    EXPECT_EQ(Stored(Open("from=-150000", {}), ""),
              "error 5 " + ToUtf8(ReplaceAll(LoadResString(StringId::DateNotShown), u"%1", u"23/04/1489")));
}

TEST_F(DialogTest, Enter_ConfirmsExceptOnAnotherButton)
{
    const std::string mySettings = "link=URL:x|from=1|to=1|imagefolder=(USER)|imagemode=gif";
    for (const char* const myPlace : {"cmbImageFolder", "lstMIDI", "chkImage", "DateFrom", "DateTo", "cmdOK", ""})
    {
        const auto Confirm = [&](DialogDriver& theUser)
        {
            *myPlace == '\0' ? theUser.GoToDay("DateFrom") : theUser.TabTo(myPlace);
            theUser.Key(Keys::Return);
        };
        EXPECT_EQ(Stored(Open(mySettings, Confirm), "showimage|from"), "True|1|1") << myPlace;
    }
    const auto PressButtons = [&](DialogDriver& theUser)
    {
        theUser.TabTo("cmdSetLink");
        theUser.Key(Keys::Return);
        theUser.TabTo("cmdUnsetLink");
        theUser.Key(Keys::Return);
        EXPECT_FALSE(theUser.IsEnabled("cmdUnsetLink"));
        theUser.TabTo("lblImage");
        theUser.Key(Keys::Return);
        theUser.ChooseFile(ImageTitle, "");
        theUser.TabTo("ToolbarPlay");
        theUser.Key(Keys::Return);
        EXPECT_EQ(Played(), "tune");
        theUser.TabTo("cmdCancel");
        theUser.Key(Keys::Return);
    };
    EXPECT_EQ(Stored(Open(mySettings, PressButtons), "link"), "False|");
}

TEST_F(DialogTest, Play_ByDoubleClickAndToolButtons)
{
    const auto Play = [&](DialogDriver& theUser)
    {
        theUser.DoubleClick("lstMIDI");
        EXPECT_EQ(Played(), "tune");
        theUser.PressTool(2);
        EXPECT_EQ(Played(), "");
        theUser.PressTool(1);
        EXPECT_EQ(Played(), "tune");
        theUser.TabTo("ToolbarPlay");
        theUser.Key(Keys::Space);
        EXPECT_EQ(Played(), "tune");
        theUser.GoToStopButton();
        theUser.Key(Keys::Return);
        EXPECT_EQ(Played(), "");
        theUser.PressTool(1);
        theUser.Pick("cmbMIDIFolder", "animales");
        theUser.DoubleClick("lstMIDI"); // which is empty: the copy of the last tune has to go
        EXPECT_FALSE(myFolder.Exists("tmp/qelmid.mid"));
        theUser.Key(Keys::Escape);
    };
    EXPECT_EQ(Stored(Open("", Play), ""), "False");
}

TEST_F(DialogTest, Help_ByTheButtonAndTheKeyInEveryControl)
{
    const auto Ask = [&](DialogDriver& theUser)
    {
        for (const char* const myPlace : {"cmbImageFolder", "lstImage", "chkMIDI", "DateFrom", "cmdOK", "ToolbarPlay"})
        {
            theUser.TabTo(myPlace);
            theUser.Key(Keys::F1);
            EXPECT_TRUE(theUser.HelpWasAsked()) << myPlace;
        }
        theUser.Click("cmdHelp");
        EXPECT_TRUE(theUser.HelpWasAsked());
        theUser.Key(Keys::Escape);
    };
    EXPECT_EQ(Stored(Open("", Ask), ""), "False");
}

TEST_F(DialogTest, Wheel_ChangesOnlyWhatHasTheFocus)
{
    const auto Turn = [](DialogDriver& theUser)
    {
        theUser.TabTo("chkImage");
        theUser.TurnWheel("cmbMIDIFolder");
        EXPECT_EQ(theUser.Selected("cmbMIDIFolder"), "Fiestas");
        theUser.TabTo("cmbMIDIFolder");
        theUser.TurnWheel("cmbMIDIFolder");
        EXPECT_EQ(theUser.Entries("lstMIDI"), "Minueto");
        theUser.Key(Keys::Escape);
    };
    EXPECT_EQ(Stored(Open("", Turn), ""), "False");
}

TEST_F(DialogTest, About_ShowsTheComponent)
{
    const auto Read = [](DialogDriver& theUser)
    {
        theUser.AnswerMessage(u"Tesselwind 1.0.19\n\nLäßt Grafiken über Ihre Homepage schweben\n\n" +
                              Text(ComponentVersion.Copyright));
    };
    EXPECT_EQ(Stored(Open("", Read, "about"), ""), "shown");
}

} // namespace
} // namespace qel
