/// A user at the keyboard of a program that is tested as it is: a plug-in of the toolkit, which the program loads by
/// itself when QT_QPA_GENERIC_PLUGINS names it as "dialogkeys:FILE".
///
/// Each line of the file is one step, "WINDOW key KEY" or "WINDOW type TEXT". It is taken as soon as the window of that
/// object name waits for the user; a window that is not expected ends the program.
#include <QApplication>
#include <QFile>
#include <QGenericPlugin>
#include <QKeySequence>
#include <QTest>
#include <QTimerEvent>

namespace
{

class Keyboard : public QObject
{
public:
    explicit Keyboard(const QString& myFilename)
    {
        QFile myFile(myFilename);
        if (!myFile.open(QIODevice::ReadOnly))
        {
            qFatal("there are no steps in %s", qPrintable(myFilename));
        }
        mySteps = QString::fromUtf8(myFile.readAll()).split('\n', Qt::SkipEmptyParts);
        startTimer(1);
    }

protected:
    void timerEvent(QTimerEvent*) override
    {
        QWidget* const myFront = QApplication::activeModalWidget();
        if (myFront == nullptr)
        {
            return;
        }
        if (QApplication::activeWindow() != myFront)
        {
            myFront->activateWindow(); // there is no window manager that would
        }
        else if (!mySteps.isEmpty() && mySteps.front().section(' ', 0, 0) == myFront->objectName())
        {
            myWaits = 0;
            // Not from here: a timer does not run again in the loop of a window that the step opens.
            QMetaObject::invokeMethod(
                this, [myFront, myStep = mySteps.takeFirst()] { Take(*myFront, myStep); }, Qt::QueuedConnection);
        }
        else if (++myWaits > LongestWait)
        {
            qFatal("the window %s was not expected", qPrintable(myFront->objectName()));
        }
    }

private:
    static void Take(QWidget& myWindow, const QString& myStep)
    {
        QWidget* const myFocus = QApplication::focusWidget();
        QWidget* const myTarget = myFocus == nullptr ? &myWindow : myFocus;
        const QString myWhat = myStep.section(' ', 2);
        if (myStep.section(' ', 1, 1) == "type")
        {
            QTest::keyClicks(myTarget, myWhat);
            return;
        }
        const QKeyCombination myKey = QKeySequence(myWhat)[0];
        QTest::keyClick(myTarget, myKey.key(), myKey.keyboardModifiers());
    }

    static constexpr int LongestWait = 3000;
    QStringList mySteps;
    int myWaits = 0;
};

class DialogKeys : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "DialogKeys.json")

public:
    QObject* create(const QString& /*myName*/, const QString& myFilename) override { return new Keyboard(myFilename); }
};

} // namespace

#include "DialogKeys.moc"
