/// The settings dialog: the real window of the built component, opened through its entry points and worked by a user
/// with mouse and keys.
#include "DialogUser.h"
#include "MadePictures.h"
#include "resources/formLayout.h"
#include "resources/stringTable.h"
#include "TemporaryFolder.h"

#include <malloc.h>
#include <QFontInfo>
#include <QPushButton>
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
        static const TemporaryFolder theStage;
        for (const char* myFile : {"QelPluginAnimation.so", "QelPluginAnimationWindow.so"})
        {
            fs::copy_file(fs::path(QEL_STAGE) / myFile, theStage.Native(myFile), fs::copy_options::skip_existing);
        }
        fs::remove(theStage.Native("QelPluginAnimationDesigns"));
        myFolder.MakeFolder("library");
        fs::create_symlink(myFolder.Native("library"), theStage.Native("QelPluginAnimationDesigns"));
        myFolder.MakeFolder("data");
        myFolder.MakeFolder("tmp");
        fs::permissions(myFolder.Native("tmp"), fs::perms::owner_all);
        setenv("TMPDIR", myFolder.Native("tmp").c_str(), 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        setenv("XDG_CONFIG_HOME", myFolder.Native().c_str(), 1);
        setenv("PULSE_SERVER", "unix:/nowhere", 1);
        theStage.Write("help/100.html", "");
        FillLibrary();
        myHost = std::make_unique<DialogHost>(theStage.Native("QelPluginAnimation.so"));
        myHost->Records->DataFolder = FromUtf8(myFolder.Native("data/"));
        myHost->Script(u"");
    }
    ~DialogTest() override { unsetenv("TMPDIR"); }

    void FillLibrary() const
    {
        myFolder.Write("library/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("library/Fiestas/globo.GIF", "");
        myFolder.Write("library/Fiestas/Vela.azul.gif", Gif(350, 250, {0, 0, 255}, true));
        myFolder.Write("library/Fiestas/nota.txt", "");
        myFolder.Write("library/Fiestas/Vals.mid", "tune");
        myFolder.Write("library/Solo tonos/Minueto.mid", "tune");
        myFolder.Write("library/animales/perro.gif", "no picture");
        myFolder.Write("library/leame.txt", "");
    }

    /// The script of some settings, from "name=value|name=value".
    void Script(const QString& mySettings, const QString& myArchive = {}) const
    {
        QString myScript = "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">";
        myScript += myArchive.isEmpty() ? "" : "<pg.file filename=\"" + myArchive + "\">";
        for (const QString& mySetting : mySettings.split('|'))
        {
            myScript += QString("<pg.param name=\"%1\" value=\"%2\">")
                            .arg(mySetting.section('=', 0, 0), mySetting.section('=', 1));
        }
        myHost->Script(myScript.toStdU16String());
    }

    /// What the script stores of the settings named, "|" between them; "file" is the archive's name.
    std::string Stored(const QString& myNames) const
    {
        QStringList theValues;
        const QString myScript = QString::fromStdU16String(myHost->Script());
        for (const QString& myName : myNames.split('|'))
        {
            const QString myMark = myName == "file" ? "filename=\"" : "name=\"" + myName + "\" value=\"";
            theValues << (myScript.contains(myMark) ? myScript.section(myMark, 1).section('"', 0, 0) : "");
        }
        return theValues.join('|').toStdString();
    }

    static std::string Entries(const char* myName)
    {
        QStringList theEntries;
        const auto* const myCombo = qobject_cast<const QComboBox*>(&Control(myName));
        const QAbstractItemModel& myModel = myCombo ? *myCombo->model() : *Control<QListWidget>(myName).model();
        for (int i = 0; i < myModel.rowCount(); ++i)
        {
            theEntries << myModel.index(i, 0).data().toString();
        }
        return theEntries.join('|').toStdString();
    }

    /// The colour of a pixel of the preview, counted inside its border.
    static QColor Preview(int myLeft, int myTop)
    {
        return Control("picPreview").grab().toImage().pixelColor(myLeft + 2, myTop + 2);
    }

    static bool PreviewIsEmpty() { return Control<QLabel>("picPreview").pixmap().isNull(); }

    TemporaryFolder myFolder;
    std::unique_ptr<DialogHost> myHost;
};

TEST_F(DialogTest, FailsWhereThereAreNoWindowsBeforeAnythingIsTouched)
{
    if (QCoreApplication::instance() != nullptr)
    {
        GTEST_SKIP() << "this process has a display by now";
    }
    for (const char* myName : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
    {
        unsetenv(myName);
    }
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    const auto FailsWith = [&](uint32_t myResult)
    {
        EXPECT_FALSE(myHost->CallBack({}, QEL_RESULT(myResult)));
        EXPECT_EQ(myHost->Plugin.Query<QelInfo>()->About(), QEL_RESULT(myResult));
    };
    FailsWith(0x800A0039U);
    setenv("QT_QPA_PLATFORM", "nosuch:size=1;alsono", 1);
    FailsWith(0x800A0039U);
    static int theCount = 0;
    const QCoreApplication myApplication(theCount, nullptr); // one without windows, and not of the other thread
    FailsWith(0x800A0005U);
    std::thread(FailsWith, 0x800A0005U).join();
    EXPECT_TRUE(myFolder.Exists("tmp/qelpluginanimtemp/stale"));
}

/// Holds the controls against their table, and what shows against what lies beside it.
void ExpectLayout()
{
    std::vector<std::pair<QWidget*, QRect>> myShown;
    for (const ControlLayout& myRow : MainFormControls)
    {
        SCOPED_TRACE(ToUtf8(myRow.Name));
        QWidget& myWidget = Control(ToUtf8(myRow.Name).c_str());
        const QRect myPlace(myRow.Left / 15, myRow.Top / 15, myRow.Width / 15, myRow.Height / 15);
        EXPECT_EQ(myWidget.geometry(), myPlace);
        EXPECT_EQ(myWidget.accessibleName().toStdU16String(), myRow.AccessibleName);
        EXPECT_EQ(QFontInfo(myWidget.font()).pixelSize(), 11);
        EXPECT_EQ(myWidget.font().weight(), myRow.FontWeight);
        EXPECT_FALSE(myWidget.font().italic());
        const auto* const myLabel = qobject_cast<QLabel*>(&myWidget);
        const QSize myNeeds(myWidget.sizeHint().width(), myWidget.fontMetrics().height());
        const QRect myInk = myRow.Kind == ControlKind::DatePicker // which keeps a margin at its left
                                ? myWidget.childrenRect().translated(myPlace.topLeft())
                                : myLabel == nullptr || myLabel->text().isEmpty()
                                      ? myPlace
                                      : QStyle::alignedRect(Qt::LeftToRight, myLabel->alignment(), myNeeds, myPlace);
        EXPECT_TRUE(myRow.Caption.empty() || myPlace.contains(QRect(myPlace.topLeft(), myNeeds)));
        EXPECT_TRUE(myRow.Caption == u"**" || myWidget.property("text").toString().toStdU16String() == myRow.Caption);
        for (const auto& [myOther, myOtherInk] : myShown)
        {
            EXPECT_FALSE(myWidget.isVisible() && myOther->isVisible() && myOther->parent() == myWidget.parent() &&
                         myOtherInk.intersects(myInk))
                << myOther->objectName().toStdString();
        }
        myShown.emplace_back(&myWidget, myInk);
    }
    EXPECT_EQ(Control("ToolbarPlay1").toolTip() + "|" + Control("ToolbarPlay2").toolTip(),
              "Reproducir música|Detener música");
}

TEST_F(DialogTest, LeavesTheHostItsOwnApplication)
{
    if (QCoreApplication::instance() != nullptr)
    {
        GTEST_SKIP() << "this process has an application by now";
    }
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
                ExpectLayout();
                Pick("cmbImageFolder", "(personalizado)");
                Pick("cmbMIDIFolder", "(personalizado)");
                ExpectLayout();
                EXPECT_EQ(Control("lblImage").grab().toImage().pixelColor(150, 78), QColor(Qt::white));
                EXPECT_EQ(Preview(200, 90), QColor(Qt::white));
                Click("lblImage");
            }),
        {"CommonDialog",
         []
         {
             EXPECT_EQ(DialogUser::Front()->windowTitle(), "Cargar motivo de animación");
             EXPECT_EQ(Entries("fileTypeCombo"),
                       "Todos los formatos de imágenes|archivos GIF (*.gif)| archivos JPEG (*.jpg)");
             EXPECT_EQ(Control<QAbstractButton>("backButton").toolTip(), "Atrás");
             EXPECT_EQ(DialogUser::Front()->findChild<QPushButton*>()->text().remove('&'), "Abrir");
             static_cast<QDialog*>(DialogUser::Front())->reject();
         }},
        Dialog([] { Click("cmdCancel"); }),
    }));
    EXPECT_EQ(QCoreApplication::instance(), myApplication);
    EXPECT_EQ(QApplication::style(), myStyle);
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
}

TEST_F(DialogTest, ANewModuleConfirmedAtOnceHasTheFirstMotifAndTheFirstTune)
{
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    EXPECT_TRUE(myHost->CallBack({Dialog(
        [&]
        {
            const std::string myFolders = "Fiestas|Solo tonos|animales|leame.txt|(personalizado)";
            EXPECT_EQ(Entries("cmbImageFolder"), myFolders);
            EXPECT_EQ(Entries("cmbMIDIFolder"), myFolders);
            EXPECT_EQ(Entries("lstImage"), "Globo|Vela.azul|globo");
            EXPECT_EQ(Entries("lstMIDI"), "Vals");
            EXPECT_TRUE(Control<QAbstractButton>("chkImage").isChecked());
            EXPECT_FALSE(Control<QAbstractButton>("DateFromSwitch").isChecked());
            EXPECT_FALSE(Control("cmdUnsetLink").isEnabled());
            EXPECT_FALSE(Control("picImage").isVisible());
            EXPECT_TRUE(fs::is_empty(myFolder.Native("tmp/qelpluginanimtemp")));
            Key(Qt::Key_Return);
        })}));
    EXPECT_EQ(Stored("image|imagefolder|midi|midifolder|imagemode|from|to|file|link"),
              "Globo.gif|Fiestas|Vals.mid|Fiestas|none|0|0||");
}

TEST_F(DialogTest, SelectsTheLastNameThatMatchesWithoutRegardToCaseElseTheFirst)
{
    const struct
    {
        const char* Settings;
        const char* Folder;
        int Row;
    } Cases[] = {
        {"imagefolder=FIESTAS|image=GLOBO.gif", "Fiestas", 2},
        {"imagefolder=fiestas|image=Vela.azul.gif", "Fiestas", 1},
        {"imagefolder=Fiestas|image=gone.gif", "Fiestas", 0},
        {"imagefolder=gone|image=globo.gif", "Fiestas", 2},
        {"imagefolder=leame.txt|image=x.gif", "leame.txt", -1},
        {"imagefolder=(PERSONALIZADO)", "(personalizado)", -1},
        {"imagefolder=(USER)", "(personalizado)", -1},
        {"imagefolder=(user)", "Fiestas", 0},
    };
    for (const auto& myCase : Cases)
    {
        Script(myCase.Settings);
        myHost->CallBack({Dialog(
            [&]
            {
                const auto& myList = Control<QListWidget>("lstImage");
                EXPECT_EQ(Control<QComboBox>("cmbImageFolder").currentText().toStdString(), myCase.Folder)
                    << myCase.Settings;
                EXPECT_EQ(myList.selectedItems().isEmpty() ? -1 : myList.row(myList.selectedItems()[0]), myCase.Row);
                Click("cmdCancel");
            })});
    }
}

TEST_F(DialogTest, BrowsingShowsListsBoxesAndPreview)
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
            EXPECT_EQ(Preview(347, 183), QColor(0, 0, 255));
            EXPECT_EQ(Preview(96, 5), QColor(Qt::white));
            EXPECT_EQ(Preview(348, 183), QColor(Qt::white));
            EXPECT_TRUE(Control("lblAnimated").isVisible());

            myFolder.Write("library/Fiestas/Vela.azul.gif", Gif(40, 30, {0, 255, 0}, true, 0));
            Pick("lstImage", "Vela.azul");
            EXPECT_EQ(Preview(222, 94), QColor(Qt::white)); // as it is transparent by now
            Pick("cmbImageFolder", "Fiestas");
            EXPECT_EQ(Preview(222, 94), QColor(255, 0, 0)); // the stored motif again, or the first
            myFolder.Write("library/Fiestas/Vela.azul.gif", Gif(350, 250, {0, 0, 255}, true));
            Pick("lstImage", "Vela.azul");

            Pick("cmbImageFolder", "Solo tonos"); // has no motif: what showed before stays
            EXPECT_EQ(Entries("lstImage"), "");
            EXPECT_EQ(Preview(222, 94), QColor(0, 0, 255));
            Pick("cmbImageFolder", "animales"); // has one that cannot be read
            EXPECT_TRUE(PreviewIsEmpty());
            Pick("cmbImageFolder", "(personalizado)");
            EXPECT_TRUE(PreviewIsEmpty());
            EXPECT_TRUE(Control("lblAnimated").isVisible());
            EXPECT_TRUE(Control("picImage").isVisible());
            EXPECT_FALSE(Control("lstImage").isVisible());
            EXPECT_TRUE(Control<QAbstractButton>("lblImage").text().startsWith("Ninguna imagen"));
            Pick("cmbImageFolder", "leame.txt");
            Pick("cmbMIDIFolder", "Solo tonos");
            EXPECT_EQ(Entries("lstMIDI"), "Minueto");
            Pick("cmbMIDIFolder", "animales");
            Click("cmdOK");
        })}));
    EXPECT_EQ(Stored("image|imagefolder|midi|midifolder"), ".gif|leame.txt|.mid|animales");
}

TEST_F(DialogTest, StagesAnImportByItsSizeAndTheLettersOfItsEnding)
{
    const struct
    {
        const char* Name;
        std::string Content;
        bool IsTooLarge;
        const char* Mode;
        int Width; ///< of what is staged; 0 where it is the file itself
        int Height;
    } Cases[] = {
        {"limit.gif", Gif(350, 350, {9, 9, 9}, true), false, "gif", 0, 0},
        {"wide.gif", Gif(351, 10), true, "gif", 350, 10},
        {"tall.gif", Gif(10, 351), true, "gif", 10, 350},
        {"half.gif", Gif(100, 400), true, "gif", 88, 350},
        {"photo.jpg", Jpeg(20, 30), false, "jpg", 0, 0},
        {"photo.JPG", Jpeg(20, 30), false, "gif", 0, 0},
        {"large.jpg", Jpeg(500, 700), true, "jpg", 250, 350},
        {"large.jpeg", Jpeg(700, 500), true, "gif", 350, 250},
        {"any.name", Gif(5, 5), false, "gif", 0, 0},
        {"flat.gif", Gif(5000, 1), true, "none", 0, 0},
        {"text.gif", "no picture", false, "none", 0, 0},
    };
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(myCase.Name);
        myFolder.Write(myCase.Name, myCase.Content);
        const std::string myStaged =
            "tmp/qelpluginanimtemp/qelspr" + std::string(myCase.Mode == std::string("jpg") ? ".jpg" : ".gif");
        std::deque<Step> mySteps = {Dialog(
                                        []
                                        {
                                            Pick("cmbImageFolder", "(personalizado)");
                                            Click("lblImage");
                                        }),
                                    File(myFolder.Native(myCase.Name))};
        if (myCase.IsTooLarge)
        {
            mySteps.push_back(Message(Text(LoadResString(840)), QMessageBox::Ok, QMessageBox::Question));
        }
        mySteps.push_back(Dialog(
            [&]
            {
                const bool myIsThere = myCase.Mode != std::string("none");
                EXPECT_EQ(PreviewIsEmpty(), !myIsThere);
                EXPECT_EQ(Control<QAbstractButton>("lblImage").text().startsWith("Haga clic"), myIsThere);
                Click("cmdCancel");
            }));
        EXPECT_FALSE(myHost->CallBack(std::move(mySteps)));
        EXPECT_EQ(Stored("imagemode|image"), std::string(myCase.Mode) + "|");
        const QImage myImage(QString::fromStdString(myFolder.Native(myStaged)));
        EXPECT_EQ(myImage.size(), myCase.Width == 0 ? myImage.size() : QSize(myCase.Width, myCase.Height));
        EXPECT_EQ(myFolder.Read(myStaged) == myCase.Content, myCase.Width == 0 && myCase.Mode != std::string("none"));
    }
}

TEST_F(DialogTest, TakesAnImportThroughCommitAndReopening)
{
    myFolder.Write("mine.gif", Gif(30, 20));
    myFolder.Write("mine.jpg", Jpeg(30, 20));
    myFolder.Write("big.gif", Gif(400, 20));
    myFolder.Write("Mine.MID", "my tune");
    EXPECT_TRUE(myHost->CallBack({
        Dialog(
            []
            {
                Pick("cmbImageFolder", "(personalizado)");
                Pick("cmbMIDIFolder", "(personalizado)");
                Click("cmdOK");
            }),
        Message(Text(LoadResString(820))),
        Dialog([] { Click("lblImage"); }),
        File(myFolder.Native("mine.gif")),
        Dialog([] { Click("cmdOK"); }),
        Message(Text(LoadResString(830))),
        Dialog([] { Click("lblMIDI"); }),
        File(myFolder.Native("Mine.MID")),
        Dialog([] { Click("lblImage"); }),
        File(""), // keeps what was imported
        Dialog(
            [&]
            {
                EXPECT_EQ(Stored("imagemode|midimode|image|midi"),
                          "gif|1|qelspr.gif|"); // of the commit that was refused
                Click("lblImage");
            }),
        File(myFolder.Native("mine.jpg")),
        Dialog(
            [&]
            {
                EXPECT_TRUE(myFolder.Exists("tmp/qelpluginanimtemp/qelspr.gif"));
                Click("chkMIDI");
                Click("cmdOK");
            }),
    }));
    EXPECT_EQ(Stored("image|imagefolder|midi|midifolder|imagemode|midimode|showimage|playmidi|file"),
              "qelspr.jpg|(USER)|qelmid.mid|(USER)|jpg|1|1|0|m7.dat");
    const std::string myArchive = myFolder.Read("data/m7.dat");
    EXPECT_EQ(myArchive.find("qelspr.gif"), std::string::npos);

    // The other way round: a library selection drops nothing, and what was imported is packed again.
    const auto IsBack = [](bool myIsThere)
    {
        EXPECT_EQ(Control<QComboBox>("cmbImageFolder").currentText().toStdString(), "(personalizado)");
        EXPECT_EQ(PreviewIsEmpty(), !myIsThere);
        const QString myStart = myIsThere ? "Haga clic" : "Ning";
        EXPECT_TRUE(Control<QAbstractButton>("lblImage").text().startsWith(myStart));
        EXPECT_TRUE(Control<QAbstractButton>("lblMIDI").text().startsWith(myStart));
    };
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    myHost->Script(myHost->Script());
    EXPECT_TRUE(myHost->CallBack({Dialog(
        [&]
        {
            IsBack(true);
            Pick("cmbImageFolder", "Fiestas");
            Pick("cmbMIDIFolder", "Fiestas");
            Click("cmdOK");
        })}));
    EXPECT_EQ(Stored("image|imagefolder|imagemode|midimode|file"), "Globo.gif|Fiestas|jpg|1|m7.dat");
    EXPECT_EQ(myFolder.Read("data/m7.dat").size(), myArchive.size());

    // A question that is answered with Cancel loses the picture; the tune alone keeps the archive.
    Script("imagefolder=(USER)|midifolder=(USER)|imagemode=jpg|midimode=1", "m7.dat");
    EXPECT_TRUE(myHost->CallBack({Dialog([] { Click("lblImage"); }), File(myFolder.Native("big.gif")),
                                  Message(Text(LoadResString(840)), QMessageBox::Cancel, QMessageBox::Question),
                                  Dialog(
                                      []
                                      {
                                          EXPECT_TRUE(PreviewIsEmpty());
                                          Pick("cmbImageFolder", "Fiestas");
                                          Click("cmdOK");
                                      })}));
    EXPECT_EQ(Stored("image|imagemode|midimode|file"), "Globo.gif|none|1|m7.dat");

    // A lost archive leaves nothing imported, and no word.
    fs::remove(myFolder.Native("data/m7.dat"));
    Script("imagefolder=(USER)|midifolder=(USER)|imagemode=jpg|midimode=1", "m7.dat");
    EXPECT_FALSE(myHost->CallBack({Dialog(
        [&]
        {
            IsBack(false);
            Key(Qt::Key_Escape);
        })}));
    EXPECT_EQ(Stored("imagefolder|midifolder|imagemode|midimode|file"),
              "(personalizado)|(personalizado)|none|0|m7.dat");
}

TEST_F(DialogTest, LinkAndPeriodTakeEffectEachInItsTime)
{
    Script("link=URL:old|from=40000|to=0|midifolder=(USER)|midimode=1");
    myHost->Records->Link = u"URL:new";
    EXPECT_FALSE(myHost->CallBack({
        Dialog(
            [&]
            {
                EXPECT_TRUE(Control<QAbstractButton>("DateFromSwitch").isChecked());
                EXPECT_EQ(Control<QDateEdit>("DateFromDay").date(), QDate(2009, 7, 6));
                EXPECT_EQ(Control<QDateEdit>("DateToDay").date(), QDate::currentDate());
                Click("cmdUnsetLink");
                EXPECT_FALSE(Control("cmdUnsetLink").isEnabled());
                Click("cmdSetLink");
                EXPECT_EQ(myHost->Records->PresentLink, u"");
                EXPECT_TRUE(Control("cmdUnsetLink").isEnabled());
                Click("DateToSwitch");
                Control<QDateEdit>("DateToDay").setDate(QDate(2009, 7, 5));
                Click("cmdOK");
            }),
        Message(Text(LoadResString(850))),
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
    EXPECT_EQ(Stored("link|from|to|image"), "URL:new|40000|39999|Globo.gif"); // Cancel takes nothing of it back
    EXPECT_TRUE(myHost->CallBack({Dialog(
        []
        {
            Control<QDateEdit>("DateToDay").setDate(QDate(2009, 7, 6));
            Key(Qt::Key_Enter);
        })}));
    EXPECT_EQ(Stored("from|to"), "40000|40000");
}

TEST_F(DialogTest, AnArchiveThatCannotBeWrittenStopsTheCommitWithAWord)
{
    myFolder.Write("mine.mid", "my tune");
    myHost->Records->DataFolder = u"/nowhere/";
    EXPECT_FALSE(myHost->CallBack({
        Dialog(
            []
            {
                Pick("cmbMIDIFolder", "(personalizado)");
                Click("lblMIDI");
            }),
        File(myFolder.Native("mine.mid")),
        Dialog([] { Click("cmdOK"); }),
        Message(u"No se han podido guardar los archivos importados en \"/nowhere/m7.dat\": No se encuentra la ruta."),
        Dialog([] { Click("cmdCancel"); }),
    }));
    EXPECT_EQ(Stored("midi|midimode|file"), "qelmid.mid|1|");
}

TEST_F(DialogTest, WhatGoesWrongInOpeningIsAFailedCallAndTheNextOpeningIsSound)
{
    Script("from=-150000"); // in 1489
    EXPECT_FALSE(myHost->CallBack({}, QEL_RESULT(0x800A0005U)));
    myHost->Script(u"");
    EXPECT_FALSE(myHost->CallBack({Dialog(
        [&]
        {
            myHost->CallBack({}, QEL_RESULT(0x800A0005U)); // there is one dialog at a time
            Click("cmdCancel");
        })}));
    fs::rename(myFolder.Native("tmp/qelpluginanimtemp"), myFolder.Native("elsewhere"));
    fs::create_directory_symlink(myFolder.Native("elsewhere"), myFolder.Native("tmp/qelpluginanimtemp"));
    myFolder.Write("elsewhere/kept", "");
    EXPECT_FALSE(myHost->CallBack({}, QEL_RESULT(0x800A004BU)));
    EXPECT_TRUE(myFolder.Exists("elsewhere/kept"));
    fs::remove(myFolder.Native("tmp/qelpluginanimtemp"));
    EXPECT_TRUE(myHost->CallBack({Dialog([] { Click("cmdOK"); })}));
}

TEST_F(DialogTest, CanBeWorkedByKeysAlone)
{
    myFolder.Write("mine.gif", Gif(30, 20));
    myFolder.Write("mine.mid", "my tune");
    myHost->Records->Link = u"URL:x";
    const auto TabTo = [](const char* myPlace)
    {
        for (int i = 0; i < 20 && QApplication::focusWidget() != &Control(myPlace); ++i)
        {
            Key(Qt::Key_Tab);
        }
    };
    EXPECT_TRUE(myHost->CallBack({
        Dialog(
            [&]
            {
                Key(Qt::Key_End);
                TabTo("cmbMIDIFolder");
                Key(Qt::Key_End);
                TabTo("chkMIDI");
                Key(Qt::Key_Space);
                TabTo("cmdSetLink");
                Key(Qt::Key_Space);
                TabTo("DateFromSwitch");
                Key(Qt::Key_Space);
                TabTo("lblImage");
                Key(Qt::Key_Space);
            }),
        File(myFolder.Native("mine.gif")),
        Dialog(
            [&]
            {
                TabTo("lblMIDI");
                Key(Qt::Key_Space);
            }),
        File(myFolder.Native("mine.mid")),
        Dialog([] { Key(Qt::Key_Return); }),
    }));
    EXPECT_EQ(Stored("image|midi|playmidi|link"), "qelspr.gif|qelmid.mid|0|URL:x");
    EXPECT_NE(Stored("from"), "0");
}

TEST_F(DialogTest, EnterConfirmsFromEveryPlaceButAnotherButton)
{
    const QStringList myPlaces =
        QString("cmbImageFolder cmbMIDIFolder lstImage lstMIDI chkImage chkMIDI cmdSetLink cmdUnsetLink DateFromSwitch "
                "DateFromDay DateToSwitch DateToDay cmdHelp cmdOK cmdCancel ToolbarPlay1 ToolbarPlay2")
            .split(' ');
    for (const QString& myPlace : myPlaces)
    {
        const bool myConfirms = !myPlace.startsWith("cmd") || myPlace == "cmdOK";
        Script("link=URL:x|from=1|to=1");
        const auto Press = [&]
        {
            EXPECT_EQ(QApplication::focusWidget()->objectName(), myPlaces.front());
            std::for_each(myPlaces.begin(), std::find(myPlaces.begin(), myPlaces.end(), myPlace),
                          [](const QString&) { Key(Qt::Key_Tab); });
            EXPECT_EQ(QApplication::focusWidget()->objectName(), myPlace);
            Key(Qt::Key_Return);
            if (DialogUser::Front() != nullptr)
            {
                Key(Qt::Key_Escape);
            }
        };
        EXPECT_EQ(myHost->CallBack({Dialog(Press)}), myConfirms) << myPlace.toStdString();
    }
    EXPECT_EQ(Stored("showimage|playmidi|from|to"), "1|1|1|1");
}

TEST_F(DialogTest, PlaysByDoubleClickAndByTheToolButtonsAndHelps)
{
    myFolder.Write("library/Fiestas/Vals 2.mid", "second");
    myFolder.Write("xdg-open", "#!/bin/sh\n>" + myFolder.Native("asked"));
    fs::permissions(myFolder.Native("xdg-open"), fs::perms::owner_all);
    setenv("PATH", (myFolder.Native() + ":" + getenv("PATH")).c_str(), 1);
    const auto Played = [&]
    {
        const std::string theTune = myFolder.Read("tmp/qelmid.mid");
        fs::remove(myFolder.Native("tmp/qelmid.mid"));
        return theTune;
    };
    myHost->CallBack({Dialog(
        [&]
        {
            auto& myList = Control<QListWidget>("lstMIDI");
            QTest::mouseDClick(myList.viewport(), Qt::LeftButton, {},
                               myList.visualItemRect(myList.currentItem()).center());
            EXPECT_EQ(Played(), "second");
            Click("ToolbarPlay2");
            EXPECT_EQ(Played(), "");
            Control("ToolbarPlay1").setFocus();
            Key(Qt::Key_Space);
            EXPECT_EQ(Played(), "second");
            Click("ToolbarPlay1");
            Pick("cmbMIDIFolder", "animales");
            QTest::mouseDClick(myList.viewport(), Qt::LeftButton);
            EXPECT_FALSE(myFolder.Exists("tmp/qelmid.mid"));
            Click("cmdHelp");
            EXPECT_TRUE(QTest::qWaitFor([&] { return myFolder.Exists("asked"); }));
            Click("cmdCancel");
        })});
}

TEST_F(DialogTest, OpensAHundredTimesWithoutGrowth)
{
    const auto BytesAfterAHundred = [&]
    {
        for (int i = 0; i < 100; ++i)
        {
            myHost->CallBack({Dialog([] { Click("cmdCancel"); })});
        }
        return static_cast<int64_t>(mallinfo2().uordblks);
    };
    const int64_t myBefore = BytesAfterAHundred(); // the toolkit's memory of what it has drawn is full by then
    const auto myWidgets = QApplication::allWidgets().size();
    const int64_t myAfter = BytesAfterAHundred();
    EXPECT_EQ(QApplication::allWidgets().size(), myWidgets);
    EXPECT_LT(myAfter - myBefore, 100 * 500); // any widget takes more than 500 bytes
}

TEST_F(DialogTest, TellsAboutItself)
{
    const DialogUser myUser({Message(u"Tesselwind 1.0.19\n\nLäßt Grafiken über Ihre Homepage schweben\n\n" +
                                     Text(ComponentVersion.Copyright))});
    EXPECT_EQ(myHost->Plugin.Query<QelInfo>()->About(), S_OK);
}

} // namespace
} // namespace qel
