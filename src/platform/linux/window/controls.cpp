#include "platform/linux/window/controls.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "platform/linux/window/appearance.h"
#include "platform/PixelPicture.h"
#include "resources/formLayout.h"
#include "resources/pictures.h"

#include <QSignalBlocker>

namespace qel
{

ToolkitComboBox::ToolkitComboBox(FolderBox& myComboBox, EventForwarder& myForwarder, Handler myClick)
    : myWidget(myComboBox), myEvents(myForwarder), myHandler(myClick)
{
    // Emitted whenever the user selects an entry, by mouse, key or wheel, also the one that is selected already.
    QObject::connect(&myWidget, &QComboBox::activated, &myWidget, [this] { myEvents.CallFromSystem(myHandler); });
}

ToolkitComboBox::~ToolkitComboBox()
{
    myWidget.blockSignals(true);
}

void ToolkitComboBox::AddItem(TextView myText)
{
    // The toolkit selects the first entry that is added.
    const int myIndex = myWidget.currentIndex();
    myWidget.AddEntry(ToToolkit(myText));
    myWidget.setCurrentIndex(myIndex);
}

void ToolkitComboBox::ListIndex(int32_t myIndex)
{
    myWidget.setCurrentIndex(myIndex);
    myEvents.Call(myHandler);
}

Text ToolkitComboBox::SelectedText()
{
    return FromToolkit(myWidget.currentText());
}

ToolkitListBox::ToolkitListBox(SelectionList& myList, EventForwarder& myForwarder, Handler myClick,
                               Handler myDoubleClick)
    : myWidget(myList), myEvents(myForwarder), myHandler(myClick)
{
    myWidget.Picked = [this]
    {
        myEvents.CallFromSystem(myHandler);
    };
    myWidget.DoubleClicked = [this, myDoubleClick]
    {
        myEvents.CallFromSystem(myDoubleClick);
    };
}

ToolkitListBox::~ToolkitListBox()
{
    myWidget.Picked = nullptr;
    myWidget.DoubleClicked = nullptr;
}

void ToolkitListBox::AddItem(TextView myText)
{
    myWidget.AddEntry(ToToolkit(myText));
}

void ToolkitListBox::ListIndex(int32_t myIndex)
{
    // The toolkit reports only changes, so its signals are blocked and the handler is called for every write.
    {
        const QSignalBlocker myBlocker(myWidget);
        if (myIndex == -1)
        {
            myWidget.clearSelection();
            myWidget.selectionModel()->clearCurrentIndex();
        }
        myWidget.setCurrentRow(myIndex, QItemSelectionModel::ClearAndSelect);
    }
    myEvents.Call(myHandler);
}

Text ToolkitListBox::SelectedText()
{
    const QListWidgetItem* const mySelected = myWidget.item(myWidget.SelectedRow());
    return mySelected == nullptr ? Text() : FromToolkit(mySelected->text());
}

void ToolkitListBox::Clear()
{
    const QSignalBlocker myBlocker(myWidget);
    myWidget.clear();
}

void ToolkitPreviewBox::PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop)
{
    const QImage myImage(myPicture.Pixels.data(), myPicture.Width, myPicture.Height, qsizetype{4} * myPicture.Width,
                         QImage::Format_RGBA8888);
    myWidget.Paint(myImage, {myLeft, myTop});
}

template <class Widget>
void ToolkitLabel<Widget>::Caption(TextView myText)
{
    myWidget.setText(ToToolkit(myText));
    FitCaption(myWidget);
}

template class ToolkitLabel<QLabel>;
template class ToolkitLabel<ClickLabel>;

void ToolkitIconImage::Icon(int32_t myResource)
{
    myWidget.setPixmap(PixmapOf(myResource == InformationIcon ? InformationPicture : WarningPicture));
}

} // namespace qel
