/// The field of a date picker in which a day is typed, or chosen from a calendar.
#pragma once

#include <functional>
#include <optional>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDate>
#include <QPointer>

namespace qel
{

/// Shows a day as dd/MM/yyyy and lets the user type another one.
///
/// The text may be any while it is typed: nothing jumps and nothing is corrected halfway. "/", "." and "-" go to the
/// next part of the day, and so does a digit for which its part has no room; an arrow key up or down, a page key or the
/// wheel changes the part with the cursor, F4 or Alt+Down opens the calendar. The text is read when the focus leaves
/// the field, at Finish, and when a day is chosen. One that is no day between the first and the last one (31/02/2027)
/// is never changed by the field itself: the field keeps it, shows it in red, and says why in its tool tip. Day stays
/// what it was before.
class DayEdit final : public QComboBox
{
public:
    explicit DayEdit(QWidget* myParent);

    /// Runs when another day has been read from the text; not at SetDay.
    std::function<void(QDate)> DayChanged;

    /// The day that was set or read last.
    QDate Day() const { return myDay; }
    /// Shows a day, which has to lie in the range.
    void SetDay(QDate myNewDay);
    static bool IsInRange(QDate myDay);

    /// Reads the text: writes a day out in full, or marks a text that is none. True: the text is a day.
    bool Finish();
    /// Why the text is refused, in Spanish. Empty: it is a day, or has not been read yet.
    QString Refusal() const { return toolTip(); }
    /// Puts the day back in the place of a text that is none.
    void DropRefusedText();
    void SelectFirstPart() { SelectPart(0); }

    void showPopup() override;
    void hidePopup() override;

protected:
    void keyPressEvent(QKeyEvent* myEvent) override;
    void wheelEvent(QWheelEvent* myEvent) override;
    void focusInEvent(QFocusEvent* myEvent) override;
    void focusOutEvent(QFocusEvent* myEvent) override;
    /// Selects the part of the day that was clicked in the text.
    bool eventFilter(QObject* myObject, QEvent* myEvent) override;

private:
    bool TakeCharacter(const QKeyEvent& myEvent);
    bool TakeCommand(const QKeyEvent& myEvent);
    void TypeDigit(const QString& myDigit);
    void GoToNextPart();
    bool MoveSelectedPart(int mySteps);
    void SelectPart(int myPart);
    int CurrentPart() const;
    void Step(int mySteps);
    void ShowRefusal(const QString& myReason);

    QDate myDay;
    QPointer<QCalendarWidget> myCalendar;
};

} // namespace qel
