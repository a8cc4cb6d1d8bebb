#include "platform/linux/window/widgets.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QStyleOptionFocusRect>

namespace qel
{
namespace
{

constexpr int BorderWidth = 2;
constexpr int TextFlags =
    static_cast<int>(Qt::AlignLeft) | static_cast<int>(Qt::AlignTop) | static_cast<int>(Qt::TextWordWrap);

} // namespace

FolderBox::FolderBox(QWidget* myParent) : QComboBox(myParent)
{
    setFocusPolicy(Qt::StrongFocus); // the wheel over it does not bring the focus
}

void FolderBox::AddEntry(const QString& myText)
{
    addItem(myText);
    if (!Fits(myText))
    {
        setItemData(count() - 1, myText, Qt::ToolTipRole);
    }
}

bool FolderBox::event(QEvent* myEvent)
{
    if (myEvent->type() == QEvent::ToolTip)
    {
        setToolTip(Fits(currentText()) ? QString() : currentText());
    }
    return QComboBox::event(myEvent);
}

void FolderBox::wheelEvent(QWheelEvent* myEvent)
{
    if (hasFocus())
    {
        QComboBox::wheelEvent(myEvent);
    }
    else
    {
        myEvent->ignore(); // so that the area around it can scroll
    }
}

bool FolderBox::Fits(const QString& myText) const
{
    QStyleOptionComboBox myOption;
    initStyleOption(&myOption);
    const QRect myRoom = style()->subControlRect(QStyle::CC_ComboBox, &myOption, QStyle::SC_ComboBoxEditField, this);
    return fontMetrics().horizontalAdvance(myText) <= myRoom.width();
}

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

void SelectionList::AddEntry(const QString& myText)
{
    auto* const theEntry = new QListWidgetItem(myText, this);
    // As wide as with a scroll bar, which may come with a later entry.
    const int myRoom = width() - 2 * frameWidth() - verticalScrollBar()->sizeHint().width();
    if (sizeHintForIndex(indexFromItem(theEntry)).width() > myRoom)
    {
        theEntry->setToolTip(myText);
    }
}

bool SelectionList::event(QEvent* myEvent)
{
    const bool theResult = QListWidget::event(myEvent);
    if (myEvent->type() == QEvent::Paint && hasFocus())
    {
        QPainter myPainter(this);
        myPainter.setPen(palette().color(QPalette::Highlight));
        myPainter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    return theResult;
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
    update(); // of the frame
}

void SelectionList::focusOutEvent(QFocusEvent* myEvent)
{
    QListWidget::focusOutEvent(myEvent);
    update();
}

void SelectionList::mousePressEvent(QMouseEvent* myEvent)
{
    const int mySelected = SelectedRow();
    QListWidget::mousePressEvent(myEvent);
    // The toolkit reports only changes.
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

int ClickLabel::heightForWidth(int myWidth) const
{
    return fontMetrics().boundingRect(QRect(0, 0, myWidth, QWIDGETSIZE_MAX), TextFlags, text()).height();
}

void ClickLabel::paintEvent(QPaintEvent*)
{
    QPainter myPainter(this);
    myPainter.setPen(palette().color(foregroundRole()));
    myPainter.drawText(rect(), TextFlags, text());
    if (hasFocus())
    {
        QStyleOptionFocusRect myOption;
        myOption.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &myOption, &myPainter, this);
    }
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
