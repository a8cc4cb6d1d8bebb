/// The window of the settings dialog, built from the table of its controls.
#pragma once

#include "platform/linux/window/SpanishTexts.h"
#include "resources/formLayout.h"

#include <QDialog>

namespace qel
{

/// Every widget has the name of its control, the window that of the form. Parts of controls are named after them:
/// DateFromSwitch and DateFromDay, ToolbarPlay1 and ToolbarPlay2.
///
/// Enter presses the button with the focus, a tool button and an import text included, and cmdOK from anywhere else;
/// Escape presses cmdCancel and F1 cmdHelp.
class FormDialog final : public QDialog
{
public:
    FormDialog();

    /// The widget of a control, which has to be of that type.
    template <class Widget>
    Widget& Control(TextView myName) const
    {
        return dynamic_cast<Widget&>(Find(myName));
    }

    /// Shows the window in the middle of the screen, and returns when it has closed. If the screen is too small, its
    /// top left corner is visible.
    void ShowModally();
    void Close() { done(Accepted); }

protected:
    void keyPressEvent(QKeyEvent* myEvent) override;
    bool event(QEvent* myEvent) override;
    /// Handles Enter for every control that is no push button.
    bool eventFilter(QObject* myPlace, QEvent* myEvent) override;

private:
    QWidget& Find(TextView myName) const;
    void Add(const ControlLayout& myLayout);
    void SetTabOrder();
    void SetBuddies();
    void FitCaptions();
    void Centre();

    SpanishTexts myTexts;
    bool myIsCentred = false;
};

} // namespace qel
