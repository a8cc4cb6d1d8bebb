/// A user of the settings dialog, which runs in this process.
#pragma once

#include "DialogHost.h"
#include "DialogUser.h"
#include "Environment.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QWheelEvent>
#include <thread>

namespace qel
{

namespace Keys
{
inline constexpr Qt::Key Return = Qt::Key_Return, Escape = Qt::Key_Escape, Space = Qt::Key_Space, Up = Qt::Key_Up,
                         F1 = Qt::Key_F1;
} // namespace Keys

/// Works from a thread of its own, so that the thread of the dialog can wait in it. Each operation waits until its
/// window is in front, and returns when it is done or has opened another window.
class DialogDriver
{
public:
    explicit DialogDriver(const TemporaryFolder& theFolder) : myFolder(theFolder) {}

    /// Runs what is only for this system in a window, on the toolkit's thread.
    void In(const char* myWindow, std::function<void()> myAction) { myUser.Take({myWindow, std::move(myAction)}); }
    void InForm(std::function<void()> myAction) { In("FormMain", std::move(myAction)); }

    void Click(const std::string& myName)
    {
        InForm([=] { qel::Click(myName.c_str()); });
    }
    /// Clicks the check box of a date picker.
    void Switch(const std::string& myPicker) { Click(myPicker + "Switch"); }
    void PressTool(int myButton) { Click("ToolbarPlay" + std::to_string(myButton)); }
    void DoubleClick(const char* myList)
    {
        InForm([=] { QTest::mouseDClick(Control<QListWidget>(myList).viewport(), Qt::LeftButton, {}, QPoint(20, 5)); });
    }
    /// Turns the wheel by one notch over a control, as the system reports it.
    void TurnWheel(const char* myName)
    {
        const auto Turn = [=]
        {
            QWidget& theWidget = Control(myName);
            const QPointF myPlace = theWidget.rect().center();
            QWheelEvent myEvent(myPlace, theWidget.mapToGlobal(myPlace), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                                Qt::NoScrollPhase, false);
            QSpontaneKeyEvent::setSpontaneous(&myEvent);
            qApp->notify(&theWidget, &myEvent);
        };
        InForm(Turn);
    }
    void Key(Qt::Key myKey, Qt::KeyboardModifiers myModifiers = Qt::NoModifier)
    {
        InForm([=] { qel::Key(myKey, myModifiers); });
    }
    /// Types into what has the focus.
    void Type(const char* myText)
    {
        InForm([=] { QTest::keyClicks(QApplication::focusWidget(), myText); });
    }
    /// Goes on to a control, or to a named part of one, by the Tab key, which has to reach it soon enough.
    void TabTo(const char* myName, int myMost = 20)
    {
        const auto Tab = [=]
        {
            for (int i = 0; i < myMost && !HasFocus(myName); ++i)
            {
                qel::Key(Qt::Key_Tab);
            }
            EXPECT_TRUE(HasFocus(myName)) << myName;
        };
        InForm(Tab);
    }
    void GoToDay(const std::string& myPicker) { TabTo((myPicker + "Day").c_str()); }
    void GoToStopButton() { TabTo("ToolbarPlay2"); }
    /// Picks an entry of a combo box from its opened list by keys, of a list by the mouse.
    void Pick(const char* myName, const char* myEntry)
    {
        const auto PickIt = [=]
        {
            if (auto* const myCombo = qobject_cast<QComboBox*>(&Control(myName)))
            {
                myCombo->showPopup();
                myCombo->view()->setCurrentIndex(myCombo->model()->index(myCombo->findText(myEntry), 0));
                QTest::keyClick(myCombo->view(), Qt::Key_Return);
                EXPECT_EQ(myCombo->currentText(), myEntry);
                return;
            }
            auto& myList = Control<QListWidget>(myName);
            const QPoint myPlace = myList.visualItemRect(myList.findItems(myEntry, Qt::MatchExactly)[0]).center();
            QTest::mouseClick(myList.viewport(), Qt::LeftButton, {}, myPlace);
        };
        InForm(PickIt);
    }
    void CloseWindow()
    {
        InForm([] { DialogUser::Front()->close(); });
    }

    bool IsVisible(const char* myName) { return Get(myName, &QWidget::isVisible); }
    bool IsEnabled(const char* myName) { return Get(myName, &QWidget::isEnabled); }
    std::string TextOf(const char* myName)
    {
        return Ask([=] { return Control(myName).property("text").toString().toStdString(); });
    }
    /// The name of the control or part with the focus.
    std::string Focus()
    {
        return Ask([] { return QApplication::focusWidget()->objectName().toStdString(); });
    }
    /// What a screen reader says for a control: the name of its label if there is one, else its own.
    std::string SpokenName(const char* myName)
    {
        const auto Read = [=]
        {
            QAccessibleInterface& myInterface = *QAccessible::queryAccessibleInterface(&Control(myName));
            const auto myLabels = myInterface.relations(QAccessible::Label);
            return (myLabels.isEmpty() ? myInterface : *myLabels[0].first).text(QAccessible::Name).toStdString();
        };
        return Ask(Read);
    }
    std::string Entries(const char* myName)
    {
        const auto Join = [=]
        {
            QStringList theEntries;
            const auto& myModel = *Control(myName).findChild<QAbstractItemModel*>();
            for (int i = 0; i < myModel.rowCount(); ++i)
            {
                theEntries << myModel.index(i, 0).data().toString();
            }
            return theEntries.join('|').toStdString();
        };
        return Ask(Join);
    }
    std::string Selected(const std::string& myCombo) { return Get(myCombo, &QComboBox::currentText).toStdString(); }
    std::string DayOf(const std::string& myPicker) { return Selected(myPicker + "Day"); }
    /// "LEFT,TOP WIDTHxHEIGHT" in a box or, if that is empty, in the form; "?" for another parent.
    std::string Place(const char* myName, const std::string& myParent)
    {
        const auto Describe = [=]
        {
            const QWidget& myWidget = Control(myName);
            const QRect& r = myWidget.geometry();
            const bool myIsThere =
                myWidget.parentWidget()->objectName() == (myParent.empty() ? "FormMain" : myParent.c_str());
            const QString theText = QString("%1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
            return myIsThere ? theText.toStdString() : "?";
        };
        return Ask(Describe);
    }
    std::string FormSize()
    {
        const QSize mySize = Ask([] { return DialogUser::Front()->size(); });
        return QString("%1x%2").arg(mySize.width()).arg(mySize.height()).toStdString();
    }
    /// Expects a colour, 0xRRGGBB, of a pixel of the preview, counted inside its border.
    void ExpectPreview(int myLeft, int myTop, uint32_t myColour)
    {
        const QColor myPixel =
            Ask([=] { return Control("picPreview").grab().toImage().pixelColor(myLeft + 2, myTop + 2); });
        EXPECT_EQ(myPixel, QColor(myColour)) << myLeft << "," << myTop;
    }

    /// Answers a message, which has to say this.
    void AnswerMessage(TextView myText, bool myIsQuestion = false, bool myAgrees = true)
    {
        const auto Answer = [=, myExpected = Text(myText)]
        {
            auto& theBox = *static_cast<QMessageBox*>(DialogUser::Front());
            EXPECT_EQ(theBox.text().toStdU16String(), myExpected);
            EXPECT_EQ(theBox.windowTitle(), "Tesselwind");
            EXPECT_EQ(theBox.icon(), myIsQuestion ? QMessageBox::Question : QMessageBox::Information);
            theBox.button(myAgrees ? QMessageBox::Ok : QMessageBox::Cancel)->click();
        };
        In("MsgBox", Answer);
    }
    /// Types a file's name into the dialog for opening one; the empty name cancels.
    void ChooseFile(const char* myTitle, const std::string& myPath)
    {
        const auto Choose = [=]
        {
            auto& theDialog = *static_cast<QFileDialog*>(DialogUser::Front());
            EXPECT_EQ(theDialog.windowTitle(), myTitle);
            if (myPath.empty())
            {
                theDialog.reject();
                return;
            }
            auto& theLine = *theDialog.findChild<QLineEdit*>("fileNameEdit");
            theLine.setText(QString::fromStdString(myPath));
            QTest::keyClick(&theLine, Qt::Key_Return);
        };
        In("CommonDialog", Choose);
    }
    /// True when the viewer of help pages has been started since the last call.
    bool HelpWasAsked()
    {
        // A machine that writes back what a build has left can take seconds to create a file.
        for (int i = 0; i < 12000 && !myFolder.Exists("asked"); ++i)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return std::filesystem::remove(myFolder / "asked");
    }

private:
    static bool HasFocus(const char* myName)
    {
        const QWidget* const myFocus = QApplication::focusWidget();
        return myFocus == &Control(myName) || myFocus->parentWidget() == &Control(myName);
    }

    template <class Question, class Answer = std::invoke_result_t<Question>>
    Answer Ask(Question myQuestion)
    {
        Answer theAnswer{};
        InForm([&] { theAnswer = myQuestion(); });
        return theAnswer;
    }

    template <class Widget, class Answer>
    Answer Get(const std::string& myName, Answer (Widget::*myProperty)() const)
    {
        return Ask([&] { return (Control<Widget>(myName.c_str()).*myProperty)(); });
    }

    const TemporaryFolder& myFolder;
    DialogUser myUser;
};

/// The folder of the component, which all dialogs of the process share because it keeps its window module loaded.
inline const TemporaryFolder& Stage()
{
    static const TemporaryFolder theStage(std::filesystem::temp_directory_path());
    return theStage;
}

/// Gives the component the library of a folder, a toolkit without a display and without the user's own settings, and a
/// viewer of help pages that only leaves a trace.
inline void PlaceComponent(const TemporaryFolder& theFolder, Environment& theEnvironment)
{
    namespace fs = std::filesystem;
    for (const char* const myFile : {"QelPluginAnimation.so", "QelPluginAnimationWindow.so"})
    {
        fs::copy_file(fs::path(QEL_STAGE) / myFile, Stage() / myFile, fs::copy_options::skip_existing);
    }
    fs::remove(Stage() / "QelPluginAnimationDesigns");
    fs::create_symlink(theFolder / "QelPluginAnimationDesigns", Stage() / "QelPluginAnimationDesigns");
    Stage().Write("help/100.html", "");
    theFolder.Write("bin/xdg-open", "#!/bin/sh\n>" + theFolder.Native("asked"));
    fs::permissions(theFolder / "bin/xdg-open", fs::perms::owner_all);
    theEnvironment.Set("PATH", theFolder.Native("bin") + ":" + std::getenv("PATH")); // NOLINT(concurrency-mt-unsafe)
    theEnvironment.Set("QT_QPA_PLATFORM", "offscreen");
    theEnvironment.Set("XDG_CONFIG_HOME", theFolder.Native());
    theEnvironment.Set("PULSE_SERVER", "unix:/nowhere");
}

/// Lets a host open the dialog, or with "about" as mode the box about the component, for a user.
inline std::string Drive(DialogHost& theHost, const TemporaryFolder& theFolder, const std::string& myScript,
                         const std::function<void(DialogDriver&)>& myUser, const std::string& myMode = "")
{
    DialogDriver theDriver(theFolder);
    std::thread theThread([&] { myUser ? myUser(theDriver) : void(); });
    const std::string theResult = myMode == "about" ? theHost.About() : theHost.Open(myScript);
    theThread.join();
    return theResult;
}

/// The same with a host in the folder of a test.
inline std::string RunDialog(const TemporaryFolder& theFolder, const std::string& myScript,
                             const std::function<void(DialogDriver&)>& myUser, const std::string& myMode)
{
    DialogHost theHost(Stage().Native("QelPluginAnimation.so"), FromUtf8(theFolder.Native("data/")));
    return Drive(theHost, theFolder, myScript, myUser, myMode);
}

} // namespace qel
