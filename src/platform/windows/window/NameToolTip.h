/// The tool tip of a name that does not fit in its box.
#pragma once

#include "platform/windows/window/appearance.h"

#include <string>

namespace qel
{

/// Shows the entry under the mouse in a tool tip if the list does not have the room for it, or the selected entry of a
/// combo box.
class NameToolTip
{
public:
    /// Sets the font of the form, and the width at which a tip begins another line. The font must outlive its use.
    void Take(HFONT myFormFont, int myWidth);

    /// Follows the mouse: a message about it to a list or combo box of the form, before that handles it.
    void Follow(MSG myMessage);

private:
    void MakeTip(HWND myForm);

    HWND myTip = nullptr; ///< the form owns it, and destroys it
    HFONT myFont = nullptr;
    int myLargestWidth = 0;
    // What is under the mouse.
    HWND myBox = nullptr;
    LRESULT myEntry = -1;
    std::wstring myName;
};

} // namespace qel
