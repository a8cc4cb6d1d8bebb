/// The settings dialog: the real window of the built component, opened through its entry points and worked by a user
/// with mouse and keys.
#include "dialogHost.h"
#include "Environment.h"
#include "madePictures.h"
#include "resources/formLayout.h"
#include "resources/stringTable.h"
#include "TemporaryFolder.h"

#include <fstream>
#include <QFontInfo>
#include <QHelpEvent>
#include <QPushButton>
#include <QScreen>
#include <thread>

namespace qel
{

const char16_t* const ErrorSource = u"dialog_test";

namespace
{

namespace fs = std::filesystem;

/// A fresh folder with a library, a data folder and a temporary path for each test; the component lies in a folder of
/// its own that all share.
class DialogTest : public testing::Test
{
protected:
    DialogTest()
    {
        for (const char* myFile : {"QelPluginAnimation.so", "QelPluginAnimationWindow.so"})
        {
            fs::copy_file(fs::path(QEL_STAGE) / myFile, myStage.Native(myFile), fs::copy_options::skip_existing);
        }
        fs::remove(myStage.Native("QelPluginAnimationDesigns"));
        myFolder.MakeFolder("library");
        fs::create_symlink(myFolder.Native("library"), myStage.Native("QelPluginAnimationDesigns"));
        myFolder.MakeFolder("data");
        myFolder.MakeFolder("tmp");
        fs::permissions(myFolder.Native("tmp"), fs::perms::owner_all);
        myStage.Write("help/100.html", "");
        for (const char* const myFile : {"Fiestas/globo.GIF", "Fiestas/nota.txt", "Fiestas/Vals.mid",
                                         "Solo tonos/Minueto.mid", "animales/perro.gif", "leame.txt"})
        {
            myFolder.Write(std::string("library/") + myFile, "tune");
        }
        myFolder.Write("library/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("library/Fiestas/Vela.azul.gif", Gif(350, 250, {0, 0, 255}, true));
        myHost = std::make_unique<DialogHost>(myStage.Native("QelPluginAnimation.so"));
        myHost->Records->DataFolder = FromUtf8(myFolder.Native("data/"));
        myHost->Script(u"");
    }

    static const TemporaryFolder& Stage()
    {
        static const TemporaryFolder theStage;
        return theStage;
    }

    using Settings = std::vector<std::pair<QString, QString>>;

    void Script(const Settings& mySettings, const QString& myArchive = {}) const
    {
        QString myScript = "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">";
        myScript += myArchive.isEmpty() ? "" : "<pg.file filename=\"" + myArchive + "\">";
        for (const auto& [myName, myValue] : mySettings)
        {
            myScript += QString("<pg.param name=\"%1\" value=\"%2\">").arg(myName, myValue);
        }
        myHost->Script(myScript.toStdU16String());
    }

    /// Opens the dialog for something to be done in it, and cancels it.
    void Examine(const std::function<void()>& myAction) const
    {
        EXPECT_FALSE(myHost->CallBack({Dialog([&] { myAction(), Click("cmdCancel"); })}));
    }

    using Texts = std::vector<std::string>;

    /// What the script stores of some settings; of "file" the archive's name.
    Texts Stored(const QStringList& myNames) const
    {
        const QString myScript = QString::fromStdU16String(myHost->Script());
        Texts theValues;
        for (const QString& myName : myNames)
        {
            const QString myMark = myName == "file" ? "filename=\"" : "name=\"" + myName + "\" value=\"";
            theValues.push_back(myScript.section(myMark, 1).section('"', 0, 0).toStdString());
        }
        return theValues;
    }

    static Texts Entries(const char* myName)
    {
        Texts theEntries;
        const auto& myModel = *Control(myName).findChild<QAbstractItemModel*>();
        for (int i = 0; i < myModel.rowCount(); ++i)
        {
            theEntries.push_back(myModel.index(i, 0).data().toString().toStdString());
        }
        return theEntries;
    }

    /// The colour of a pixel of the preview, counted inside its border.
    static QColor Preview(int myLeft, int myTop)
    {
        return Control("picPreview").grab().toImage().pixelColor(myLeft + 2, myTop + 2);
    }

    static bool PreviewIsEmpty() { return Control<QLabel>("picPreview").pixmap().isNull(); }

    /// Expects the button to show whether its file is imported, and so the preview of a picture.
    static void ExpectImport(const char* myButton, bool myIsThere)
    {
        const QString myCaption = Control<QAbstractButton>(myButton).text();
        EXPECT_TRUE(myCaption.startsWith(myIsThere ? "Haga clic" : "Ning")) << myCaption.toStdString();
        if (myButton == std::string("lblImage"))
        {
            EXPECT_EQ(PreviewIsEmpty(), !myIsThere);
        }
    }

    /// The question about a picture that is too large, and the button that is pressed.
    static Step TooLarge(QMessageBox::StandardButton myButton)
    {
        return Message(Text(LoadResString(StringId::ImageIsTooLarge)), myButton, QMessageBox::Question);
    }

    /// True in a process that runs this test alone, so that there is no application object yet. Elsewhere it starts
    /// such a process, with these additions to its environment, and expects it to pass.
    static bool IsAlone(const std::string& myEnvironment = "")
    {
        if (getenv("QEL_TEST_ALONE") != nullptr)
        {
            return true;
        }
        const std::string myCommand = "QEL_TEST_ALONE=1 " + myEnvironment + " '" +
                                      fs::read_symlink("/proc/self/exe").string() + "' --gtest_filter=DialogTest." +
                                      testing::UnitTest::GetInstance()->current_test_info()->name();
        EXPECT_EQ(std::system(myCommand.c_str()), 0) << myCommand; // NOLINT(concurrency-mt-unsafe)
        return false;
    }

    /// The tune that has been played since the last call; empty when there was none.
    std::string Played() const
    {
        std::string theTune = myFolder.Read("tmp/qelmid.mid");
        fs::remove(myFolder.Native("tmp/qelmid.mid"));
        return theTune;
    }

    const TemporaryFolder& myStage = Stage(); // made before the environment changes
    TemporaryFolder myFolder;
    Environment myEnvironment{{TemporaryFolderVariable, myFolder.Native("tmp")},
                              {"QT_QPA_PLATFORM", "offscreen"},
                              {"XDG_CONFIG_HOME", myFolder.Native()},
                              {"PULSE_SERVER", "unix:/nowhere"}};
    std::unique_ptr<DialogHost> myHost;
};

TEST_F(DialogTest, Open_WithoutAWindowSystem_FailsAndTouchesNothing)
{
    if (!IsAlone())
    {
        return;
    }
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    for (const char* myName : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
    {
        myEnvironment.Unset(myName);
    }
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    const auto FailsWith = [&](uint32_t myResult)
    {
        EXPECT_FALSE(myHost->CallBack({}, QEL_RESULT(myResult)));
        EXPECT_EQ(myHost->Plugin.Query<QelInfo>()->About(), QEL_RESULT(myResult));
    };
    FailsWith(0x800A0039U);
    myEnvironment.Set("QT_QPA_PLATFORM", "nosuch:size=1;alsono");
    FailsWith(0x800A0039U);
    static int theCount = 0;
    const QCoreApplication myApplication(theCount, nullptr); // one without windows, and not of the other thread
    FailsWith(0x800A0005U);
    std::thread(FailsWith, 0x800A0005U).join();
    EXPECT_TRUE(myFolder.Exists("tmp/qelpluginanimtemp/stale"));
}

TEST_F(DialogTest, Open_KeepsTheHostsApplication)
{
    if (!IsAlone())
    {
        return;
    }
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    static int theCount = 1;
    static char theName[] = "host";
    static char* theArguments[] = {theName, nullptr};
    const auto* const myApplication = new QApplication(theCount, theArguments);
    const QStyle* const myStyle = QApplication::style();
    QFont myFont("Serif", 20, QFont::Bold, true);
    myFont.setUnderline(true);
    QApplication::setFont(myFont);
    QApplication::setPalette(QColor(Qt::darkGray));
    EXPECT_FALSE(myHost->CallBack({
        Dialog(
            []
            {
                for (const ControlLayout& myRow : MainFormControls)
                {
                    SCOPED_TRACE(ToUtf8(myRow.Name));
                    const QFont myOwn = Control(ToUtf8(myRow.Name).c_str()).font();
                    EXPECT_EQ(QFontInfo(myOwn).pixelSize(), 11);
                    EXPECT_EQ(myOwn.weight(), myRow.FontWeight);
                    EXPECT_FALSE(myOwn.italic());
                }
                Pick("cmbImageFolder", "(personalizado)");
                EXPECT_EQ(Control("lblImage").grab().toImage().pixelColor(150, 78), QColor(Qt::white));
                EXPECT_EQ(Preview(200, 90), QColor(Qt::white));
                Click("cmdCancel");
            }),
    }));
    EXPECT_EQ(QCoreApplication::instance(), myApplication);
    EXPECT_EQ(QApplication::style(), myStyle);
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
}

/// The columns of tests/data/form.csv, which describes the form apart from the code. Lengths in twips, 15 to the pixel.
enum Column
{
    Tab, ///< "none": not in the order
    Name,
    Kind,
    Caption,
    AccessKey,
    Left,
    Top,
    Width,
    Height,
    Parent ///< the box that the control lies in; empty: the form
};

/// The names that take the focus from the Tab key, in its order.
QStringList TabOrder(const QStringList& myNames)
{
    QStringList theOrder;
    for (QWidget* w = DialogUser::Front()->nextInFocusChain(); w != DialogUser::Front(); w = w->nextInFocusChain())
    {
        // A part of a control has its own name.
        const QString myName = myNames.contains(w->objectName()) ? w->objectName() : w->parentWidget()->objectName();
        if ((w->focusPolicy() & Qt::TabFocus) != 0 && myNames.contains(myName))
        {
            theOrder << myName;
        }
    }
    theOrder.removeDuplicates();
    return theOrder;
}

TEST_F(DialogTest, Form_IsTheOneOfTheTable)
{
    Examine(
        []
        {
            QMap<int, QString> myOrder;
            std::ifstream myTable(QEL_TEST_DATA "/form.csv", std::ios::binary);
            std::string myLine;
            for (std::getline(myTable, myLine); std::getline(myTable, myLine);)
            {
                const QStringList myRow = QString::fromStdString(myLine).split(';');
                SCOPED_TRACE(myRow[Name].toStdString());
                QWidget& myWidget = Control(myRow[Name].toStdString().c_str());
                EXPECT_EQ(myWidget.parentWidget()->objectName(), myRow[Parent].isEmpty() ? "FormMain" : myRow[Parent]);
                const QRect& myPlace = myWidget.geometry();
                EXPECT_EQ(myPlace.topLeft() * 15, QPoint(myRow[Left].toInt(), myRow[Top].toInt()));
                EXPECT_EQ(myPlace.size() * 15, QSize(myRow[Width].toInt(), myRow[Height].toInt()));
                const bool myIsImport = myRow[Caption] == "**"; // which an import box replaces
                if (!myIsImport)
                {
                    EXPECT_EQ(myWidget.property("text").toString(), myRow[Caption]);
                }
                EXPECT_EQ(myWidget.property("shortcut").value<QKeySequence>(),
                          myRow[AccessKey].isEmpty() ? QKeySequence() : QKeySequence("Alt+" + myRow[AccessKey]));
                if (myRow[Tab] != "none" && (myIsImport || (myRow[Kind] != "label" && myRow[Kind] != "picture box")))
                {
                    myOrder[myRow[Tab].toInt()] = myRow[Name];
                }
            }
            const QStringList myNames = QStringList(myOrder.values());
            EXPECT_EQ(TabOrder(myNames), myNames) << TabOrder(myNames).join(' ').toStdString();
            EXPECT_EQ(DialogUser::Front()->windowTitle(), "Tesselwind");
            EXPECT_EQ(DialogUser::Front()->size(), QSize(480, 560));
        });
}

TEST_F(DialogTest, Confirm_NewModule_HasTheFirstMotifAndTune)
{
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    EXPECT_TRUE(myHost->CallBack({Dialog(
        [&]
        {
            const Texts myFolders = {"Fiestas", "Solo tonos", "animales", "leame.txt", "(personalizado)"};
            EXPECT_EQ(Entries("cmbImageFolder"), myFolders);
            EXPECT_EQ(Entries("cmbMIDIFolder"), myFolders);
            EXPECT_EQ(Entries("lstImage"), (Texts{"Globo", "Vela.azul", "globo"}));
            EXPECT_EQ(Entries("lstMIDI"), (Texts{"Vals"}));
            EXPECT_TRUE(Control<QAbstractButton>("chkImage").isChecked());
            EXPECT_FALSE(Control<QAbstractButton>("DateFromSwitch").isChecked());
            EXPECT_FALSE(Control("cmdUnsetLink").isEnabled());
            EXPECT_TRUE(fs::is_empty(myFolder.Native("tmp/qelpluginanimtemp")));
            Key(Qt::Key_Return);
        })}));
    EXPECT_EQ(Stored({"image", "imagefolder", "midi", "midifolder", "imagemode", "from", "to", "file", "link"}),
              (Texts{"Globo.gif", "Fiestas", "Vals.mid", "Fiestas", "none", "0", "0", "", ""}));
}

TEST_F(DialogTest, Open_SelectsTheLastNameThatMatchesElseTheFirst)
{
    const struct
    {
        QString StoredFolder, StoredImage;
        const char* Folder;
        int Row;
    } Cases[] = {
        {"FIESTAS", "GLOBO.gif", "Fiestas", 2},  {"fiestas", "Vela.azul.gif", "Fiestas", 1},
        {"Fiestas", "gone.gif", "Fiestas", 0},   {"gone", "globo.gif", "Fiestas", 2},
        {"leame.txt", "x.gif", "leame.txt", -1}, {"(PERSONALIZADO)", "", "(personalizado)", -1},
        {"(USER)", "", "(personalizado)", -1},   {"(user)", "", "Fiestas", 0},
    };
    for (const auto& myCase : Cases)
    {
        Script({{"imagefolder", myCase.StoredFolder}, {"image", myCase.StoredImage}});
        SCOPED_TRACE(myCase.StoredFolder.toStdString());
        Examine(
            [&]
            {
                const auto& myList = Control<QListWidget>("lstImage");
                EXPECT_EQ(Control<QComboBox>("cmbImageFolder").currentText(), myCase.Folder);
                EXPECT_EQ(myList.selectedItems().isEmpty() ? -1 : myList.row(myList.selectedItems()[0]), myCase.Row);
            });
    }
}

TEST_F(DialogTest, Browse_ShowsListsBoxesAndPreview)
{
    EXPECT_TRUE(myHost->CallBack({Dialog(
        [&]
        {
            EXPECT_EQ(Preview(202, 79), QColor(255, 0, 0)); // 40 by 30 in the middle of 445 by 189
            EXPECT_EQ(Preview(241, 108), QColor(255, 0, 0));
            EXPECT_EQ(Preview(201, 79), QColor(Qt::white));
            EXPECT_EQ(Preview(242, 108), QColor(Qt::white));
            EXPECT_FALSE(Control("lblAnimated").isVisible());
            Pick("lstImage", "Vela.azul");
            EXPECT_EQ(Preview(97, 5), QColor(0, 0, 255)); // shrunk to 251 by 179
            EXPECT_EQ(Preview(348, 184), QColor(Qt::white));
            EXPECT_TRUE(Control("lblAnimated").isVisible());

            myFolder.Write("library/Fiestas/Vela.azul.gif", Gif(40, 30, {0, 255, 0}, true, 0));
            Pick("lstImage", "Vela.azul");
            EXPECT_EQ(Preview(222, 94), QColor(Qt::white)); // as it is transparent by now
            Pick("cmbImageFolder", "Fiestas");
            EXPECT_EQ(Preview(222, 94), QColor(255, 0, 0)); // the stored motif again, or the first
            myFolder.Write("library/Fiestas/Vela.azul.gif", Gif(350, 250, {0, 0, 255}, true));
            Pick("lstImage", "Vela.azul");

            Pick("cmbImageFolder", "Solo tonos"); // has no motif: what showed before stays
            EXPECT_EQ(Entries("lstImage"), (Texts{}));
            EXPECT_EQ(Preview(222, 94), QColor(0, 0, 255));
            Pick("cmbImageFolder", "animales"); // has one that cannot be read
            EXPECT_TRUE(PreviewIsEmpty());
            Pick("cmbImageFolder", "(personalizado)");
            EXPECT_TRUE(PreviewIsEmpty());
            EXPECT_TRUE(Control("lblAnimated").isVisible());
            EXPECT_TRUE(Control("picImage").isVisible());
            EXPECT_FALSE(Control("lstImage").isVisible());
            ExpectImport("lblImage", false);
            Work("cmbImageFolder=leame.txt|cmbMIDIFolder=Solo tonos");
            EXPECT_EQ(Entries("lstMIDI"), (Texts{"Minueto"}));
            Work("cmbMIDIFolder=animales|cmdOK");
        })}));
    EXPECT_EQ(Stored({"image", "imagefolder", "midi", "midifolder"}), (Texts{".gif", "leame.txt", ".mid", "animales"}));
}

TEST_F(DialogTest, Import_IsStagedByItsSizeAndEnding)
{
    const struct
    {
        const char* Name;
        std::string Content;
        QString Mode;
        QSize Shrunk = {}; ///< after a question
    } Cases[] = {
        {"limit.gif", Gif(350, 350, {9, 9, 9}, true), "gif"},
        {"wide.gif", Gif(351, 10), "gif", {350, 10}},
        {"photo.jpg", Jpeg(20, 30), "jpg"},
        {"large.jpg", Jpeg(500, 700), "jpg", {250, 350}},
        {"any.name", Gif(5, 5), "gif"},
        {"flat.gif", Gif(5000, 1), "none", {350, 0}},
        {"text.gif", "no picture", "none"},
    };
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(myCase.Name);
        myFolder.Write(myCase.Name, myCase.Content);
        const bool myIsThere = myCase.Mode != "none";
        const std::string myStaged =
            "tmp/qelpluginanimtemp/qelspr." + std::string(myCase.Mode == "jpg" ? "jpg" : "gif");
        std::deque<Step> mySteps = {Do("cmbImageFolder=(personalizado)|lblImage"), File(myFolder.Native(myCase.Name))};
        if (myCase.Shrunk.isValid())
        {
            mySteps.push_back(TooLarge(QMessageBox::Ok));
        }
        mySteps.push_back(Dialog([&] { ExpectImport("lblImage", myIsThere), Click("cmdCancel"); }));
        EXPECT_FALSE(myHost->CallBack(std::move(mySteps)));
        EXPECT_EQ(Stored({"imagemode", "image"}), (Texts{myCase.Mode.toStdString(), ""}));
        EXPECT_EQ(myFolder.Read(myStaged) == myCase.Content, myIsThere && !myCase.Shrunk.isValid());
        if (myIsThere && myCase.Shrunk.isValid())
        {
            EXPECT_EQ(QImage(QString::fromStdString(myFolder.Native(myStaged))).size(), myCase.Shrunk);
        }
    }
}

TEST_F(DialogTest, Import_SurvivesCommitAndReopening)
{
    myFolder.Write("mine.gif", Gif(30, 20));
    myFolder.Write("mine.jpg", Jpeg(30, 20));
    myFolder.Write("Mine.MID", "my tune");
    EXPECT_TRUE(myHost->CallBack({
        Do("cmbImageFolder=(personalizado)|cmbMIDIFolder=(personalizado)|cmdOK"),
        Message(Text(LoadResString(StringId::ImportImageFirst))),
        Dialog([] { TabTo("lblImage"), Key(Qt::Key_Return); }),
        File(myFolder.Native("mine.gif")),
        Do("cmdOK"),
        Message(Text(LoadResString(StringId::ImportMIDIFirst))),
        Dialog([] { TabTo("lblMIDI"), Key(Qt::Key_Space); }),
        File(myFolder.Native("Mine.MID")),
        Do("lblImage"),
        File(""), // keeps what was imported
        Dialog(
            [&]
            {
                EXPECT_EQ(Stored({"imagemode", "midimode", "image", "midi"}),
                          (Texts{"gif", "1", "qelspr.gif", ""})); // of the refused commit
                Click("lblImage");
            }),
        File(myFolder.Native("mine.jpg")),
        Dialog(
            [&]
            {
                EXPECT_TRUE(myFolder.Exists("tmp/qelpluginanimtemp/qelspr.gif"));
                TabTo("chkMIDI"), Key(Qt::Key_Space);
                Key(Qt::Key_Return);
            }),
    }));
    EXPECT_EQ(Stored({"image", "imagefolder", "midi", "midifolder", "imagemode", "midimode", "showimage", "playmidi",
                      "file"}),
              (Texts{"qelspr.jpg", "(USER)", "qelmid.mid", "(USER)", "jpg", "1", "1", "0", "m7.dat"}));
    const std::string myArchive = myFolder.Read("data/m7.dat");
    EXPECT_EQ(myArchive.find("qelspr.gif"), std::string::npos);

    // The other way round: a library selection drops nothing, and what was imported is packed again.
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    myHost->Script(myHost->Script());
    EXPECT_TRUE(myHost->CallBack({Dialog(
        []
        {
            EXPECT_EQ(Control<QComboBox>("cmbImageFolder").currentText(), "(personalizado)");
            ExpectImport("lblImage", true), ExpectImport("lblMIDI", true);
            Work("cmbImageFolder=Fiestas|cmbMIDIFolder=Fiestas|cmdOK");
        })}));
    EXPECT_EQ(Stored({"image", "imagefolder", "imagemode", "midimode", "file"}),
              (Texts{"Globo.gif", "Fiestas", "jpg", "1", "m7.dat"}));
    EXPECT_EQ(myFolder.Read("data/m7.dat").size(), myArchive.size());
}

TEST_F(DialogTest, Import_QuestionCancelledOrArchiveLost_LeavesNoneImported)
{
    myFolder.Write("data/m7.dat", "");
    myFolder.Write("big.gif", Gif(400, 20));
    Script({{"imagefolder", "(USER)"}, {"midifolder", "(USER)"}, {"imagemode", "jpg"}, {"midimode", "1"}}, "m7.dat");
    EXPECT_FALSE(myHost->CallBack({
        Do("lblImage"),
        File(myFolder.Native("big.gif")),
        TooLarge(QMessageBox::Cancel),
        Dialog([] { ExpectImport("lblImage", false), Click("cmdCancel"); }),
    }));
    EXPECT_EQ(Stored({"imagemode"}), (Texts{"none"}));

    fs::remove(myFolder.Native("data/m7.dat"));
    Script({{"imagefolder", "(USER)"}, {"midifolder", "(USER)"}, {"imagemode", "jpg"}, {"midimode", "1"}}, "m7.dat");
    Examine([] { ExpectImport("lblImage", false), ExpectImport("lblMIDI", false); });
    EXPECT_EQ(Stored({"imagefolder", "midifolder", "imagemode", "midimode", "file"}),
              (Texts{"(personalizado)", "(personalizado)", "none", "0", "m7.dat"}));
}

TEST_F(DialogTest, LinkAndPeriod_TakeEffectInTheirTime)
{
    Script({{"link", "URL:old"}, {"from", "40000"}, {"to", "0"}, {"midifolder", "(USER)"}, {"midimode", "1"}});
    myHost->Records->Link = u"URL:new";
    EXPECT_FALSE(myHost->CallBack({
        Dialog(
            [&]
            {
                EXPECT_TRUE(Control<QAbstractButton>("DateFromSwitch").isChecked());
                EXPECT_EQ(DayText("DateFromDay"), "06/07/2009");
                EXPECT_EQ(DayText("DateToDay"), QDate::currentDate().toString("dd/MM/yyyy").toStdString());
                Click("cmdUnsetLink");
                EXPECT_FALSE(Control("cmdUnsetLink").isEnabled());
                Click("cmdSetLink");
                EXPECT_EQ(myHost->Records->PresentLink, u"");
                EXPECT_TRUE(Control("cmdUnsetLink").isEnabled());
                Click("DateToSwitch");
                Type("DateToDay", "5/7/2009");
                Click("cmdOK");
            }),
        Message(Text(LoadResString(StringId::PeriodIsReversed))),
        Dialog(
            [&]
            {
                EXPECT_TRUE(myFolder.Exists("data/m7.dat"));
                myHost->Records->LinkResult = QEL_RESULT(0x800A0BADU);
                Click("cmdSetLink");
            }),
        Message(Text(ErrorDescription(0xBAD))),
        Dialog([] { DialogUser::Front()->close(); }),
    }));
    EXPECT_EQ(Stored({"link", "from", "to", "image"}),
              (Texts{"URL:new", "40000", "39999", "Globo.gif"})); // Cancel takes nothing of it back
    const Step myAgree = Dialog([] { Type("DateToDay", "6/7/2009"), Key(Qt::Key_Enter); });
    EXPECT_TRUE(myHost->CallBack({myAgree}));
    EXPECT_EQ(Stored({"from", "to"}), (Texts{"40000", "40000"}));
}

TEST_F(DialogTest, Commit_ArchiveCannotBeWritten_ShowsAMessage)
{
    Script({{"midifolder", "(USER)"}, {"midimode", "1"}});
    myHost->Records->DataFolder = u"/nowhere/";
    EXPECT_FALSE(myHost->CallBack({
        Do("cmdOK"),
        Message(u"No se han podido guardar los archivos importados en \"/nowhere/m7.dat\": No se encuentra la ruta."),
        Do("cmdCancel"),
    }));
    EXPECT_EQ(Stored({"midi", "midimode", "file"}), (Texts{"qelmid.mid", "1", ""}));
}

TEST_F(DialogTest, Open_Failure_IsAFailedCallAndTheNextOneSucceeds)
{
    Script({{"from", "-150000"}}); // in 1489
    EXPECT_FALSE(myHost->CallBack({}, QEL_RESULT(0x800A0005U)));
    myHost->Script(u"");
    const Step myTwice = Dialog([&] { myHost->CallBack({}, QEL_RESULT(0x800A0005U)), Click("cmdCancel"); });
    EXPECT_FALSE(myHost->CallBack({myTwice})); // there is one dialog at a time
    fs::rename(myFolder.Native("tmp/qelpluginanimtemp"), myFolder.Native("elsewhere"));
    fs::create_directory_symlink(myFolder.Native("elsewhere"), myFolder.Native("tmp/qelpluginanimtemp"));
    myFolder.Write("elsewhere/kept", "");
    EXPECT_FALSE(myHost->CallBack({}, QEL_RESULT(0x800A004BU)));
    EXPECT_TRUE(myFolder.Exists("elsewhere/kept"));
    fs::remove(myFolder.Native("tmp/qelpluginanimtemp"));
    EXPECT_TRUE(myHost->CallBack({Do("cmdOK")}));
}

TEST_F(DialogTest, Enter_ConfirmsExceptOnAnotherButton)
{
    const QStringList myPlaces =
        QString("cmbImageFolder cmbMIDIFolder lstImage lstMIDI chkImage chkMIDI cmdSetLink cmdUnsetLink DateFromSwitch "
                "DateFromDay DateToSwitch DateToDay cmdHelp cmdOK cmdCancel ToolbarPlay1 ToolbarPlay2")
            .split(' ');
    for (const QString& myPlace : myPlaces)
    {
        const bool myIsButton = myPlace.startsWith("cmd") || myPlace.startsWith("ToolbarPlay");
        const bool myConfirms = !myIsButton || myPlace == "cmdOK";
        Script({{"link", "URL:x"}, {"from", "1"}, {"to", "1"}});
        const auto Press = [&]
        {
            std::for_each(myPlaces.begin(), std::find(myPlaces.begin(), myPlaces.end(), myPlace),
                          [](const QString&) { Key(Qt::Key_Tab); });
            EXPECT_EQ(QApplication::focusWidget()->objectName(), myPlace);
            Key(Qt::Key_Return);
            DialogUser::Front() != nullptr ? Key(Qt::Key_Escape) : void();
        };
        EXPECT_EQ(myHost->CallBack({Dialog(Press)}), myConfirms) << myPlace.toStdString();
    }
    EXPECT_EQ(Stored({"showimage", "playmidi", "from", "to"}), (Texts{"1", "1", "1", "1"}));
}

TEST_F(DialogTest, Play_ByDoubleClickAndToolButtons)
{
    myFolder.Write("library/Fiestas/Vals 2.mid", "second");
    Examine(
        [&]
        {
            auto& myList = Control<QListWidget>("lstMIDI");
            QTest::mouseDClick(myList.viewport(), Qt::LeftButton, {},
                               myList.visualItemRect(myList.currentItem()).center());
            EXPECT_EQ(Played(), "second");
            TabTo("ToolbarPlay2"), Key(Qt::Key_Enter);
            EXPECT_EQ(Played(), "");
            for (const Qt::Key myKey : {Qt::Key_Space, Qt::Key_Return})
            {
                TabTo("ToolbarPlay1"), Key(myKey);
                EXPECT_EQ(Played(), "second");
            }
            Work("ToolbarPlay1|cmbMIDIFolder=animales");
            QTest::mouseDClick(myList.viewport(), Qt::LeftButton);
            EXPECT_FALSE(myFolder.Exists("tmp/qelmid.mid"));
        });
}

TEST_F(DialogTest, Help_ByTheButtonAndTheKeyInEveryControl)
{
    myFolder.Write("xdg-open", "#!/bin/sh\n>" + myFolder.Native("asked")); // stands in for the viewer of help pages
    fs::permissions(myFolder.Native("xdg-open"), fs::perms::owner_all);
    myEnvironment.Set("PATH", myFolder.Native() + ":" + std::getenv("PATH"));
    for (const char* const myPlace : {"cmbImageFolder", "lstImage", "DateFromSwitch", "cmdOK", "cmdHelp"})
    {
        const auto Ask = [&]
        {
            TabTo(myPlace);
            Key(myPlace == std::string("cmdHelp") ? Qt::Key_Space : Qt::Key_F1);
            EXPECT_TRUE(QTest::qWaitFor([&] { return myFolder.Exists("asked"); })) << myPlace;
            fs::remove(myFolder.Native("asked"));
        };
        Examine(Ask);
    }
}

TEST_F(DialogTest, ScreenReader_EveryControlWithFocusHasAName)
{
    const std::pair<const char*, const char*> Names[] = {
        {"cmbImageFolder", "Motivo:"},
        {"lstImage", "Motivos"},
        {"lstMIDI", "Músicas"},
        {"cmdSetLink", "Determinar vínculo"},
        {"DateFromSwitch", "Representación desde"},
        {"DateFromDay", "Representación desde"},
        {"DateToSwitch", "Representación hasta"},
        {"DateToDay", "Representación hasta"},
        {"ToolbarPlay1", "Reproducir música"},
        {"ToolbarPlay2", "Detener música"},
        {"lblMIDI", "Ningún sonido de fondo seleccionado. Haga clic aquí para importar un clip en formato MIDI como "
                    "sonido de fondo."},
    };
    Script({{"link", "URL:x"}, {"from", "1"}, {"to", "1"}});
    Examine(
        [&]
        {
            for (const auto& [myPlace, myName] : Names)
            {
                const bool myIsImport = std::string(myPlace).starts_with("lbl");
                myIsImport ? Pick("cmbMIDIFolder", "(personalizado)") : void();
                TabTo(myPlace);
                EXPECT_EQ(NameForAScreenReader(*QApplication::focusWidget()), myName) << myPlace;
            }
            EXPECT_EQ(QAccessible::queryAccessibleInterface(&Control("lblMIDI"))->role(), QAccessible::Button);
            EXPECT_EQ(Control("ToolbarPlay1").toolTip(), "Reproducir música");
        });
}

TEST_F(DialogTest, Focus_OfAListIsShown)
{
    Examine(
        []
        {
            Work("cmbMIDIFolder=leame.txt"); // without a tune, so nothing is selected
            for (const char* const myName : {"lstImage", "lstMIDI"})
            {
                const auto Edge = [&]
                {
                    return Control(myName).grab().toImage().pixelColor(50, 0);
                };
                const QColor myPlain = Edge();
                TabTo(myName);
                EXPECT_EQ(Edge(), QColor(0x308CC6)) << myName;
                TabTo("chkImage");
                EXPECT_EQ(Edge(), myPlain) << myName;
            }
        });
}

TEST_F(DialogTest, Date_Typed_IsStored)
{
    const struct
    {
        QString Typed;
        QString Stored; ///< with the other date, which is 31 December 9999
        const char* Shown;
    } Cases[] = {
        {"5/1/2027", "46392", "05/01/2027"},   {"05/01/2027", "46392", "05/01/2027"},
        {"05012027", "46392", "05/01/2027"},   {"5.1.2027", "46392", "05/01/2027"},
        {"5-1-2027", "46392", "05/01/2027"},   {"29/2/2028", "46812", "29/02/2028"},
        {"31/12/2026", "46387", "31/12/2026"}, {"1/1/1601", "-109205", "01/01/1601"},
        {"31129999", "2958465", "31/12/9999"}, {"/4", "41002", "03/04/2012"},
        {"12", "40980", "12/03/2012"},
    };
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(myCase.Typed.toStdString());
        Script({{"from", "40971"}, {"to", "2958465"}}); // from 3 March 2012
        EXPECT_TRUE(myHost->CallBack({Dialog(
            [&]
            {
                Type("DateFromDay", myCase.Typed), Key(Qt::Key_Tab);
                EXPECT_EQ(DayText("DateFromDay"), myCase.Shown);
                Key(Qt::Key_Return);
            })}));
        EXPECT_EQ(Stored({"from", "to"}), (Texts{myCase.Stored.toStdString(), "2958465"}));
    }
    Script({{"from", "40971"}});
    const auto TypeOverTheWhole = []
    {
        TabTo("DateFromDay");
        Key(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), "5/1/2027");
        Click("cmdOK"); // without leaving the field by a key
    };
    EXPECT_TRUE(myHost->CallBack({Dialog(TypeOverTheWhole)}));
    EXPECT_EQ(Stored({"from"}), (Texts{"46392"}));
}

TEST_F(DialogTest, Date_TypedTextThatIsNoDay_IsRefused)
{
    const auto Refused = [](const QString& myText)
    {
        return ("\"" + myText +
                "\" no es una fecha válida. Escriba el día, el mes y el año, entre 01/01/1601 y 31/12/9999.")
            .toStdU16String();
    };
    const struct
    {
        const char* Typed;
        const char* Shown;
    } Cases[] = {{"31/02/2027", "31/02/2027"}, {"29022027", "29/02/2027"},   {"0/1/2027", "0/1/2027"},
                 {"1/13/2027", "1/13/2027"},   {"31/12/1600", "31/12/1600"}, {"5/1/27", "5/1/27"}};
    for (const auto& myCase : Cases)
    {
        Script({{"from", "40971"}, {"image", "kept.gif"}});
        EXPECT_TRUE(myHost->CallBack({
            Dialog(
                [&]
                {
                    Type("DateFromDay", myCase.Typed), Key(Qt::Key_Tab);
                    EXPECT_EQ(DayText("DateFromDay"), myCase.Shown);
                    EXPECT_EQ(Control("DateFromDay").toolTip().toStdU16String(), Refused(myCase.Shown));
                    EXPECT_EQ(Control("DateFromDay").grab().toImage().pixelColor(90, 4), QColor(0xFFE8E8));
                    Click("cmdOK");
                }),
            Message(Refused(myCase.Shown)),
            Dialog(
                [&]
                {
                    EXPECT_EQ(Stored({"image", "from"}), (Texts{"kept.gif", "40971"})); // the commit has not begun
                    EXPECT_EQ(QApplication::focusWidget(), &Control("DateFromDay"));
                    EXPECT_EQ(DayText("DateFromDay"), myCase.Shown);
                    QTest::keyClicks(QApplication::focusWidget(), "5/1/2027");
                    EXPECT_EQ(Control("DateFromDay").toolTip(), "");
                    Click("cmdOK");
                }),
        }));
        EXPECT_EQ(Stored({"from"}), (Texts{"46392"}));
    }
}

TEST_F(DialogTest, Date_RefusedText_DoesNotCountOnceSwitchedOff)
{
    Script({{"from", "0"}, {"to", "40971"}});
    EXPECT_TRUE(myHost->CallBack({Dialog(
        []
        {
            Type("DateToDay", "31/2/2012"), Click("DateToSwitch");
            EXPECT_EQ(DayText("DateToDay"), "03/03/2012");
            Click("cmdOK");
        })}));
    EXPECT_EQ(Stored({"from", "to"}), (Texts{"0", "0"}));
}

TEST_F(DialogTest, Date_ArrowKeysChangeThePartAtTheCursor)
{
    const struct
    {
        std::vector<Qt::Key> Keys;
        const char* Shown;
    } Cases[] = {
        {{Qt::Key_Up}, "04/03/2012"},
        {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down}, "29/02/2012"},
        {{Qt::Key_Right, Qt::Key_Up}, "03/04/2012"},
        {{Qt::Key_Right, Qt::Key_Right, Qt::Key_PageDown}, "03/03/2002"},
        {{Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_PageUp}, "03/01/2013"},
    };
    Script({{"from", "40971"}});
    for (const auto& myCase : Cases)
    {
        Examine(
            [&]
            {
                TabTo("DateFromDay");
                std::for_each(myCase.Keys.begin(), myCase.Keys.end(), [](Qt::Key myKey) { Key(myKey); });
                EXPECT_EQ(DayText("DateFromDay"), myCase.Shown);
            });
    }
}

TEST_F(DialogTest, Date_KeysOpenTheCalendarAndChooseADay)
{
    Script({{"from", "40971"}});
    EXPECT_TRUE(myHost->CallBack({Dialog(
        []
        {
            TabTo("DateFromDay");
            Key(Qt::Key_Down, Qt::AltModifier);
            ASSERT_NE(QApplication::activePopupWidget(), nullptr);
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
            EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
            EXPECT_EQ(DayText("DateFromDay"), "03/03/2012");

            Key(Qt::Key_F4);
            ASSERT_NE(QApplication::activePopupWidget(), nullptr);
            EXPECT_EQ(QApplication::activePopupWidget()->locale().language(), QLocale::Spanish);
            QTest::keyClick(QApplication::activePopupWidget()->focusWidget(), Qt::Key_Right);
            QTest::keyClick(QApplication::activePopupWidget()->focusWidget(), Qt::Key_Return);
            EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
            EXPECT_EQ(DayText("DateFromDay"), "04/03/2012");
            Click("cmdOK");
        })}));
    EXPECT_EQ(Stored({"from"}), (Texts{"40972"}));
}

TEST_F(DialogTest, Wheel_ChangesOnlyWhatHasTheFocus)
{
    Script({{"from", "40971"}});
    Examine(
        []
        {
            auto& myFolders = Control<QComboBox>("cmbMIDIFolder");
            TabTo("chkImage");
            TurnWheel(myFolders), TurnWheel(Control("DateFromDay"));
            EXPECT_EQ(myFolders.currentText(), "Fiestas");
            EXPECT_EQ(DayText("DateFromDay"), "03/03/2012");
            TabTo("cmbMIDIFolder"), TurnWheel(myFolders);
            EXPECT_EQ(Entries("lstMIDI"), (Texts{"Minueto"}));
            TabTo("DateFromDay"), TurnWheel(Control("DateFromDay"));
            EXPECT_EQ(DayText("DateFromDay"), "02/03/2012");
        });
}

TEST_F(DialogTest, ToolTip_OfANameThatDoesNotFit)
{
    const QString myLong = QString("Un nombre que no cabe en ninguna lista ").repeated(2) + "larga";
    myFolder.Write("library/" + myLong.toStdString() + "/" + myLong.toStdString() + ".gif", Gif(9, 9));
    myFolder.Write("library/" + myLong.toStdString() + "/Breve.gif", Gif(9, 9));
    Script({{"imagefolder", myLong}});
    Examine(
        [&]
        {
            auto& myFolders = Control<QComboBox>("cmbImageFolder");
            const auto ToolTip = [&]
            {
                QHelpEvent myEvent(QEvent::ToolTip, {9, 9}, myFolders.mapToGlobal(QPoint(9, 9)));
                QApplication::sendEvent(&myFolders, &myEvent);
                return myFolders.toolTip();
            };
            EXPECT_EQ(ToolTip(), myLong);
            EXPECT_EQ(myFolders.itemData(myFolders.currentIndex(), Qt::ToolTipRole).toString(), myLong);
            const auto& myList = Control<QListWidget>("lstImage");
            EXPECT_EQ(myList.item(0)->toolTip(), "");
            EXPECT_EQ(myList.item(1)->toolTip(), myLong);
            Pick("cmbImageFolder", "Fiestas");
            EXPECT_EQ(ToolTip(), "");
        });
}

TEST_F(DialogTest, FileDialog_StartsAtTheLastImportAndIsSpanish)
{
    myFolder.Write("one/mine.gif", Gif(30, 20));
    const auto StartsThere = [&]
    {
        auto& myDialog = *static_cast<QFileDialog*>(DialogUser::Front());
        EXPECT_EQ(myDialog.directory().absolutePath().toStdString(), myFolder.Native("one"));
        EXPECT_EQ(myDialog.windowTitle(), "Cargar motivo de animación");
        EXPECT_EQ(Entries("fileTypeCombo"),
                  (Texts{"Todos los formatos de imágenes", "archivos GIF (*.gif)", " archivos JPEG (*.jpg)"}));
        Texts myTexts;
        const auto& myColumns = *myDialog.findChild<QAbstractItemView*>("treeView")->model();
        for (int i = 0; i < myColumns.columnCount(); ++i)
        {
            myTexts.push_back(myColumns.headerData(i, Qt::Horizontal).toString().toStdString());
        }
        EXPECT_EQ(myTexts, (Texts{"Nombre", "Tamaño", "Tipo", "Modificado"}));
        EXPECT_EQ(myDialog.findChild<QAbstractButton*>("backButton")->toolTip(), "Atrás");
        EXPECT_EQ(myDialog.findChild<QLabel*>("lookInLabel")->text().remove('&'), "Buscar en:");
        EXPECT_EQ(myDialog.findChild<QPushButton*>()->text().remove('&'), "Abrir");
        myDialog.reject();
    };
    EXPECT_FALSE(myHost->CallBack({
        Do("cmbImageFolder=(personalizado)|lblImage"),
        File(myFolder.Native("one/mine.gif")), // typed with its path
        Do("lblImage"),
        Step{"CommonDialog", StartsThere},
        Do("cmdCancel"),
    }));
}

TEST_F(DialogTest, Captions_FitInAnyFont)
{
    if (getenv("QEL_TEST_ALONE") != nullptr)
    {
        Examine(
            []
            {
                Work("cmbImageFolder=(personalizado)|cmbMIDIFolder=(personalizado)");
                for (const QLabel* const myLabel : DialogUser::Front()->findChildren<QLabel*>())
                {
                    const bool myIsShown = myLabel->isVisible() && !myLabel->text().isEmpty();
                    EXPECT_LE(myIsShown ? myLabel->sizeHint().width() : 0, myLabel->width())
                        << myLabel->text().toStdString();
                }
                for (const QAbstractButton* const myButton : DialogUser::Front()->findChildren<QAbstractButton*>())
                {
                    const QRect myRoom(0, 0, myButton->width(), 999);
                    const QSize myNeed =
                        myButton->fontMetrics().boundingRect(myRoom, Qt::TextWordWrap, myButton->text()).size();
                    EXPECT_EQ(myNeed.boundedTo(myButton->size()), myNeed) << myButton->text().toStdString();
                }
            });
        return;
    }
    for (const char* const myFont :
         {"DejaVuSansCondensed.ttf", "DejaVuSans.ttf", "DejaVuSerif.ttf", "DejaVuSansMono.ttf"})
    {
        SCOPED_TRACE(myFont);
        myFolder.Write(std::string(myFont) + ".d/conf",
                       "<fontconfig><dir>" + myFolder.Native(std::string(myFont) + ".d") + "</dir><cachedir>" +
                           myFolder.Native("cache") + "</cachedir></fontconfig>");
        fs::copy_file(fs::path("/usr/share/fonts/truetype/dejavu") / myFont,
                      myFolder.Native(std::string(myFont) + ".d/") + myFont);
        IsAlone("FONTCONFIG_FILE='" + myFolder.Native(std::string(myFont) + ".d/conf") + "'");
    }
}

TEST_F(DialogTest, Form_OnASmallScreen_ShowsItsTopLeftCorner)
{
    if (!IsAlone())
    {
        return;
    }
    myFolder.Write("screens", R"({"screens": [{"name": "small", "x": 0, "y": 0, "width": 400, "height": 300}]})");
    myEnvironment.Set("QT_QPA_PLATFORM", "offscreen:configfile=" + myFolder.Native("screens"));
    Examine(
        []
        {
            ASSERT_EQ(DialogUser::Front()->screen()->size(), QSize(400, 300));
            EXPECT_EQ(DialogUser::Front()->frameGeometry().topLeft(), QPoint(0, 0));
        });
}

TEST_F(DialogTest, Open_AHundredTimes_KeepsNoWidget)
{
    qsizetype myWidgets = 0;
    for (int i = 0; i < 100; ++i)
    {
        Examine([] {});
        myWidgets = i == 0 ? QApplication::allWidgets().size() : myWidgets;
    }
    EXPECT_EQ(QApplication::allWidgets().size(), myWidgets);
}

TEST_F(DialogTest, About_ShowsTheComponent)
{
    const DialogUser myUser({Message(u"Tesselwind 1.0.19\n\nLäßt Grafiken über Ihre Homepage schweben\n\n" +
                                     Text(ComponentVersion.Copyright))});
    EXPECT_EQ(myHost->Plugin.Query<QelInfo>()->About(), S_OK);
}

} // namespace
} // namespace qel
