/// The toolkit's widgets where the form needs more of them than they do by themselves.
#pragma once

#include "text/dates.h"

#include <functional>
#include <optional>
#include <QAbstractButton>
#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QListWidget>

namespace qel
{

/// A list in which one entry is selected, or none: no key or click deselects, and the focus alone selects nothing.
class SelectionList final : public QListWidget
{
public:
    explicit SelectionList(QWidget* myParent);

    /// Runs at every pick of the user's, once, and also when the entry is the one that was selected before; for what a
    /// program selects as well, unless signals are blocked.
    std::function<void()> Picked;
    /// Runs at every double click, on an entry or beside the entries.
    std::function<void()> DoubleClicked;

    int SelectedRow() const;

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& myIndex,
                                                         const QEvent* myEvent) const override;
    void focusInEvent(QFocusEvent* myEvent) override;
    void mousePressEvent(QMouseEvent* myEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* myEvent) override;

private:
    void Pick();
};

/// A text that is clicked, by the mouse or by the space key. A button to whoever cannot see it.
class ClickLabel final : public QAbstractButton
{
public:
    explicit ClickLabel(QWidget* myParent);

    QSize sizeHint() const override { return size(); }

protected:
    void paintEvent(QPaintEvent* myEvent) override;
};

/// A day that is one stop on the way of the tab key, and not one for each of its parts.
class DayEdit final : public QDateEdit
{
public:
    using QDateEdit::QDateEdit;

protected:
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the class in between is the one that stops at every part
    bool focusNextPrevChild(bool myForward) override { return QWidget::focusNextPrevChild(myForward); }
};

/// A date beside the check box that switches it on.
class DateField final : public QWidget
{
public:
    explicit DateField(QWidget* myParent);

    /// The date that was set, with its time of day, or the day that the user has chosen since.
    /// A day that is being typed counts as far as it has come.
    std::optional<Date> Value();
    /// Nothing switches off and leaves the date that shows. Error 5: a date that cannot show.
    void SetValue(std::optional<Date> myNewDate);

    QCheckBox& Switch() { return mySwitch; }
    QDateEdit& Day() { return myDay; }

protected:
    void resizeEvent(QResizeEvent* myEvent) override;

private:
    QCheckBox mySwitch;
    DayEdit myDay;
    Date myDate;
};

/// A box with a sunken border, which keeps what is painted into it.
class PictureFrame final : public QLabel
{
public:
    explicit PictureFrame(QWidget* myParent);

    QSize InnerSize() const { return contentsRect().size(); }
    void Clear();
    void Paint(const QImage& myPicture, QPoint myCorner);

private:
    QImage Canvas() const;
};

} // namespace qel
