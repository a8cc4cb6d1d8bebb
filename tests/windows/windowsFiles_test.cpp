/// What Windows alone has: share modes, attributes, streams, names that only "\\?\" reaches, paths to servers, and the
/// services of the system that the other ports use.
#include "archive/classArchive.h"
#include "Environment.h"
#include "FilesTest.h"
#include "platform/codePage.h"
#include "platform/windows/componentFile.h"
#include "platform/windows/FolderReader.h"
#include "platform/windows/Handle.h"
#include "platform/windows/localeGrouping.h"
#include "platform/windows/nativePath.h"
#include "platform/windows/wideText.h"
#include "platform/windows/WindowsHelpViewer.h"
#include "Redirection.h"
#include "text/encodings.h"

#include <map>
#include <thread>
#include <tuple>

namespace qel
{
namespace
{

using namespace ErrorNumber;
using namespace std::string_literals;
namespace fs = std::filesystem;

class WindowsFilesTest : public FilesTest
{
protected:
    /// Opens a file as another program would that shares it with all; not open if the system refuses.
    Handle Open(TextView myName, DWORD myAccess) const
    {
        constexpr DWORD AllSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        return Handle(CreateFileW(NativePath(In(myName)).c_str(), myAccess, AllSharing, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    void Attributes(TextView myName, DWORD myAttributes) const
    {
        EXPECT_TRUE(SetFileAttributesW(NativePath(In(myName)).c_str(), myAttributes));
    }
};

TEST(NativePath, Normalised_ByOurOwnRulesFromTheCurrentFolder)
{
    const Text myFolder = fs::current_path().u16string();
    const Text myDrive = myFolder.substr(0, 2);
    const Text myPlace = u"\\\\?\\" + myFolder;
    const std::pair<Text, Text> myCases[] = {
        {u"C:\\a\\.\\b\\..\\c/d\\\\e\\", u"\\\\?\\C:\\a\\c\\d\\e"},
        {u"c:/../../a", u"\\\\?\\c:\\a"},
        {u"C:\\a\\..\\", u"\\\\?\\C:\\"},
        {u"C:\\NUL.gif", u"\\\\?\\C:\\NUL.gif"},
        {u"C:\\a. \\...\\ b", u"\\\\?\\C:\\a. \\...\\ b"},
        {u"\\\\server\\share\\a\\..\\..\\b", u"\\\\?\\UNC\\server\\share\\b"},
        {u"//server/share", u"\\\\?\\UNC\\server\\share\\"},
        {u"\\\\?\\C:\\a\\.\\b", u"\\\\?\\C:\\a\\b"},
        {u"//?/unc/server/share/a", u"\\\\?\\UNC\\server\\share\\a"},
        {u"\\\\?\\Volume{01}\\a", u"\\\\?\\Volume{01}\\a"},
        {u"x\\..\\y", myPlace + u"\\y"},
        {u".", myPlace},
        {u"/x", u"\\\\?\\" + myDrive + u"\\x"},
        {myDrive + u"x", myPlace + u"\\x"},
    };
    for (const auto& [myPath, myNativePath] : myCases)
    {
        EXPECT_EQ(TextOfWide(NativePath(myPath)), myNativePath);
    }
}

TEST(NativePath, NameThatNoFileCanHave)
{
    for (const TextView myPath :
         {u"C:\\a:b", u"C:\\a\\C:\\b", u"1:\\a", u"C:\\a*", u"C:\\a?\\b", u"C:\\a\tb", u"C:\\\"a\"", u"C:\\<a>",
          u"C:\\a|b", u"\\\\.\\C:\\a", u"\\\\server", u"\\\\?\\", u"\\\\?\\pipe\\a", u"\\\\?\\C:a", u"\\\\?\\..\\C:\\a",
          u"\\\\..\\share\\a", u"\\\\server\\..\\a", u"\\\\?\\UNC\\.\\share\\a"})
    {
        EXPECT_EQ(ErrorOf([&] { NativePath(myPath); }), BadFileName) << testing::PrintToString(myPath);
    }
}

TEST(PathInFolder, OneSeparatorAlsoAfterARoot)
{
    EXPECT_EQ(PathInFolder(L"\\\\?\\C:\\", L"a"), L"\\\\?\\C:\\a");
    EXPECT_EQ(PathInFolder(L"\\\\?\\C:\\a", L"b"), L"\\\\?\\C:\\a\\b");
}

TEST(PlainPath, WithoutWhatTheSystemPutsInFront)
{
    EXPECT_EQ(PlainPath(L"\\\\?\\C:\\a"), L"C:\\a");
    EXPECT_EQ(PlainPath(L"\\\\?\\UNC\\server\\share\\a"), L"\\\\server\\share\\a");
    EXPECT_EQ(PlainPath(L"\\\\?\\Volume{01}\\a"), L"\\\\?\\Volume{01}\\a");
    EXPECT_EQ(PlainPath(L"C:\\a"), L"C:\\a");
}

TEST(KindOf, LinkIsWhatStandsForAnotherName)
{
    constexpr DWORD Folder = FILE_ATTRIBUTE_DIRECTORY;
    constexpr DWORD Reparse = FILE_ATTRIBUTE_REPARSE_POINT;
    const std::tuple<DWORD, DWORD, EntryKind> myCases[] = {
        {Folder | Reparse, IO_REPARSE_TAG_MOUNT_POINT, EntryKind::Link}, // a junction
        {Reparse, IO_REPARSE_TAG_SYMLINK, EntryKind::Link},
        {Reparse, 0, EntryKind::Link},                       // unknown
        {Reparse, IO_REPARSE_TAG_WOF, EntryKind::File},      // compressed
        {Folder | Reparse, 0x9000001A, EntryKind::Folder},   // stored elsewhere
        {Folder, IO_REPARSE_TAG_SYMLINK, EntryKind::Folder}, // no tag without the attribute
    };
    for (const auto& [myAttributes, myTag, myKind] : myCases)
    {
        WIN32_FIND_DATAW myEntry = {};
        myEntry.dwFileAttributes = myAttributes;
        myEntry.dwReserved0 = myTag;
        EXPECT_EQ(KindOf(myEntry), myKind) << myAttributes << " " << myTag;
    }
}

TEST_F(WindowsFilesTest, Open_ShareModesAreTheLocks)
{
    myFolder.Write("a", "content");
    {
        const Handle myReader = Open(u"a", GENERIC_READ);
        EXPECT_EQ(Try(&Files::OpenForReading, u"a"), PermissionDenied);
        EXPECT_EQ(Try(&Files::OpenShared, u"a"), 0);
    }
    {
        const Handle myWriter = Open(u"a", GENERIC_WRITE);
        EXPECT_EQ(Try(&Files::OpenShared, u"a"), PermissionDenied);
        EXPECT_EQ(Try(&Files::Copy, u"a", u"b"), PermissionDenied);
    }
    auto myFile = myFiles.OpenShared(In(u"a"));
    EXPECT_TRUE(Open(u"a", GENERIC_READ).IsOpen());
    EXPECT_FALSE(Open(u"a", GENERIC_WRITE).IsOpen());
    EXPECT_EQ(Try(&Files::Delete, u"a"), PermissionDenied);
    myFile.reset();
    myFile = myFiles.OpenForReading(In(u"a"));
    EXPECT_FALSE(Open(u"a", GENERIC_READ).IsOpen());
}

TEST_F(WindowsFilesTest, Write_ReachesTheFileThatTheSystemMeans)
{
    myFolder.Write("Logo.GIF", "a longer content");
    WriteAll(u"LOGO.gif", "new");
    EXPECT_EQ(List(u"*", Listing::PlainFiles), (std::vector<Text>{u"Logo.GIF"}));
    EXPECT_EQ(ReadAll(u"logo.gif"), "new");
    EXPECT_EQ(Try(&Files::LookExactly, u"logo.gif"), 0);
    EXPECT_EQ(Try(&Files::Copy, u"logo.gif", u"LOGO.GIF"), PermissionDenied);
    EXPECT_TRUE(myFiles.Delete(In(u"logo.GIF")));
    EXPECT_FALSE(myFolder.Exists("Logo.GIF"));
}

TEST_F(WindowsFilesTest, Copy_TakesTheContentAlone)
{
    for (const DWORD mySourceAttributes : {FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM})
    {
        myFolder.Write("source", "content");
        Attributes(u"source", mySourceAttributes);
        EXPECT_EQ(Try(&Files::Copy, u"source", u"copy"), 0);
        EXPECT_EQ(List(u"c*", Listing::PlainFiles), (std::vector<Text>{u"copy"})) << mySourceAttributes;
        EXPECT_EQ(myFolder.Read("copy"), "content");
        EXPECT_TRUE(myFiles.Delete(In(u"copy"))) << mySourceAttributes;
        Attributes(u"source", FILE_ATTRIBUTE_NORMAL);
    }
    myFolder.Write("target", "a longer content");
    Attributes(u"target", FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(Try(&Files::Copy, u"source", u"target"), 0);
    EXPECT_EQ(myFolder.Read("target"), "content");
}

TEST_F(WindowsFilesTest, List_HiddenByAttributesAndNotByADot_WithoutShortNames)
{
    for (const char* const myName : {".dot", "hidden", "system", "Folder/x", "Hidden folder/a long name.html"})
    {
        myFolder.Write(myName, "");
    }
    Attributes(u"hidden", FILE_ATTRIBUTE_HIDDEN);
    Attributes(u"system", FILE_ATTRIBUTE_SYSTEM);
    Attributes(u"Hidden folder", FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(List(u"*", Listing::FilesAndFolders), (std::vector<Text>{u".", u"..", u".dot", u"Folder"}));
    EXPECT_EQ(List(u"Hidden folder\\*l", Listing::PlainFiles), (std::vector<Text>{u"a long name.html"}));
    EXPECT_EQ(List(u"Hidden folder\\*.htm", Listing::PlainFiles), std::vector<Text>());
    EXPECT_EQ(List(u"Hidden folder\\*~*", Listing::PlainFiles), std::vector<Text>());
    EXPECT_EQ(List(u"a:b\\*", Listing::FilesAndFolders), std::vector<Text>()) << "no folder has such a name";
}

TEST_F(WindowsFilesTest, Delete_ReadOnlyFile_IsRefused)
{
    myFolder.Write("kept", "");
    Attributes(u"kept", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Try(&Files::Delete, u"kept"), PermissionDenied);
}

TEST_F(WindowsFilesTest, Stream_LeavesTheFolderOfAnArchive)
{
    classArchive myArchive(myFiles);
    myArchive.BaseFolder(In(u"base"));
    myArchive.ArchiveFilename(In(u"x.dat"));
    for (const std::string& myName : {"\\a.gif:b"s, "\\a.gif::$DATA"s, "\\sub:b\\a"s, "\\:b"s})
    {
        const std::string myLength{static_cast<char>(myName.size()), 0, 0, 0};
        myFolder.Write("x.dat", "qelarchive1.0" + myLength + myName + std::string(8, '\0'));
        EXPECT_FALSE(myArchive.UnPackArchive()) << myName;
        EXPECT_EQ(myArchive.FailureNumber(), BadFileName) << myName;
        EXPECT_EQ(List(u"base\\*", Listing::PlainFiles), std::vector<Text>()) << myName;
    }
}

TEST_F(WindowsFilesTest, Name_ThatOtherProgramsReadDifferently)
{
    Text myDeep;
    for (int i = 0; i < 8; ++i)
    {
        myDeep += Text(i == 0 ? u"" : u"\\") + Text(50, u'd');
        EXPECT_EQ(Try(&Files::MakeFolder, myDeep), 0);
    }
    for (const Text& myName : {Text(u"NUL.gif"), Text(u"con"), Text(u"dot."), Text(u"blank "), myDeep + u"\\file"})
    {
        SCOPED_TRACE(ToUtf8(myName));
        WriteAll(myName, "content");
        EXPECT_EQ(myFiles.Look(In(myName)).Length, 7);
        EXPECT_EQ(List(myName, Listing::PlainFiles), std::vector<Text>{myName.substr(myName.rfind(u'\\') + 1)});
        EXPECT_TRUE(myFiles.Delete(In(myName)));
        EXPECT_FALSE(myFiles.Delete(In(myName)));
    }
}

TEST_F(WindowsFilesTest, DemandOwnFolder_RefusesTheFolderOfAnotherOwner)
{
    // The root of the system's drive belongs to the system; below Wine a folder is given away.
    Text myOthers = u"C:\\Windows";
    if (const std::wstring myUnixName = UnixName(myFolder.Native()); !myUnixName.empty())
    {
        myFolder.MakeFolder("others");
        myOthers = In(u"others");
        StartUnixProgram(L"/bin/sh",
                         L"-c \"cd '" + myUnixName + L"' && { chown 65534 others && touch given; touch tried; }\"");
        WaitUntil(true, myFolder / "tried");
        if (!myFolder.Exists("given"))
        {
            GTEST_SKIP() << "giving a folder away needs the rights of root";
        }
    }
    EXPECT_EQ(ErrorOf([&] { myFiles.DemandOwnFolder(myOthers); }), PathAccess);
    EXPECT_EQ(ErrorOf([&] { myFiles.DemandOwnFolder(In(u"")); }), 0);
}

TEST_F(WindowsFilesTest, TemporaryPath_IsTheSystemsUnlessTooLong)
{
    Environment myEnvironment{{"TMP", myFolder.Native()}};
    EXPECT_EQ(myFiles.TemporaryPath(), In(u""));
    const std::string myLongest = "C:\\" + std::string(249, 'x'); // with "\" at its end 253
    myEnvironment.Set("TMP", myLongest);
    EXPECT_EQ(myFiles.TemporaryPath(), FromUtf8(myLongest + "\\"));
    myEnvironment.Set("TMP", myLongest + "x");
    EXPECT_EQ(myFiles.TemporaryPath(), u"");
    myFolder.Write("日本/x", "");
    myEnvironment.Set("TMP", myFolder.Native("日本"));
    const Text myPath = myFiles.TemporaryPath();
    EXPECT_TRUE(ToAnsi(myPath)) << "short names where the code page lacks a character: " << ToUtf8(myPath);
    EXPECT_EQ(myFiles.List(myPath + u"*", Listing::PlainFiles), (std::vector<Text>{u"x"})) << ToUtf8(myPath);
}

/// A character of each code page, and its bytes. The program runs in a Western and in a Japanese one.
const std::map<UINT, std::pair<TextView, std::string>> CodePageCharacters = {
    {1252, {u"ñ", "\xF1"}}, {932, {u"日", "\x93\xFA"}}, {CP_UTF8, {u"ñ", "\xC3\xB1"}}};

class CodePageTest : public FilesTest
{
protected:
    void SetUp() override
    {
        if (const char* const myExpected = std::getenv("QEL_EXPECTED_CODE_PAGE"))
        {
            ASSERT_EQ(std::to_string(GetACP()), myExpected);
        }
        if (!CodePageCharacters.contains(GetACP()))
        {
            GTEST_SKIP() << "no character of the code page " << GetACP() << " is known here";
        }
        std::tie(myCharacter, myBytes) = CodePageCharacters.at(GetACP());
    }

    TextView myCharacter;
    std::string myBytes;
};

TEST_F(CodePageTest, ToAnsi_HoldsACharacterExactlyOrNotAtAll)
{
    EXPECT_EQ(ToAnsi(myCharacter), myBytes);
    EXPECT_EQ(FromAnsi(myBytes), myCharacter);
    EXPECT_EQ(ToAnsi(u""), "");
    EXPECT_EQ(ToAnsi(u"\xD800"), std::nullopt);
    for (const TextView myOther : {u"Ā", u"𝐀", u"한"}) // similar to "A", or far from both code pages
    {
        EXPECT_EQ(ToAnsi(myOther).has_value(), GetACP() == CP_UTF8) << ToUtf8(myOther);
    }
}

TEST_F(CodePageTest, Archive_NameLengthCountsTheBytesOfTheCodePage)
{
    const std::string myLength{static_cast<char>(1 + myBytes.size()), 0, 0, 0};
    myFolder.Write("x.dat", "qelarchive1.0" + myLength + "\\" + myBytes + std::string(8, '\0'));
    classArchive myArchive(myFiles);
    myArchive.ArchiveFilename(In(u"x.dat"));
    myArchive.BaseFolder(In(u"base"));
    EXPECT_TRUE(myArchive.UnPackArchive());
    EXPECT_EQ(List(u"base\\*", Listing::PlainFiles), std::vector<Text>{Text(myCharacter)});
}

TEST_F(WindowsFilesTest, Version_OfAContentThatHasSettled)
{
    myFolder.Write("fresh", "");
    EXPECT_EQ(myFiles.OpenShared(In(u"fresh"))->Version(), std::nullopt);
    const Text myData = PathOfUtf8(QEL_TEST_DATA "/").u16string();
    const auto myVersion = myFiles.OpenShared(myData + u"form.csv")->Version();
    EXPECT_NE(myVersion, std::nullopt);
    EXPECT_EQ(myFiles.OpenShared(myData + u"FORM.csv")->Version(), myVersion);
    EXPECT_NE(myFiles.OpenShared(myData + u"pictures\\plain.gif")->Version(), myVersion);
}

TEST(Locale, GroupingAsTheSystemWritesIt)
{
    const std::tuple<TextView, int64_t, TextView> myCases[] = {
        {u"3;0", 1234567, u"1.234.567"}, {u"3;2;0", 123456789, u"12.34.56.789"},
        {u"3", 1234567, u"1234.567"},    {u"0;0", 1234567, u"1234567"},
        {u"0", 1234567, u"1234567"},     {u"", 1234567, u"1234567"}};
    for (const auto& [mySizes, myNumber, myText] : myCases)
    {
        EXPECT_EQ(ToUtf8(GroupedNumberText(myNumber, GroupingOfSizes(u".", mySizes))), ToUtf8(myText))
            << ToUtf8(mySizes);
    }
}

TEST_F(WindowsFilesTest, ComponentFolder_IsRealAndPlain)
{
    const fs::path myProgram = NativeComponentFile();
    EXPECT_EQ(myPlatform->ComponentFile(), myProgram);
    EXPECT_TRUE(fs::equivalent(myPlatform->Ports().componentFolder, myProgram.parent_path()));
    EXPECT_FALSE(myPlatform->Ports().componentFolder.starts_with(u"\\\\?\\"));
    EXPECT_EQ(RealFolderOf(L"C:\\none.dll"), L"C:\\");
    EXPECT_EQ(RealFolderOf(L"\\\\server\\share\\none.dll"), L"\\\\server\\share");
}

/// A window that counts what reaches it.
class MessagesTest : public testing::Test
{
protected:
    MessagesTest()
    {
        for (HWND const myParent : {HWND{}, HWND_MESSAGE}) // without a display only the second one makes a window
        {
            myWindow = myWindow != nullptr ? myWindow
                                           : CreateWindowExW(0, L"STATIC", nullptr, WS_POPUP | WS_VISIBLE, 0, 0, 10, 10,
                                                             myParent, nullptr, nullptr, nullptr);
        }
        SetWindowLongPtrW(myWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrW(myWindow, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Receive));
    }
    ~MessagesTest() override { DestroyWindow(myWindow); }

    static LRESULT CALLBACK Receive(HWND myReceiver, UINT myMessage, WPARAM myWord, LPARAM myLong)
    {
        auto* const theTest = reinterpret_cast<MessagesTest*>(GetWindowLongPtrW(myReceiver, GWLP_USERDATA));
        theTest->Last = myMessage;
        ++theTest->Count;
        if (theTest->Reposts && theTest->Count < LastRepost)
        {
            PostMessageW(myReceiver, myMessage, 0, 0);
        }
        return DefWindowProcW(myReceiver, myMessage, myWord, myLong);
    }

    /// Lets messages be processed until one of a kind has come.
    bool Comes(UINT myMessage)
    {
        for (int i = 0; i < 1000 && Last != myMessage; ++i)
        {
            myMessages.ProcessPending();
            Sleep(Last == myMessage ? 0 : 10);
        }
        return Last == myMessage;
    }

    const std::unique_ptr<SystemPlatform> myPlatform = MakeSystemPlatform();
    MessageQueue& myMessages = myPlatform->Ports().messages;
    HWND myWindow = nullptr;
    static constexpr int LastRepost = 1000000; ///< so many take far longer than one moment of the system's clock
    UINT Last = 0;
    int Count = 0;
    bool Reposts = false; ///< each message posts itself once more
};

TEST_F(MessagesTest, ProcessPending_AllThatAreThereButTheRequestToQuit)
{
    for (int i = 0; i < 3; ++i)
    {
        PostMessageW(myWindow, WM_APP, 0, 0);
    }
    PostQuitMessage(7);
    myMessages.ProcessPending();
    EXPECT_EQ(Count, 3);
    myMessages.ProcessPending();
    EXPECT_EQ(Count, 3);
    MSG myMessage = {};
    EXPECT_TRUE(PeekMessageW(&myMessage, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(myMessage.message, UINT{WM_QUIT});
    EXPECT_EQ(myMessage.wParam, WPARAM{7});
}

TEST_F(MessagesTest, ProcessPending_TimersAndMessagesOfOtherThreads)
{
    SetTimer(myWindow, 1, 10, nullptr);
    EXPECT_TRUE(Comes(WM_TIMER));
    KillTimer(myWindow, 1);
    std::thread mySender([this] { SendMessageW(myWindow, WM_APP + 1, 0, 0); });
    EXPECT_TRUE(Comes(WM_APP + 1));
    mySender.join();
}

TEST_F(MessagesTest, ProcessPending_Painting)
{
    if (!IsWindowVisible(myWindow))
    {
        GTEST_SKIP() << "a window that is painted needs a display";
    }
    InvalidateRect(myWindow, nullptr, FALSE);
    EXPECT_TRUE(Comes(WM_PAINT));
}

TEST_F(MessagesTest, ProcessPending_EndsThoughAWindowNeverStopsPosting)
{
    Reposts = true;
    PostMessageW(myWindow, WM_APP, 0, 0);
    myMessages.ProcessPending();
    EXPECT_GT(Count, 0);
    EXPECT_LT(Count, LastRepost);
}

using HelpCall = std::tuple<HWND, Text, UINT, DWORD_PTR>;
HelpCall TheHelpCall;

/// In place of HtmlHelpA.
HWND WINAPI RecordHelp(HWND myCaller, LPCSTR myFile, UINT myCommand, DWORD_PTR myData)
{
    TheHelpCall = {myCaller, FromAnsi(myFile), myCommand, myData};
    return nullptr;
}

TEST(HelpViewer, ShowContext_CallsALibraryThatStaysLoaded)
{
    const wchar_t* const myLibrary = L"hhctrl.ocx";
    EXPECT_EQ(GetModuleHandleW(myLibrary), nullptr) << "loaded before its first need";
    const TextView myFile = u"C:\\España\\Some.chm";
    {
        const Redirection myRecorder(myLibrary, "HtmlHelpA", &RecordHelp);
        for (const auto& [myContext, myData] : {std::pair<int32_t, DWORD_PTR>(100, 100), {-1, 0xFFFFFFFF}})
        {
            MakeSystemPlatform()->Ports().help.ShowContext(myFile, myContext);
            EXPECT_EQ(TheHelpCall, HelpCall(nullptr, myFile, 15U, myData));
        }
    }
    FreeLibrary(GetModuleHandleW(myLibrary)); // takes back what the redirection has loaded
    EXPECT_NE(GetModuleHandleW(myLibrary), nullptr) << "freed, although its windows may still show";
}

TEST(HelpViewer, ShowContext_NeedsTheLibraryOfTheSystemsFolder)
{
    const TemporaryFolder myFolder;
    fs::copy_file(QEL_STAGE "/QelPluginAnimation.dll", myFolder / "onlyHere.dll");
    const fs::path myOldFolder = fs::current_path();
    fs::current_path(myFolder.Native());
    WindowsHelpViewer(L"onlyHere.dll").ShowContext(u"C:\\Some.chm", 100);
    fs::current_path(myOldFolder);
    EXPECT_EQ(GetModuleHandleW(L"onlyHere.dll"), nullptr) << "found in the current folder";
}

} // namespace
} // namespace qel
