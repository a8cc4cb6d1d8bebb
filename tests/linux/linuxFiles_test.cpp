/// What Linux alone has: names that differ in case, links to files, pipes, rights, limits, and where things lie.
#include "Environment.h"
#include "FilesTest.h"
#include "platform/linux/Descriptor.h"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace qel
{
namespace
{

using namespace ErrorNumber;
namespace fs = std::filesystem;

class LinuxFilesTest : public FilesTest
{
protected:
    void Mode(std::string_view myName, mode_t myMode) { fs::permissions(myFolder / myName, fs::perms(myMode)); }
    unsigned Mode(std::string_view myName) { return unsigned(fs::status(myFolder / myName).permissions()); }
    void Link(std::string_view myTarget, std::string_view myName) { fs::create_symlink(myTarget, myFolder / myName); }
    void Pipe(std::string_view myName) { ASSERT_EQ(mkfifo(myFolder.Native(myName).c_str(), 0600), 0); }
};

TEST_F(LinuxFilesTest, Find_OneOfTheNamesThatAreAlike)
{
    for (const char* const myName : {"\xC4\xB0.txt", "\xFF.gif", "twin.txt", "Twin.txt", "TWin.tXt"})
    {
        myFolder.Write(myName, myName);
    }
    for (const auto& [myAsked, myFound] : {std::pair<TextView, const char*>(u"twin.txt", "twin.txt"),
                                           {u"Twin.txt", "Twin.txt"},
                                           {u"TWIN.TXT", "TWin.tXt"},
                                           {u"i.TXT", "\xC4\xB0.txt"}}) // fewer bytes in lower case
    {
        EXPECT_EQ(ReadAll(myAsked), myFound) << testing::PrintToString(myAsked);
    }
}

TEST_F(LinuxFilesTest, Write_ExactNameInAFolderThatIsFound)
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
    EXPECT_TRUE(fs::is_directory(myFolder / "Img/LOGO.gif"));
    EXPECT_EQ(Try(&Files::MakeFolder, u"IMG"), 0);
    EXPECT_TRUE(fs::is_empty(myFolder / "IMG"));
}

TEST_F(LinuxFilesTest, Open_PipeOrLinkWithoutATarget_IsRefusedAtOnce)
{
    Pipe("lonely");
    Pipe("pipe");
    const Descriptor myOtherEnd(open(myFolder.Native("pipe").c_str(), O_RDWR | O_CLOEXEC));
    Link("nowhere/at all", "dangling");
    Link("loop", "loop");
    Link("made", "link");
    WriteAll(u"link", "1");
    EXPECT_EQ(myFolder.Read("made"), "1") << "a link whose folder is there leads to a new file";
    EXPECT_EQ(Try(&Files::OpenForReading, u"dangling"), FileNotFound);
    EXPECT_EQ(Try(&Files::OpenForWriting, u"dangling"), PathNotFound);
    for (const TextView myName : {u"pipe", u"lonely", u"loop"})
    {
        EXPECT_EQ(Try(&Files::OpenForReading, myName), PathAccess) << testing::PrintToString(myName);
        EXPECT_EQ(Try(&Files::OpenForWriting, myName), PathAccess) << testing::PrintToString(myName);
        EXPECT_FALSE(myFiles.IsFolder(In(myName))) << testing::PrintToString(myName);
    }
    EXPECT_EQ(myFiles.Look(In(u"pipe")).Kind, EntryKind::Other);
}

TEST_F(LinuxFilesTest, Open_LockNeedsNoRightToWrite)
{
    WriteAll(u"a", "");
    Mode("a", 0444);
    const auto myExclusive = myFiles.OpenForReading(In(u"a"));
    EXPECT_EQ(Try(&Files::OpenShared, u"a"), PermissionDenied);
}

TEST_F(LinuxFilesTest, Close_ReportsAFullDiskAtTheLatest)
{
    myFolder.Write("long", std::string(300'000, 'x'));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit myOldLimit = {};
    getrlimit(RLIMIT_FSIZE, &myOldLimit);
    const rlimit myLimit = {1'000, myOldLimit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &myLimit);
    const int32_t myWriting = ErrorOf([&] { WriteAll(u"small", std::string(1'500, 'x')); });
    const int32_t myCopying = Try(&Files::Copy, u"long", u"copy");
    setrlimit(RLIMIT_FSIZE, &myOldLimit);
    EXPECT_EQ(myWriting, DiskFull);
    EXPECT_EQ(myCopying, DiskFull);
    EXPECT_EQ(ReadAll(u"small").size(), 1'000U); // what has been written stays, unlocked
}

TEST_F(LinuxFilesTest, Copy_RightsOfANewFile)
{
    myFolder.Write("a", "1");
    Mode("a", 0500);
    EXPECT_EQ(Try(&Files::Copy, u"a", u"new"), 0);
    const mode_t myMask = umask(0);
    umask(myMask);
    EXPECT_EQ(Mode("new"), 0666U & ~myMask);
    Link("a", "soft");
    Mode("a", 0600);
    EXPECT_EQ(Try(&Files::Copy, u"a", u"soft"), PermissionDenied);
    myFiles.Copy(u"\\proc\\version", In(u"version")); // its length reads as 0
    EXPECT_EQ(myFolder.Read("version").substr(0, 5), "Linux");
}

TEST_F(LinuxFilesTest, List_LeavesOutHiddenFilesAndWhatTheLogicCannotName)
{
    for (const char* const myName : {"a.gif", ".hidden.gif", "\xFF.gif", "b\\c.gif"})
    {
        myFolder.Write(myName, "");
    }
    Pipe("pipe.gif");
    Link("a.gif", "link.gif");
    Link("nowhere", "dangling.gif");
    EXPECT_EQ(List(u"*", Listing::PlainFiles), (std::vector<Text>{u"a.gif", u"link.gif"}));
}

TEST_F(LinuxFilesTest, AnyCall_RefusedByTheSystem_IsReported)
{
    myFolder.Write("locked/a", "");
    const uid_t myUser = geteuid();
    const uid_t mySubject = myUser == 0 ? 65534 : myUser; // root may do everything
    ASSERT_EQ(chown(myFolder.Native().c_str(), mySubject, gid_t(-1)), 0);
    ASSERT_EQ(chown(myFolder.Native("locked").c_str(), mySubject, gid_t(-1)), 0);
    ASSERT_EQ(seteuid(mySubject), 0);
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
    Mode("locked", 0770);
    EXPECT_EQ(Try(&Files::DemandOwnFolder, u"locked"), 0);
    EXPECT_EQ(seteuid(myUser), 0);
}

TEST_F(LinuxFilesTest, TemporaryPath_FirstSafeFolder)
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
    EXPECT_EQ(myPlatform->ComponentFile(), myProgram);
    EXPECT_EQ(myPlatform->Ports().componentFolder, ReplaceAll(myProgram.parent_path().u16string(), u"/", u"\\"));
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
    fs::permissions(myFolder / "xdg-open", fs::perms::owner_all);
    const Environment myEnvironment{{"PATH", myFolder.Native() + ":/usr/bin:/bin"}};
    const auto myPlatform = MakeSystemPlatform();
    HelpViewer& myHelp = myPlatform->Ports().help;
    myHelp.ShowContext(myFolder.Logical(u"Some.chm"), 101); // no such topic
    myHelp.ShowContext(Text(u"\xD800\\Some.chm"), 100);
    myHelp.ShowContext(myFolder.Logical(u"Some.chm"), 100);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    for (int i = 0; i < 6000 && !myFolder.Exists("result"); ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(myFolder.Read("result"), fs::canonical(myFolder / "help/100.html").string() + "\n");
}

} // namespace
} // namespace qel
