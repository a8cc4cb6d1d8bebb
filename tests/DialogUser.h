/// A user who takes one step after the other in a program's windows.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <QApplication>
#include <QTest>
#include <QTimerEvent>
#include <QWidget>
#include <semaphore>

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
    explicit DialogUser(std::deque<Step> mySteps = {}) : myPlan(std::move(mySteps))
    {
        // There need not be an application before the window opens, and so no timer.
        QMetaObject::invokeMethod(
            this, [this] { startTimer(1); }, Qt::QueuedConnection);
    }
    ~DialogUser() override
    {
        if (!myPlan.empty())
        {
            qFatal("%d steps were not taken", int(myPlan.size()));
        }
    }

    /// From another thread: one more step. Waits until it is done, or has opened another window.
    void Take(Step myStep)
    {
        {
            const std::lock_guard myLock(myMutex);
            myPlan.push_back({myStep.Window, [this, myAction = std::move(myStep.Action)]
                              {
                                  myFrontOfStep = Front();
                                  myAction();
                                  EndStep();
                              }});
        }
        myStepEnds.acquire();
    }

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
        if (myFrontOfStep != nullptr && myFront != myFrontOfStep)
        {
            EndStep();
        }
        if (QApplication::activeWindow() != myFront)
        {
            myFront->activateWindow(); // there is no window manager that would
        }
        else if (TakesStep(myFront->objectName()))
        {
            myWaits = 0;
            return;
        }
        if (++myWaits > LongestWait)
        {
            qFatal("unexpected or left open: %s", qPrintable(myFront->objectName()));
        }
    }

private:
    bool TakesStep(const QString& myWindow)
    {
        const std::lock_guard myLock(myMutex);
        if (myPlan.empty() || myPlan.front().Window != myWindow)
        {
            return false;
        }
        // Not from here: a timer does not run again in the loop of a window that the step opens.
        QMetaObject::invokeMethod(this, std::move(myPlan.front().Action), Qt::QueuedConnection);
        myPlan.pop_front();
        return true;
    }
    /// Ends a step of Take, unless the window that it opened has done so already.
    void EndStep()
    {
        if (std::exchange(myFrontOfStep, nullptr) != nullptr)
        {
            myStepEnds.release();
        }
    }

    static constexpr int LongestWait = 10000;
    std::mutex myMutex; ///< of the plan
    std::deque<Step> myPlan;
    std::binary_semaphore myStepEnds{0};
    QWidget* myFrontOfStep = nullptr; ///< null: no step of Take runs
    int myWaits = 0;
};

/// A control of the window in front.
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

} // namespace qel
