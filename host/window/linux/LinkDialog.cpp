#include "window/linux/LinkDialog.h"

#include "platform/linux/toolkit/toolkitText.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

namespace qel::host
{

namespace
{

constexpr QSize StartSize(560, 400);
constexpr int NameWidth = 200;
constexpr int ColumnGap = 16;

/// A caption whose access key leads to a control. It is also the name of that control for a screen reader.
QLabel* CaptionOf(QWidget& theControl, const QString& myCaption)
{
    auto* const theLabel = new QLabel(myCaption);
    theLabel->setBuddy(&theControl);
    theControl.setAccessibleName(QString(myCaption).remove('&').remove(':'));
    return theLabel;
}

} // namespace

void RecordList::Fill(const std::vector<LinkRow>& myRows)
{
    setHeaderLabels({"Kind", "Name", "Address"});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    QList<QTreeWidgetItem*> myItems;
    for (const LinkRow& myRow : myRows)
    {
        myItems << new QTreeWidgetItem(
            QStringList{ToToolkit(myRow.Kind), ToToolkit(myRow.Name), ToToolkit(myRow.Address)});
    }
    addTopLevelItems(myItems);
    resizeColumnToContents(0);
    setColumnWidth(0, columnWidth(0) + ColumnGap);
    setColumnWidth(1, NameWidth);
}

std::optional<std::size_t> RecordList::SelectedRow() const
{
    const QList<QTreeWidgetItem*> mySelected = selectedItems();
    return mySelected.isEmpty() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(indexOfTopLevelItem(mySelected.front())));
}

void RecordList::Deselect()
{
    clearSelection();
    selectionModel()->clearCurrentIndex();
}

void RecordList::focusInEvent(QFocusEvent* myEvent)
{
    QTreeWidget::focusInEvent(myEvent);
    if (!SelectedRow())
    {
        selectionModel()->clearCurrentIndex();
    }
}

LinkDialog::LinkDialog(const LinkChoice& myOffer, QWidget* myParent) : QDialog(myParent)
{
    setObjectName("ChooseLink");
    setWindowTitle("Choose a link");
    Arrange(myOffer);
    myRecords.Fill(myOffer.Rows);
    if (myOffer.Row)
    {
        myRecords.setCurrentItem(myRecords.topLevelItem(static_cast<int>(*myOffer.Row)));
    }
    myAddress.setText(ToToolkit(myOffer.Address));
    Connect();
    UpdateConfirm();
    const bool myIsTyped = !myOffer.Address.empty() || myOffer.Rows.empty();
    (myIsTyped ? static_cast<QWidget&>(myAddress) : myRecords).setFocus();
}

void LinkDialog::ReadInto(LinkChoice& theChoice) const
{
    theChoice.Row = myRecords.SelectedRow();
    theChoice.Address = FromToolkit(myAddress.text().trimmed());
}

void LinkDialog::Arrange(const LinkChoice& myOffer)
{
    myRecords.setObjectName("records");
    myAddress.setObjectName("address");
    myAddress.setPlaceholderText("https://example.org/");
    myNote.setObjectName("note");
    myNote.setTextFormat(Qt::PlainText);
    myNote.setWordWrap(true);
    myNote.setText(ToToolkit(myOffer.Note));
    myNote.setVisible(!myOffer.Note.empty());
    myConfirm.setObjectName("confirm");
    myConfirm.setDefault(true);
    myCancel.setObjectName("cancel");

    auto* const myButtons = new QHBoxLayout;
    myButtons->addStretch();
    myButtons->addWidget(&myConfirm);
    myButtons->addWidget(&myCancel);
    auto* const myRows = new QVBoxLayout(this);
    myRows->addWidget(CaptionOf(myRecords, "&Records of this site:"));
    myRows->addWidget(&myRecords, 1);
    myRows->addWidget(CaptionOf(myAddress, "Another &address:"));
    myRows->addWidget(&myAddress);
    myRows->addWidget(&myNote);
    myRows->addLayout(myButtons);
    resize(StartSize);
}

void LinkDialog::Connect()
{
    connect(&myRecords, &QTreeWidget::itemSelectionChanged, this,
            [this]
            {
                if (myRecords.SelectedRow() && !myAddress.text().isEmpty())
                {
                    myAddress.selectAll();
                    myAddress.del(); // so that it can be undone, which clear() cannot
                }
                UpdateConfirm();
            });
    connect(&myAddress, &QLineEdit::textEdited, this,
            [this]
            {
                if (!myAddress.text().isEmpty())
                {
                    myRecords.Deselect();
                }
                UpdateConfirm();
            });
    connect(&myRecords, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(&myConfirm, &QPushButton::clicked, this, &QDialog::accept);
    connect(&myCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void LinkDialog::UpdateConfirm()
{
    myConfirm.setEnabled(myRecords.SelectedRow() || !myAddress.text().trimmed().isEmpty());
}

} // namespace qel::host
