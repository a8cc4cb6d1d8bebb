/// The controls of the dialog as its logic sees them, each on one widget.
#pragma once

#include "dialog/ports/FormMainControls.h"
#include "platform/linux/window/DateField.h"
#include "platform/linux/window/widgets.h"
#include "platform/shared/EventForwarder.h"

namespace qel
{

class ToolkitComboBox final : public ComboBox
{
public:
    ToolkitComboBox(FolderBox& myComboBox, EventForwarder& myForwarder, Handler myClick);
    /// The widget outlives this object; its events have no receiver from then on.
    ~ToolkitComboBox() override;
    ToolkitComboBox(const ToolkitComboBox&) = delete;
    ToolkitComboBox& operator=(const ToolkitComboBox&) = delete;

    void AddItem(TextView myText) override;
    int32_t ListCount() override { return myWidget.count(); }
    int32_t ListIndex() override { return myWidget.currentIndex(); }
    void ListIndex(int32_t myIndex) override;
    Text SelectedText() override;

private:
    FolderBox& myWidget;
    EventForwarder& myEvents;
    Handler myHandler;
};

class ToolkitListBox final : public ListBox
{
public:
    ToolkitListBox(SelectionList& myList, EventForwarder& myForwarder, Handler myClick, Handler myDoubleClick);
    /// The widget outlives this object; its events have no receiver from then on.
    ~ToolkitListBox() override;
    ToolkitListBox(const ToolkitListBox&) = delete;
    ToolkitListBox& operator=(const ToolkitListBox&) = delete;

    void AddItem(TextView myText) override;
    int32_t ListCount() override { return myWidget.count(); }
    int32_t ListIndex() override { return myWidget.SelectedRow(); }
    void ListIndex(int32_t myIndex) override;
    Text SelectedText() override;
    void Clear() override;
    void Visible(bool myValue) override { myWidget.setVisible(myValue); }

private:
    SelectionList& myWidget;
    EventForwarder& myEvents;
    Handler myHandler;
};

class ToolkitPictureBox final : public PictureBox
{
public:
    explicit ToolkitPictureBox(QFrame& myFrame) : myWidget(myFrame) {}
    void Visible(bool myValue) override { myWidget.setVisible(myValue); }

private:
    QFrame& myWidget;
};

class ToolkitPreviewBox final : public PreviewBox
{
public:
    explicit ToolkitPreviewBox(PictureFrame& myFrame) : myWidget(myFrame) {}

    void Cls() override { myWidget.Clear(); }
    int32_t ScaleWidth() override { return myWidget.InnerSize().width(); }
    int32_t ScaleHeight() override { return myWidget.InnerSize().height(); }
    void PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop) override;

private:
    PictureFrame& myWidget;
};

/// `Widget` has a text: a QLabel or a ClickLabel.
template <class Widget>
class ToolkitLabel final : public Label
{
public:
    explicit ToolkitLabel(Widget& myLabel) : myWidget(myLabel) {}
    void Caption(TextView myText) override;
    void Visible(bool myValue) override { myWidget.setVisible(myValue); }

private:
    Widget& myWidget;
};

class ToolkitIconImage final : public IconImage
{
public:
    explicit ToolkitIconImage(QLabel& myLabel) : myWidget(myLabel) {}
    void Icon(int32_t myResource) override;

private:
    QLabel& myWidget;
};

class ToolkitCheckBox final : public CheckBox
{
public:
    explicit ToolkitCheckBox(QCheckBox& myCheckBox) : myWidget(myCheckBox) {}
    bool Value() override { return myWidget.isChecked(); }
    void Value(bool myValue) override { myWidget.setChecked(myValue); }

private:
    QCheckBox& myWidget;
};

class ToolkitButton final : public Button
{
public:
    explicit ToolkitButton(QAbstractButton& myButton) : myWidget(myButton) {}
    void Enabled(bool myValue) override { myWidget.setEnabled(myValue); }

private:
    QAbstractButton& myWidget;
};

class ToolkitDatePicker final : public DatePicker
{
public:
    explicit ToolkitDatePicker(DateField& myField) : myWidget(myField) {}
    std::optional<Date> Value() override { return myWidget.Value(); }
    void Value(std::optional<Date> myDate) override { myWidget.SetValue(myDate); }

private:
    DateField& myWidget;
};

} // namespace qel
