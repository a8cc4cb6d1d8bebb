/// The window of the settings dialog, built from the table of its controls.
#pragma once

#include "resources/formLayout.h"

#include <QDialog>

namespace qel
{

/// Every widget has the name of its control, the window that of the form.
///
/// Parts of controls are called after them: DateFromSwitch and DateFromDay, ToolbarPlay1 and ToolbarPlay2.
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

    /// Shows the window in the middle of the screen, and returns when it has closed.
    void ShowModally();

protected:
    void keyPressEvent(QKeyEvent* myEvent) override;
    bool event(QEvent* myEvent) override;
    /// Leads Enter to this window from the places where it is to press the default button.
    bool eventFilter(QObject* myPlace, QEvent* myEvent) override;

private:
    QWidget& Find(TextView myName) const;
    void Add(const ControlLayout& myLayout);
    void SetTabOrder();
    void Centre();

    bool myIsCentred = false;
};

} // namespace qel
