/// A user of the settings dialog, which dialog_host shows in a process of its own.
#pragma once

#include "Environment.h"
#include "platform/windows/wideText.h"
#include "platform/windows/window/entries.h"
#include "platform/windows/window/FormDialog.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <oleacc.h>
#include <string>
#include <vector>

namespace qel
{

namespace Keys
{
inline constexpr WPARAM Return = VK_RETURN, Escape = VK_ESCAPE, Space = VK_SPACE, Up = VK_UP, F1 = VK_F1;
} // namespace Keys

/// Nothing here depends on a pause: each step waits until the window that it needs is there, or fails after a minute.
class DialogDriver
{
public:
    /// Starts the host in a folder with a library; `myMode` is one of its words.
    DialogDriver(const TemporaryFolder& theFolder, const std::string& myMode) : myFolder(theFolder)
    {
        std::wstring myCommand =
            std::filesystem::path(std::string("\"" QEL_DIALOG_HOST "\" \"") + myFolder.Native() + "\" " + myMode)
                .wstring();
        STARTUPINFOW myStart = {};
        myStart.cb = sizeof(myStart);
        EXPECT_NE(
            CreateProcessW(nullptr, myCommand.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &myStart, &myHost),
            0);
    }
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;
    ~DialogDriver()
    {
        TerminateProcess(myHost.hProcess, 1); // does nothing with one that has ended
        CloseHandle(myHost.hThread);
        CloseHandle(myHost.hProcess);
    }

    /// What the host has seen, when it has ended.
    std::string Result()
    {
        EXPECT_EQ(WaitForSingleObject(myHost.hProcess, LongestWait), WAIT_OBJECT_0) << "a window is left open";
        return myFolder.Read("result.txt");
    }

    /// The visible windows of the host that a user can work in.
    std::vector<HWND> Windows() const
    {
        std::vector<HWND> theWindows;
        HWND myWindow = nullptr;
        while ((myWindow = FindWindowExW(nullptr, myWindow, nullptr, nullptr)) != nullptr)
        {
            DWORD myProcess = 0;
            GetWindowThreadProcessId(myWindow, &myProcess);
            if (myProcess == myHost.dwProcessId && IsWindowVisible(myWindow) != 0 && IsWindowEnabled(myWindow) != 0)
            {
                theWindows.push_back(myWindow);
            }
        }
        return theWindows;
    }

    /// The form, as soon as the user can work in it.
    HWND Form()
    {
        return WaitFor("Tesselwind", [](HWND w) { return GetDlgItem(w, FirstControlId) != nullptr; });
    }
    /// A control of the form, or in a box of it.
    HWND Control(const std::string& myName)
    {
        const auto* const myLayout = std::ranges::find(MainFormControls, FromUtf8(myName), &ControlLayout::Name);
        HWND const theControl = GetDlgItem(myLayout->Parent.empty() ? Form() : Control(ToUtf8(myLayout->Parent)),
                                           static_cast<int>(DialogId(*myLayout)));
        EXPECT_NE(theControl, nullptr) << myName;
        return theControl;
    }

    void Click(const char* myName)
    {
        EXPECT_TRUE(IsVisible(myName) && IsEnabled(myName)) << myName;
        ClickAt(Control(myName), 5, 5);
    }
    /// Clicks the check box of a date picker.
    void Switch(const char* myPicker)
    {
        ClickAt(ChildWindowFromPoint(Control(myPicker), {8, 10}), 5, 5); // not each system makes it a window of its own
    }
    void PressTool(int myButton) { ClickAt(Control("ToolbarPlay"), 24 * myButton - 18, 10); }
    void DoubleClick(const char* myList) { Notify(Control(myList), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(20, 5)); }
    /// Turns the wheel by one notch over a control.
    void TurnWheel(const char* myName)
    {
        constexpr WORD Down = 0x10000 - WHEEL_DELTA;
        Notify(Control(myName), WM_MOUSEWHEEL, MAKEWPARAM(0, Down), 0);
    }

    /// Presses a key in the control that has the focus, and waits until it has been handled.
    void Key(WPARAM myKey)
    {
        HWND const myFocus = FocusWindow();
        HWND const myCombo = Control("cmbImageFolder");
        PostMessageW(myFocus, WM_KEYDOWN, myKey, 1);
        PostMessageW(myFocus, WM_KEYUP, myKey, static_cast<LPARAM>(0xC0000001));
        // The box has this width only after it has handled all messages that were posted before.
        myFence = 400 + (myFence + 1) % 100;
        PostMessageW(myCombo, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(myFence), 0);
        Until("a key is handled",
              [&] { return IsWindow(myCombo) == 0 || SendMessageW(myCombo, CB_GETDROPPEDWIDTH, 0, 0) == myFence; });
    }
    /// Goes on to a control by the Tab key, which has to reach it soon enough.
    void TabTo(const char* myName, int myMost = 20)
    {
        for (int i = 0; i < myMost && Focus() != myName; ++i)
        {
            Key(VK_TAB);
        }
        EXPECT_EQ(Focus(), myName);
    }
    /// Goes from the check box of a picker to its day.
    void GoToDay(const char* myPicker) { TabTo(myPicker), Key(VK_RIGHT); }
    void GoToStopButton() { TabTo("ToolbarPlay"), Key(VK_RIGHT); }
    /// Picks an entry: in a combo box by the keys, in a list by the mouse.
    void Pick(const char* myName, const char* myEntry)
    {
        HWND const myControl = Control(myName);
        const std::wstring myText = WideText(FromUtf8(myEntry));
        const auto Find = [&](UINT myMessage)
        {
            return SendMessageW(myControl, myMessage, static_cast<WPARAM>(-1),
                                reinterpret_cast<LPARAM>(myText.c_str()));
        };
        if (*myName == 'l')
        {
            RECT myPlace = {};
            SendMessageW(myControl, LB_GETITEMRECT, static_cast<WPARAM>(Find(LB_FINDSTRINGEXACT)),
                         reinterpret_cast<LPARAM>(&myPlace));
            return ClickAt(myControl, 5, (myPlace.top + myPlace.bottom) / 2);
        }
        Notify(myControl, WM_KEYDOWN, VK_HOME, 1);
        for (LRESULT i = Find(CB_FINDSTRINGEXACT); i > 0; --i)
        {
            Notify(myControl, WM_KEYDOWN, VK_DOWN, 1);
        }
        EXPECT_EQ(TextOf(myName), myEntry);
    }
    void CloseWindow() { PostMessageW(Form(), WM_CLOSE, 0, 0); }

    bool IsVisible(const char* myName) { return IsWindowVisible(Control(myName)) != 0; }
    bool IsEnabled(const char* myName) { return IsWindowEnabled(Control(myName)) != 0; }
    std::string TextOf(const char* myName) { return TextOf(Control(myName)); }
    /// The name of the control with the focus; empty when there is none.
    std::string Focus()
    {
        const auto myId = static_cast<UINT>(GetDlgCtrlID(FocusWindow()));
        const auto* const myFound = std::ranges::find(MainFormControls, myId, &DialogId);
        return myFound == MainFormControls.end() ? "" : ToUtf8(myFound->Name);
    }
    /// What a screen reader says for a control.
    std::string SpokenName(const char* myName)
    {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        IAccessible* myDescription = nullptr;
        EXPECT_EQ(AccessibleObjectFromWindow(Control(myName), static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                             reinterpret_cast<void**>(&myDescription)),
                  S_OK);
        VARIANT mySelf = {};
        mySelf.vt = VT_I4;
        BSTR myText = nullptr;
        EXPECT_EQ(myDescription->get_accName(mySelf, &myText), S_OK) << myName;
        std::string theName = ToUtf8(TextOfWide(myText == nullptr ? L"" : myText));
        SysFreeString(myText);
        myDescription->Release();
        return theName;
    }
    /// The entries of a list or combo box, "|" between them.
    std::string Entries(const char* myName)
    {
        HWND const myControl = Control(myName);
        const EntryMessages& myMessages = *myName == 'c' ? ComboMessages : ListMessages;
        std::string theText;
        for (LRESULT i = 0; i < SendMessageW(myControl, myMessages.Count, 0, 0); ++i)
        {
            theText += (i == 0 ? "" : "|") + ToUtf8(EntryText(myControl, myMessages, i));
        }
        return theText;
    }
    std::string Selected(const char* myCombo) { return TextOf(myCombo); }
    std::string DayOf(const char* myPicker) { return TextOf(myPicker); }
    /// "LEFT,TOP WIDTHxHEIGHT" in a box or, if that is empty, in the form.
    std::string Place(const char* myName, const std::string& myParent)
    {
        POINT myOrigin = {0, 0};
        ClientToScreen(Form(), &myOrigin);
        RECT myPlace = {};
        if (!myParent.empty())
        {
            GetWindowRect(Control(myParent), &myPlace);
            myOrigin = {myPlace.left, myPlace.top};
        }
        GetWindowRect(Control(myName), &myPlace);
        OffsetRect(&myPlace, -myOrigin.x, -myOrigin.y);
        return std::to_string(myPlace.left) + "," + std::to_string(myPlace.top) + " " + SizeOf(myPlace);
    }
    std::string FormSize()
    {
        RECT myInside = {};
        GetClientRect(Form(), &myInside);
        return SizeOf(myInside);
    }
    /// Expects a colour, 0xRRGGBB, of a pixel of the preview on the screen, counted inside its border.
    void ExpectPreview(int myLeft, int myTop, uint32_t myColour)
    {
        POINT myPlace = {myLeft, myTop};
        ClientToScreen(Control("picPreview"), &myPlace);
        HDC const myScreen = GetDC(nullptr);
        Until("the preview shows a colour at " + std::to_string(myLeft) + "," + std::to_string(myTop),
              [&] { return _byteswap_ulong(GetPixel(myScreen, myPlace.x, myPlace.y)) >> 8U == myColour; });
        ReleaseDC(nullptr, myScreen);
    }

    /// Answers a message, which has to say this and to have these buttons.
    void AnswerMessage(TextView myText, bool myIsQuestion = false, bool myAgrees = true)
    {
        HWND const myBox = WaitFor("Tesselwind", [](HWND w) { return GetDlgItem(w, FirstControlId) == nullptr; });
        std::string myShown = TextOf(GetDlgItem(myBox, 0xFFFF));
        std::erase(myShown, '\r');
        EXPECT_EQ(myShown, ToUtf8(myText));
        EXPECT_EQ(GetDlgItem(myBox, IDCANCEL) != nullptr, myIsQuestion);
        SendNotifyMessageW(GetDlgItem(myBox, myAgrees ? IDOK : IDCANCEL), BM_CLICK, 0, 0);
        Until("the message closes", [&] { return IsWindow(myBox) == 0; });
    }
    /// Types a file's name into the dialog for opening one; the empty name cancels.
    void ChooseFile(const char* myTitle, const std::string& myPath)
    {
        HWND const myDialog = WaitFor(myTitle, [](HWND) { return true; });
        if (!myPath.empty())
        {
            HWND const myBox = GetDlgItem(myDialog, 0x047C); // one of these, by the edition of the dialog
            HWND const myLine = myBox != nullptr ? myBox : GetDlgItem(myDialog, 0x0480);
            const std::wstring myText = std::filesystem::path(myPath).make_preferred().wstring();
            SendMessageW(myLine, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(myText.c_str()));
        }
        SendNotifyMessageW(GetDlgItem(myDialog, myPath.empty() ? IDCANCEL : IDOK), BM_CLICK, 0, 0);
        Until("the file dialog closes", [&] { return IsWindow(myDialog) == 0; });
    }
    /// True when the help viewer has been called since the last call.
    bool HelpWasAsked()
    {
        const bool theAnswer = myFolder.Read("calls.txt").find("help ") != std::string::npos;
        std::filesystem::remove(myFolder / "calls.txt");
        return theAnswer;
    }

    static std::string TextOf(HWND myWindow)
    {
        std::wstring theText(1000, L'\0');
        theText.resize(static_cast<size_t>(
            SendMessageW(myWindow, WM_GETTEXT, theText.size(), reinterpret_cast<LPARAM>(theText.data()))));
        return ToUtf8(TextOfWide(theText));
    }

    void Until(const std::string& myPurpose, const std::function<bool()>& myCondition) const
    {
        for (DWORD i = 0; i < LongestWait / Pause; ++i)
        {
            if (myCondition())
            {
                return;
            }
            Sleep(Pause);
        }
        throw std::runtime_error("waited in vain until " + myPurpose);
    }

    DWORD Thread() const { return myHost.dwThreadId; }

private:
    /// Sends what the mouse or a key does, and returns when it has been done or has opened another window.
    void Notify(HWND myWindow, UINT myMessage, WPARAM myFirst, LPARAM mySecond) const
    {
        SendNotifyMessageW(myWindow, myMessage, myFirst, mySecond);
        SendMessageW(myWindow, WM_NULL, 0, 0);
    }
    void ClickAt(HWND myWindow, int myLeft, int myTop) const
    {
        Notify(myWindow, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(myLeft, myTop));
        Notify(myWindow, WM_LBUTTONUP, 0, MAKELPARAM(myLeft, myTop));
    }
    HWND FocusWindow()
    {
        HWND const myForm = Form();
        GUITHREADINFO myThread = {};
        myThread.cbSize = sizeof(myThread);
        Until("the form has the focus",
              [&]
              {
                  GetGUIThreadInfo(GetWindowThreadProcessId(myForm, nullptr), &myThread);
                  if (myThread.hwndFocus == nullptr)
                  {
                      SetForegroundWindow(myForm); // there is no window manager that would
                  }
                  return myThread.hwndFocus != nullptr;
              });
        return myThread.hwndFocus;
    }
    static std::string SizeOf(const RECT& myPlace)
    {
        return std::to_string(myPlace.right - myPlace.left) + "x" + std::to_string(myPlace.bottom - myPlace.top);
    }

    HWND WaitFor(const std::string& myCaption, const std::function<bool(HWND)>& myTest)
    {
        HWND theWindow = nullptr;
        const auto Find = [&]
        {
            const std::vector<HWND> myWindows = Windows();
            const auto myFound =
                std::ranges::find_if(myWindows, [&](HWND w) { return TextOf(w) == myCaption && myTest(w); });
            theWindow = myFound == myWindows.end() ? nullptr : *myFound;
            const bool myHostHasEnded = WaitForSingleObject(myHost.hProcess, 0) == WAIT_OBJECT_0;
            return myHostHasEnded ? throw std::runtime_error("the host has ended: " + myFolder.Read("result.txt"))
                                  : theWindow != nullptr;
        };
        Until("a window shows: " + myCaption, Find);
        return theWindow;
    }

    static constexpr DWORD LongestWait = 60000;
    static constexpr DWORD Pause = 10;
    const TemporaryFolder& myFolder;
    PROCESS_INFORMATION myHost = {};
    LRESULT myFence = 0;
};

/// Puts the component into a folder.
inline void PlaceComponent(const TemporaryFolder& theFolder, Environment& /*theEnvironment*/)
{
    std::filesystem::copy_file(QEL_STAGE "/QelPluginAnimation.dll", theFolder / "QelPluginAnimation.dll");
}

/// Runs a host that opens the dialog for a user; the modes are those of dialog_host.
inline std::string RunDialog(const TemporaryFolder& theFolder, const std::string& myScript,
                             const std::function<void(DialogDriver&)>& myUser, const std::string& myMode)
{
    theFolder.Write("script.txt", myScript);
    DialogDriver theDriver(theFolder, myMode);
    if (myUser)
    {
        myUser(theDriver);
    }
    return theDriver.Result();
}

} // namespace qel
