#include "platform/windows/window/entries.h"

#include "platform/windows/wideText.h"
#include "platform/windows/window/appearance.h"
#include "text/errors.h"

#include <algorithm>

namespace qel
{

void AddEntry(HWND myControl, const EntryMessages& myMessages, TextView myText)
{
    const std::wstring myEntry = WideText(myText);
    if (SendMessageW(myControl, myMessages.Add, 0, reinterpret_cast<LPARAM>(myEntry.c_str())) < 0)
    {
        Raise(ErrorNumber::OutOfMemory);
    }
}

Text EntryText(HWND myControl, const EntryMessages& myMessages, LRESULT myIndex)
{
    const LRESULT myLength = SendMessageW(myControl, myMessages.TextLength, static_cast<WPARAM>(myIndex), 0);
    if (myIndex < 0 || myLength < 0)
    {
        return {};
    }
    std::wstring theText(static_cast<size_t>(myLength), L'\0');
    SendMessageW(myControl, myMessages.Text, static_cast<WPARAM>(myIndex), reinterpret_cast<LPARAM>(theText.data()));
    return TextOfWide(theText);
}

Text SelectedEntry(HWND myControl, const EntryMessages& myMessages)
{
    return EntryText(myControl, myMessages, SendMessageW(myControl, myMessages.Selected, 0, 0));
}

void WidenOpenedList(HWND myCombo, int myMost)
{
    constexpr LONG Margins = 8;
    auto* const myFont = reinterpret_cast<HFONT>(SendMessageW(myCombo, WM_GETFONT, 0, 0));
    LONG myWidest = 0;
    for (LRESULT i = SendMessageW(myCombo, CB_GETCOUNT, 0, 0); i > 0; --i)
    {
        const std::wstring myEntry = WideText(EntryText(myCombo, ComboMessages, i - 1));
        myWidest = std::max(myWidest, TextSize(myFont, myEntry, 0, false).cx);
    }
    const LONG myNeed = myWidest + Margins + GetSystemMetricsForDpi(SM_CXVSCROLL, GetDpiForWindow(myCombo));
    SendMessageW(myCombo, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(std::min<LONG>(myNeed, myMost)), 0);
}

} // namespace qel
