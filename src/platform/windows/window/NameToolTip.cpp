#include "platform/windows/window/NameToolTip.h"

#include "platform/windows/wideText.h"
#include "platform/windows/window/entries.h"

namespace qel
{
namespace
{

/// The space that a box leaves free on both sides of an entry.
constexpr LONG Margins = 4;

/// An entry, and where the box shows it.
struct ShownEntry
{
    LRESULT Index = -1; ///< -1: none
    RECT Place = {};
    const EntryMessages& Messages;
};

ShownEntry EntryAt(HWND myBox, LPARAM myPoint)
{
    COMBOBOXINFO myInfo = {};
    myInfo.cbSize = sizeof(myInfo);
    if (GetComboBoxInfo(myBox, &myInfo) != 0)
    {
        return {SendMessageW(myBox, CB_GETCURSEL, 0, 0), myInfo.rcItem, ComboMessages};
    }
    ShownEntry theEntry{.Messages = ListMessages};
    const LRESULT myNearest = SendMessageW(myBox, LB_ITEMFROMPOINT, 0, myPoint);
    if (HIWORD(myNearest) == 0 &&
        SendMessageW(myBox, LB_GETITEMRECT, LOWORD(myNearest), reinterpret_cast<LPARAM>(&theEntry.Place)) != LB_ERR)
    {
        theEntry.Index = LOWORD(myNearest);
    }
    return theEntry;
}

} // namespace

void NameToolTip::Take(HFONT myFormFont, int myWidth)
{
    myFont = myFormFont;
    myLargestWidth = myWidth;
    if (myTip != nullptr)
    {
        SendMessageW(myTip, WM_SETFONT, reinterpret_cast<WPARAM>(myFont), FALSE);
        SendMessageW(myTip, TTM_SETMAXTIPWIDTH, 0, myLargestWidth);
    }
}

void NameToolTip::MakeTip(HWND myForm)
{
    myTip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0,
                            0, myForm, nullptr, nullptr, nullptr);
    Take(myFont, myLargestWidth);
}

void NameToolTip::Follow(MSG myMessage)
{
    if (myTip == nullptr)
    {
        MakeTip(GetParent(myMessage.hwnd));
    }
    const ShownEntry myShown = EntryAt(myMessage.hwnd, myMessage.lParam);
    std::wstring myShownName = WideText(EntryText(myMessage.hwnd, myShown.Messages, myShown.Index));
    if (myMessage.hwnd != myBox || myShown.Index != myEntry || myShownName != myName)
    {
        TTTOOLINFOW myTool = {};
        myTool.cbSize = TTTOOLINFOW_V1_SIZE;
        myTool.hwnd = myBox;
        SendMessageW(myTip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&myTool));
        myBox = myMessage.hwnd;
        myEntry = myShown.Index;
        myName = std::move(myShownName);
        if (TextSize(myFont, myName, 0, false).cx + Margins > myShown.Place.right - myShown.Place.left)
        {
            myTool.hwnd = myBox;
            myTool.rect = myShown.Place;
            myTool.lpszText = myName.data();
            SendMessageW(myTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&myTool));
        }
    }
    SendMessageW(myTip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&myMessage));
}

} // namespace qel
