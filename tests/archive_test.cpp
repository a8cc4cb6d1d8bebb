/// Design archives on real files: packing, reading, unpacking, listing, and archives that somebody made to do harm.
#include "archive/classArchive.h"
#include "errorOf.h"
#include "FailingFiles.h"
#include "platform/ListView.h"
#include "platform/shared/SystemPlatform.h"
#include "TemporaryFolder.h"
#include "testSystem.h"
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

/// A list that keeps its items.
struct ListedItems final : ListView
{
    void Clear() override { Items.clear(); }
    void Add(const ListItem& myItem) override { Items.push_back(myItem); }
    std::vector<ListItem> Items;
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
            myUnpacked.push_back(myName);
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

    /// Packs in place of an old file. The error, 0: none.
    int32_t Pack(bool mySmallFilenames)
    {
        myFolder.Write("x.dat", "old");
        myArchive.SmallFilenames(mySmallFilenames);
        return myArchive.PackArchive() ? 0 : myArchive.FailureNumber();
    }

    std::vector<Text> PackedNames()
    {
        ListedItems myList;
        myArchive.FillList(myList);
        std::vector<Text> theNames;
        for (const ListItem& myItem : myList.Items)
        {
            theNames.push_back(myItem.Tag);
        }
        return theNames;
    }

    std::unique_ptr<SystemPlatform> myPlatform = MakeSystemPlatform();
    Files& myFiles = myPlatform->Ports().files;
    TemporaryFolder myFolder;
    classArchive myArchive{myFiles};
    std::vector<Text> myUnpacked; ///< the names that were announced
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
        EXPECT_TRUE(UnPack(Example));
        EXPECT_TRUE(myArchive.ReadArchive());
        EXPECT_FALSE(UnPack(myBytes)) << myBytes;
        EXPECT_FALSE(myArchive.ReadArchive()) << myBytes;
        EXPECT_EQ(myArchive.TotalSize(), 0) << myBytes;
    }
}

TEST_F(Archive, Unpack_AnnouncesEachFileUntilItIsCancelled)
{
    EXPECT_TRUE(UnPack(Example.substr(0, Example.size() - 4) + Entry("\\\xF1\x80", "\0\r"s) + EndMarker));
    EXPECT_EQ(myUnpacked, (std::vector<Text>{u"\\a.txt", u"\\img\\b.gif", u"\\ñ€"}));
    EXPECT_EQ(myFolder.Read("base/ñ€"), "\0\r"s);
    EXPECT_TRUE(UnPack(Magic + Entry("\\a", "1") + Entry("\\cancel", "2") + Entry("\\c", "3"))) << "cancelled: no end";
    EXPECT_TRUE(myFolder.Exists("base/a"));
    EXPECT_TRUE(myFolder.Exists("base/cancel"));
    EXPECT_FALSE(myFolder.Exists("base/c"));
}

TEST_F(Archive, Unpack_LooksUpEachLevelOnce)
{
    FailingFiles myCountedFiles(myFiles);
    const auto CallsFor = [&](const std::string& myEntries)
    {
        RemoveTree(myFolder / "base");
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
    EXPECT_EQ(myFolder.Read("base/IMG/Sub/c"), "3");
    EXPECT_EQ(myFolder.Read("base/IMG/NEW/e"), "5");
}

TEST_F(Archive, Unpack_CopiesInBlocksOf32000Bytes)
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
    LinkFolder(myFolder / "outside", myFolder / "base/link");
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
        RemoveTree(myFolder / "outside");
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
    EXPECT_EQ(myFolder.Read("new/img/sub/a"), "1");
    EXPECT_EQ(myFolder.Read("new/plain"), "2");
    EXPECT_FALSE(UnPack(Magic + Entry("\\img\\sub\\a\\b", "") + EndMarker)) << "a file stands in the way";
    myArchive.BaseFolder(myFolder.Logical(u"missing\\new\\"));
    EXPECT_FALSE(UnPack(Magic + Entry("\\a", "") + EndMarker));
    EXPECT_FALSE(myFolder.Exists("missing"));
}

TEST_F(Archive, Pack_ReportsProgressAndCanBeCancelled)
{
    using Events = std::vector<std::pair<Text, int32_t>>;
    const auto PackWith = [&](int myCancelAt, int myBackAt, bool myResult, const Events& myExpected)
    {
        Events myEvents;
        myArchive.ProgessCreate = [&](const Text& myName, int32_t& myPercent, bool& theCancel)
        {
            const int myNumber = static_cast<int>(myEvents.size());
            theCancel = (theCancel || myNumber == myCancelAt) && myNumber != myBackAt;
            myEvents.emplace_back(myName, myPercent);
        };
        SCOPED_TRACE("cancelled at event " + std::to_string(myCancelAt));
        EXPECT_EQ(myArchive.PackArchive(), myResult);
        EXPECT_EQ(myEvents, myExpected);
        EXPECT_EQ(myFolder.Exists("x.dat"), myResult);
    };
    PackWith(-1, -1, true, {{u"", 0}, {u"", 100}});
    EXPECT_EQ(myFolder.Read("x.dat"), Magic + EndMarker);
    myFolder.Write("base/a", "");
    PackWith(-1, -1, true, {{u"", 0}, {u"\\a", 100}, {u"", 100}});
    myFolder.Write("base/a", "1");
    myFolder.Write("base/img/b", "22");
    myFolder.Write("base/img/sub/c", "55555");
    const Events myWhole = {{u"", 0}, {u"\\a", 12}, {u"\\img\\b", 38}, {u"\\img\\sub\\c", 100}, {u"", 100}};
    const Events myPart = {{u"", 0}, {u"\\a", 12}, {u"", 100}}; // a half goes to the even number
    const std::tuple<int, int, bool, Events> myCases[] = {
        // the numbers from 0 of the events that raise the flag and take it back, the result, the events
        {-1, -1, true, myWhole}, {4, -1, false, myWhole}, {0, -1, false, myPart},
        {0, 1, true, myWhole},   {1, -1, false, myPart},  {1, 2, true, myPart}};
    for (const auto& [myCancelAt, myBackAt, myResult, myExpected] : myCases)
    {
        PackWith(myCancelAt, myBackAt, myResult, myExpected);
        EXPECT_EQ(myArchive.FileCount(), u"3");
    }
}

TEST_F(Archive, Pack_OnlyPlainFilesThatCanBeUnpacked)
{
    // The files, and the names in the archive, lowered and plain, or the number of why there is none.
    using Tags = std::vector<Text>;
    const std::tuple<std::vector<std::string>, Tags, Tags, int32_t> myCases[] = {
        {{"A.txt", "Img/Logo.GIF"}, {u"\\a.txt", u"\\img\\logo.gif"}, {u"\\A.txt", u"\\Img\\Logo.GIF"}, 0},
        {{"Ñ€", ".hidden", ".h/a"}, {u"\\ñ€"}, {u"\\Ñ€"}, 0},
        {{"img/a", "img/日"}, {}, {}, ErrorNumber::BadFileName},
        {{"img/large"}, {}, {}, ErrorNumber::Overflow},
        {{"a.txt", "img/b.gif"}, {u"\\a.txt", u"\\img\\b.gif"}, {u"\\a.txt", u"\\img\\b.gif"}, 0},
    };
    myFolder.Write("outside/secret", "");
    for (const auto& [myNames, mySmallNames, myPlainNames, myError] : myCases)
    {
        RemoveTree(myFolder / "base");
        for (const std::string& myName : myNames)
        {
            myFolder.Write("base/" + myName, myName == "a.txt" ? "abc" : "");
            myName.starts_with('.') ? Hide(myFolder / ("base/" + myName.substr(0, myName.find('/')))) : void();
            myName == "img/large" ? std::filesystem::resize_file(myFolder / ("base/" + myName), 1U << 31U) : void();
        }
        LinkFolder(myFolder / "outside", myFolder / "base/link");
        for (const bool isSmall : {true, false})
        {
            EXPECT_EQ(Pack(isSmall), myError);
            EXPECT_EQ(myError == 0 ? PackedNames() : Tags(), isSmall ? mySmallNames : myPlainNames);
            EXPECT_EQ(myFolder.Read("x.dat") == "old", myError != 0);
        }
    }
    EXPECT_EQ(myFolder.Read("x.dat"), Example);
}

TEST_F(Archive, List_EveryEntryByItsExtensionAndSize)
{
    EXPECT_EQ(myArchive.FileCount(), u"0");
    EXPECT_EQ(myArchive.Status(), u"Es wurden keine Dateien geladen");
    const std::tuple<std::string, int32_t, int32_t> myCases[] = {
        // name, icon, colour
        {"a.html", 2, 0},      {"b.HTM", 2, 0},          {"c.php", 3, 0},           {"d.php3", 3, 0},
        {"e.phtml", 3, 0},     {"LOGO.GIF", 4, 6710886}, {"f.jpeg", 4, 6710886},    {"g.jpg", 4, 6710886},
        {"h.png", 4, 6710886}, {"readme", 1, 6710886},   {"x.gif.bak", 1, 6710886}, {"dot.", 1, 6710886}};
    std::string myBytes = Magic;
    for (const auto& [myName, myIcon, myColour] : myCases)
    {
        myBytes += Entry("\\i\\" + myName, std::string(1023, 'x')) + Entry(myName, std::string(1024, 'x'));
    }
    myFolder.Write("x.dat", myBytes + EndMarker);
    EXPECT_TRUE(myArchive.ReadArchive());
    ListedItems myList;
    myList.Items.resize(1); // an older one
    myArchive.FillList(myList);
    ASSERT_EQ(myList.Items.size(), 2 * std::size(myCases));
    for (size_t i = 0; i < myList.Items.size(); ++i)
    {
        const auto& [myName, myIcon, myColour] = myCases[i / 2];
        const ListItem& myItem = myList.Items[i];
        const bool isInFolder = i % 2 == 0;
        SCOPED_TRACE(myName);
        EXPECT_EQ(ToUtf8(myItem.Caption), myName);
        EXPECT_EQ(myItem.SmallIcon, myIcon);
        EXPECT_EQ(myItem.ForeColor, myColour);
        EXPECT_EQ(myItem.SubItems[0], isInFolder ? u"1 KB" : u"2 KB");
        EXPECT_EQ(myItem.SubItems[1], isInFolder ? u"\\i\\" : u"");
        EXPECT_EQ(ToUtf8(myItem.Tag), (isInFolder ? "\\i\\" : "") + myName);
    }
    EXPECT_EQ(myArchive.FileCount(), u"24");
    EXPECT_EQ(myArchive.Status(), u"24 KB in 24 Dateien");
    myFolder.Write("x.dat", Magic + Integer(2) + "\\a" + Integer(INT32_MAX));
    std::filesystem::resize_file(myFolder / "x.dat", 23U + INT32_MAX);
    std::ofstream(myFolder / "x.dat", std::ios::app | std::ios::binary) << Entry("\\b", "x") + EndMarker;
    EXPECT_TRUE(myArchive.ReadArchive());
    EXPECT_EQ(myArchive.TotalSize(), 2147483648.0);
    EXPECT_EQ(ErrorOf([&] { myArchive.Status(); }), ErrorNumber::Overflow);
}

TEST_F(Archive, Concat_JoinsAtOneSeparator)
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
