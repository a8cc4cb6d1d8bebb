/// The logic of the settings dialog on a window that keeps a record: the order of what it does, and the failures of its
/// controls.
#include "dialog/FormMainDialog.h"
#include "dialog/pictureSize.h"
#include "ErrorOf.h"
#include "MadePictures.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <functional>
#include <gtest/gtest.h>

namespace qel
{
namespace
{

/// What the logic does with its window, one word for each call.
struct Record
{
    std::string Words;
    std::string Failing; ///< the call that fails

    void Add(const std::string& myWord)
    {
        Words += (Words.empty() ? "" : "|") + myWord;
        if (myWord == Failing)
        {
            throw Error{1234, u"Roto"};
        }
    }
};

/// Any control but a date picker.
class RecordedControl final : public ListBox,
                              public PictureBox,
                              public PreviewBox,
                              public Label,
                              public IconImage,
                              public CheckBox,
                              public Button
{
public:
    RecordedControl(Record& theRecord, std::string myControlName)
        : myRecord(theRecord), myName(std::move(myControlName))
    {
    }

    void AddItem(TextView myText) override { myItems.emplace_back(myText); }
    int32_t ListCount() override { return static_cast<int32_t>(myItems.size()); }
    int32_t ListIndex() override { return myIndex; }
    void ListIndex(int32_t myNewIndex) override
    {
        myIndex = myNewIndex;
        myRecord.Add(myName + "=" + std::to_string(myIndex));
        if (Click)
        {
            Click();
        }
    }
    Text SelectedText() override { return myIndex < 0 ? Text() : myItems[static_cast<size_t>(myIndex)]; }
    void Clear() override
    {
        myItems.clear();
        myIndex = -1;
        myRecord.Add(myName + " cleared");
    }
    void Visible(bool myIsVisible) override { myRecord.Add(myName + (myIsVisible ? " shown" : " hidden")); }
    void Cls() override { myRecord.Add("Cls"); }
    int32_t ScaleWidth() override { return 445; }
    int32_t ScaleHeight() override { return 189; }
    void PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop) override
    {
        myRecord.Add(std::to_string(myPicture.Width) + "x" + std::to_string(myPicture.Height) + "+" +
                     std::to_string(myLeft) + "+" + std::to_string(myTop));
    }
    void Caption(TextView myText) override { myRecord.Add(myName + ": " + ToUtf8(myText.substr(0, 4))); }
    void Icon(int32_t myResource) override { myRecord.Add(std::to_string(myResource)); }
    bool Value() override { return false; }
    void Value(bool myValue) override { myRecord.Add(myName + (myValue ? " on" : " off")); }
    void Enabled(bool myIsEnabled) override { myRecord.Add(myName + (myIsEnabled ? " enabled" : " disabled")); }

    std::function<void()> Click;

private:
    Record& myRecord;
    std::string myName;
    std::vector<Text> myItems;
    int32_t myIndex = -1;
};

class RecordedPicker final : public DatePicker
{
public:
    explicit RecordedPicker(Record& theRecord) : myRecord(theRecord) {}
    std::optional<Date> Value() override { return myDate; }
    void Value(std::optional<Date> myNewDate) override
    {
        myDate = myNewDate;
        myRecord.Add(!myDate ? "no date" : *myDate > 45000 ? "today" : ToUtf8(NumberText(static_cast<float>(*myDate))));
    }

private:
    Record& myRecord;
    std::optional<Date> myDate;
};

/// A window, a message box, a sound device and a help viewer that only keep the record.
class RecordedWindow final : public FormMainWindow, public Windows, public HelpViewer
{
public:
    FormMainControls& Controls() override { return myControls; }
    void Show(FormMainEvents& theEvents) override
    {
        cmbImageFolder.Click = [&]
        {
            theEvents.cmbImageFolder_Click();
        };
        cmbMIDIFolder.Click = [&]
        {
            theEvents.cmbMIDIFolder_Click();
        };
        lstImage.Click = [&]
        {
            theEvents.lstImage_Click();
        };
        theEvents.Form_Load();
        User(theEvents);
        theEvents.Form_Unload();
    }
    void Unload() override { myRecord.Add("Unload"); }
    int32_t HelpContextID() override { return 100; }
    void Pointer(MousePointer myPointer) override { myRecord.Add(myPointer == MousePointer::Default ? "0" : "11"); }
    std::optional<Text> ShowOpen(const FileDialogSettings& mySettings) override
    {
        myRecord.Add(ToUtf8(mySettings.DialogTitle + u"/" + mySettings.Filter) + "/" +
                     std::to_string(mySettings.MaxFileSize) + "/" + std::to_string(mySettings.Flags));
        return Chosen;
    }
    int32_t MsgBox(TextView myText, int32_t myStyle) override
    {
        myRecord.Add(std::to_string(myStyle) + ToUtf8(myText));
        return PressedOK;
    }
    void DemandDisplay() override {}
    std::unique_ptr<FormMainWindow> MakeFormMain() override { return nullptr; }
    void SendMultimediaCommand(TextView myCommand) override { myRecord.Add(ToUtf8(myCommand)); }

    void ShowContext(TextView myHelpFile, int32_t myContext) override
    {
        myRecord.Add(ToUtf8(myHelpFile) + " " + std::to_string(myContext));
    }

    Record myRecord;
    std::function<void(FormMainEvents&)> User;
    std::optional<Text> Chosen; ///< in the dialog for opening a file

private:
    RecordedControl cmbImageFolder{myRecord, "cmbImageFolder"}, cmbMIDIFolder{myRecord, "cmbMIDIFolder"},
        lstImage{myRecord, "lstImage"}, lstMIDI{myRecord, "lstMIDI"}, picImage{myRecord, "picImage"},
        picMIDI{myRecord, "picMIDI"}, picPreview{myRecord, ""}, imgImage{myRecord, ""}, imgMIDI{myRecord, ""},
        lblImage{myRecord, "lblImage"}, lblMIDI{myRecord, "lblMIDI"}, lblAnimated{myRecord, "lblAnimated"},
        chkImage{myRecord, "chkImage"}, chkMIDI{myRecord, "chkMIDI"}, cmdUnsetLink{myRecord, "cmdUnsetLink"};
    RecordedPicker DateFrom{myRecord}, DateTo{myRecord};
    FormMainControls myControls{cmbImageFolder, cmbMIDIFolder, lstImage,     lstMIDI,  picImage, picMIDI,
                                picPreview,     imgImage,      imgMIDI,      lblImage, lblMIDI,  lblAnimated,
                                chkImage,       chkMIDI,       cmdUnsetLink, DateFrom, DateTo};
};

class DialogLogic : public testing::Test
{
protected:
    DialogLogic()
    {
        myFolder.Write("library/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("library/Fiestas/Vela.gif", Gif(350, 250, {0, 0, 255}, true));
        myFolder.Write("library/Fiestas/Vals.mid", "tune");
    }
    ~DialogLogic() override { unsetenv("TMPDIR"); }

    /// Opens the dialog and gives the record of what the user made happen; `theOpening` is what came before that.
    std::string Open(TextView myScript, const std::function<void(FormMainEvents&)>& myUser, std::string& theOpening)
    {
        myForm.Script(myScript);
        myWindow.myRecord.Words.clear();
        myWindow.User = [&](FormMainEvents& theEvents)
        {
            theOpening = std::exchange(myWindow.myRecord.Words, {});
            myUser(theEvents);
        };
        FormMainDialog(myPorts, myConstants, myLead, myForm, myWindow).Show();
        return myWindow.myRecord.Words;
    }

    TemporaryFolder myFolder;
    const int myEnvironment = setenv("TMPDIR", myFolder.Native().c_str(), 1);
    RecordedWindow myWindow;
    std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    Platform myPorts{mySystem->Ports().files, mySystem->Ports().messages, myWindow,
                     MakeImagingControl,      myFolder.Logical(),         myWindow};
    localConstants myConstants{myFolder.Logical(u"library\\"), u"help.chm"};
    FormLead myLead{myPorts};
    FormMain myForm{myPorts, myConstants, myLead};
    std::string myOpening;
};

TEST_F(DialogLogic, OpensAndCommitsInTheOrderOfItsSteps)
{
    const std::string myCommit = Open(
        u"<pg.param name=image value=vela.gif><pg.param name=midifolder value=(USER)><pg.param name=from "
        u"value=40000.75><pg.param name=link value=x>",
        [&](FormMainEvents& theEvents)
        {
            theEvents.cmdOK_Click();
            myWindow.myRecord.Add("again");
            theEvents.cmdUnsetLink_Click();
            theEvents.cmdHelp_Click();
        },
        myOpening);
    const std::string myPreview = "Cls|11|251x179+97+5|lblAnimated shown|0|";
    EXPECT_EQ(myOpening, "cmbImageFolder=0|picImage hidden|lstImage shown|lstImage cleared|lstImage=1|" + myPreview +
                             "cmbMIDIFolder=1|picMIDI shown|lstMIDI hidden|lblMIDI: Ning|100|chkImage on|chkMIDI "
                             "on|40000.75|today|no date|" +
                             myPreview + "cmdUnsetLink enabled");
    EXPECT_EQ(myCommit, "64Por favor, importe un sonido de fondo o seleccione uno de la librería.|again|cmdUnsetLink "
                        "disabled|help.chm 100|stop qelmidi |close qelmidi ");
    EXPECT_EQ(Open(
                  u"<pg.param name=from value=40000.75><pg.param name=showimage value=1>",
                  [](FormMainEvents& theEvents) { theEvents.cmdOK_Click(); }, myOpening),
              "40000|Unload|stop qelmidi |close qelmidi ");
    EXPECT_EQ(myForm.Settings().myFrom, 40000);
    EXPECT_FALSE(myForm.Settings().myShowImage);
}

TEST_F(DialogLogic, PlaysACopyByFourCommands)
{
    const std::string myStop = "stop qelmidi |close qelmidi ";
    const std::string myPlay =
        myStop + "|open \"" + ToUtf8(myFolder.Logical(u"qelmid.mid")) + "\" type sequencer alias qelmidi|play qelmidi ";
    myFolder.Write("qelmid.mid", "an older tune");
    EXPECT_EQ(Open(
                  u"",
                  [&](FormMainEvents& theEvents)
                  {
                      theEvents.lstMIDI_DblClick();
                      EXPECT_EQ(myFolder.Read("qelmid.mid"), "tune");
                      theEvents.ToolbarPlay_ButtonClick(2);
                      myWindow.Controls().cmbMIDIFolder.ListIndex(1); // own tunes, of which there are none
                      myWindow.myRecord.Words.clear();
                      theEvents.ToolbarPlay_ButtonClick(1);
                      EXPECT_FALSE(myFolder.Exists("qelmid.mid"));
                      EXPECT_EQ(std::exchange(myWindow.myRecord.Words, {}), myPlay);
                      theEvents.ToolbarPlay_ButtonClick(2);
                  },
                  myOpening),
              myStop + "|" + myStop);
}

TEST_F(DialogLogic, ATuneThatCannotBeCopiedLeavesNoneImported)
{
    const std::string myDialog = "Cargar sonido de fondo/Archivos MIDI (*.mid)|*.mid/30000/524292";
    EXPECT_EQ(Open(
                  u"",
                  [&](FormMainEvents& theEvents)
                  {
                      theEvents.lblMIDI_Click();
                      myWindow.Chosen = myFolder.Logical(u"library\\Fiestas\\Vals.mid");
                      theEvents.lblMIDI_Click();
                      EXPECT_TRUE(myForm.Settings().myMIDIMode);
                      myWindow.Chosen = myFolder.Logical(u"gone.mid");
                      theEvents.lblMIDI_Click();
                      EXPECT_FALSE(myForm.Settings().myMIDIMode);
                      EXPECT_TRUE(myFolder.Exists("qelpluginanimtemp/qelmid.mid"));
                  },
                  myOpening),
              myDialog + "|" + myDialog + "|lblMIDI: Haga|110|" + myDialog +
                  "|lblMIDI: Ning|100|stop qelmidi |close qelmidi ");
}

TEST_F(DialogLogic, AFailureOfAHandlerIsShownUnlessAWriteWaitsForIt)
{
    myWindow.myRecord.Failing = "lblMIDI: Ning";
    EXPECT_EQ(ErrorOf([&] { Open(u"", {}, myOpening); }), 1234); // in the opening, which writes the selected folder
    myWindow.myRecord.Failing.clear();
    Open(
        u"",
        [&](FormMainEvents& theEvents)
        {
            myWindow.myRecord.Failing = "lblMIDI: Ning";
            theEvents.cmbMIDIFolder_Click();
            EXPECT_TRUE(myWindow.myRecord.Words.ends_with("lblMIDI: Ning|64Roto")) << myWindow.myRecord.Words;
            myWindow.myRecord.Failing = "64Roto";
            theEvents.cmdSetLink_Click(); // no database, and then no message either
        },
        myOpening);
}

TEST(FitInto, KeepsTheProportionsAndRoundsHalvesToEven)
{
    const struct
    {
        PictureSize Room;
        double Width, Height;
        PictureSize Size;
    } Cases[] = {
        {{350, 350}, 700, 500, {350, 250}}, {{350, 350}, 500, 700, {250, 350}}, {{435, 179}, 350, 250, {251, 179}},
        {{435, 179}, 435, 179, {435, 179}}, {{10, 10}, 20, 5, {10, 2}},         {{10, 10}, 3, 12, {2, 10}},
        {{350, 350}, 5000, 1, {350, 0}},    {{435, 179}, 3, 7, {3, 7}},
    };
    for (const auto& myCase : Cases)
    {
        const PictureSize mySize = FitInto(myCase.Room, myCase.Width, myCase.Height);
        EXPECT_EQ(std::pair(mySize.Width, mySize.Height), std::pair(myCase.Size.Width, myCase.Size.Height));
    }
}

} // namespace
} // namespace qel
