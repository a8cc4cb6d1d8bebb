/// The entries of combo boxes and list boxes of the system.
#pragma once

#include "platform/windows/window/controlHeaders.h"
#include "text/text.h"

namespace qel
{

/// The messages to a control with entries, which are those of combo boxes or of list boxes.
struct EntryMessages
{
    UINT Add, Count, Selected, Select, TextLength, Text;
};
inline constexpr EntryMessages ComboMessages = {CB_ADDSTRING, CB_GETCOUNT,     CB_GETCURSEL,
                                                CB_SETCURSEL, CB_GETLBTEXTLEN, CB_GETLBTEXT};
inline constexpr EntryMessages ListMessages = {LB_ADDSTRING, LB_GETCOUNT,   LB_GETCURSEL,
                                               LB_SETCURSEL, LB_GETTEXTLEN, LB_GETTEXT};

/// Error 7: there is no room for another entry.
void AddEntry(HWND myControl, const EntryMessages& myMessages, TextView myText);
/// Entries count from 0. The text is empty when there is no such entry.
Text EntryText(HWND myControl, const EntryMessages& myMessages, LRESULT myIndex);
Text SelectedEntry(HWND myControl, const EntryMessages& myMessages);

/// Makes the opened list of a combo box as wide as its widest entry, but no wider than `myMost`.
void WidenOpenedList(HWND myCombo, int myMost);

} // namespace qel
