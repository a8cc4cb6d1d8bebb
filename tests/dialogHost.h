/// A host with a user: opens the component's dialog, and works in its windows as a person does.
#pragma once

#include "com/Bstr.h"
#include "comTestHost.h"
#include "DialogUser.h"
#include "text/encodings.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>
#include <QWheelEvent>

namespace qel
{

/// The services of a host with one module. The dialog asks for the members that answer here and for no other.
class DialogDatabase final : public TestHost, public ComTestDatabase
{
public:
    DialogDatabase() : ComTestDatabase(static_cast<TestHost&>(*this))
    {
        ArchiveName = u"m7.dat";
        Called = [](const std::string& myMember)
        {
            const bool myIsExpected = myMember == "ArchiveName" || myMember == "DataFolder" || myMember == "ChooseLink";
            myIsExpected ? void() : throw Error{ErrorNumber::InvalidArgument, u"unexpected call"};
        };
    }
    HRESULT ChooseLink(BSTR* myPresentLink, BSTR* theLink) override
    {
        const HRESULT myResult = ComTestDatabase::ChooseLink(myPresentLink, theLink);
        return FAILED(myResult) ? myResult : LinkResult;
    }

    HRESULT LinkResult = S_OK;
};

/// A control of the dialog.
template <class Widget = QWidget>
Widget& Control(const char* myName)
{
    return *DialogUser::Front()->findChild<Widget*>(myName);
}

inline void Click(const char* myName)
{
    QTest::mouseClick(&Control(myName), Qt::LeftButton);
}

inline void Key(Qt::Key myKey, Qt::KeyboardModifiers myModifiers = Qt::NoModifier)
{
    QWidget* const myFocus = QApplication::focusWidget();
    QTest::keyClick(myFocus != nullptr ? myFocus : DialogUser::Front(), myKey, myModifiers);
}

/// Goes on with the Tab key to a control.
inline void TabTo(const char* myName)
{
    for (int i = 0; i < 20 && QApplication::focusWidget() != &Control(myName); ++i)
    {
        Key(Qt::Key_Tab);
    }
    EXPECT_EQ(QApplication::focusWidget(), &Control(myName));
}

/// Types into a control, which gets the focus by the Tab key.
inline void Type(const char* myName, const QString& myText)
{
    TabTo(myName);
    QTest::keyClicks(&Control(myName), myText);
}

/// The text of a date field as it shows.
inline std::string DayText(const char* myName)
{
    return Control<QComboBox>(myName).currentText().toStdString();
}

/// Turns the wheel by one notch over a widget, as the system reports it.
inline void TurnWheel(QWidget& theWidget)
{
    const QPointF myPlace = theWidget.rect().center();
    QWheelEvent myEvent(myPlace, theWidget.mapToGlobal(myPlace), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                        Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&myEvent);
    qApp->notify(&theWidget, &myEvent);
}

/// The name that a screen reader says for a control: that of its label if there is one, else its own.
inline std::string NameForAScreenReader(QWidget& myWidget)
{
    QAccessibleInterface& myInterface = *QAccessible::queryAccessibleInterface(&myWidget);
    const auto myLabels = myInterface.relations(QAccessible::Label);
    QAccessibleInterface& myNamed = myLabels.isEmpty() ? myInterface : *myLabels[0].first;
    return myNamed.text(QAccessible::Name).toStdString();
}

/// Picks an entry of a combo box from its opened list by keys, of a list by the mouse.
inline void Pick(const char* myName, const QString& myEntry)
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
    const QList<QListWidgetItem*> myFound = myList.findItems(myEntry, Qt::MatchExactly);
    ASSERT_EQ(myFound.size(), 1);
    QTest::mouseClick(myList.viewport(), Qt::LeftButton, {}, myList.visualItemRect(myFound.front()).center());
}

/// A step in the settings dialog.
inline Step Dialog(std::function<void()> myAction)
{
    return {"FormMain", std::move(myAction)};
}

/// Works in the settings dialog: "NAME" is clicked, and of "NAME=ENTRY" the entry is picked; "|" between them.
inline void Work(const QString& myWork)
{
    for (const QString& myPart : myWork.split('|'))
    {
        const std::string myName = myPart.section('=', 0, 0).toStdString();
        myPart.contains('=') ? Pick(myName.c_str(), myPart.section('=', 1)) : Click(myName.c_str());
    }
}

inline Step Do(const QString& myWork)
{
    return Dialog([=] { Work(myWork); });
}

/// A message: what it has to say, and the button that is pressed.
inline Step Message(Text myText, QMessageBox::StandardButton myButton = QMessageBox::Ok,
                    QMessageBox::Icon myIcon = QMessageBox::Information)
{
    return {"MsgBox", [=]
            {
                auto& myBox = *static_cast<QMessageBox*>(DialogUser::Front());
                EXPECT_EQ(myBox.text().toStdU16String(), myText);
                EXPECT_EQ(myBox.icon(), myIcon);
                myBox.button(myButton)->click();
            }};
}

/// Types a file's name into the dialog for opening one; the empty name cancels.
inline Step File(const std::string& myPath)
{
    return {"CommonDialog", [=]
            {
                auto& myDialog = *static_cast<QFileDialog*>(DialogUser::Front());
                if (myPath.empty())
                {
                    myDialog.reject();
                    return;
                }
                auto& myEdit = *myDialog.findChild<QLineEdit*>("fileNameEdit");
                myEdit.setText(QString::fromStdString(myPath));
                QTest::keyClick(&myEdit, Qt::Key_Return);
            }};
}

/// The component, opened through its entry points, with one plug-in object that has the services.
class DialogHost
{
public:
    explicit DialogHost(const std::string& myComponent) : myLibrary(dlopen(myComponent.c_str(), RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(myLibrary, nullptr) << dlerror();
        const auto myEntry = reinterpret_cast<DllGetClassObjectFunction>(dlsym(myLibrary, "DllGetClassObject"));
        void* myObject = nullptr;
        EXPECT_EQ(myEntry(&CLSID_Main, &IID_IClassFactory, &myObject), S_OK);
        const auto myFactory = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(myObject));
        EXPECT_EQ(myFactory->CreateInstance(nullptr, &IID_QelPlugin, &myObject), S_OK);
        Plugin = ComPtr<QelPlugin>::Adopt(static_cast<QelPlugin*>(myObject));
        HandIn(Helper.Get(), Records.Get());
    }
    DialogHost(const DialogHost&) = delete;
    DialogHost& operator=(const DialogHost&) = delete;
    ~DialogHost()
    {
        HandIn(nullptr, nullptr); // the component does not give back what it holds when it is unloaded
        Plugin.Reset();
        dlclose(myLibrary);
    }

    void Script(TextView myScript) const
    {
        Bstr myText(myScript);
        EXPECT_EQ(Plugin->put_Script(myText.Pointer()), S_OK);
    }

    Text Script() const
    {
        Bstr theText;
        EXPECT_EQ(Plugin->get_Script(theText.Pointer()), S_OK);
        return theText.Value();
    }

    /// Opens the dialog for a user. True: it was confirmed; a failed call is reported by its result.
    bool CallBack(std::deque<Step> mySteps, HRESULT myResult = S_OK) const
    {
        const DialogUser myUser(std::move(mySteps));
        int32_t myLink = 0;
        VARIANT_BOOL theAnswer = VARIANT_TRUE;
        EXPECT_EQ(Plugin->CallBack(&myLink, &theAnswer), myResult);
        return theAnswer == VARIANT_TRUE;
    }

    ComPtr<DialogDatabase> Records = MakeCounted<DialogDatabase>();
    ComPtr<ComTestBuildHelper> Helper = MakeCounted<ComTestBuildHelper>(*Records.Get());
    ComPtr<QelPlugin> Plugin;

private:
    void HandIn(QelBuildHelper* myHelper, QelDatabase* myDatabase) const
    {
        EXPECT_EQ(Plugin->putref_QelBuildHelper(&myHelper), S_OK);
        EXPECT_EQ(Plugin->putref_QelDatabase(&myDatabase), S_OK);
    }

    void* myLibrary;
};

} // namespace qel
