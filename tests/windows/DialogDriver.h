/// A user who works in the windows of dialog_host, which runs in a process of its own.
#pragma once

#include "Environment.h"
#include "platform/windows/wideText.h"
#include "platform/windows/window/FormDialog.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qel
{

/// Nothing here depends on a pause: each step waits until the window that it needs is there, or fails after a minute.
class DialogDriver
{
public:
    /// Starts the host in a folder with a library; `myMode` is one of its words.
    explicit DialogDriver(const TemporaryFolder& theFolder, const std::string& myMode = "") : myFolder(theFolder)
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
        WindowSearch theSearch{myHost.dwProcessId, {}};
        EnumWindows(&WindowSearch::Take, reinterpret_cast<LPARAM>(&theSearch));
        return theSearch.Found;
    }

    /// The form, as soon as the user can work in it.
    HWND Form()
    {
        return WaitFor("Tesselwind", [](HWND w) { return GetDlgItem(w, FirstControlId) != nullptr; });
    }
    /// The message that shows.
    HWND Message()
    {
        return WaitFor("Tesselwind", [](HWND w) { return GetDlgItem(w, FirstControlId) == nullptr; });
    }
    /// The dialog for opening a file.
    HWND FileDialog(const std::string& myTitle)
    {
        return WaitFor(myTitle, [](HWND) { return true; });
    }

    /// A control of the form, or in a box of it.
    HWND Control(TextView myName)
    {
        const auto* const myLayout = std::ranges::find(MainFormControls, myName, &ControlLayout::Name);
        HWND const myParent = myLayout->Parent.empty() ? Form() : Control(myLayout->Parent);
        HWND const theControl = GetDlgItem(myParent, static_cast<int>(DialogId(*myLayout)));
        EXPECT_NE(theControl, nullptr) << ToUtf8(myName);
        return theControl;
    }

    /// Presses the left button of the mouse at a place in a window. What that does has been done before the next
    /// message that this process sends.
    static void ClickAt(HWND myWindow, int myLeft, int myTop)
    {
        const LPARAM myPlace = MAKELPARAM(myLeft, myTop);
        SendNotifyMessageW(myWindow, WM_LBUTTONDOWN, MK_LBUTTON, myPlace);
        SendNotifyMessageW(myWindow, WM_LBUTTONUP, 0, myPlace);
    }
    void Click(TextView myName)
    {
        HWND const myControl = Control(myName);
        EXPECT_NE(IsWindowVisible(myControl), 0) << ToUtf8(myName);
        EXPECT_NE(IsWindowEnabled(myControl), 0) << ToUtf8(myName);
        ClickAt(myControl, 5, 5);
    }

    /// Presses a key in the control that has the focus, and waits until it has been handled.
    void Key(WPARAM myKey, bool myWithAlt = false)
    {
        HWND const myForm = Form();
        GUITHREADINFO myThread = {};
        myThread.cbSize = sizeof(myThread);
        GetGUIThreadInfo(GetWindowThreadProcessId(myForm, nullptr), &myThread);
        PostMessageW(myThread.hwndFocus, myWithAlt ? WM_SYSKEYDOWN : WM_KEYDOWN, myKey, myWithAlt ? 0x20000001 : 1);
        PostMessageW(myThread.hwndFocus, myWithAlt ? WM_SYSKEYUP : WM_KEYUP, myKey,
                     static_cast<LPARAM>(myWithAlt ? 0xE0000001 : 0xC0000001));
        // The box has this width only after it has handled all messages that were posted before.
        HWND const myCombo = GetDlgItem(myForm, FirstControlId);
        myFence = 400 + (myFence + 1) % 100;
        PostMessageW(myCombo, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(myFence), 0);
        Until("a key is handled",
              [&] { return IsWindow(myCombo) == 0 || SendMessageW(myCombo, CB_GETDROPPEDWIDTH, 0, 0) == myFence; });
    }

    /// The name of the control with the focus.
    std::string Focus()
    {
        GUITHREADINFO myThread = {};
        myThread.cbSize = sizeof(myThread);
        GetGUIThreadInfo(GetWindowThreadProcessId(Form(), nullptr), &myThread);
        const auto myId = static_cast<UINT>(GetDlgCtrlID(myThread.hwndFocus));
        const auto* const myFound = std::ranges::find(MainFormControls, myId, &DialogId);
        return myFound == MainFormControls.end() ? "" : ToUtf8(myFound->Name);
    }

    void TabTo(TextView myName)
    {
        for (int i = 0; i < 20 && Focus() != ToUtf8(myName); ++i)
        {
            Key(VK_TAB);
        }
        EXPECT_EQ(Focus(), ToUtf8(myName));
    }

    /// The entries of a list or combo box, "|" between them.
    std::string Entries(TextView myName)
    {
        HWND const myControl = Control(myName);
        const bool myIsCombo = myName.starts_with(u"cmb");
        std::string theEntries;
        const LRESULT myCount = SendMessageW(myControl, myIsCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
        for (LRESULT i = 0; i < myCount; ++i)
        {
            theEntries += (i == 0 ? "" : "|") + Entry(myControl, myIsCombo, i);
        }
        return theEntries;
    }

    std::string Selected(TextView myName)
    {
        HWND const myControl = Control(myName);
        const bool myIsCombo = myName.starts_with(u"cmb");
        const LRESULT myIndex = SendMessageW(myControl, myIsCombo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0);
        return myIndex < 0 ? "" : Entry(myControl, myIsCombo, myIndex);
    }

    /// Selects an entry: in a combo box by the keys, in a list by the mouse.
    void Pick(TextView myName, const std::string& myEntry)
    {
        HWND const myControl = Control(myName);
        const bool myIsCombo = myName.starts_with(u"cmb");
        const LRESULT myCount = SendMessageW(myControl, myIsCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
        LRESULT myIndex = 0;
        while (myIndex < myCount && Entry(myControl, myIsCombo, myIndex) != myEntry)
        {
            ++myIndex;
        }
        if (myIsCombo)
        {
            SendNotifyMessageW(myControl, WM_KEYDOWN, VK_HOME, 1);
            for (LRESULT i = 0; i < myIndex; ++i)
            {
                SendNotifyMessageW(myControl, WM_KEYDOWN, VK_DOWN, 1);
            }
        }
        else
        {
            RECT myPlace = {};
            SendMessageW(myControl, LB_GETITEMRECT, static_cast<WPARAM>(myIndex), reinterpret_cast<LPARAM>(&myPlace));
            ClickAt(myControl, 5, (myPlace.top + myPlace.bottom) / 2);
        }
        EXPECT_EQ(Selected(myName), myEntry);
    }

    static std::string TextOf(HWND myWindow)
    {
        std::wstring theText(1000, L'\0');
        theText.resize(static_cast<size_t>(
            SendMessageW(myWindow, WM_GETTEXT, theText.size(), reinterpret_cast<LPARAM>(theText.data()))));
        return ToUtf8(TextOfWide(theText));
    }

    /// Answers a message, which has to say this and to have these buttons.
    void AnswerMessage(TextView myText, bool myIsQuestion = false, int myButton = IDOK)
    {
        HWND const myBox = Message();
        HWND const mySentence = GetDlgItem(myBox, 0xFFFF);
        EXPECT_EQ(TextOf(mySentence), ToUtf8(myText));
        EXPECT_NE(GetDlgItem(myBox, IDOK), nullptr);
        EXPECT_EQ(GetDlgItem(myBox, IDCANCEL) != nullptr, myIsQuestion);
        SendNotifyMessageW(GetDlgItem(myBox, myButton), BM_CLICK, 0, 0);
        Until("the message closes", [&] { return IsWindow(myBox) == 0; });
    }

    /// Types a file's name into the dialog for opening one; the empty name cancels.
    void ChooseFile(const std::string& myTitle, const std::string& myPath)
    {
        constexpr int NameBox = 0x047C;
        constexpr int NameLine = 0x0480;
        HWND const myDialog = FileDialog(myTitle);
        if (!myPath.empty())
        {
            HWND const myLine = GetDlgItem(myDialog, GetDlgItem(myDialog, NameLine) != nullptr ? NameLine : NameBox);
            const std::wstring myText = std::filesystem::path(myPath).make_preferred().wstring();
            SendMessageW(myLine, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(myText.c_str()));
        }
        SendNotifyMessageW(GetDlgItem(myDialog, myPath.empty() ? IDCANCEL : IDOK), BM_CLICK, 0, 0);
        Until("the file dialog closes", [&] { return IsWindow(myDialog) == 0; });
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
    struct WindowSearch
    {
        DWORD Process;
        std::vector<HWND> Found;

        static BOOL CALLBACK Take(HWND myWindow, LPARAM theSearch)
        {
            auto& theResult = *reinterpret_cast<WindowSearch*>(theSearch);
            DWORD myProcess = 0;
            GetWindowThreadProcessId(myWindow, &myProcess);
            if (myProcess == theResult.Process && IsWindowVisible(myWindow) != 0 && IsWindowEnabled(myWindow) != 0)
            {
                theResult.Found.push_back(myWindow);
            }
            return TRUE;
        }
    };

    static std::string Entry(HWND myControl, bool myIsCombo, LRESULT myIndex)
    {
        std::wstring theText(300, L'\0');
        const LRESULT myLength = SendMessageW(myControl, myIsCombo ? CB_GETLBTEXT : LB_GETTEXT,
                                              static_cast<WPARAM>(myIndex), reinterpret_cast<LPARAM>(theText.data()));
        return ToUtf8(TextOfWide(theText.substr(0, static_cast<size_t>(std::max<LRESULT>(myLength, 0)))));
    }

    HWND WaitFor(const std::string& myCaption, const std::function<bool(HWND)>& myTest)
    {
        HWND theWindow = nullptr;
        Until("a window shows: " + myCaption,
              [&]
              {
                  for (HWND const myWindow : Windows())
                  {
                      if (TextOf(myWindow) == myCaption && myTest(myWindow))
                      {
                          theWindow = myWindow;
                          return true;
                      }
                  }
                  return WaitForSingleObject(myHost.hProcess, 0) == WAIT_OBJECT_0
                             ? throw std::runtime_error("the host has ended: " + myFolder.Read("result.txt"))
                             : false;
              });
        return theWindow;
    }

    static constexpr DWORD LongestWait = 60000;
    static constexpr DWORD Pause = 10;
    const TemporaryFolder& myFolder;
    PROCESS_INFORMATION myHost = {};
    LRESULT myFence = 0;
};

} // namespace qel
