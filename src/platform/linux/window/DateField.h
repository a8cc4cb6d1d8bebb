/// The date picker of the form.
#pragma once

#include "platform/linux/window/DayEdit.h"
#include "text/dates.h"

#include <optional>
#include <QCheckBox>
#include <QLabel>
#include <QWidget>

namespace qel
{

/// A date beside the check box that switches it on.
class DateField final : public QWidget
{
public:
    explicit DateField(QWidget* myParent);

    /// The name of both parts for a screen reader.
    void SetName(const QString& myText);

    /// The date that was set, with its time of day, or the day that the user has chosen or typed since; nothing while
    /// the check box is off. A text that is no day (see Refusal) does not count.
    std::optional<Date> Value();
    /// Nothing switches off and leaves the date that shows. Error 5: a date that cannot be shown.
    void SetValue(std::optional<Date> myNewDate);

    /// Reads the text and says in Spanish why it cannot be taken; empty when it can, or while the check box is off.
    /// Switching the check box off puts the last day back in the place of a refused text.
    QString Refusal();

    QCheckBox& Switch() { return mySwitch; }
    DayEdit& Day() { return myDay; }

protected:
    void resizeEvent(QResizeEvent* myEvent) override;

private:
    QCheckBox mySwitch;
    DayEdit myDay;
    QLabel myCaption; ///< hidden: the toolkit takes the name of a combo box only from a label beside it
    Date myDate;
};

} // namespace qel
