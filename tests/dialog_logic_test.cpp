/// The logic of the settings dialog on a window that keeps a record: the order of what it does, and the failures of its
/// controls.
#include "dialog/pictureSize.h"
#include "errorOf.h"
#include "FormTest.h"
#include "resources/stringTable.h"

namespace qel
{
namespace
{

class DialogLogic : public FormTest
{
protected:
    /// Opens the dialog and gives the record of what the user made happen.
    std::string Open(TextView myScript, std::function<void(FormMainEvents&)> myUser)
    {
        myForm->Script(myScript);
        FormTest::Open(std::move(myUser));
        return Happened();
    }

    /// What has happened since the last call, "|" between all.
    std::string Happened() { return Joined(std::exchange(myWords, {})); }
    static std::string Joined(const std::vector<std::string>& myWords)
    {
        std::string theText;
        for (const std::string& myWord : myWords)
        {
            theText += (theText.empty() ? "" : "|") + myWord;
        }
        return theText;
    }
};

TEST_F(DialogLogic, Open_TakesItsStepsInOrder)
{
    myFolder.Write("library/Fiestas/Vela.gif", Gif(700, 100, {0, 0, 255}, true)); // fits with a margin at each side
    Open(u"<pg.param name=image value=vela.gif><pg.param name=midifolder value=(USER)><pg.param name=from "
         u"value=40000.75><pg.param name=link value=x>",
         {});
    EXPECT_EQ(Joined(myWindow.Opening),
              "cmbImageFolder=0|picImage hidden|lstImage shown|lstImage cleared|lstImage=1|Cls|11|435x62+5+63|"
              "lblAnimated shown|0|cmbMIDIFolder=1|picMIDI shown|lstMIDI hidden|lblMIDI: Ning|100|chkImage on|"
              "chkMIDI on|40000.75|today|no date|Cls|11|435x62+5+63|lblAnimated shown|0|cmdUnsetLink enabled");
}

TEST_F(DialogLogic, Commit_TakesItsStepsInOrder)
{
    const auto Confirm = [&](FormMainEvents& theEvents)
    {
        theEvents.cmdOK_Click();
        myWindow.Happened.Add("again");
        theEvents.cmdUnsetLink_Click();
        theEvents.cmdHelp_Click();
    };
    EXPECT_EQ(Open(u"<pg.param name=midifolder value=(USER)>", Confirm),
              "64Por favor, importe un sonido de fondo o seleccione uno de la librería.|again|cmdUnsetLink disabled|"
              "help.chm 100|stop qelmidi |close qelmidi ");
    EXPECT_EQ(Open(u"<pg.param name=midifolder value=Fiestas><pg.param name=from value=40000.75><pg.param "
                   u"name=showimage value=1>",
                   Confirm),
              "40000|Unload|again|cmdUnsetLink disabled|help.chm 100|stop qelmidi |close qelmidi ");
    EXPECT_EQ(myForm->Settings().myFrom, 40000);
    EXPECT_FALSE(myForm->Settings().myShowImage);
}

TEST_F(DialogLogic, Play_SendsFourCommands)
{
    const std::string myStop = "stop qelmidi |close qelmidi ";
    const std::string myOpen = "open \"" + ToUtf8(myFolder.Logical(u"qelmid.mid")) + "\" type sequencer alias qelmidi";
    const auto Play = [&](FormMainEvents& theEvents)
    {
        theEvents.ToolbarPlay_ButtonClick(1);
        EXPECT_EQ(Happened(), myStop + "|" + myOpen + "|play qelmidi ");
        theEvents.ToolbarPlay_ButtonClick(2);
        EXPECT_EQ(Happened(), myStop);
    };
    EXPECT_EQ(Open(u"", Play), myStop) << "the end of the dialog ends the tune";
}

TEST_F(DialogLogic, ImportTune_CopyFails_LeavesNoneImported)
{
    const std::string myDialog = "Cargar sonido de fondo/Archivos MIDI (*.mid)|*.mid/30000/524292";
    const auto Import = [&](FormMainEvents& theEvents)
    {
        theEvents.lblMIDI_Click();
        EXPECT_EQ(Happened(), myDialog);
        myWindow.Chosen = myFolder.Logical(u"library\\Fiestas\\Vals.mid");
        theEvents.lblMIDI_Click();
        EXPECT_EQ(Happened(), myDialog + "|lblMIDI: Haga|110");
        EXPECT_TRUE(myForm->Settings().myMIDIMode);
        myWindow.Chosen = myFolder.Logical(u"gone.mid");
        theEvents.lblMIDI_Click();
        EXPECT_EQ(Happened(), myDialog + "|lblMIDI: Ning|100");
        EXPECT_FALSE(myForm->Settings().myMIDIMode);
        EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/qelmid.mid"));
    };
    Open(u"", Import);
}

TEST_F(DialogLogic, Handler_FailureIsShownUnlessTheLogicCausedTheEvent)
{
    std::string& myFailing = myWindow.Happened.Failing;
    myFailing = "lblMIDI: Ning";
    EXPECT_EQ(ErrorOf([&] { Open(u"", {}); }), 1234); // in the opening, which writes the selected folder
    myFailing.clear();
    const auto Fail = [&](FormMainEvents& theEvents)
    {
        myFailing = "lblMIDI: Ning";
        theEvents.cmbMIDIFolder_Click();
        EXPECT_EQ(myWords.back(), "64Roto");
        myFailing = "64Roto";
        myForm->myDatabase.reset();
        theEvents.cmdSetLink_Click(); // and then no message either
    };
    Open(u"", Fail);
}

TEST_F(DialogLogic, Open_SelectsTheLastNameThatMatchesElseTheFirst)
{
    for (const char* const myName : {"Fiestas/globo.GIF", "Fiestas/Vela.azul.gif", "Solo tonos/a.mid", "leame.txt"})
    {
        myFolder.Write(std::string("library/") + myName, "");
    }
    using Case = std::tuple<TextView, TextView, TextView, int32_t>;
    for (const auto& [myStoredFolder, myStoredImage, mySelectedFolder, myRow] :
         {Case{u"FIESTAS", u"GLOBO.gif", u"Fiestas", 2}, Case{u"fiestas", u"Vela.azul.gif", u"Fiestas", 1},
          Case{u"Fiestas", u"gone.gif", u"Fiestas", 0}, Case{u"gone", u"globo.gif", u"Fiestas", 2},
          Case{u"leame.txt", u"x.gif", u"leame.txt", -1}, Case{u"(PERSONALIZADO)", u"", u"(personalizado)", -1},
          Case{u"(USER)", u"", u"(personalizado)", -1}, Case{u"(user)", u"", u"Fiestas", 0}})
    {
        RecordedWindow theWindow;
        myForm->Settings().myImageFolder = myStoredFolder;
        myForm->Settings().myImage = myStoredImage;
        FormMainDialog(myPorts, myConstants, myLead, *myForm, theWindow).Show();
        EXPECT_EQ(theWindow.cmbImage.SelectedText(), mySelectedFolder) << ToUtf8(myStoredFolder);
        EXPECT_EQ(theWindow.lstImage.Index, myRow) << ToUtf8(myStoredFolder);
    }
}

TEST_F(DialogLogic, ImportImage_IsStagedByItsSizeAndEnding)
{
    const std::string myTooLarge = "33" + ToUtf8(LoadResString(StringId::ImageIsTooLarge));
    const struct
    {
        const char* Name;
        std::string Content;
        ImageMode Mode;
        bool IsAsked = false;
        PictureSize Shrunk = {}; ///< after the question
    } Cases[] = {
        {"limit.gif", Gif(350, 350, {9, 9, 9}, true), ImageMode::Gif},
        {"wide.gif", Gif(351, 10), ImageMode::Gif, true, {350, 10}},
        {"half.gif", Gif(700, 5), ImageMode::Gif, true, {350, 2}}, // a half goes to the even number
        {"three-halves.gif", Gif(700, 7), ImageMode::Gif, true, {350, 4}},
        {"photo.jpg", Jpeg(20, 30), ImageMode::Jpeg},
        {"large.jpg", Jpeg(500, 700), ImageMode::Jpeg, true, {250, 350}},
        {"any.name", Gif(5, 5), ImageMode::Gif},
        {"flat.gif", Gif(5000, 1), ImageMode::None, true},
        {"text.gif", "no picture", ImageMode::None},
        {"missing.gif", "", ImageMode::None},
    };
    const auto ImportEach = [&](FormMainEvents& theEvents)
    {
        for (const auto& myCase : Cases)
        {
            SCOPED_TRACE(myCase.Name);
            if (!myCase.Content.empty())
            {
                myFolder.Write(myCase.Name, myCase.Content);
            }
            myWindow.Chosen = myFolder.Logical(FromUtf8(myCase.Name));
            myWords.clear();
            theEvents.lblImage_Click();
            EXPECT_EQ(std::ranges::count(myWords, myTooLarge), myCase.IsAsked);
            EXPECT_EQ(std::ranges::count(myWords, "lblImage: Haga"), myCase.Mode != ImageMode::None);
            EXPECT_EQ(myForm->Settings().myImageMode, myCase.Mode);
            const bool myIsPainted =
                std::ranges::any_of(myWords, [](const std::string& w) { return w.find('+') != std::string::npos; });
            EXPECT_EQ(myIsPainted, myCase.Mode != ImageMode::None); // though an older import is still staged
            const Text myStaged = myCase.Mode == ImageMode::Jpeg ? u"qelspr.jpg" : u"qelspr.gif";
            const bool myIsCopied = myCase.Mode != ImageMode::None && !myCase.IsAsked;
            EXPECT_EQ(myFolder.Read("qelpluginanimtemp/" + ToUtf8(myStaged)) == myCase.Content, myIsCopied);
            if (myCase.Shrunk.Width > 0)
            {
                LoadPicture(myLead.LeadIn(), myFolder.Logical(u"qelpluginanimtemp\\" + myStaged));
                EXPECT_EQ(myLead.LeadIn().BitmapWidth(), static_cast<float>(myCase.Shrunk.Width));
                EXPECT_EQ(myLead.LeadIn().BitmapHeight(), static_cast<float>(myCase.Shrunk.Height));
            }
        }
    };
    Open(u"<pg.param name=imagefolder value=(USER)>", ImportEach);
}

TEST_F(DialogLogic, Archive_LostOrNotWritten_IsNoImport)
{
    myHost.DataFolder = u"\\nowhere\\";
    const auto Confirm = [&](FormMainEvents& theEvents)
    {
        theEvents.cmdOK_Click();
        EXPECT_EQ(myWords.back().substr(0, 55), "64No se han podido guardar los archivos importados en \"");
    };
    Open(u"<pg.param name=midifolder value=(USER)><pg.param name=midimode value=1>", Confirm);
    EXPECT_TRUE(myForm->Settings().myFilename.empty());

    Open(u"<pg.file filename=m.dat><pg.param name=imagemode value=jpg><pg.param name=midimode value=1><pg.param "
         u"name=imagefolder value=(USER)>",
         {});
    EXPECT_EQ(myForm->Settings().myImageMode, ImageMode::None);
    EXPECT_FALSE(myForm->Settings().myMIDIMode);
    EXPECT_EQ(myForm->Settings().myFilename, u"m.dat");
    EXPECT_EQ(myForm->Settings().myImageFolder, u"(personalizado)");
}

} // namespace
} // namespace qel
