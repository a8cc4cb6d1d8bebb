/// The window half of FormMain: the settings dialog, from its opening to its closing.
///
/// It fills the controls of a window from the record of FormMain, and does what the author asks for there. Only a
/// commit that passes confirms the dialog, but not all that stands in the record waits for one: the link, the marks of
/// what was imported and the files in the temporary folder are changed at once, and no cancel takes them back.
///
/// An object serves one opening, on the thread of its window.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "module/FormMain.h"

namespace qel
{

/// The entry of the folder combos that stands for a file of the author's own, and what the folder fields hold for it
/// while the dialog is open.
inline constexpr TextView OwnFileEntry = u"(personalizado)";

class FormMainDialog final : private FormMainEvents
{
public:
    /// What is handed in must outlive the object.
    FormMainDialog(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead, FormMain& theMain,
                   FormMainWindow& theFormWindow);

    /// Opens the dialog and returns when it is closed; ExitButton of the form then tells how. While it is open a
    /// failure that has no handler of its own is shown, and the dialog stays. Throws what opening it throws: errors of
    /// the host, of the temporary folder and of the designs library, and 5 for a date that the form has no place for.
    /// Then the window has not been seen.
    void Show();

private:
    // Life (FormMainDialog.cpp)
    void Form_Load() override;
    void Form_Unload() override;
    void SetLink();
    void UnsetLink();
    void UpdateLinkButtons();

    // The library (LibraryBrowsing.cpp)
    void FillFolderCombo(ComboBox& theCombo, TextView myFolder);
    void FillFileList(TextView myExtension, ListBox& theList, TextView myFolder, TextView mySelected);
    void Select(ComboBox& theBox, int32_t myIndex);
    void OpenImageFolder();
    void OpenMIDIFolder();
    Text LibraryFile(TextView myFolder, TextView myName, TextView myExtension) const;

    // The motif (MotifImport.cpp, MotifPreview.cpp)
    void ImportImage();
    void StageImage(TextView myFilename);
    Text StagedImage(TextView myExtension) const;
    void UpdatePreview();
    void PaintPreview();
    void UpdateImageLabel();

    // The tune (Music.cpp)
    void ImportMIDI();
    void PressToolButton(int32_t myButton);
    void PlaySelectedMIDI();
    void PlayMIDI(const Text& myFile);
    void StopMIDI();
    void UpdateMIDILabel();
    Text StagedMIDI() const;

    // The commit (Commit.cpp)
    void Commit();
    bool TakeImage();
    bool TakeMIDI();
    bool PackImports();
    bool TakePeriod();

    // What the window calls by itself (FormMainDialog.cpp)
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
    int32_t myIndexWrites = 0; ///< how many writes of a selected index are under way, one inside the other
};

} // namespace qel
