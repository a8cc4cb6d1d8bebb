/// The host's window for links: the module as it is built, and a user who works in its window from another thread.
#include "common/SharedLibrary.h"
#include "platform/windows/wideText.h"
#include "platform/windows/window/controlHeaders.h"
#include "text/encodings.h"
#include "window/linkWindowModule.h"

#include <gtest/gtest.h>
#include <thread>

namespace qel::host
{
namespace
{

constexpr int Records = 101;
constexpr int Address = 103;

HWND Control(int myId)
{
    return GetDlgItem(FindWindowW(nullptr, L"Choose a link"), myId);
}

/// What the window shows: the control with the focus, the selected row, whether it can be confirmed, and the address.
std::string Shown()
{
    GUITHREADINFO myThread = {};
    myThread.cbSize = sizeof(myThread);
    GetGUIThreadInfo(GetWindowThreadProcessId(Control(Records), nullptr), &myThread);
    wchar_t myText[100] = {};
    GetWindowTextW(Control(Address), myText, 100);
    const int myRow = ListView_GetNextItem(Control(Records), -1, LVNI_SELECTED);
    return std::to_string(GetDlgCtrlID(myThread.hwndFocus)) + " " + std::to_string(myRow) +
           (IsWindowEnabled(Control(IDOK)) != 0 ? " OK " : " no ") + ToUtf8(TextOfWide(myText));
}

/// Nothing here depends on a pause: the user waits for what comes of each step, at most a minute.
void ExpectShown(const std::string& myExpected)
{
    for (int i = 0; i < 6000 && Shown() != myExpected; ++i)
    {
        Sleep(10);
    }
    EXPECT_EQ(Shown(), myExpected);
}

/// What the window has to show, and the message that is sent to a control then.
struct Step
{
    std::string Shown;
    int Control;
    UINT Message;
    WPARAM Key;
};

/// Opens the window on a present link. Expects a link of it, or "cancelled".
void Choose(TextView myPresentLink, const std::string& myResult, const std::vector<Step>& mySteps)
{
    const SharedLibrary myModule(QEL_STAGE "/qelhostWindow.dll");
    LinkChoice theChoice = OfferedLinks(
        {{1, RecordKind::Page, "Uno", "a.html", "", ""}, {2, RecordKind::File, "Dos", "", "", "b.pdf"}}, myPresentLink);
    std::thread myUser(
        [&]
        {
            for (const Step& myStep : mySteps)
            {
                ExpectShown(myStep.Shown);
                PostMessageW(Control(myStep.Control), myStep.Message, myStep.Key, 0x20000001); // with Alt
            }
        });
    Error theFailure{};
    const LinkWindowEnd theEnd = myModule.Find<LinkWindowEntry*>(LinkWindowEntryName)(theChoice, theFailure);
    myUser.join();
    EXPECT_EQ(theEnd == LinkWindowEnd::Confirmed ? ToUtf8(LinkOf(theChoice)) : "cancelled", myResult);
}

TEST(LinkWindow, Choice_IsTheRecordOrAddressChosenLast)
{
    Choose(u"URL:http://x/", "UID:2",
           {{"103 -1 OK http://x/", Address, WM_SYSCHAR, 'r'},
            {"101 -1 OK http://x/", Records, WM_KEYDOWN, VK_DOWN},
            {"101 0 OK ", Records, WM_KEYDOWN, VK_DOWN},
            {"101 1 OK ", IDOK, BM_CLICK, 0}});
    Choose(u"UID:1", "URL:&#38;",
           {{"101 0 OK ", Records, WM_SYSCHAR, 'a'},
            {"103 0 OK ", Address, WM_CHAR, ' '},
            {"103 -1 no  ", Address, WM_CHAR, '&'},
            {"103 -1 OK  &", Address, WM_KEYDOWN, VK_RETURN}});
    Choose(u"UID:99", "cancelled",
           {{"101 -1 no ", Records, WM_KEYDOWN, VK_RETURN},
            {"101 -1 no ", Records, WM_KEYDOWN, VK_DOWN},
            {"101 0 OK ", Records, WM_KEYDOWN, VK_ESCAPE}});
}

TEST(LinkWindow, ScaleChange_TakesTheSuggestedPlace)
{
    constexpr WORD NewDpi = 192;
    LinkChoice theChoice;
    RECT thePlace = {};
    const RECT mySuggested = {10, 20, 910, 720};
    std::thread myUser(
        [&]
        {
            ExpectShown("103 -1 no ");
            HWND const myWindow = GetParent(Control(Address));
            SendMessageW(myWindow, WM_DPICHANGED, MAKEWPARAM(NewDpi, NewDpi), reinterpret_cast<LPARAM>(&mySuggested));
            GetWindowRect(myWindow, &thePlace);
            PostMessageW(myWindow, WM_CLOSE, 0, 0);
        });
    Error theFailure{};
    const SharedLibrary myModule(QEL_STAGE "/qelhostWindow.dll");
    myModule.Find<LinkWindowEntry*>(LinkWindowEntryName)(theChoice, theFailure);
    myUser.join();
    EXPECT_TRUE(EqualRect(&thePlace, &mySuggested));
}

} // namespace
} // namespace qel::host
