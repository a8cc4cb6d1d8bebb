/// A user at the keyboard of a program that is tested as it is: a plug-in of the toolkit, which the program loads by
/// itself when QT_QPA_GENERIC_PLUGINS names it as "dialogkeys:FILE".
///
/// Each line of the file is one step, "WINDOW key KEY" or "WINDOW type TEXT", taken in the window of that object name.
#include "DialogUser.h"

#include <QFile>
#include <QGenericPlugin>
#include <QKeySequence>
#include <QTest>

class DialogKeys : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "DialogKeys.json")

public:
    QObject* create(const QString& /*myName*/, const QString& myFilename) override
    {
        QFile myFile(myFilename);
        if (!myFile.open(QIODevice::ReadOnly))
        {
            qFatal("there are no steps in %s", qPrintable(myFilename));
        }
        std::deque<qel::Step> mySteps;
        for (const QString& myLine : QString::fromUtf8(myFile.readAll()).split('\n', Qt::SkipEmptyParts))
        {
            mySteps.push_back({myLine.section(' ', 0, 0), [myLine]
                               {
                                   Take(myLine);
                               }});
        }
        // The toolkit keeps it to the end of the process, and some versions where the checker of leaks does not look.
        static QObject* theUser = nullptr;
        theUser = new qel::DialogUser(std::move(mySteps));
        return theUser;
    }

private:
    static void Take(const QString& myStep)
    {
        QWidget* const myFocus = QApplication::focusWidget();
        QWidget* const myTarget = myFocus == nullptr ? qel::DialogUser::Front() : myFocus;
        const QString myWhat = myStep.section(' ', 2);
        if (myStep.section(' ', 1, 1) == "type")
        {
            QTest::keyClicks(myTarget, myWhat);
            return;
        }
        const QKeyCombination myKey = QKeySequence(myWhat)[0];
        QTest::keyClick(myTarget, myKey.key(), myKey.keyboardModifiers());
    }
};

#include "DialogKeys.moc"
