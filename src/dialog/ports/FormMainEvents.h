/// The events of the settings dialog, from its window to its logic.
#pragma once

#include <cstdint>

namespace qel
{

/// What the author does in the window, as the logic handles it.
///
/// Order of calls: Form_Load, then the others as they happen, then Form_Unload. All come on the thread that made the
/// window, one at a time. Only Form_Load, and a click handler during a write of a selected index, may throw; any other
/// handler handles its failures itself.
class FormMainEvents
{
public:
    virtual ~FormMainEvents() = default;

    /// Before the window is shown. If it throws, the window stays closed and FormMainWindow::Show throws the same.
    virtual void Form_Load() = 0;
    /// At every closing, however the window is closed. Throws nothing.
    virtual void Form_Unload() = 0;

    /// A folder was selected, by the author or by a write of the selected index.
    virtual void cmbImageFolder_Click() = 0;
    virtual void cmbMIDIFolder_Click() = 0;
    /// A motif was selected, by the author or by a write of the selected index.
    virtual void lstImage_Click() = 0;
    /// Also in an empty list.
    virtual void lstMIDI_DblClick() = 0;
    virtual void lblImage_Click() = 0;
    virtual void lblMIDI_Click() = 0;
    /// `myButton` counts from 1: play, stop.
    virtual void ToolbarPlay_ButtonClick(int32_t myButton) = 0;
    virtual void cmdSetLink_Click() = 0;
    virtual void cmdUnsetLink_Click() = 0;
    virtual void cmdHelp_Click() = 0;
    /// Also for Enter where no other button has the focus.
    virtual void cmdOK_Click() = 0;
    /// Also for Escape. The close box closes the window without it.
    virtual void cmdCancel_Click() = 0;
};

} // namespace qel
