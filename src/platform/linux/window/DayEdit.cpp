#include "platform/linux/window/DayEdit.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "platform/linux/window/appearance.h"
#include "resources/formLayout.h"

#include <algorithm>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <QWheelEvent>

namespace qel
{
namespace
{

/// The parts of the text, in their order, and the digits that each has room for.
enum Part : uint8_t
{
    DayPart,
    MonthPart,
    YearPart
};
constexpr int DigitsOfPart[] = {2, 2, 4};
constexpr int LargeStep = 10; ///< of the page keys

const QRegularExpression& Separator()
{
    static const QRegularExpression theSeparator("[/.-]");
    return theSeparator;
}

/// One run of characters between separators.
struct TextPart
{
    int Index;
    int Start;
    int End;
};

/// The part that contains a position of the cursor.
TextPart PartAt(const QString& myText, int myPosition)
{
    const QString myBefore = myText.left(myPosition);
    const auto myEnd = static_cast<int>(myText.indexOf(Separator(), myPosition));
    return {static_cast<int>(myBefore.count(Separator())), static_cast<int>(myBefore.lastIndexOf(Separator())) + 1,
            myEnd == -1 ? static_cast<int>(myText.size()) : myEnd};
}

QDate ToToolkitDay(CalendarDay myDay)
{
    return {myDay.Year, myDay.Month, myDay.Day};
}

/// The day that a text is, with its parts between separators or as eight digits; an invalid one when it is none.
QDate DayOfText(const QString& myText)
{
    QStringList myParts = myText.split(Separator());
    if (myParts.size() == 1 && myText.size() == 8)
    {
        myParts = QStringList{myText.left(2), myText.mid(2, 2), myText.mid(4)};
    }
    if (myParts.size() != 3)
    {
        return {};
    }
    const QDate theDay(myParts[YearPart].toInt(), myParts[MonthPart].toInt(), myParts[DayPart].toInt());
    return DayEdit::IsInRange(theDay) ? theDay : QDate();
}

QString TextOfDay(QDate myDay)
{
    return myDay.toString(ToToolkit(PeriodPickers.Format));
}

} // namespace

DayEdit::DayEdit(QWidget* myParent) : QComboBox(myParent), myDay(QDate::currentDate())
{
    setEditable(true);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr);
    setFocusPolicy(Qt::StrongFocus); // the wheel over it does not bring the focus
    static const QRegularExpression theCharacters("[0-9/.-]{0,10}");
    setValidator(new QRegularExpressionValidator(theCharacters, this));
    SetDay(myDay);
    connect(lineEdit(), &QLineEdit::textChanged, this,
            [this]
            {
                if (DayOfText(lineEdit()->text()).isValid())
                {
                    ShowRefusal({});
                }
            });
    lineEdit()->installEventFilter(this);
}

bool DayEdit::IsInRange(QDate myDay)
{
    return myDay.isValid() && myDay >= ToToolkitDay(PeriodPickers.First) && myDay <= ToToolkitDay(PeriodPickers.Last);
}

void DayEdit::SetDay(QDate myNewDay)
{
    myDay = myNewDay;
    const QSignalBlocker myBlocker(lineEdit());
    lineEdit()->setText(TextOfDay(myDay));
    ShowRefusal({});
}

bool DayEdit::Finish()
{
    const QDate myTyped = DayOfText(lineEdit()->text());
    if (!myTyped.isValid())
    {
        ShowRefusal(QString("\"%1\" no es una fecha válida. Escriba el día, el mes y el año, entre %2 y %3.")
                        .arg(lineEdit()->text(), TextOfDay(ToToolkitDay(PeriodPickers.First)),
                             TextOfDay(ToToolkitDay(PeriodPickers.Last))));
        return false;
    }
    if (lineEdit()->text() != TextOfDay(myTyped))
    {
        lineEdit()->setText(TextOfDay(myTyped));
    }
    if (myTyped != myDay)
    {
        myDay = myTyped;
        if (DayChanged)
        {
            DayChanged(myDay);
        }
    }
    return true;
}

void DayEdit::DropRefusedText()
{
    if (!DayOfText(lineEdit()->text()).isValid())
    {
        SetDay(myDay);
    }
}

void DayEdit::showPopup()
{
    hidePopup();
    Finish();
    myCalendar = new QCalendarWidget(this);
    myCalendar->setObjectName("Calendar");
    myCalendar->setWindowFlags(Qt::Popup);
    myCalendar->setAttribute(Qt::WA_DeleteOnClose);
    myCalendar->setAttribute(Qt::WA_NoMouseReplay); // a click on the arrow closes it, and does not open it again
    myCalendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    myCalendar->setDateRange(ToToolkitDay(PeriodPickers.First), ToToolkitDay(PeriodPickers.Last));
    myCalendar->setSelectedDate(myDay);
    ApplyFormLook(*myCalendar);
    const auto Choose = [this](QDate myChosen)
    {
        lineEdit()->setText(TextOfDay(myChosen));
        Finish();
        hidePopup();
        SelectFirstPart();
    };
    connect(myCalendar, &QCalendarWidget::clicked, this, Choose);
    connect(myCalendar, &QCalendarWidget::activated, this, Choose);
    myCalendar->adjustSize();
    myCalendar->move(mapToGlobal(QPoint(0, height())));
    MoveOntoScreen(*myCalendar);
    myCalendar->show();
    myCalendar->setFocus();
}

void DayEdit::hidePopup()
{
    if (myCalendar != nullptr)
    {
        myCalendar->close();
    }
}

void DayEdit::keyPressEvent(QKeyEvent* myEvent)
{
    if (!TakeCharacter(*myEvent) && !TakeCommand(*myEvent))
    {
        QComboBox::keyPressEvent(myEvent);
    }
}

void DayEdit::wheelEvent(QWheelEvent* myEvent)
{
    const int myTurn = myEvent->angleDelta().y();
    if (!hasFocus() || myTurn == 0)
    {
        myEvent->ignore(); // so that the area around it can scroll
        return;
    }
    Step(myTurn > 0 ? 1 : -1);
}

void DayEdit::focusInEvent(QFocusEvent* myEvent)
{
    QComboBox::focusInEvent(myEvent);
    if (myEvent->reason() == Qt::TabFocusReason || myEvent->reason() == Qt::BacktabFocusReason)
    {
        SelectFirstPart();
    }
}

void DayEdit::focusOutEvent(QFocusEvent* myEvent)
{
    QComboBox::focusOutEvent(myEvent);
    if (myEvent->reason() != Qt::PopupFocusReason && myEvent->reason() != Qt::ActiveWindowFocusReason)
    {
        Finish();
    }
}

bool DayEdit::eventFilter(QObject* myObject, QEvent* myEvent)
{
    if (myEvent->type() == QEvent::MouseButtonRelease && !lineEdit()->hasSelectedText())
    {
        SelectPart(CurrentPart());
    }
    return QComboBox::eventFilter(myObject, myEvent);
}

/// Types a digit or a separator. False: the key is none of them.
bool DayEdit::TakeCharacter(const QKeyEvent& myEvent)
{
    const QString myText = myEvent.text();
    const bool myIsPlain = (myEvent.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
    if (myText.size() != 1 || !myIsPlain)
    {
        return false;
    }
    if (myText[0] >= '0' && myText[0] <= '9')
    {
        TypeDigit(myText);
        return true;
    }
    if (myText.contains(Separator()))
    {
        GoToNextPart();
        return true;
    }
    return false;
}

/// Handles a key without a character. False: the line of text is to handle it.
bool DayEdit::TakeCommand(const QKeyEvent& myEvent)
{
    const Qt::KeyboardModifiers myModifiers = myEvent.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    const int myKey = myEvent.key();
    if ((myKey == Qt::Key_F4 && myModifiers == Qt::NoModifier) ||
        (myKey == Qt::Key_Down && myModifiers == Qt::AltModifier))
    {
        showPopup();
        return true;
    }
    const struct
    {
        int Key;
        int Steps;
    } Steps[] = {{Qt::Key_Up, 1}, {Qt::Key_Down, -1}, {Qt::Key_PageUp, LargeStep}, {Qt::Key_PageDown, -LargeStep}};
    const auto* const myStep = std::ranges::find(Steps, myKey, [](const auto& myEntry) { return myEntry.Key; });
    if (myStep != std::end(Steps))
    {
        if (myModifiers == Qt::NoModifier)
        {
            Step(myStep->Steps);
        }
        return true;
    }
    return myModifiers == Qt::NoModifier && (myKey == Qt::Key_Left || myKey == Qt::Key_Right) &&
           MoveSelectedPart(myKey == Qt::Key_Right ? 1 : -1);
}

void DayEdit::TypeDigit(const QString& myDigit)
{
    QLineEdit& theText = *lineEdit();
    if (!theText.hasSelectedText())
    {
        const TextPart myPart = PartAt(theText.text(), theText.cursorPosition());
        const bool myIsFull = myPart.Index > YearPart || myPart.End - myPart.Start >= DigitsOfPart[myPart.Index];
        if (myIsFull && theText.cursorPosition() < myPart.End)
        {
            theText.del(); // overwritten
        }
        else if (myIsFull && myPart.Index >= YearPart)
        {
            return;
        }
        else if (myIsFull)
        {
            GoToNextPart();
        }
    }
    theText.insert(myDigit);
}

void DayEdit::GoToNextPart()
{
    QLineEdit& theText = *lineEdit();
    const TextPart myPart =
        PartAt(theText.text(), theText.hasSelectedText() ? theText.selectionEnd() : theText.cursorPosition());
    if (myPart.End < theText.text().size())
    {
        SelectPart(myPart.Index + 1);
    }
    else if (myPart.Index < YearPart && myPart.Start < myPart.End)
    {
        theText.setCursorPosition(myPart.End);
        theText.insert("/");
    }
}

/// Selects the part beside the one that is selected as a whole. False: there is no such selection.
bool DayEdit::MoveSelectedPart(int mySteps)
{
    const TextPart myPart = PartAt(lineEdit()->text(), lineEdit()->selectionStart());
    if (!lineEdit()->hasSelectedText() || lineEdit()->selectionStart() != myPart.Start ||
        lineEdit()->selectionEnd() != myPart.End)
    {
        return false;
    }
    SelectPart(myPart.Index + mySteps);
    return true;
}

/// Selects a part; one that the text does not have leaves the selection as it is.
void DayEdit::SelectPart(int myPart)
{
    const QString myText = lineEdit()->text();
    for (TextPart i = PartAt(myText, 0); i.Index <= myPart; i = PartAt(myText, i.End + 1))
    {
        if (i.Index == myPart)
        {
            lineEdit()->setSelection(i.Start, i.End - i.Start);
        }
        if (i.End == myText.size())
        {
            break;
        }
    }
}

int DayEdit::CurrentPart() const
{
    const QLineEdit& myText = *lineEdit();
    return PartAt(myText.text(), myText.hasSelectedText() ? myText.selectionStart() : myText.cursorPosition()).Index;
}

/// Changes the part with the cursor, within the range. A text that is not a day stays unchanged.
void DayEdit::Step(int mySteps)
{
    const int myPart = CurrentPart();
    if (!Finish())
    {
        return;
    }
    const QDate myNewDay = myPart == DayPart     ? myDay.addDays(mySteps)
                           : myPart == MonthPart ? myDay.addMonths(mySteps)
                                                 : myDay.addYears(mySteps);
    if (IsInRange(myNewDay))
    {
        lineEdit()->setText(TextOfDay(myNewDay));
        Finish();
    }
    SelectPart(myPart);
}

void DayEdit::ShowRefusal(const QString& myReason)
{
    if (toolTip() == myReason)
    {
        return;
    }
    setToolTip(myReason);
    setAccessibleDescription(myReason);
    QPalette myColours;
    if (!myReason.isEmpty())
    {
        myColours.setColor(QPalette::Text, QColor(RefusedText));
        myColours.setColor(QPalette::Base, QColor(RefusedBase));
    }
    lineEdit()->setPalette(myColours);
}

} // namespace qel
