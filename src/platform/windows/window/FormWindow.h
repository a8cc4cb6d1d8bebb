/// The dialog's window as its logic sees it.
#pragma once

#include "platform/shared/ModalFormWindow.h"
#include "platform/windows/window/controls.h"
#include "platform/windows/window/FormDialog.h"

namespace qel
{

class FormWindow final : public ModalFormWindow<FormDialog>
{
public:
    /// `theLastFolder` is where the file dialog starts, and outlives the window. Error 57: there is no display.
    explicit FormWindow(Text& theLastFolder);

    FormMainControls& Controls() override { return myControls; }
    int32_t HelpContextID() override { return MainFormLayout.HelpContextID; }
    void Pointer(MousePointer myPointer) override;
    std::optional<Text> ShowOpen(const FileDialogSettings& mySettings) override;
    int32_t MsgBox(TextView myText, int32_t myStyle) override;

private:
    const ControlLayout& PreviewLayout() const;

    Text& theFolder;

    SystemComboBox myImageFolders{myDialog.Control(u"cmbImageFolder"), myForwarder,
                                  &FormMainEvents::cmbImageFolder_Click};
    SystemComboBox myMIDIFolders{myDialog.Control(u"cmbMIDIFolder"), myForwarder, &FormMainEvents::cmbMIDIFolder_Click};
    SystemListBox myImages{myDialog.Control(u"lstImage"), myForwarder, &FormMainEvents::lstImage_Click};
    SystemListBox myMIDIs{myDialog.Control(u"lstMIDI"), myForwarder, nullptr};
    SystemPictureBox myImageBox{myDialog.Control(u"picImage")};
    SystemPictureBox myMIDIBox{myDialog.Control(u"picMIDI")};
    SystemPreviewBox myPreview{myDialog.Control(u"picPreview"), PreviewLayout()};
    SystemIconImage myImageIcon{myDialog, u"imgImage"};
    SystemIconImage myMIDIIcon{myDialog, u"imgMIDI"};
    SystemLabel myImageLabel{myDialog, u"lblImage"};
    SystemLabel myMIDILabel{myDialog, u"lblMIDI"};
    SystemLabel myAnimatedLabel{myDialog, u"lblAnimated"};
    SystemCheckBox myShowImage{myDialog.Control(u"chkImage")};
    SystemCheckBox myPlayMIDI{myDialog.Control(u"chkMIDI")};
    SystemButton myUnsetLink{myDialog.Control(u"cmdUnsetLink")};
    SystemDatePicker myFrom{myDialog.Control(u"DateFrom")};
    SystemDatePicker myTo{myDialog.Control(u"DateTo")};
    FormMainControls myControls{myImageFolders, myMIDIFolders, myImages,    myMIDIs,      myImageBox,  myMIDIBox,
                                myPreview,      myImageIcon,   myMIDIIcon,  myImageLabel, myMIDILabel, myAnimatedLabel,
                                myShowImage,    myPlayMIDI,    myUnsetLink, myFrom,       myTo};
};

} // namespace qel
