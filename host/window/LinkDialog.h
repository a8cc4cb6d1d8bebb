/// The window in which an author chooses a link: the site's records, and a field for any other address.
///
/// One of the two says where the link leads: choosing a record empties the field, and typing takes the choice away from
/// the list. The window cannot be confirmed while neither does.
#pragma once

#include "site/LinkChoice.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

namespace qel::host
{

/// A list where the focus alone chooses nothing, and the first arrow key the first row.
class RecordList final : public QTreeWidget
{
public:
    using QTreeWidget::QTreeWidget;

    void Fill(const std::vector<LinkRow>& myRows);
    std::optional<std::size_t> SelectedRow() const;
    void Deselect();

protected:
    void focusInEvent(QFocusEvent* myEvent) override;
};

class LinkDialog final : public QDialog
{
public:
    /// Shows what is offered, with what is chosen by then.
    LinkDialog(const LinkChoice& myOffer, QWidget* myParent);

    /// Writes what the author has chosen.
    void ReadInto(LinkChoice& theChoice) const;

private:
    void Arrange(const LinkChoice& myOffer);
    void Connect();
    void UpdateConfirm();

    RecordList myRecords;
    QLineEdit myAddress;
    QLabel myNote;
    QPushButton myConfirm{"OK"};
    QPushButton myCancel{"Cancel"};
};

} // namespace qel::host
