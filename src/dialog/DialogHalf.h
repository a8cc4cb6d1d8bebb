/// One half of the settings dialog, the motif or the tune: its controls, its settings and its texts.
///
/// The same code handles both halves where they behave alike. Where they differ, the code of FormMainDialog names the
/// half that it means.
#pragma once

#include "dialog/ports/FormMainControls.h"
#include "module/ModuleSettings.h"
#include "text/text.h"

#include <cstdint>

namespace qel
{

struct DialogHalf
{
    ComboBox& Folders;
    ListBox& Files;
    PictureBox& ImportBox; ///< shown instead of the list while the own file is selected
    Label& ImportLabel;
    IconImage& ImportIcon;
    CheckBox& Switch;

    Text ModuleSettings::*Folder;
    Text ModuleSettings::*Filename;
    bool ModuleSettings::*IsOn;

    TextView Extension; ///< of the library's files

    // Numbers in the string table
    int32_t OpenTitle;
    int32_t OpenFilter;
    int32_t IsImportedText;
    int32_t IsNotImportedText;
    int32_t ImportFirstText; ///< the message for a commit without an import

    bool (*IsImported)(const ModuleSettings&);
    /// The name of the imported file, without folder; only valid if there is one.
    Text (*ImportedName)(const ModuleSettings&);
};

/// The halves over the controls of one window, which must outlive them.
DialogHalf MotifHalf(const FormMainControls& theControls);
DialogHalf TuneHalf(const FormMainControls& theControls);

} // namespace qel
