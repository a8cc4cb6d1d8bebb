#include "platform/linux/window/DateField.h"

#include "text/errors.h"

namespace qel
{
namespace
{

constexpr int SwitchWidth = 18;
constexpr int SwitchInset = 3; ///< room for the frame that shows the focus

Date ToDate(QDate myDay)
{
    return DateOfDay({myDay.year(), myDay.month(), myDay.day()});
}

} // namespace

DateField::DateField(QWidget* myParent)
    : QWidget(myParent), mySwitch(this), myDay(this), myCaption(this), myDate(ToDate(myDay.Day()))
{
    myCaption.hide();
    myCaption.setBuddy(&myDay);
    myDay.setEnabled(false);
    connect(&mySwitch, &QCheckBox::toggled, &myDay,
            [this](bool myIsOn)
            {
                myDay.setEnabled(myIsOn);
                if (!myIsOn)
                {
                    myDay.DropRefusedText();
                }
            });
    myDay.DayChanged = [this](QDate myNewDay)
    {
        myDate = ToDate(myNewDay);
    };
    setFocusProxy(&mySwitch);
}

void DateField::SetName(const QString& myText)
{
    mySwitch.setAccessibleName(myText);
    myCaption.setText(myText);
}

std::optional<Date> DateField::Value()
{
    myDay.Finish();
    return mySwitch.isChecked() ? std::optional(myDate) : std::nullopt;
}

void DateField::SetValue(std::optional<Date> myNewDate)
{
    if (myNewDate)
    {
        const CalendarDay myCalendarDay = DayOfDate(*myNewDate);
        const QDate myShown(myCalendarDay.Year, myCalendarDay.Month, myCalendarDay.Day);
        if (!DayEdit::IsInRange(myShown))
        {
            Raise(ErrorNumber::InvalidArgument);
        }
        myDay.SetDay(myShown);
        myDate = *myNewDate;
    }
    mySwitch.setChecked(myNewDate.has_value());
}

QString DateField::Refusal()
{
    return !mySwitch.isChecked() || myDay.Finish() ? QString() : myDay.Refusal();
}

void DateField::resizeEvent(QResizeEvent*)
{
    mySwitch.setGeometry(SwitchInset, 0, SwitchWidth - SwitchInset, height());
    myDay.setGeometry(SwitchWidth, 0, width() - SwitchWidth, height());
}

} // namespace qel
