/// The window half of FormMain: the settings dialog, from its opening to its closing.
///
/// It fills the controls of a window from the record of FormMain and carries out what the author does there. Only a
/// commit that passes confirms the dialog. The link, the marks of what was imported and the files in the temporary
/// folder do not wait for a commit: they change at once, and Cancel does not change them back.
///
/// An object serves one opening, on the thread of its window.
#pragma once

#include "dialog/DialogHalf.h"
#include "dialog/ports/FormMainWindow.h"
#include "module/FormMain.h"

namespace qel
{

/// The entry of the folder combos for a file of the author's own. While the dialog is open the folder settings hold it
/// as well, in place of UserMarker.
inline constexpr TextView OwnFileEntry = u"(personalizado)";

class FormMainDialog final : private FormMainEvents
{
public:
    /// All arguments must outlive the object.
    FormMainDialog(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead, FormMain& theMain,
                   FormMainWindow& theFormWindow);

    /// Opens the dialog and returns when it is closed; ExitButton of the form then says how. A failure while the dialog
    /// is open is shown in a message, and the dialog stays open. Throws what opening it throws, before the window is
    /// shown: errors of the host, of the temporary folder and of the designs library, and 5, with the date in its
    /// description, for a stored date that a picker cannot show.
    void Show();

private:
    // Opening, closing, link (FormMainDialog.cpp)
    void Form_Load() override;
    void Form_Unload() override;
    void SetLink();
    void UnsetLink();
    void UpdateLinkButtons();

    // Browsing in the library (FormMainDialogLibrary.cpp)
    void FillFolderCombo(ComboBox& theCombo, TextView myFolder);
    void FillFileList(TextView myExtension, ListBox& theList, TextView myFolder, TextView mySelected);
    void Select(ComboBox& theBox, int32_t myIndex);
    static bool OwnFileIsSelected(const DialogHalf& myHalf);
    void OpenFolder(const DialogHalf& myHalf);
    Text SelectedFile(const DialogHalf& myHalf) const;
    Text LibraryFile(TextView myFolder, TextView myName, TextView myExtension) const;

    // Importing the author's own files (FormMainDialogImport.cpp)
    std::optional<Text> ChooseImport(const DialogHalf& myHalf);
    void ImportImage();
    void StageImage(TextView myFilename);
    void SaveImage(TextView myTarget, ImageMode myFormat);
    void ImportMIDI();
    void UpdateImageLabel();
    void UpdateMIDILabel();
    void UpdateImportLabel(const DialogHalf& myHalf);
    Text StagedFile(TextView myName) const;

    // The preview of the motif (FormMainDialogPreview.cpp)
    void UpdatePreview();
    void PaintPreview();

    // Playing the tune (FormMainDialogMusic.cpp)
    void PressToolButton(int32_t myButton);
    void PlaySelectedMIDI();
    void PlayMIDI(const Text& myFile);
    void StopMIDI();

    // The commit (FormMainDialogCommit.cpp)
    void Commit();
    bool TakeFile(const DialogHalf& myHalf);
    bool PackImports();
    bool TakePeriod();

    // The events of the window (FormMainDialog.cpp)
    void cmbImageFolder_Click() override;
    void cmbMIDIFolder_Click() override;
    void lstImage_Click() override;
    void lstMIDI_DblClick() override;
    void lblImage_Click() override;
    void lblMIDI_Click() override;
    void ToolbarPlay_ButtonClick(int32_t myButton) override;
    void cmdSetLink_Click() override;
    void cmdUnsetLink_Click() override;
    void cmdHelp_Click() override;
    void cmdOK_Click() override;
    void cmdCancel_Click() override;

    template <class Operation>
    void Handle(Operation myOperation);
    void ShowMessage(TextView myText);
    ModuleSettings& Settings() { return myForm.Settings(); }
    FormMainControls& Controls() { return myWindow.Controls(); }
    ImagingControl& LeadIn() { return myFormLead.LeadIn(); }

    const Platform& myPorts;
    const localConstants& myLocalConstants;
    FormLead& myFormLead;
    FormMain& myForm;
    FormMainWindow& myWindow;
    const DialogHalf myMotif;
    const DialogHalf myTune;
    int32_t myIndexWrites = 0; ///< how many writes of a selected index are running, one inside the other
};

} // namespace qel
