/// The toolkit's widgets, extended by what the form needs of them.
#pragma once

#include <functional>
#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>

namespace qel
{

/// A combo box that the wheel changes only while it has the focus, and whose tool tip is the selected entry where that
/// does not fit.
class FolderBox final : public QComboBox
{
public:
    explicit FolderBox(QWidget* myParent);

    /// Adds an entry at the end, with its text as the tool tip in the opened list if the box is too narrow for it.
    void AddEntry(const QString& myText);

protected:
    bool event(QEvent* myEvent) override;
    void wheelEvent(QWheelEvent* myEvent) override;

private:
    bool Fits(const QString& myText) const;
};

/// A list in which one entry is selected, or none: no key or click deselects, and the focus alone selects nothing. Its
/// frame shows the focus, so that this is seen without a selection too.
class SelectionList final : public QListWidget
{
public:
    explicit SelectionList(QWidget* myParent);

    /// Runs once whenever the user selects an entry, also when it is the one that was selected before. Runs too when
    /// the program selects one, unless signals are blocked.
    std::function<void()> Picked;
    /// Runs at every double click, on an entry or beside the entries.
    std::function<void()> DoubleClicked;

    int SelectedRow() const;

    /// Adds an entry at the end, with its text as the tool tip if the list is too narrow for it.
    void AddEntry(const QString& myText);

protected:
    bool event(QEvent* myEvent) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& myIndex,
                                                         const QEvent* myEvent) const override;
    void focusInEvent(QFocusEvent* myEvent) override;
    void focusOutEvent(QFocusEvent* myEvent) override;
    void mousePressEvent(QMouseEvent* myEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* myEvent) override;

private:
    void Pick();
};

/// A text that can be clicked, by the mouse or by the space key. To a screen reader it is a button.
class ClickLabel final : public QAbstractButton
{
public:
    explicit ClickLabel(QWidget* myParent);

    QSize sizeHint() const override { return size(); }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int myWidth) const override;

protected:
    void paintEvent(QPaintEvent* myEvent) override;
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
