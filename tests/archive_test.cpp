/// Design archives on real files: reading, unpacking, and archives that somebody made to do harm.
#include "archive/classArchive.h"
#include "ErrorOf.h"
#include "platform/Platform.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sstream>
#include <sys/resource.h>
#include <vector>

namespace qel
{
namespace
{

using namespace std::string_literals;

const std::string Magic = "qelarchive1.0";
const std::string EndMarker(4, '\0');

/// The files "\a.txt" of three bytes and "\img\b.gif" of none, byte by byte as the format has them.
const std::string Example = "qelarchive1.0\x06\0\0\0\\a.txt\x03\0\0\0abc\x0A\0\0\0\\img\\b.gif\0\0\0\0\0\0\0\0"s;

std::string Integer(int32_t myNumber)
{
    std::string theBytes;
    for (int i = 0; i < 32; i += 8)
    {
        theBytes += static_cast<char>(static_cast<uint32_t>(myNumber) >> i);
    }
    return theBytes;
}

std::string Entry(const std::string& myName, const std::string& myData, int32_t mySizeError = 0)
{
    return Integer(static_cast<int32_t>(myName.size())) + myName +
           Integer(static_cast<int32_t>(myData.size()) + mySizeError) + myData;
}

class Archive : public testing::Test
{
protected:
    Archive()
    {
        myArchive.BaseFolder(myFolder.Logical(u"base"));
        myArchive.ArchiveFilename(myFolder.Logical(u"x.dat"));
        myFolder.MakeFolder("base");
        myArchive.ProgessUnpack = [&](const Text& myName, bool& theCancel)
        {
            myEvents += myName;
            theCancel = myName == u"\\cancel";
        };
    }

    bool UnPack(const std::string& myBytes)
    {
        myFolder.Write("x.dat", myBytes);
        return myArchive.UnPackArchive();
    }

    std::unique_ptr<SystemPlatform> myPlatform = MakeSystemPlatform();
    Files& myFiles = myPlatform->Ports().files;
    TemporaryFolder myFolder;
    classArchive myArchive{myFiles};
    Text myEvents; ///< the names, one behind the other
};

TEST_F(Archive, OnlyAWholeOneIsReadAndUnpacked)
{
    const std::string myWhole[] = {Example, Example + "behind the end",
                                   Magic + Entry("\\a", "1") + Entry("\\b", "") + Entry("\\c", "23") + EndMarker};
    for (const std::string& myBytes : myWhole)
    {
        EXPECT_TRUE(UnPack(myBytes)) << myBytes;
        EXPECT_EQ(myArchive.TotalSize(), myBytes == Example ? 0 : 3) << "unpacking leaves the table alone";
        EXPECT_TRUE(myArchive.ReadArchive()) << myBytes;
        EXPECT_EQ(myArchive.TotalSize(), 3) << myBytes;
    }
    const std::string myName = Magic + Integer(2) + "\\a";
    const std::string myBroken[] = {"",
                                    "qelarchive1.",
                                    "QELARCHIVE1.0" + EndMarker,
                                    "qelarchive1.1" + EndMarker,
                                    Magic + "\0\0\0"s,
                                    Magic + Integer(3) + "\\a",
                                    Magic + Integer(-1) + "\\a",
                                    Magic + Integer(2'000'000'000) + "\\a",
                                    myName + "\1\0\0"s,
                                    myName + Integer(-4) + EndMarker,
                                    myName + Integer(INT32_MAX) + EndMarker,
                                    Magic + Entry("\\a", "abc"),
                                    Magic + Entry("\\a", "abc", 2) + EndMarker};
    for (const std::string& myBytes : myBroken)
    {
        myFolder.Write("x.dat", Example);
        EXPECT_TRUE(myArchive.ReadArchive());
        myFolder.Write("x.dat", myBytes);
        EXPECT_FALSE(myArchive.UnPackArchive() || myArchive.ReadArchive()) << myBytes;
        EXPECT_EQ(myArchive.TotalSize(), 0) << myBytes;
    }
    rusage myUsage = {};
    getrusage(RUSAGE_SELF, &myUsage);
    EXPECT_LT(myUsage.ru_maxrss, 1'000'000) << "kilobytes, for a name that the file cannot hold";
    myArchive.ArchiveFilename(myFolder.Logical(u"missing.dat"));
    EXPECT_FALSE(myArchive.ReadArchive() || myArchive.UnPackArchive());
}

TEST_F(Archive, EveryFileComesOutAtItsPlaceWithItsBytes)
{
    std::vector<std::pair<std::string, std::string>> myExpected = {
        {"a.txt", "abc"}, {"img/b.gif", ""}, {"ñ€", "\0\r"s}};
    std::string myBytes = Example.substr(0, Example.size() - 4) + Entry("\\\xF1\x80", "\0\r"s);
    for (const size_t mySize : {31999U, 32000U, 32001U, 64000U, 300001U})
    {
        std::string myData(mySize, 'x');
        std::generate(myData.begin(), myData.end(),
                      [i = 0U]() mutable { return static_cast<char>(i++ * 7919U >> 5U); });
        myExpected.emplace_back("img/sub/" + std::to_string(mySize), myData);
        myBytes += Entry("\\img\\sub\\" + std::to_string(mySize), myData);
    }
    EXPECT_TRUE(UnPack(myBytes + EndMarker));
    for (const auto& [myName, myData] : myExpected)
    {
        EXPECT_TRUE(myFolder.Exists("base/" + myName) && myFolder.Read("base/" + myName) == myData) << myName;
    }
    EXPECT_TRUE(myEvents.starts_with(u"\\a.txt\\img\\b.gif\\ñ€\\img\\sub\\31999\\img\\sub\\32000"));
}

TEST_F(Archive, ReplacesWhatIsThereButNotWhatALinkLeadsTo)
{
    myFolder.Write("base/A.TXT", "longer than the new one");
    myFolder.MakeFolder("base/Img");
    myFolder.Write("outside", "mine");
    std::filesystem::create_symlink(myFolder.Native("outside"), myFolder.Native("base/Img/b.gif"));
    EXPECT_TRUE(UnPack(Example));
    EXPECT_EQ(myFiles.List(myFolder.Logical(u"base\\*.*"), Listing::PlainFiles).size(), 1U);
    EXPECT_EQ(myFiles.Length(myFolder.Logical(u"base\\a.txt")), 3);
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(myFolder.Native("base/Img/b.gif"))));
    EXPECT_EQ(myFolder.Read("outside"), "mine");
}

TEST_F(Archive, NoNameLeadsOutOfTheBaseFolder)
{
    std::filesystem::create_directory_symlink(myFolder.Native("outside"), myFolder.Native("base/link"));
    std::istringstream myNames("\\..\\evil|..\\evil|\\sub\\..\\..\\evil|\\../evil|\\sub/../../evil|\\.. \\evil|/evil|"
                               "\\\\evil|\\/evil|C:\\evil|\\c:\\evil|\\sub\\D:evil|c:evil|\\evil\0.gif|\\link\\evil|"
                               "\\LINK\\evil|\\link/evil|\\link\\evil\\a|link\\evil|\\|\\..|\\."s);
    for (std::string myName; std::getline(myNames, myName, '|');)
    {
        myFolder.MakeFolder("outside");
        EXPECT_FALSE(UnPack(Magic + Entry("\\first", "1") + Entry(myName, "2") + EndMarker)) << myName;
        EXPECT_EQ(myFolder.Read("base/first"), "1") << "what was written stays";
        for (const auto& myEntry : std::filesystem::recursive_directory_iterator(myFolder.Native()))
        {
            EXPECT_EQ(myEntry.path().filename().string().find("evil"), std::string::npos) << myName;
        }
        std::filesystem::remove_all(myFolder.Native("outside"));
    }
    EXPECT_FALSE(std::filesystem::exists("/evil"));
    EXPECT_TRUE(UnPack(Magic + Entry("\\a..b\\c..", "1") + EndMarker)) << "dots inside a name are harmless";
}

TEST_F(Archive, ACancelledRunIsTrueAndKeepsWhatItWrote)
{
    EXPECT_TRUE(UnPack(Magic + Entry("\\a", "1") + Entry("\\cancel", "2") + Entry("\\c", "3")))
        << "its end is not read";
    EXPECT_EQ(myEvents, u"\\a\\cancel");
    EXPECT_TRUE(myFolder.Exists("base/a") && myFolder.Exists("base/cancel") && !myFolder.Exists("base/c"));
}

TEST_F(Archive, FoldersAreMadeWhenAFileNeedsThem)
{
    myArchive.BaseFolder(myFolder.Logical(u"new"));
    EXPECT_FALSE(UnPack("qelarchive2.0" + EndMarker));
    EXPECT_TRUE(UnPack(Magic + EndMarker));
    EXPECT_FALSE(myFolder.Exists("new")) << "nothing to unpack";
    EXPECT_FALSE(UnPack(Magic + Entry("plain", "") + EndMarker)) << "such a name makes no folder";
    EXPECT_TRUE(UnPack(Magic + Entry("\\img\\sub\\a", "1") + Entry("plain", "2") + EndMarker));
    EXPECT_EQ(myFolder.Read("new/img/sub/a") + myFolder.Read("new/plain"), "12");
    EXPECT_FALSE(UnPack(Magic + Entry("\\img\\sub\\a\\b", "") + EndMarker)) << "a file stands in the way";
    myArchive.BaseFolder(myFolder.Logical(u"missing\\new\\"));
    EXPECT_FALSE(UnPack(Magic + Entry("\\a", "") + EndMarker));
    EXPECT_FALSE(myFolder.Exists("missing"));
}

TEST_F(Archive, IsLockedWhileItIsReadAndFreeAfterAFailure)
{
    // The disk is full behind 40,000 bytes.
    myFolder.Write("x.dat", Magic + Entry("\\a", "1") + Entry("\\b", std::string(90'000, 'b')) + EndMarker);
    myArchive.ProgessUnpack = [&](const Text&, bool&)
    {
        EXPECT_NE(ErrorOf([&] { myFiles.OpenShared(myFolder.Logical(u"x.dat")); }), 0);
    };
    rlimit myLimit = {};
    getrlimit(RLIMIT_FSIZE, &myLimit);
    const rlimit mySmallLimit = {40'000, myLimit.rlim_max};
    const auto myHandler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &mySmallLimit);
    EXPECT_FALSE(myArchive.UnPackArchive());
    setrlimit(RLIMIT_FSIZE, &myLimit);
    std::signal(SIGXFSZ, myHandler);
    EXPECT_EQ(myFolder.Read("base/a"), "1");
    EXPECT_EQ(ErrorOf([&] { myFiles.OpenForWriting(myFolder.Logical(u"base\\b")); }), 0) << "still open";
    const auto myHolder = myFiles.OpenForReading(myFolder.Logical(u"x.dat"));
    EXPECT_FALSE(myArchive.ReadArchive() || myArchive.UnPackArchive()) << "someone else holds it";
}

TEST_F(Archive, PathsAreJoinedAtOneSeparator)
{
    const TextView myCases[][4] = {
        // both parts, joined with "\", joined with "/"
        {u"C:\\x\\", u"\\y", u"C:\\x\\y", u"C:\\x/y"},
        {u"x", u"", u"x\\", u"x/"},
        {u"", u"y", u"\\y", u"/y"},
        {u"x\\\\", u"y", u"x\\\\y", u"x\\/y"},
        {u"a/\\", u"\\/b", u"a/\\/b", u"a/b"},
        {u"a\\/", u"/\\b", u"a\\/\\/\\b", u"a\\/\\b"},
        {u"\\", u"\\", u"\\", u"/"},
        {u"a//", u"//b", u"a//\\//b", u"a///b"},
    };
    for (const auto& [myFirst, mySecond, myJoined, myUnixJoined] : myCases)
    {
        EXPECT_EQ(classArchive::Concat(myFirst, mySecond), myJoined);
        EXPECT_EQ(classArchive::ConcatUnix(myFirst, mySecond), myUnixJoined);
        myArchive.BaseFolder(myFirst);
        EXPECT_EQ(myArchive.BaseFolder(), Text(myFirst) + (myFirst.ends_with(u'\\') ? u"" : u"\\"));
    }
}

} // namespace
} // namespace qel
