#include "platform/linux/LinuxFiles.h"

#include "Environment.h"
#include "errorOf.h"
#include "platform/linux/Descriptor.h"
#include "platform/shared/SystemPlatform.h"
#include "TemporaryFolder.h"
#include "text/errors.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>

using namespace qel;
using namespace qel::ErrorNumber;
namespace fs = std::filesystem;

namespace
{

std::string RandomBytes(size_t myCount)
{
    std::mt19937 myRandom(1);
    std::string theBytes(myCount, '\0');
    std::generate(theBytes.begin(), theBytes.end(), [&] { return static_cast<char>(myRandom()); });
    return theBytes;
}

std::string ReadBytes(InputFile& myFile, size_t myCount)
{
    std::string theText(myCount, '\0');
    myFile.Read(std::as_writable_bytes(std::span(theText)));
    return theText;
}

/// Runs operations on names in a folder, for their errors or for what they give.
class FilesTest : public testing::Test
{
protected:
    static auto Bytes(std::string_view myText) { return std::as_bytes(std::span(myText)); }
    Text In(TextView myName) const { return myFolder.Logical(myName); }
    void Mode(std::string_view myName, mode_t myMode) { fs::permissions(myFolder.Native(myName), fs::perms(myMode)); }
    unsigned Mode(std::string_view myName) { return unsigned(fs::status(myFolder.Native(myName)).permissions()); }
    void Link(std::string_view myTarget, std::string_view myName)
    {
        fs::create_symlink(myTarget, myFolder.Native(myName));
    }
    void Pipe(std::string_view myName) { ASSERT_EQ(mkfifo(myFolder.Native(myName).c_str(), 0600), 0); }

    /// The number of the error that an operation ends in, given names in the folder.
    template <class Result, class... Views>
    int32_t Try(Result (Files::*myOperation)(Views...), std::type_identity_t<Views>... myNames)
    {
        return ErrorOf([&] { (myFiles.*myOperation)(In(myNames)...); });
    }

    std::string ReadAll(TextView myName)
    {
        const auto myFile = myFiles.OpenForReading(In(myName));
        return ReadBytes(*myFile, static_cast<size_t>(myFile->Length()));
    }

    void WriteAll(TextView myName, std::string_view myText)
    {
        const auto myFile = myFiles.OpenForWriting(In(myName));
        myFile->Write(Bytes(myText));
        myFile->Close();
    }

    TemporaryFolder myFolder;
    LinuxFiles myFiles;
};

TEST_F(FilesTest, Find_ExactPathElseWithoutRegardToCase)
{
    for (const char* const myName :
         {"Img/Logo.GIF", "Img/\xC3\x81rbol.txt", "\xC4\xB0.txt", "\xFF.gif", "twin.txt", "Twin.txt", "TWin.tXt"})
    {
        myFolder.Write(myName, myName);
    }
    for (const auto& [myAsked, myFound] : {std::pair<TextView, const char*>(u"Img\\Logo.GIF", "Img/Logo.GIF"),
                                           {u"img\\\\..\\.\\IMG/LOGO.gif", "Img/Logo.GIF"},
                                           {u"IMG/áRBOL.TXT", "Img/\xC3\x81rbol.txt"},
                                           {u"i.TXT", "\xC4\xB0.txt"}, // fewer bytes in lower case
                                           {u"twin.txt", "twin.txt"},
                                           {u"Twin.txt", "Twin.txt"},
                                           {u"TWIN.TXT", "TWin.tXt"}})
    {
        EXPECT_EQ(ReadAll(myAsked), myFound) << testing::PrintToString(myAsked);
    }
    EXPECT_EQ(Try(&Files::OpenForReading, u"im\\logo.gif"), PathNotFound);
    EXPECT_EQ(Try(&Files::OpenForReading, u"img\\logo.gi"), FileNotFound);
    EXPECT_EQ(Try(&Files::OpenForReading, u"img\\logo.gif\\"), PathNotFound);
    for (const auto& [myAsked, myName] : {std::pair<TextView, TextView>(u"IMG\\LOGO.gif", u"Logo.GIF"),
                                          {u"img\\Logo.GIF", u""},
                                          {u"IMG\\", u"Img"},
                                          {u"Img", u""}})
    {
        EXPECT_EQ(myFiles.Look(In(myAsked)).Name, myName) << testing::PrintToString(myAsked);
    }
}

TEST_F(FilesTest, Write_ExactNameInAFolderThatIsFound)
{
    myFolder.Write("Img/Logo.GIF", "old");
    WriteAll(u"IMG\\LOGO.gif", "new");
    EXPECT_EQ(myFolder.Read("Img/Logo.GIF"), "old");
    EXPECT_EQ(myFolder.Read("Img/LOGO.gif"), "new");
    EXPECT_FALSE(myFolder.Exists("IMG"));
    EXPECT_EQ(Try(&Files::Copy, u"img\\LOGO.gif", u"img\\logo.gif"), 0);
    EXPECT_EQ(myFolder.Read("Img/logo.gif"), "new");
    EXPECT_EQ(myFolder.Read("Img/Logo.GIF"), "old");
    EXPECT_EQ(Try(&Files::LookExactly, u"IMG\\Logo.GIF"), 0);
    EXPECT_EQ(Try(&Files::LookExactly, u"Img\\LOGO.GIF"), FileNotFound);
    EXPECT_EQ(Try(&Files::LookExactly, u"none\\x"), PathNotFound);
    EXPECT_FALSE(myFiles.Delete(In(u"IMG\\LoGo.gif")));
    EXPECT_TRUE(myFiles.Delete(In(u"IMG\\LOGO.gif")));
    EXPECT_FALSE(myFolder.Exists("Img/LOGO.gif"));
    EXPECT_EQ(Try(&Files::MakeFolder, u"iMG\\LOGO.gif\\"), 0);
    EXPECT_TRUE(fs::is_directory(myFolder.Native("Img/LOGO.gif")));
    EXPECT_EQ(Try(&Files::MakeFolder, u"IMG"), 0);
    EXPECT_TRUE(fs::is_empty(myFolder.Native("IMG")));
}

TEST_F(FilesTest, Write_ThroughALinkMakesItsTarget)
{
    myFolder.MakeFolder("Sub");
    Link("Sub/new", "link");
    WriteAll(u"link", "1");
    EXPECT_EQ(myFolder.Read("Sub/new"), "1");
    EXPECT_TRUE(fs::is_symlink(myFolder.Native("link")));
}

TEST_F(FilesTest, Open_NoPlainFileOrNoName_IsRefusedAtOnce)
{
    myFolder.Write("file", "");
    myFolder.MakeFolder("folder");
    Pipe("lonely");
    Pipe("pipe");
    const Descriptor myOtherEnd(open(myFolder.Native("pipe").c_str(), O_RDWR | O_CLOEXEC));
    Link("nowhere/at all", "dangling");
    Link("loop", "loop");
    const struct
    {
        int32_t Reading;
        int32_t Writing;
        std::vector<Text> Names;
    } myCases[] = {{PathNotFound, PathNotFound, {u"none\\x", u"file\\x"}},
                   {FileNotFound, PathNotFound, {u"dangling"}},
                   {PathAccess, PathAccess, {u"folder", u"pipe", u"lonely", u"loop"}},
                   {BadFileName, BadFileName, {Text(u"a\0b", 3), Text(u"a\xD800"), Text(256, u'x')}},
                   {BadFileName, BadFileName, {Text(100'000, u'\\') + u"x\\" + Text(100'000, u'y')}},
                   {FileNotFound, 0, {u"none"}}};
    for (const auto& [myReading, myWriting, myNames] : myCases)
    {
        for (const Text& myName : myNames)
        {
            SCOPED_TRACE(testing::PrintToString(myName.substr(0, 20)));
            EXPECT_EQ(Try(&Files::OpenForReading, myName), myReading);
            EXPECT_EQ(myFiles.IsFolder(In(myName)), myName == u"folder");
            EXPECT_EQ(Try(&Files::OpenForWriting, myName), myWriting);
        }
    }
    EXPECT_EQ(Try(&Files::Delete, u"none"), 0);
}

TEST_F(FilesTest, Open_LocksKeepOthersOut)
{
    WriteAll(u"a", "content");
    Mode("a", 0444); // locking needs no right to write
    {
        const auto myExclusive = myFiles.OpenForReading(In(u"a"));
        EXPECT_EQ(Try(&Files::OpenForReading, u"a"), PermissionDenied);
        EXPECT_EQ(Try(&Files::OpenShared, u"a"), PermissionDenied);
        EXPECT_EQ(Try(&Files::Copy, u"a", u"copy"), PermissionDenied);
        EXPECT_FALSE(myFolder.Exists("copy"));
    }
    Mode("a", 0644);
    const auto myShared = myFiles.OpenShared(In(u"a"));
    EXPECT_EQ(Try(&Files::OpenForReading, u"a"), PermissionDenied);
    EXPECT_EQ(Try(&Files::OpenForWriting, u"a"), PermissionDenied);
    EXPECT_EQ(Try(&Files::Copy, u"a", u"copy"), 0);
    EXPECT_EQ(myFolder.Read("a"), "content"); // not emptied before it was locked
    const auto myWriter = myFiles.OpenForWriting(In(u"copy"));
    EXPECT_EQ(Try(&Files::Copy, u"a", u"copy"), PermissionDenied);
}

TEST_F(FilesTest, ReadAndWrite_InAnyStepsGiveTheSameBytes)
{
    const std::string myContent = RandomBytes(1'000'000);
    constexpr size_t Sizes[] = {0, 1, 4, 13, 4095, 4096, 8192, 32000, 70000};
    std::mt19937 myRandom(2);
    {
        const auto myFile = myFiles.OpenForWriting(In(u"a"));
        for (size_t i = 0, n = 0; i < myContent.size(); i += n)
        {
            n = std::min(Sizes[myRandom() % std::size(Sizes)], myContent.size() - i);
            myFile->Write(Bytes(myContent).subspan(i, n));
        }
    } // closed in silence, but whole
    EXPECT_TRUE(myFolder.Read("a") == myContent);

    const auto myFile = myFiles.OpenForReading(In(u"a"));
    size_t myAt = 0;
    for (size_t n = 0; myAt + n <= myContent.size(); n = Sizes[myRandom() % std::size(Sizes)])
    {
        const bool mySkips = myRandom() % 3 == 0;
        EXPECT_TRUE(mySkips || ReadBytes(*myFile, n) == myContent.substr(myAt, n)) << myAt;
        myFile->Skip(mySkips ? int64_t(n) : 0);
        myAt += n;
        ASSERT_EQ(myFile->Position(), int64_t(myAt));
    }
    const int64_t myLeft = myFile->Length() - myFile->Position();
    EXPECT_EQ(ErrorOf([&] { myFile->Skip(-1); }), InvalidArgument);
    EXPECT_EQ(ErrorOf([&] { myFile->Skip(myLeft + 1); }), InputPastEnd);
    EXPECT_EQ(ErrorOf([&] { myFile->Skip(INT64_MAX); }), InputPastEnd);
    myFile->Skip(myLeft);
    EXPECT_EQ(myFile->Position(), myFile->Length());
    EXPECT_EQ(ErrorOf([&] { ReadBytes(*myFile, 1); }), InputPastEnd);
}

TEST_F(FilesTest, Close_ReportsAFullDiskAtTheLatest)
{
    myFolder.Write("long", std::string(300'000, 'x'));
    const std::string myBlock(1000, 'x');
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit myOldLimit = {};
    getrlimit(RLIMIT_FSIZE, &myOldLimit);
    const rlimit myLimit = {10'000, myOldLimit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &myLimit);
    const auto mySmall = myFiles.OpenForWriting(In(u"small"));
    for (int i = 0; i < 20; ++i)
    {
        mySmall->Write(Bytes(myBlock));
    }
    const int32_t myClosing = ErrorOf([&] { mySmall->Close(); });
    const int32_t myCopying = Try(&Files::Copy, u"long", u"copy");
    setrlimit(RLIMIT_FSIZE, &myOldLimit);
    EXPECT_EQ(std::pair(myClosing, myCopying), std::pair(DiskFull, DiskFull));
    EXPECT_EQ(ReadAll(u"small").size(), 10'000U); // what has been written stays, unlocked
}

TEST_F(FilesTest, Copy_BytesAndRightsOfANewFile)
{
    const std::string myContent = RandomBytes(3'000'000);
    myFolder.Write("a", myContent);
    myFolder.Write("old", std::string(4'000'000, 'x'));
    Mode("a", 0500);
    EXPECT_EQ(Try(&Files::Copy, u"A", u"new"), 0);
    EXPECT_EQ(Try(&Files::Copy, u"a", u"old"), 0);
    EXPECT_TRUE(myFolder.Read("new") == myContent && myFolder.Read("old") == myContent);
    const mode_t myMask = umask(0);
    umask(myMask);
    EXPECT_EQ(Mode("new"), 0666U & ~myMask);
    myFiles.Copy(u"\\proc\\version", In(u"version")); // its length reads as 0
    EXPECT_EQ(myFolder.Read("version").substr(0, 5), "Linux");
    EXPECT_EQ(Try(&Files::Copy, u"none", u"x"), FileNotFound);
    EXPECT_FALSE(myFolder.Exists("x"));

    fs::create_hard_link(myFolder.Native("a"), myFolder.Native("hard"));
    Link("a", "soft");
    Mode("a", 0600);
    for (const TextView mySelf : {u"a", u"hard", u"soft"})
    {
        EXPECT_EQ(Try(&Files::Copy, u"a", mySelf), PermissionDenied);
    }
    EXPECT_TRUE(myFolder.Read("a") == myContent);
}

TEST_F(FilesTest, List_EntriesThatMatch)
{
    for (const char* const myName :
         {"a.gif", "B.GIF", "c", "d.gift", ".hidden.gif", "Sub/x.gif", "\xFF.gif", "b\\c.gif", "\xC3\x91.gif"})
    {
        myFolder.Write(myName, "");
    }
    Pipe("pipe.gif");
    Link("a.gif", "link.gif");
    Link("Sub", "sublink");
    Link("nowhere", "dangling.gif");
    using Names = std::vector<Text>;
    const std::tuple<TextView, Listing, Names> myCases[] = {
        {u"*.*", Listing::PlainFiles, {u"B.GIF", u"a.gif", u"c", u"d.gift", u"link.gif", u"Ñ.gif"}},
        {u"*",
         Listing::FilesAndFolders,
         {u".", u"..", u"B.GIF", u"Sub", u"a.gif", u"c", u"d.gift", u"link.gif", u"sublink", u"Ñ.gif"}},
        {u"*.Gif", Listing::FilesAndFolders, {u"B.GIF", u"a.gif", u"link.gif", u"Ñ.gif"}},
        {u"?.gif", Listing::PlainFiles, {u"B.GIF", u"a.gif", u"Ñ.gif"}},
        {u"ñ*", Listing::PlainFiles, {u"Ñ.gif"}},
        {u"*.*f*", Listing::PlainFiles, {u"B.GIF", u"a.gif", u"d.gift", u"link.gif", u"Ñ.gif"}},
        {u"SUBLINK/*", Listing::FilesAndFolders, {u".", u"..", u"x.gif"}},
        {u"none\\none\\*", Listing::FilesAndFolders, {}},
        {u"c\\*.*", Listing::FilesAndFolders, {}}};
    for (const auto& [myPattern, myListing, myExpected] : myCases)
    {
        Names myNames = myFiles.List(In(myPattern), myListing);
        std::sort(myNames.begin(), myNames.end());
        EXPECT_EQ(myNames, myExpected) << testing::PrintToString(myPattern);
    }
}

TEST_F(FilesTest, Look_FoldersAndLinksAreToldApart)
{
    myFolder.Write("Sub/x", "");
    Link("Sub", "link");
    EXPECT_TRUE(myFiles.IsFolder(In(u"LINK\\")) && myFiles.IsLink(In(u"LINK\\"))); // a separator hides no link
    EXPECT_FALSE(myFiles.IsLink(In(u"Sub")) || myFiles.IsFolder(In(u"sub\\x")));
    Pipe("pipe");
    const std::pair<Text, EntryKind> myKinds[] = {{u"LINK\\", EntryKind::Link},
                                                  {u"SUB", EntryKind::Folder},
                                                  {u"Sub\\X", EntryKind::File},
                                                  {u"pipe", EntryKind::Other}};
    for (const auto& [myName, myKind] : myKinds)
    {
        EXPECT_EQ(myFiles.Look(In(myName)).Kind, myKind) << testing::PrintToString(myName);
    }
    EXPECT_EQ(Try(&Files::Look, u"none"), FileNotFound);
    EXPECT_EQ(Try(&Files::Look, u"none\\x"), PathNotFound);
    EXPECT_EQ(Try(&Files::MakeFolder, u"Sub\\"), PathAccess);
    EXPECT_EQ(Try(&Files::MakeFolder, u"SUB\\x"), PathAccess);
    EXPECT_EQ(Try(&Files::MakeFolder, u"none\\x"), PathNotFound);
    EXPECT_EQ(Try(&Files::MakeFolder, u"SUB\\New\\"), 0);
    EXPECT_TRUE(myFolder.Exists("Sub/New"));
    EXPECT_EQ(Try(&Files::Delete, u"sub\\New"), PathAccess);
    EXPECT_FALSE(myFiles.Delete(In(u"sub\\y")));
    EXPECT_EQ(Try(&Files::Delete, u"sub\\none\\y"), PathNotFound);
    EXPECT_TRUE(myFiles.Delete(In(u"link")));
    EXPECT_TRUE(myFolder.Exists("Sub/x") && !myFolder.Exists("link"));

    Link("Sub", "link");
    Mode("Sub", 0770);
    for (const TextView mySafe : {u"Sub", u"SUB\\", u"none\\", u"none\\none"})
    {
        EXPECT_EQ(Try(&Files::DemandOwnFolder, mySafe), 0) << testing::PrintToString(mySafe);
    }
    for (const TextView myUnsafe : {u"link", u"Link\\\\", u"Sub\\x"})
    {
        EXPECT_EQ(Try(&Files::DemandOwnFolder, myUnsafe), PathAccess) << testing::PrintToString(myUnsafe);
    }
}

TEST_F(FilesTest, AnyCall_RefusedByTheSystem_IsReported)
{
    myFolder.Write("locked/a", "");
    const uid_t myUser = geteuid();
    const uid_t mySubject = myUser == 0 ? 65534 : myUser; // root may do everything
    ASSERT_EQ(chown(myFolder.Native().c_str(), mySubject, gid_t(-1)), 0);
    ASSERT_EQ(chown(myFolder.Native("locked").c_str(), mySubject, gid_t(-1)) + seteuid(mySubject), 0);
    Mode("locked", 0500);
    EXPECT_EQ(Try(&Files::OpenForWriting, u"locked\\b"), PermissionDenied);
    EXPECT_EQ(Try(&Files::MakeFolder, u"locked\\b"), PermissionDenied);
    EXPECT_EQ(Try(&Files::Delete, u"locked\\a"), PermissionDenied);
    Mode("locked", 0300); // names can be used, but not read
    EXPECT_EQ(ErrorOf([&] { myFiles.List(In(u"locked\\*"), Listing::PlainFiles); }), PathAccess);
    EXPECT_EQ(Try(&Files::OpenForWriting, u"locked\\b"), 0);
    Mode("locked/b", 0);
    EXPECT_EQ(Try(&Files::OpenShared, u"locked\\b"), PermissionDenied);
    EXPECT_EQ(Try(&Files::Look, u"locked\\b"), 0);
    EXPECT_EQ(Try(&Files::OpenShared, u"locked\\B"), FileNotFound);
    EXPECT_EQ(ErrorOf([&] { myFiles.DemandOwnFolder(u"\\proc"); }), PathAccess); // someone else's
    EXPECT_EQ(seteuid(myUser), 0);
    Mode("locked", 0700);
}

TEST_F(FilesTest, TemporaryPath_FirstSafeFolder)
{
    for (const auto& [myName, myMode] :
         {std::pair("good", 0700U), {"runtime", 0700}, {"open", 0711}, {"back\\slash", 0700}})
    {
        myFolder.MakeFolder(myName);
        Mode(myName, myMode);
    }
    Link("good", "link");
    Environment myEnvironment;
    const auto myChosen = [&](const std::string& myTemporary, const std::string& myRuntime)
    {
        myEnvironment.Set("TMPDIR", myTemporary);
        myEnvironment.Set("XDG_RUNTIME_DIR", myRuntime);
        return myFiles.TemporaryPath();
    };
    const std::string myRuntime = myFolder.Native("runtime");
    EXPECT_EQ(myChosen(myFolder.Native("good//"), myRuntime), In(u"good\\"));
    for (const char* const myUnsafe : {"open", "link", "link/", "none", "back\\slash"})
    {
        EXPECT_EQ(myChosen(myFolder.Native(myUnsafe), myRuntime), In(u"runtime\\")) << myUnsafe;
    }
    EXPECT_EQ(myChosen("/tmp", myRuntime), In(u"runtime\\"));
    myEnvironment.Set("XDG_CACHE_HOME", myFolder.Native("cache/deep"));
    EXPECT_EQ(myChosen("relative", "/tmp"), In(u"cache\\deep\\qel\\"));
    EXPECT_EQ(Mode("cache/deep/qel"), 0700U);
    myEnvironment.Unset("XDG_CACHE_HOME");
    myEnvironment.Set("HOME", myFolder.Native());
    EXPECT_EQ(myChosen("", "/"), In(u".cache\\qel\\"));
    Mode(".cache/qel", 0750);
    EXPECT_EQ(myChosen("/tmp", "/tmp"), u"");
}

TEST(SystemPlatform, ComponentFile_IsItsOwn)
{
    const auto myPlatform = MakeSystemPlatform();
    const fs::path myProgram = fs::read_symlink("/proc/self/exe");
    EXPECT_EQ(myPlatform->ComponentFile(), myProgram.string());
    EXPECT_EQ(myPlatform->Ports().componentFolder, LogicalPath(myProgram.parent_path().string()));
}

TEST(SystemPlatform, ComponentFile_StartedUnderARelativeName)
{
    EXPECT_EXIT(execl("/proc/self/exe", "files_test", "--gtest_filter=SystemPlatform.ComponentFile_IsItsOwn", nullptr),
                testing::ExitedWithCode(0), "");
}

TEST(HelpViewer, ShowContext_TopicBesideTheHelpFile_LeavesNoChild)
{
    const TemporaryFolder myFolder;
    const std::string myResult = myFolder.Native("result");
    myFolder.Write("help/100.html", "");
    myFolder.Write("xdg-open", "#!/bin/sh\necho \"$@\" > " + myResult + ".part\nmv " + myResult + ".part " + myResult);
    fs::permissions(myFolder.Native("xdg-open"), fs::perms::owner_all);
    const Environment myEnvironment{{"PATH", myFolder.Native() + ":/usr/bin:/bin"}};
    const auto myPlatform = MakeSystemPlatform();
    HelpViewer& myHelp = myPlatform->Ports().help;
    myHelp.ShowContext(myFolder.Logical(u"Some.chm"), 101); // no such topic
    myHelp.ShowContext(Text(u"\xD800\\Some.chm"), 100);
    myHelp.ShowContext(myFolder.Logical(u"Some.chm"), 100);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    for (int i = 0; i < 1000 && !myFolder.Exists("result"); ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(myFolder.Read("result"), fs::canonical(myFolder.Native("help/100.html")).string() + "\n");
}

} // namespace
