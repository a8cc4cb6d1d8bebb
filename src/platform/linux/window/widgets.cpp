#include "platform/linux/window/widgets.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "resources/formLayout.h"
#include "text/errors.h"

#include <cmath>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOptionFocusRect>
#include <QTimeZone>

namespace qel
{
namespace
{

constexpr int BorderWidth = 2;
constexpr int SwitchWidth = 18;
constexpr int SwitchInset = 3; ///< what leaves room for the frame that shows the focus

QDate ToToolkitDay(CalendarDay myDay)
{
    return {myDay.Year, myDay.Month, myDay.Day};
}

Date ToDate(QDate myDay)
{
    return DateOfDay({myDay.year(), myDay.month(), myDay.day()});
}

} // namespace

SelectionList::SelectionList(QWidget* myParent) : QListWidget(myParent)
{
    setUniformItemSizes(true);
    connect(this, &QListWidget::itemSelectionChanged, this, &SelectionList::Pick);
}

int SelectionList::SelectedRow() const
{
    const QList<QListWidgetItem*> mySelected = selectedItems();
    return mySelected.isEmpty() ? -1 : row(mySelected.front());
}

QItemSelectionModel::SelectionFlags SelectionList::selectionCommand(const QModelIndex& myIndex, const QEvent*) const
{
    return myIndex.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

void SelectionList::focusInEvent(QFocusEvent* myEvent)
{
    QListWidget::focusInEvent(myEvent);
    if (SelectedRow() == -1)
    {
        selectionModel()->clearCurrentIndex();
    }
}

void SelectionList::mousePressEvent(QMouseEvent* myEvent)
{
    const int mySelected = SelectedRow();
    QListWidget::mousePressEvent(myEvent);
    // The toolkit tells of changes alone.
    if (myEvent->button() == Qt::LeftButton && mySelected != -1 && indexAt(myEvent->pos()).row() == mySelected)
    {
        Pick();
    }
}

void SelectionList::mouseDoubleClickEvent(QMouseEvent* myEvent)
{
    QListWidget::mouseDoubleClickEvent(myEvent);
    if (myEvent->button() == Qt::LeftButton && DoubleClicked)
    {
        DoubleClicked();
    }
}

void SelectionList::Pick()
{
    if (Picked)
    {
        Picked();
    }
}

ClickLabel::ClickLabel(QWidget* myParent) : QAbstractButton(myParent)
{
    setFocusPolicy(Qt::TabFocus);
    setBackgroundRole(QPalette::Window);
    setForegroundRole(QPalette::WindowText);
}

void ClickLabel::paintEvent(QPaintEvent*)
{
    QPainter myPainter(this);
    myPainter.setPen(palette().color(foregroundRole()));
    myPainter.drawText(rect(), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, text());
    if (hasFocus())
    {
        QStyleOptionFocusRect myOption;
        myOption.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &myOption, &myPainter, this);
    }
}

DateField::DateField(QWidget* myParent)
    : QWidget(myParent), mySwitch(this), myDay(this), myDate(ToDate(QDate::currentDate()))
{
    // No day is without a midnight.
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    myDay.setTimeZone(QTimeZone::UTC);
#else
    myDay.setTimeSpec(Qt::UTC);
#endif
    myDay.setDateRange(ToToolkitDay(PeriodPickers.First), ToToolkitDay(PeriodPickers.Last));
    myDay.setDisplayFormat(ToToolkit(PeriodPickers.Format));
    myDay.setCalendarPopup(true);
    myDay.setDate(QDate::currentDate());
    myDay.setEnabled(false);
    connect(&mySwitch, &QCheckBox::toggled, &myDay, &QWidget::setEnabled);
    connect(&myDay, &QDateEdit::dateChanged, this,
            [this](QDate myNewDay)
            {
                // Enter alone tells of a change too.
                if (ToDate(myNewDay) != std::trunc(myDate))
                {
                    myDate = ToDate(myNewDay);
                }
            });
    setFocusProxy(&mySwitch);
}

std::optional<Date> DateField::Value()
{
    myDay.interpretText(); // an access key leaves the focus, and so a day that is being typed, where it is
    return mySwitch.isChecked() ? std::optional(myDate) : std::nullopt;
}

void DateField::SetValue(std::optional<Date> myNewDate)
{
    if (myNewDate)
    {
        const QDate myShown = ToToolkitDay(DayOfDate(*myNewDate));
        if (myShown < myDay.minimumDate() || myShown > myDay.maximumDate())
        {
            Raise(ErrorNumber::InvalidArgument);
        }
        const QSignalBlocker myBlocker(myDay);
        myDay.setDate(myShown);
        myDate = *myNewDate;
    }
    mySwitch.setChecked(myNewDate.has_value());
}

void DateField::resizeEvent(QResizeEvent*)
{
    mySwitch.setGeometry(SwitchInset, 0, SwitchWidth - SwitchInset, height());
    myDay.setGeometry(SwitchWidth, 0, width() - SwitchWidth, height());
}

PictureFrame::PictureFrame(QWidget* myParent) : QLabel(myParent)
{
    setFrameStyle(static_cast<int>(QFrame::WinPanel) | static_cast<int>(QFrame::Sunken));
    setLineWidth(BorderWidth);
}

void PictureFrame::Clear()
{
    setPixmap(QPixmap());
}

void PictureFrame::Paint(const QImage& myPicture, QPoint myCorner)
{
    QImage theCanvas = Canvas();
    QPainter(&theCanvas).drawImage(myCorner, myPicture);
    setPixmap(QPixmap::fromImage(theCanvas));
}

QImage PictureFrame::Canvas() const
{
    QImage theCanvas(InnerSize(), QImage::Format_RGB32);
    theCanvas.fill(palette().color(backgroundRole()));
    if (const QPixmap myPainted = pixmap(); !myPainted.isNull())
    {
        QPainter(&theCanvas).drawPixmap(0, 0, myPainted);
    }
    return theCanvas;
}

} // namespace qel
