/// The events of the settings dialog, from its window to its logic.
#pragma once

#include <cstdint>

namespace qel
{

/// What the user does, as the form's logic handles it. A handler may throw only inside a write of a selected index; one
/// that the window calls by itself deals with its failures.
class FormMainEvents
{
public:
    virtual ~FormMainEvents() = default;

    /// Before the window shows. What it throws keeps the window closed and comes out of Show.
    virtual void Form_Load() = 0;
    /// At every closing. Throws nothing.
    virtual void Form_Unload() = 0;

    virtual void cmbImageFolder_Click() = 0;
    virtual void cmbMIDIFolder_Click() = 0;
    virtual void lstImage_Click() = 0;
    virtual void lstMIDI_DblClick() = 0;
    virtual void lblImage_Click() = 0;
    virtual void lblMIDI_Click() = 0;
    virtual void ToolbarPlay_ButtonClick(int32_t myButton) = 0; ///< from 1
    virtual void cmdSetLink_Click() = 0;
    virtual void cmdUnsetLink_Click() = 0;
    virtual void cmdHelp_Click() = 0;
    virtual void cmdOK_Click() = 0;
    virtual void cmdCancel_Click() = 0;
};

} // namespace qel
