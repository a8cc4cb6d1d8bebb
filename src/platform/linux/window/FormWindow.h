/// The dialog's window as its logic sees it.
#pragma once

#include "platform/linux/window/controls.h"
#include "platform/linux/window/FormDialog.h"
#include "platform/shared/ModalFormWindow.h"

namespace qel
{

/// A day can be typed here, so a date picker can hold a text that is no day (31/02/2027). OK is then refused with a
/// message, before the click reaches the logic: a commit always finds days in the pickers.
class FormWindow final : public ModalFormWindow<FormDialog>
{
public:
    FormWindow();

    FormMainControls& Controls() override { return myControls; }
    int32_t HelpContextID() override { return MainFormLayout.HelpContextID; }
    void Pointer(MousePointer myPointer) override;
    std::optional<Text> ShowOpen(const FileDialogSettings& mySettings) override;
    int32_t MsgBox(TextView myText, int32_t myStyle) override;

private:
    void ConnectClicks();
    void Press(Handler myHandler);
    bool DatesAreDays();

    ToolkitComboBox myImageFolders{myDialog.Control<FolderBox>(u"cmbImageFolder"), myForwarder,
                                   &FormMainEvents::cmbImageFolder_Click};
    ToolkitComboBox myMIDIFolders{myDialog.Control<FolderBox>(u"cmbMIDIFolder"), myForwarder,
                                  &FormMainEvents::cmbMIDIFolder_Click};
    ToolkitListBox myImages{myDialog.Control<SelectionList>(u"lstImage"), myForwarder, &FormMainEvents::lstImage_Click,
                            nullptr};
    ToolkitListBox myMIDIs{myDialog.Control<SelectionList>(u"lstMIDI"), myForwarder, nullptr,
                           &FormMainEvents::lstMIDI_DblClick};
    ToolkitPictureBox myImageBox{myDialog.Control<QFrame>(u"picImage")};
    ToolkitPictureBox myMIDIBox{myDialog.Control<QFrame>(u"picMIDI")};
    ToolkitPreviewBox myPreview{myDialog.Control<PictureFrame>(u"picPreview")};
    ToolkitIconImage myImageIcon{myDialog.Control<QLabel>(u"imgImage")};
    ToolkitIconImage myMIDIIcon{myDialog.Control<QLabel>(u"imgMIDI")};
    ToolkitLabel<ClickLabel> myImageLabel{myDialog.Control<ClickLabel>(u"lblImage")};
    ToolkitLabel<ClickLabel> myMIDILabel{myDialog.Control<ClickLabel>(u"lblMIDI")};
    ToolkitLabel<QLabel> myAnimatedLabel{myDialog.Control<QLabel>(u"lblAnimated")};
    ToolkitCheckBox myShowImage{myDialog.Control<QCheckBox>(u"chkImage")};
    ToolkitCheckBox myPlayMIDI{myDialog.Control<QCheckBox>(u"chkMIDI")};
    ToolkitButton myUnsetLink{myDialog.Control<QAbstractButton>(u"cmdUnsetLink")};
    ToolkitDatePicker myFrom{myDialog.Control<DateField>(u"DateFrom")};
    ToolkitDatePicker myTo{myDialog.Control<DateField>(u"DateTo")};
    FormMainControls myControls{myImageFolders, myMIDIFolders, myImages,    myMIDIs,      myImageBox,  myMIDIBox,
                                myPreview,      myImageIcon,   myMIDIIcon,  myImageLabel, myMIDILabel, myAnimatedLabel,
                                myShowImage,    myPlayMIDI,    myUnsetLink, myFrom,       myTo};
};

} // namespace qel
