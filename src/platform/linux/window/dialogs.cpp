#include "platform/linux/window/dialogs.h"

#include "platform/linux/nativePath.h"
#include "platform/linux/toolkit/toolkitText.h"
#include "platform/linux/window/appearance.h"
#include "resources/stringTable.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace qel
{
namespace
{

constexpr int32_t ButtonsOfStyle = 0x0F;
constexpr int32_t IconOfStyle = 0xF0;

struct DialogText
{
    QFileDialog::DialogLabel Place;
    const char* Words;
};

constexpr DialogText FileDialogTexts[] = {
    {QFileDialog::LookIn, "Buscar en:"}, {QFileDialog::FileName, "Nombre:"}, {QFileDialog::FileType, "Tipo:"},
    {QFileDialog::Accept, "Abrir"},      {QFileDialog::Reject, "Cancelar"},
};

/// Gives the dialog its filters. The toolkit expects the patterns in brackets after each description, separated by
/// blanks, and would show them in this form; what has to show are the descriptions alone.
void SetFilters(QFileDialog& theDialog, TextView myFilter)
{
    const QStringList myParts = ToToolkit(myFilter).split('|');
    QStringList myFilters;
    for (qsizetype myPart = 0; myPart + 1 < myParts.size(); myPart += 2)
    {
        myFilters << QString("%1 (%2)").arg(myParts[myPart], QString(myParts[myPart + 1]).replace(';', ' '));
    }
    theDialog.setNameFilters(myFilters);
    if (auto* const myTypes = theDialog.findChild<QComboBox*>("fileTypeCombo"))
    {
        for (int myIndex = 0; myIndex < myTypes->count(); ++myIndex)
        {
            myTypes->setItemText(myIndex, myParts[qsizetype{2} * myIndex]);
        }
    }
}

} // namespace

int32_t ShowMessage(QWidget* myOwner, TextView myText, int32_t myStyle)
{
    QMessageBox theBox(myOwner != nullptr && myOwner->isVisible() ? myOwner : nullptr);
    theBox.setObjectName("MsgBox");
    theBox.setWindowTitle(ToToolkit(ComponentVersion.Title));
    theBox.setTextFormat(Qt::PlainText);
    theBox.setText(ToToolkit(myText).replace("\r\n", "\n"));
    theBox.addButton(QMessageBox::Ok)->setText("Aceptar");
    if ((myStyle & ButtonsOfStyle) == (QuestionStyle & ButtonsOfStyle))
    {
        theBox.addButton(QMessageBox::Cancel)->setText("Cancelar");
    }
    ApplyFormLook(theBox);
    theBox.setIcon((myStyle & IconOfStyle) == (QuestionStyle & IconOfStyle) ? QMessageBox::Question
                                                                            : QMessageBox::Information);
    return theBox.exec() == QMessageBox::Ok ? PressedOK : PressedCancel;
}

std::optional<Text> ShowOpenDialog(QWidget* myOwner, const FileDialogSettings& mySettings)
{
    static QString theLastFolder = QDir::homePath();

    QFileDialog theDialog(myOwner, ToToolkit(mySettings.DialogTitle), theLastFolder);
    theDialog.setObjectName("CommonDialog");
    theDialog.setOption(QFileDialog::DontUseNativeDialog);
    theDialog.setOption(QFileDialog::ReadOnly); // it is for choosing, and not for renaming or deleting
    theDialog.setFileMode(QFileDialog::ExistingFile);
    for (const DialogText& myText : FileDialogTexts)
    {
        theDialog.setLabelText(myText.Place, myText.Words);
    }
    SetFilters(theDialog, mySettings.Filter);
    ApplyFormLook(theDialog);
    if (theDialog.exec() != QDialog::Accepted || theDialog.selectedFiles().isEmpty())
    {
        return std::nullopt;
    }
    const QString myFile = theDialog.selectedFiles().front();
    theLastFolder = QFileInfo(myFile).absolutePath(); // the dialog stays in another folder when a path was typed
    return LogicalPath(myFile.toStdString()).value_or(Text());
}

} // namespace qel
