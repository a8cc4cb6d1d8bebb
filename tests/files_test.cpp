/// The files of the machine as the logic sees them, on every system. What is particular to one is tested in its folder.
#include "FilesTest.h"

#include <algorithm>
#include <random>

namespace qel
{
namespace
{

using namespace ErrorNumber;
namespace fs = std::filesystem;

using Names = std::vector<Text>;

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

TEST_F(FilesTest, EmptyPath_NamesNothing)
{
    EXPECT_EQ(ErrorOf([&] { myFiles.OpenForReading(u""); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(ErrorOf([&] { myFiles.MakeFolder(u""); }), ErrorNumber::PathNotFound);
    EXPECT_FALSE(myFiles.Delete(u""));
    EXPECT_FALSE(myFiles.IsFolder(u""));
    EXPECT_NE(myFiles.List(u"*", Listing::FilesAndFolders), std::vector<Text>()) << "of the current folder";
}

TEST_F(FilesTest, Find_ExactPathElseWithoutRegardToCase)
{
    for (const char* const myName : {"Img/Logo.GIF", "Img/\xC3\x81rbol.txt"})
    {
        myFolder.Write(myName, myName);
    }
    for (const auto& [myAsked, myFound] : {std::pair<TextView, const char*>(u"Img\\Logo.GIF", "Img/Logo.GIF"),
                                           {u"img\\\\..\\.\\IMG/LOGO.gif", "Img/Logo.GIF"},
                                           {u"IMG/áRBOL.TXT", "Img/\xC3\x81rbol.txt"}})
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

TEST_F(FilesTest, Open_NoPlainFileOrNoName_IsRefused)
{
    myFolder.Write("file", "");
    myFolder.MakeFolder("folder");
    const std::tuple<int32_t, int32_t, Names> myCases[] = {
        // the errors of reading and of writing
        {PathNotFound, PathNotFound, {u"none\\x", u"file\\x"}},
        {PathAccess, PathAccess, {u"folder"}},
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
    {
        const auto myExclusive = myFiles.OpenForReading(In(u"a"));
        EXPECT_EQ(Try(&Files::OpenForReading, u"a"), PermissionDenied);
        EXPECT_EQ(Try(&Files::OpenShared, u"a"), PermissionDenied);
        EXPECT_EQ(Try(&Files::Copy, u"a", u"copy"), PermissionDenied);
        EXPECT_FALSE(myFolder.Exists("copy"));
    }
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
        if (myRandom() % 3 == 0)
        {
            myFile->Skip(int64_t(n));
        }
        else
        {
            EXPECT_TRUE(ReadBytes(*myFile, n) == myContent.substr(myAt, n)) << myAt;
        }
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

TEST_F(FilesTest, Copy_BytesButNotOntoItself)
{
    const std::string myContent = RandomBytes(3'000'000);
    myFolder.Write("a", myContent);
    myFolder.Write("old", std::string(4'000'000, 'x'));
    for (const TextView myTarget : {u"new", u"old"})
    {
        EXPECT_EQ(Try(&Files::Copy, u"A", myTarget), 0);
        EXPECT_TRUE(ReadAll(myTarget) == myContent) << testing::PrintToString(myTarget);
    }
    EXPECT_EQ(Try(&Files::Copy, u"none", u"x"), FileNotFound);
    EXPECT_FALSE(myFolder.Exists("x"));
    fs::create_hard_link(myFolder / "a", myFolder / "hard");
    for (const TextView mySelf : {u"a", u"hard"})
    {
        EXPECT_EQ(Try(&Files::Copy, u"a", mySelf), PermissionDenied);
    }
    EXPECT_TRUE(myFolder.Read("a") == myContent);
}

TEST_F(FilesTest, List_EntriesThatMatch)
{
    for (const char* const myName : {"a.gif", "B.GIF", "c", "d.gift", "Sub/x.gif", "\xC3\x91.gif"})
    {
        myFolder.Write(myName, "");
    }
    LinkFolder(myFolder / "Sub", myFolder / "sublink");
    const std::tuple<TextView, Listing, Names> myCases[] = {
        {u"*.*", Listing::PlainFiles, {u"B.GIF", u"a.gif", u"c", u"d.gift", u"Ñ.gif"}},
        {u"*",
         Listing::FilesAndFolders,
         {u".", u"..", u"B.GIF", u"Sub", u"a.gif", u"c", u"d.gift", u"sublink", u"Ñ.gif"}},
        {u"*.Gif", Listing::FilesAndFolders, {u"B.GIF", u"a.gif", u"Ñ.gif"}},
        {u"?.gif", Listing::PlainFiles, {u"B.GIF", u"a.gif", u"Ñ.gif"}},
        {u"ñ*", Listing::PlainFiles, {u"Ñ.gif"}},
        {u"*.*f*", Listing::PlainFiles, {u"B.GIF", u"a.gif", u"d.gift", u"Ñ.gif"}},
        {u"SUBLINK/*", Listing::FilesAndFolders, {u".", u"..", u"x.gif"}},
        {u"none\\none\\*", Listing::FilesAndFolders, {}},
        {u"c\\*.*", Listing::FilesAndFolders, {}}};
    for (const auto& [myPattern, myListing, myExpected] : myCases)
    {
        EXPECT_EQ(List(myPattern, myListing), myExpected) << testing::PrintToString(myPattern);
    }
}

TEST_F(FilesTest, Look_FoldersAndLinksAreToldApart)
{
    myFolder.Write("Sub/x", "");
    LinkFolder(myFolder / "Sub", myFolder / "link");
    const std::tuple<TextView, EntryKind, bool, bool> myCases[] = {// a separator hides no link
                                                                   {u"LINK\\", EntryKind::Link, true, true},
                                                                   {u"SUB", EntryKind::Folder, true, false},
                                                                   {u"Sub\\X", EntryKind::File, false, false}};
    for (const auto& [myName, myKind, myIsFolder, myIsLink] : myCases)
    {
        SCOPED_TRACE(testing::PrintToString(myName));
        EXPECT_EQ(myFiles.Look(In(myName)).Kind, myKind);
        EXPECT_EQ(myFiles.IsFolder(In(myName)), myIsFolder);
        EXPECT_EQ(myFiles.IsLink(In(myName)), myIsLink);
    }
    EXPECT_EQ(Try(&Files::Look, u"none"), FileNotFound);
    EXPECT_EQ(Try(&Files::Look, u"none\\x"), PathNotFound);
    for (const TextView mySafe : {u"Sub", u"SUB\\", u"none\\", u"none\\none"})
    {
        EXPECT_EQ(Try(&Files::DemandOwnFolder, mySafe), 0) << testing::PrintToString(mySafe);
    }
    for (const TextView myUnsafe : {u"link", u"Link\\\\", u"Sub\\x"})
    {
        EXPECT_EQ(Try(&Files::DemandOwnFolder, myUnsafe), PathAccess) << testing::PrintToString(myUnsafe);
    }
}

TEST_F(FilesTest, MakeAndDelete_FilesFoldersAndLinks)
{
    myFolder.Write("Sub/x", "");
    LinkFolder(myFolder / "Sub", myFolder / "link");
    EXPECT_EQ(Try(&Files::MakeFolder, u"Sub\\"), PathAccess);
    EXPECT_EQ(Try(&Files::MakeFolder, u"SUB\\x"), PathAccess);
    EXPECT_EQ(Try(&Files::MakeFolder, u"none\\x"), PathNotFound);
    EXPECT_EQ(Try(&Files::MakeFolder, u"SUB\\New\\"), 0);
    EXPECT_TRUE(myFolder.Exists("Sub/New"));
    EXPECT_EQ(Try(&Files::Delete, u"sub\\New"), PathAccess);
    EXPECT_FALSE(myFiles.Delete(In(u"sub\\y")));
    EXPECT_EQ(Try(&Files::Delete, u"sub\\none\\y"), PathNotFound);
    if (LinksCanBeDeleted) // all but Wine's
    {
        EXPECT_TRUE(myFiles.Delete(In(u"link")));
        EXPECT_FALSE(myFolder.Exists("link"));
        EXPECT_TRUE(myFolder.Exists("Sub/x"));
    }
}

} // namespace
} // namespace qel
