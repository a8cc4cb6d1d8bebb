/// Design archives on real files: packing, reading, unpacking, listing, and archives that somebody made to do harm.
#include "archive/classArchive.h"
#include "errorOf.h"
#include "FailingFiles.h"
#include "platform/ListView.h"
#include "platform/shared/SystemPlatform.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <tuple>
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

/// A list as text: a line for each item, and the tags one behind the other.
struct ListedItems final : ListView
{
    void Clear() override { Items.clear(), Tags.clear(); }
    void Add(const ListItem& i) override
    {
        Items += i.Caption + u"|" + NumberText(int64_t{i.SmallIcon}) + u"|" + NumberText(int64_t{i.ForeColor}) + u"|" +
                 i.SubItems[0] + u"|" + i.SubItems[1] + u"\n";
        Tags += i.Tag;
    }
    Text Items, Tags;
};

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
            EXPECT_NE(ErrorOf([&] { myFiles.OpenShared(myFolder.Logical(u"x.dat")); }), 0) << "not locked";
            myEvents += myName;
            theCancel = myName == u"\\cancel";
        };
    }

    static std::string Integer(size_t n) { return {char(n), char(n >> 8), char(n >> 16), char(n >> 24)}; }
    static std::string Entry(const std::string& myName, const std::string& myData, size_t mySizeError = 0)
    {
        return Integer(myName.size()) + myName + Integer(myData.size() + mySizeError) + myData;
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

TEST_F(Archive, Read_OnlyAWholeArchive)
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
                                    Magic + Integer(UINT32_MAX) + "\\a",
                                    Magic + Integer(2'000'000'000) + "\\a",
                                    myName + "\1\0\0"s,
                                    myName + Integer(UINT32_MAX - 3) + EndMarker,
                                    myName + Integer(INT32_MAX) + EndMarker,
                                    Magic + Entry("\\a", "abc"),
                                    Magic + Entry("\\a", "abc", 2) + EndMarker};
    for (const std::string& myBytes : myBroken)
    {
        EXPECT_TRUE(UnPack(Example) && myArchive.ReadArchive());
        myFolder.Write("x.dat", myBytes);
        EXPECT_FALSE(myArchive.UnPackArchive() || myArchive.ReadArchive()) << myBytes;
        EXPECT_EQ(myArchive.TotalSize(), 0) << myBytes;
    }
}

TEST_F(Archive, Unpack_EveryFileAtItsPlaceWithItsBytes)
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
    EXPECT_TRUE(myArchive.PackArchive());
    myArchive.BaseFolder(myFolder.Logical(u"again"));
    EXPECT_TRUE(myArchive.UnPackArchive()) << "what came out and was packed";
    for (const auto& [myName, myData] : myExpected)
    {
        EXPECT_TRUE(myFolder.Exists("base/" + myName) && myFolder.Read("base/" + myName) == myData) << myName;
        EXPECT_TRUE(myFolder.Exists("again/" + myName) && myFolder.Read("again/" + myName) == myData) << myName;
    }
    EXPECT_TRUE(myEvents.starts_with(u"\\a.txt\\img\\b.gif\\ñ€\\img\\sub\\31999\\img\\sub\\32000"));
    EXPECT_TRUE(UnPack(Magic + Entry("\\a", "1") + Entry("\\cancel", "2") + Entry("\\c", "3"))) << "cancelled: no end";
    EXPECT_TRUE(myFolder.Exists("again/a") && myFolder.Exists("again/cancel") && !myFolder.Exists("again/c"));
}

TEST_F(Archive, Unpack_ReplacesFilesButNotTheTargetOfALink)
{
    myFolder.Write("base/a.txt", "longer than the new one");
    myFolder.Write("base/A.TXT", "another");
    myFolder.MakeFolder("base/Img");
    myFolder.Write("outside", "mine");
    std::filesystem::create_symlink(myFolder.Native("outside"), myFolder.Native("base/Img/b.gif"));
    EXPECT_TRUE(UnPack(Example));
    EXPECT_EQ(myFolder.Read("base/a.txt"), "abc");
    EXPECT_EQ(myFolder.Read("base/A.TXT"), "another");
    EXPECT_FALSE(myFolder.Exists("base/img")) << "the folder that is there has been found";
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(myFolder.Native("base/Img/b.gif"))));
    EXPECT_EQ(myFolder.Read("outside"), "mine");
}

TEST_F(Archive, Pack_SmallFilenames_ReadsTheNamesOnTheDisk)
{
    myFolder.Write("base/Img/SUB/Logo.GIF", "picture");
    myArchive.SmallFilenames(true);
    EXPECT_TRUE(myArchive.PackArchive());
    EXPECT_EQ(myFolder.Read("x.dat"), Magic + Entry("\\img\\sub\\logo.gif", "picture") + EndMarker);
}

TEST_F(Archive, Unpack_LooksUpEachLevelOnce)
{
    FailingFiles myCountedFiles(myFiles);
    const auto CallsFor = [&](const std::string& myEntries)
    {
        std::filesystem::remove_all(myFolder.Native("base"));
        myFolder.MakeFolder("base/IMG/Sub");
        myFolder.Write("x.dat", Magic + myEntries + EndMarker);
        classArchive theArchive(myCountedFiles);
        theArchive.BaseFolder(myFolder.Logical(u"base"));
        theArchive.ArchiveFilename(myFolder.Logical(u"x.dat"));
        myCountedFiles.Looks = 0;
        EXPECT_TRUE(theArchive.UnPackArchive());
        return myCountedFiles.Looks;
    };
    const std::string myFirst = Entry("\\img\\sub\\a", "1");
    EXPECT_EQ(CallsFor(myFirst), 2);
    EXPECT_EQ(CallsFor(myFirst + Entry("\\img\\b", "2") + Entry("\\img\\sub\\c", "3") + Entry("\\img\\NEW\\d", "4") +
                       Entry("\\img\\NEW\\e", "5")),
              3);
    EXPECT_EQ(myFolder.Read("base/IMG/Sub/c") + myFolder.Read("base/IMG/NEW/e"), "35");
}

TEST_F(Archive, Unpacking_CopiesInBlocksOf32000Bytes)
{
    FailingFiles myRecordedFiles(myFiles);
    classArchive theArchive(myRecordedFiles);
    theArchive.BaseFolder(myFolder.Logical(u"base"));
    theArchive.ArchiveFilename(myFolder.Logical(u"x.dat"));
    myFolder.Write("x.dat", Magic + Entry("\\a", std::string(32000, 'a')) + Entry("\\b", "") +
                                Entry("\\c", std::string(64001, 'c')) + EndMarker);
    EXPECT_TRUE(theArchive.UnPackArchive());
    EXPECT_EQ(myRecordedFiles.Writes, (std::vector<size_t>{32000, 32000, 32000, 1}));
}

TEST_F(Archive, Unpack_NameThatLeavesTheFolder)
{
    std::filesystem::create_directory_symlink(myFolder.Native("outside"), myFolder.Native("base/link"));
    std::istringstream myNames(
        "\\..\\evil|..\\evil|\\sub\\..\\..\\evil|\\../evil|\\sub/../../evil|\\.. \\evil|/evil|"
        "\\\\evil|\\/evil|C:\\evil|\\c:\\evil|\\sub\\D:evil|c:evil|a:evil|\\Z:\\evil|\\evil\0.gif|\\link\\evil|"
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

TEST_F(Archive, Unpack_MakesAFolderWhenAFileNeedsIt)
{
    myArchive.BaseFolder(myFolder.Logical(u"new"));
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

TEST_F(Archive, Pack_ReportsProgressAndCanBeCancelled)
{
    const Text myFirst = u"0 \\a12 "; // a half goes to the even number
    const Text myWhole = myFirst + u"\\img\\b38 \\img\\sub\\c100 100 ";
    // The numbers from 0 of the events that raise the flag and take it back, the events, and the result.
    const std::tuple<int, int, Text, bool> myCases[] = {
        {-1, -1, myWhole, true}, {4, -1, myWhole, false},           {0, -1, myFirst + u"100 ", false},
        {0, 1, myWhole, true},   {1, -1, myFirst + u"100 ", false}, {1, 2, myFirst + u"100 ", true}};
    const auto Pack = [&](int myCancelAt, int myBackAt)
    {
        myEvents.clear();
        myArchive.ProgessCreate = [&, myNumber = 0](const Text& myName, int32_t& myPercent, bool& theCancel) mutable
        {
            theCancel = (theCancel || myNumber == myCancelAt) && myNumber != myBackAt;
            myEvents += myName + NumberText(int64_t{myPercent}) + u" ";
            ++myNumber;
        };
        return myArchive.PackArchive();
    };
    EXPECT_TRUE(Pack(-1, -1));
    EXPECT_EQ(ToUtf8(myEvents) + myFolder.Read("x.dat"), "0 100 " + Magic + EndMarker);
    myFolder.Write("base/a", "");
    EXPECT_TRUE(Pack(-1, -1) && myEvents == u"0 \\a100 100 ");
    myFolder.Write("base/a", "1");
    myFolder.Write("base/img/b", "22");
    myFolder.Write("base/img/sub/c", "55555");
    for (const auto& [myCancelAt, myBackAt, myExpected, myResult] : myCases)
    {
        EXPECT_EQ(Pack(myCancelAt, myBackAt), myResult) << ToUtf8(myEvents);
        EXPECT_EQ(myEvents, myExpected);
        EXPECT_TRUE(myFolder.Exists("x.dat") == myResult && myArchive.FileCount() == u"3") << ToUtf8(myEvents);
    }
}

TEST_F(Archive, Pack_OnlyPlainFilesThatCanBeUnpacked)
{
    // The files, a link beside them, and the names in the archive, lowered and plain, or why there is none.
    const std::tuple<std::vector<std::string>, std::string, std::string, std::string> myCases[] = {
        {{"A.txt", "Img/Logo.GIF"}, "~", "\\a.txt\\img\\logo.gif", "\\A.txt\\Img\\Logo.GIF"},
        {{"Ñ€", ".hidden", ".h/a", "back\\slash", "a\xFF"}, "l", "\\ñ€", "\\Ñ€"},
        {{"FOO/a"}, "foo", "\\foo\\a", "\\FOO\\a"},
        {{"a", "A"}, "~", "58", "58"},
        {{"img/a", "img/日"}, "~", "52", "52"},
        {{"img/large"}, "~", "6", "6"},
        {{"a.txt", "img/b.gif"}, "~", "\\a.txt\\img\\b.gif", "\\a.txt\\img\\b.gif"},
    };
    myFolder.Write("outside/secret", "");
    for (const auto& [myNames, myLink, mySmallNames, myPlainNames] : myCases)
    {
        std::filesystem::remove_all(myFolder.Native("base"));
        for (const std::string& myName : myNames)
        {
            myFolder.Write("base/" + myName, myName == "a.txt" ? "abc" : "");
            myName == "img/large" ? std::filesystem::resize_file(myFolder.Native("base/" + myName), 1U << 31U) : void();
        }
        std::filesystem::create_symlink(myFolder.Native("outside"), myFolder.Native("base/" + myLink));
        for (const bool isSmall : {true, false})
        {
            myFolder.Write("x.dat", "old");
            myArchive.SmallFilenames(isSmall);
            const bool myResult = myArchive.PackArchive();
            ListedItems myItems;
            myArchive.FillList(myItems);
            EXPECT_EQ(myResult ? ToUtf8(myItems.Tags) : std::to_string(myArchive.FailureNumber()),
                      isSmall ? mySmallNames : myPlainNames);
            EXPECT_EQ(myFolder.Read("x.dat") == "old", !myResult) << myPlainNames;
        }
    }
    EXPECT_EQ(myFolder.Read("x.dat"), Example);
}

TEST_F(Archive, List_EveryEntryByItsExtensionAndSize)
{
    EXPECT_EQ(myArchive.FileCount() + myArchive.Status(), u"0Es wurden keine Dateien geladen");
    const std::pair<TextView, std::vector<std::string>> myClasses[] = {
        {u"|2|0|", {"a.html", "b.HTM"}},
        {u"|3|0|", {"c.php", "d.php3", "e.phtml"}},
        {u"|4|6710886|", {"LOGO.GIF", "f.jpeg", "g.jpg", "h.png"}},
        {u"|1|6710886|", {"readme", "x.gif.bak", "dot."}},
    };
    Text myExpected;
    std::string myBytes = Magic;
    for (const auto& [myClass, myNames] : myClasses)
    {
        for (const std::string& myName : myNames)
        {
            myBytes += Entry("\\i\\" + myName, std::string(1023, 'x')) + Entry(myName, std::string(1024, 'x'));
            const Text myRow = FromUtf8(myName).append(myClass);
            myExpected += myRow + u"1 KB|\\i\\\n" + myRow + u"2 KB|\n";
        }
    }
    myFolder.Write("x.dat", myBytes + EndMarker);
    EXPECT_TRUE(myArchive.ReadArchive());
    ListedItems myItems;
    myItems.Items = u"an older one";
    myArchive.FillList(myItems);
    EXPECT_EQ(ToUtf8(myItems.Items), ToUtf8(myExpected));
    EXPECT_TRUE(myItems.Tags.starts_with(u"\\i\\a.htmla.html\\i\\b.HTM"));
    EXPECT_EQ(myArchive.FileCount() + u" " + myArchive.Status(), u"24 24 KB in 24 Dateien");
    myFolder.Write("x.dat", Magic + Integer(2) + "\\a" + Integer(INT32_MAX));
    std::filesystem::resize_file(myFolder.Native("x.dat"), 23U + INT32_MAX);
    std::ofstream(myFolder.Native("x.dat"), std::ios::app) << Entry("\\b", "x") + EndMarker;
    EXPECT_TRUE(myArchive.ReadArchive() && myArchive.TotalSize() == 2147483648.0);
    EXPECT_EQ(ErrorOf([&] { myArchive.Status(); }), ErrorNumber::Overflow);
}

TEST_F(Archive, Paths_AreJoinedAtOneSeparator)
{
    const TextView myCases[][4] = {
        // both parts, joined with "\", joined with "/"
        {u"C:\\x\\", u"\\y", u"C:\\x\\y", u"C:\\x/y"}, {u"x", u"", u"x\\", u"x/"},
        {u"a\\/", u"/\\b", u"a\\/\\/\\b", u"a\\/\\b"}, {u"\\", u"\\", u"\\", u"/"},
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
