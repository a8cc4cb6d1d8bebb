/// The window in which an author chooses a link: the site's records, and a field for any other address.
///
/// One of the two is the target of the link: choosing a record clears the field, and typing clears the selection of the
/// list. Without a target the window cannot be confirmed.
#pragma once

#include "site/LinkChoice.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

namespace qel::host
{

/// A list in which the focus alone selects nothing, and the first arrow key selects the first row.
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
    /// Shows the offered targets and the current choice.
    LinkDialog(const LinkChoice& myOffer, QWidget* myParent);

    /// Stores what the author has chosen.
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
