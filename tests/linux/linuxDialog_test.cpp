/// What the settings dialog has on this system alone: the toolkit with its application object, a field in which any
/// text can be typed as a date, and its own file dialog.
#include "DialogTest.h"
#include "resources/formLayout.h"

#include <QAccessible>
#include <QFontInfo>
#include <QHelpEvent>
#include <QPushButton>
#include <QScreen>

namespace qel
{
namespace
{

namespace fs = std::filesystem;

/// True in a process that runs this test alone, so that there is no application object yet. Elsewhere it starts such a
/// process, with these additions to its environment, and expects it to pass.
bool IsAlone(const std::string& myEnvironment = "")
{
    if (getenv("QEL_TEST_ALONE") != nullptr) // NOLINT(concurrency-mt-unsafe)
    {
        return true;
    }
    const std::string myCommand = "QEL_TEST_ALONE=1 " + myEnvironment + " '" +
                                  fs::read_symlink("/proc/self/exe").string() + "' --gtest_filter=DialogTest." +
                                  testing::UnitTest::GetInstance()->current_test_info()->name();
    EXPECT_EQ(std::system(myCommand.c_str()), 0) << myCommand; // NOLINT(concurrency-mt-unsafe)
    return false;
}

QColor PixelOf(const char* myName, int myLeft, int myTop)
{
    return Control(myName).grab().toImage().pixelColor(myLeft, myTop);
}

TEST_F(DialogTest, Open_WithoutAWindowSystem_FailsAndTouchesNothing)
{
    if (!IsAlone())
    {
        return;
    }
    for (const char* const myName : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
    {
        myEnvironment.Unset(myName);
    }
    myFolder.Write("tmp/qelpluginanimtemp/stale", "");
    DialogHost theHost(Stage().Native("QelPluginAnimation.so"), u"");
    const auto FailsWith = [&](const std::string& myFailure)
    {
        EXPECT_EQ(theHost.Open("").substr(0, myFailure.size()), myFailure);
        EXPECT_EQ(theHost.About().substr(0, myFailure.size()), myFailure);
    };
    FailsWith("error 57 ");
    myEnvironment.Set("QT_QPA_PLATFORM", "nosuch:size=1;alsono");
    FailsWith("error 57 ");
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    static int theCount = 0;
    const QCoreApplication myApplication(theCount, nullptr); // one without windows, and not of the other thread
    FailsWith("error 5 ");
    std::thread(FailsWith, "error 5 ").join();
    EXPECT_TRUE(myFolder.Exists("tmp/qelpluginanimtemp/stale"));
}

TEST_F(DialogTest, Open_KeepsTheHostsApplication)
{
    if (!IsAlone())
    {
        return;
    }
    static int theCount = 1;
    static char theName[] = "host";
    static char* theArguments[] = {theName, nullptr};
    const auto* const myApplication = new QApplication(theCount, theArguments);
    const QStyle* const myStyle = QApplication::style();
    QApplication::setFont(QFont("Serif", 20, QFont::Bold, true));
    QApplication::setPalette(QColor(Qt::darkGray));
    const auto Compare = [](DialogDriver& theUser)
    {
        theUser.Pick("cmbImageFolder", "(personalizado)");
        theUser.InForm(
            []
            {
                for (const ControlLayout& myRow : MainFormControls)
                {
                    SCOPED_TRACE(ToUtf8(myRow.Name));
                    const QFont myFont = Control(ToUtf8(myRow.Name).c_str()).font();
                    EXPECT_EQ(QFontInfo(myFont).pixelSize(), 11);
                    EXPECT_EQ(myFont.weight(), myRow.FontWeight);
                    EXPECT_FALSE(myFont.italic());
                }
                EXPECT_EQ(PixelOf("lblImage", 150, 78), QColor(Qt::white));
            });
        theUser.ExpectPreview(200, 90, 0xFFFFFF);
        theUser.CloseWindow();
    };
    Open("", Compare);
    EXPECT_EQ(QCoreApplication::instance(), myApplication);
    EXPECT_EQ(QApplication::style(), myStyle);
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
}

TEST_F(DialogTest, Open_WhileOneIsOpen_IsAFailedCall)
{
    const auto OpenAnother = []
    {
        EXPECT_EQ(DialogHost(Stage().Native("QelPluginAnimation.so"), u"").Open("").substr(0, 8), "error 5 ");
    };
    EXPECT_EQ(Stored(Open("", [&](DialogDriver& theUser) { theUser.InForm(OpenAnother), theUser.Click("cmdOK"); }), ""),
              "True");
}

TEST_F(DialogTest, Open_Often_KeepsNoWidget)
{
    qsizetype myWidgets = 0;
    for (int i = 0; i < 20; ++i)
    {
        Open("", &DialogDriver::CloseWindow);
        myWidgets = i == 0 ? QApplication::allWidgets().size() : myWidgets;
    }
    EXPECT_EQ(QApplication::allWidgets().size(), myWidgets);
}

TEST_F(DialogTest, Form_OnASmallScreen_ShowsItsTopLeftCorner)
{
    if (!IsAlone())
    {
        return;
    }
    myFolder.Write("screens", R"({"screens": [{"name": "small", "x": 0, "y": 0, "width": 400, "height": 300}]})");
    myEnvironment.Set("QT_QPA_PLATFORM", "offscreen:configfile=" + myFolder.Native("screens"));
    const auto Look = []
    {
        ASSERT_EQ(DialogUser::Front()->screen()->size(), QSize(400, 300));
        EXPECT_EQ(DialogUser::Front()->frameGeometry().topLeft(), QPoint(0, 0));
    };
    Open("", [&](DialogDriver& theUser) { theUser.InForm(Look), theUser.CloseWindow(); });
}

TEST_F(DialogTest, Captions_FitInAWideFont)
{
    myFolder.Write("fonts/conf", "<fontconfig><dir>" + myFolder.Native("fonts") + "</dir><cachedir>" +
                                     myFolder.Native("cache") + "</cachedir></fontconfig>");
    fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf", myFolder / "fonts/DejaVuSansMono.ttf");
    if (!IsAlone("FONTCONFIG_FILE='" + myFolder.Native("fonts/conf") + "'"))
    {
        return;
    }
    const auto Measure = []
    {
        for (const ControlLayout& myRow : MainFormControls)
        {
            const QWidget& myWidget = Control(ToUtf8(myRow.Name).c_str());
            const QString myText = myWidget.property("text").toString().remove('&');
            const int myLines = myRow.Trait == ControlTrait::HandCursor ? Qt::TextWordWrap : Qt::TextSingleLine;
            const QSize myNeed =
                myWidget.fontMetrics().boundingRect(QRect(0, 0, myWidget.width(), 999), myLines, myText).size();
            EXPECT_EQ(myNeed.boundedTo(myWidget.size()), myNeed) << myText.toStdString();
        }
    };
    Open("imagefolder=(USER)|midifolder=(USER)",
         [&](DialogDriver& theUser) { theUser.InForm(Measure), theUser.CloseWindow(); });
}

TEST_F(DialogTest, Focus_OfAListIsShown)
{
    const auto Compare = [](DialogDriver& theUser)
    {
        theUser.Pick("cmbMIDIFolder", "leame.txt"); // without a tune, so nothing is selected
        for (const char* const myName : {"lstImage", "lstMIDI"})
        {
            theUser.TabTo(myName);
            theUser.InForm([&] { EXPECT_EQ(PixelOf(myName, 50, 0), QColor(0x308CC6)) << myName; });
            theUser.TabTo("chkImage");
            theUser.InForm([&] { EXPECT_NE(PixelOf(myName, 50, 0), QColor(0x308CC6)) << myName; });
        }
        theUser.CloseWindow();
    };
    Open("", Compare);
}

TEST_F(DialogTest, ToolTip_OfANameThatDoesNotFit)
{
    const std::string myLong = "Un nombre que no cabe en ninguna lista, ni en una caja";
    myFolder.Write("QelPluginAnimationDesigns/" + myLong + "/" + myLong + ".gif", Gif(9, 9));
    myFolder.Write("QelPluginAnimationDesigns/" + myLong + "/Breve.gif", Gif(9, 9));
    const auto Compare = [&](DialogDriver& theUser)
    {
        const auto ExpectTip = [&](const std::string& myTip)
        {
            auto& theFolders = Control<QComboBox>("cmbImageFolder");
            QHelpEvent myEvent(QEvent::ToolTip, {9, 9}, theFolders.mapToGlobal(QPoint(9, 9)));
            QApplication::sendEvent(&theFolders, &myEvent);
            EXPECT_EQ(theFolders.toolTip().toStdString(), myTip);
            EXPECT_EQ(theFolders.currentData(Qt::ToolTipRole).toString().toStdString(), myTip);
            EXPECT_EQ(Control<QListWidget>("lstImage").item(1)->toolTip().toStdString(), myTip);
        };
        theUser.InForm([&] { ExpectTip(myLong); });
        theUser.Pick("cmbImageFolder", "Fiestas");
        theUser.InForm([&] { ExpectTip(""); });
        theUser.InForm([] { EXPECT_EQ(Control("ToolbarPlay2").toolTip(), "Detener música"); });
        theUser.CloseWindow();
    };
    Open("imagefolder=" + myLong, Compare);
}

TEST_F(DialogTest, FileDialog_StartsAtTheLastImportAndIsSpanish)
{
    myFolder.Write("one/mine.gif", Gif(30, 20));
    const auto Compare = [&]
    {
        auto& theDialog = *static_cast<QFileDialog*>(DialogUser::Front());
        EXPECT_EQ(theDialog.directory().absolutePath().toStdString(), myFolder.Native("one"));
        EXPECT_EQ(theDialog.findChild<QComboBox*>("fileTypeCombo")->itemText(2), " archivos JPEG (*.jpg)");
        EXPECT_EQ(theDialog.findChild<QAbstractButton*>("backButton")->toolTip(), "Atrás");
        EXPECT_EQ(theDialog.findChild<QLabel*>("lookInLabel")->text().remove('&'), "Buscar en:");
        EXPECT_EQ(theDialog.findChild<QPushButton*>()->text().remove('&'), "Abrir");
        theDialog.reject();
    };
    const auto ImportTwice = [&](DialogDriver& theUser)
    {
        theUser.Click("lblImage");
        theUser.ChooseFile("Cargar motivo de animación", myFolder.Native("one/mine.gif")); // typed with its path
        theUser.Click("lblImage");
        theUser.In("CommonDialog", Compare);
        theUser.CloseWindow();
    };
    Open("imagefolder=(USER)", ImportTwice);
}

TEST_F(DialogTest, ScreenReader_FindsLabelsOfCombosAndImportsAsButtons)
{
    const auto Ask = [](DialogDriver& theUser)
    {
        theUser.InForm(
            []
            {
                for (const char* const myName : {"cmbImageFolder", "cmbMIDIFolder"})
                {
                    QAccessibleInterface* const mySpoken = QAccessible::queryAccessibleInterface(&Control(myName));
                    EXPECT_FALSE(mySpoken->relations(QAccessible::Label).isEmpty()) << myName;
                }
                EXPECT_EQ(QAccessible::queryAccessibleInterface(&Control("lblImage"))->role(), QAccessible::Button);
            });
        theUser.CloseWindow();
    };
    Open("", Ask);
}

/// The tests of the field for a day, which start from 3 March 2012.
class DayTest : public DialogTest
{
protected:
    /// Types a text into the field of the first day, over the starting day, and leaves it.
    static void Type(DialogDriver& theUser, const char* myText)
    {
        for (const char* const myPart : {"03032012", myText})
        {
            theUser.TabTo("DateFromDay");
            theUser.Type(myPart);
            theUser.Key(Qt::Key_Tab);
        }
    }

    /// Expects the tool tip of the field: a refusal of a text, or none.
    static void ExpectRefusal(DialogDriver& theUser, const Text& myRefusal)
    {
        theUser.InForm([&] { EXPECT_EQ(Control("DateFromDay").toolTip().toStdU16String(), myRefusal); });
    }
};

TEST_F(DayTest, Typed_IsStored)
{
    const auto TypeEach = [](DialogDriver& theUser)
    {
        for (const auto& [myText, myDay] : {std::pair("5/1/2027", "05/01/2027"),
                                            {"05012027", "05/01/2027"},
                                            {"5.1.2027", "05/01/2027"},
                                            {"5-1-2027", "05/01/2027"},
                                            {"29/2/2028", "29/02/2028"},
                                            {"1/1/1601", "01/01/1601"},
                                            {"31129999", "31/12/9999"},
                                            {"/4", "03/04/2012"},
                                            {"12", "12/03/2012"}})
        {
            Type(theUser, myText);
            EXPECT_EQ(theUser.DayOf("DateFrom"), myDay) << myText;
        }
        theUser.TabTo("DateFromDay");
        theUser.Key(Qt::Key_A, Qt::ControlModifier);
        theUser.Type("5/1/2027");
        theUser.Click("cmdOK"); // without leaving the field by a key
    };
    EXPECT_EQ(Stored(Open("from=40971|to=2958465", TypeEach), "from|to"), "True|46392|2958465");
}

TEST_F(DayTest, TypedTextThatIsNoDay_IsRefused)
{
    const auto TypeEach = [](DialogDriver& theUser)
    {
        for (const auto& [myText, myShown] : {std::pair("31/02/2027", u"31/02/2027"),
                                              {"29022027", u"29/02/2027"},
                                              {"0/1/2027", u"0/1/2027"},
                                              {"1/13/2027", u"1/13/2027"},
                                              {"31/12/1600", u"31/12/1600"},
                                              {"5/1/27", u"5/1/27"}})
        {
            const Text myRefusal = u"\"" + Text(myShown) +
                                   u"\" no es una fecha válida. Escriba el día, el mes y el año, entre 01/01/1601 y "
                                   u"31/12/9999.";
            Type(theUser, myText);
            EXPECT_EQ(theUser.DayOf("DateFrom"), ToUtf8(myShown));
            ExpectRefusal(theUser, myRefusal);
            theUser.InForm([] { EXPECT_EQ(PixelOf("DateFromDay", 90, 4), QColor(0xFFE8E8)); });
            theUser.Click("cmdOK");
            theUser.AnswerMessage(myRefusal);
            EXPECT_EQ(theUser.Focus(), "DateFromDay");
            theUser.Type("5/1/2027");
            ExpectRefusal(theUser, u"");
        }
        theUser.Type("5/1/2"); // does not count once it is switched off
        theUser.Click("DateFromSwitch");
        EXPECT_EQ(theUser.DayOf("DateFrom"), "05/01/2027");
        theUser.Click("cmdOK");
    };
    EXPECT_EQ(Stored(Open("from=40971|image=kept.gif", TypeEach), "from"), "True|0");
}

TEST_F(DayTest, ArrowKeysAndWheel_ChangeThePartAtTheCursor)
{
    const auto PressEach = [](DialogDriver& theUser)
    {
        for (const auto& [myKeys, myDay] :
             {std::pair<std::vector<Qt::Key>, const char*>{{Qt::Key_Up}, "04/03/2012"},
              {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down}, "29/02/2012"},
              {{Qt::Key_Right, Qt::Key_Up}, "03/04/2012"},
              {{Qt::Key_Right, Qt::Key_Right, Qt::Key_PageDown}, "03/03/2002"},
              {{Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_PageUp}, "03/01/2013"}})
        {
            Type(theUser, "03032012");
            theUser.TabTo("DateFromDay");
            std::ranges::for_each(myKeys, [&](Qt::Key myKey) { theUser.Key(myKey); });
            EXPECT_EQ(theUser.DayOf("DateFrom"), myDay);
        }
        theUser.TurnWheel("DateFromDay");
        EXPECT_EQ(theUser.DayOf("DateFrom"), "03/12/2012");
        theUser.TabTo("chkImage");
        theUser.TurnWheel("DateFromDay");
        EXPECT_EQ(theUser.DayOf("DateFrom"), "03/12/2012");
        theUser.CloseWindow();
    };
    Open("from=40971", PressEach);
}

TEST_F(DayTest, Calendar_OpensAndChoosesByKeys)
{
    const auto Press = [](Qt::Key myKey)
    {
        ASSERT_NE(QApplication::activePopupWidget(), nullptr);
        EXPECT_EQ(QApplication::activePopupWidget()->locale().language(), QLocale::Spanish);
        QTest::keyClick(QApplication::activePopupWidget()->focusWidget(), myKey);
    };
    const auto Choose = [&](DialogDriver& theUser)
    {
        EXPECT_EQ(theUser.SpokenName("DateFromDay"), "Representación desde");
        theUser.TabTo("DateFromDay");
        theUser.Key(Qt::Key_F1);
        EXPECT_TRUE(theUser.HelpWasAsked());
        theUser.Key(Qt::Key_Down, Qt::AltModifier);
        theUser.InForm([&] { Press(Qt::Key_Escape); });
        EXPECT_EQ(theUser.DayOf("DateFrom"), "03/03/2012");
        theUser.Key(Qt::Key_F4);
        theUser.InForm([&] { Press(Qt::Key_Right), Press(Qt::Key_Return); });
        theUser.InForm([] { EXPECT_EQ(QApplication::activePopupWidget(), nullptr); });
        theUser.Click("cmdOK");
    };
    EXPECT_EQ(Stored(Open("from=40971", Choose), "from"), "True|40972");
}

} // namespace
} // namespace qel
