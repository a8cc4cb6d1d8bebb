/// A user who takes one step after the other in a program's windows.
#pragma once

#include <deque>
#include <functional>
#include <QApplication>
#include <QTimerEvent>
#include <QWidget>

namespace qel
{

/// What a user does in one window, which has to be in front.
struct Step
{
    QString Window; ///< its object name
    std::function<void()> Action;
};

/// Takes the steps one after the other, each as soon as its window waits for the user. A window that is not expected
/// ends the program, as does a step that is never taken.
class DialogUser : public QObject
{
public:
    explicit DialogUser(std::deque<Step> mySteps) : myPlan(std::move(mySteps))
    {
        // There need not be an application before the window opens, and so no timer.
        QMetaObject::invokeMethod(
            this, [this] { startTimer(1); }, Qt::QueuedConnection);
    }
    ~DialogUser() override { myPlan.empty() ? void() : qFatal("%d steps were not taken", int(myPlan.size())); }

    /// The window that waits for the user.
    static QWidget* Front() { return QApplication::activeModalWidget(); }

protected:
    void timerEvent(QTimerEvent*) override
    {
        QWidget* const myFront = Front();
        if (myFront == nullptr)
        {
            return;
        }
        if (QApplication::activeWindow() != myFront)
        {
            myFront->activateWindow(); // there is no window manager that would
        }
        else if (!myPlan.empty() && myFront->objectName() == myPlan.front().Window)
        {
            // Not from here: a timer does not run again in the loop of a window that the step opens.
            QMetaObject::invokeMethod(this, std::move(myPlan.front().Action), Qt::QueuedConnection);
            myPlan.pop_front();
            myWaits = 0;
            return;
        }
        if (++myWaits > LongestWait)
        {
            qFatal("unexpected or left open: %s", qPrintable(myFront->objectName()));
        }
    }

private:
    static constexpr int LongestWait = 3000;
    std::deque<Step> myPlan;
    int myWaits = 0;
};

} // namespace qel
