/// Names that differ in case alone, and links to files, on their way from an archive or a host to the page's folders.
#include "archive/classArchive.h"
#include "FormTest.h"
#include "text/errors.h"

namespace qel
{
namespace
{

using namespace std::string_literals;

class Case : public FormTest
{
protected:
    Case()
    {
        myHost.UniqueName = u"a";
        myArchive.BaseFolder(myFolder.Logical(u"foreign"));
        myArchive.ArchiveFilename(myFolder.Logical(u"data\\m.dat"));
    }

    classArchive myArchive{myFiles}; ///< of another author, with the names as they are
};

TEST_F(Case, Pack_NamesThatAreAlike_IsRefused)
{
    myFolder.Write("foreign/FOO/a", "");
    std::filesystem::create_symlink(myFolder / "data", myFolder / "foreign/foo");
    EXPECT_TRUE(myArchive.PackArchive()) << "the link is not looked at";
    myFolder.Write("foreign/FOO/A", "");
    EXPECT_FALSE(myArchive.PackArchive());
    EXPECT_EQ(myArchive.FailureNumber(), ErrorNumber::FileAlreadyExists);
}

TEST_F(Case, Unpack_ReplacesTheNameItselfAndNotTheTargetOfALink)
{
    myFolder.Write("foreign/a.txt", "new");
    myFolder.Write("foreign/img/b.gif", "");
    ASSERT_TRUE(myArchive.PackArchive());
    myFolder.Write("base/A.TXT", "another");
    myFolder.MakeFolder("base/Img");
    myFolder.Write("outside", "mine");
    std::filesystem::create_symlink(myFolder / "outside", myFolder / "base/Img/b.gif");
    myArchive.BaseFolder(myFolder.Logical(u"base"));
    EXPECT_TRUE(myArchive.UnPackArchive());
    EXPECT_EQ(myFolder.Read("base/a.txt"), "new");
    EXPECT_EQ(myFolder.Read("base/A.TXT"), "another");
    EXPECT_FALSE(myFolder.Exists("base/img")) << "the folder that is there has been found";
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(myFolder / "base/Img/b.gif")));
    EXPECT_EQ(myFolder.Read("outside"), "mine");
}

TEST_F(Case, Unpack_LinkThatCannotBeDeleted_IsNotFollowed)
{
    myFolder.Write("foreign/a", "new");
    ASSERT_TRUE(myArchive.PackArchive());
    classArchive myUnpacking(myFiles);
    myUnpacking.ArchiveFilename(myFolder.Logical(u"data\\m.dat"));
    myUnpacking.BaseFolder(myFolder.Logical(u"base"));
    int i = 0;
    do
    {
        std::filesystem::remove_all(myFolder / "base");
        myFolder.MakeFolder("base");
        myFolder.Write("outside", "mine");
        std::filesystem::create_symlink(myFolder / "outside", myFolder / "base/a");
        myFiles.FailAt(++i, Fault::Once);
        myUnpacking.UnPackArchive();
        EXPECT_EQ(myFolder.Read("outside"), "mine") << i;
    } while (myFiles.HasFailed);
}

TEST_F(Case, Import_ReplacesWhatAForeignArchiveNamesInUpperCase)
{
    myFolder.Write("foreign/QELSPR.GIF", Gif(10, 10));
    myFolder.Write("foreign/Qelspr.JPG", "other format");
    myFolder.Write("foreign/QelMid.Mid", "old tune");
    ASSERT_TRUE(myArchive.PackArchive()) << "as somebody else would";
    myFolder.Write("new.gif", Gif(20, 15));
    myFolder.Write("new.mid", "new tune");
    myForm->Script(u"<pg.file filename=M.DAT><pg.param name=image value=qelspr.gif><pg.param name=imagefolder "
                   u"value=(USER)><pg.param name=midi value=qelmid.mid><pg.param name=midifolder value=(USER)>"
                   u"<pg.param name=imagemode value=gif><pg.param name=midimode value=1>");
    EXPECT_NE(myForm->Output(), u"[Error de plug-in]") << "the files are found as they are";
    EXPECT_EQ(myFolder.Read("site/qelmida.mid"), "old tune");
    Open(
        [&](FormMainEvents& theEvents)
        {
            myWindow.Chosen = myFolder.Logical(u"new.gif");
            theEvents.lblImage_Click();
            myWindow.Chosen = myFolder.Logical(u"new.mid");
            theEvents.lblMIDI_Click();
            theEvents.cmdOK_Click();
        });
    EXPECT_EQ(myForm->ExitButton, FormMain::Confirmed) << testing::PrintToString(myWords);
    myForm->Settings().myShowImage = myForm->Settings().myPlayMIDI = true;
    EXPECT_NE(myForm->Output(), u"[Error de plug-in]");
    EXPECT_EQ(myFolder.Read("site/qelspra.gif"), Gif(20, 15));
    EXPECT_EQ(myFolder.Read("site/qelmida.mid"), "new tune");
    EXPECT_EQ(myFiles.List(myForm->TempFolder() + u"*", Listing::PlainFiles).size(), 2U);
}

TEST_F(Case, Commit_PacksOneOfTheNamesThatAForeignArchiveHasInTwoCases)
{
    const auto myEntry = [](const std::string& myName, const std::string& myContent)
    {
        return std::string{static_cast<char>(myName.size()), 0, 0, 0} + myName +
               std::string{static_cast<char>(myContent.size()), 0, 0, 0} + myContent;
    };
    myFolder.Write("data/m.dat", "qelarchive1.0" + myEntry("\\QELMID.MID", "upper") + myEntry("\\qelmid.mid", "lower") +
                                     std::string(4, '\0'));
    myForm->Script(u"<pg.file filename=m.dat><pg.param name=midi value=qelmid.mid><pg.param name=midifolder "
                   u"value=(USER)><pg.param name=midimode value=1>");
    Open([](FormMainEvents& theEvents) { theEvents.cmdOK_Click(); });
    EXPECT_EQ(myForm->ExitButton, FormMain::Confirmed) << testing::PrintToString(myWords);
    EXPECT_EQ(myFolder.Read("data/m.dat"), "qelarchive1.0" + myEntry("\\qelmid.mid", "lower") + std::string(4, '\0'));
}

TEST_F(Case, Staging_KeepsModulesAndLinkedFilesApart)
{
    myFolder.Write("data/doc.pdf", "small");
    myFolder.Write("data/Doc.pdf", "large");
    myForm->Script(u"<pg.param name=image value=Globo.gif><pg.param name=imagefolder value=Fiestas>"
                   u"<pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas>"
                   u"<pg.param name=link value=UID:7>");
    for (const auto& [myUniqueName, myLinkedFile] : {std::pair(u"a", u"doc.pdf"), {u"A", u"Doc.pdf"}})
    {
        myHost.UniqueName = myUniqueName;
        myHost.RecordFilename = myLinkedFile;
        EXPECT_NE(myForm->Output(), u"[Error de plug-in]");
    }
    for (const char* const myName : {"qelspra.gif", "qelsprA.gif", "qelmida.mid", "qelmidA.mid"})
    {
        EXPECT_TRUE(myFolder.Exists("site/"s + myName)) << myName;
    }
    EXPECT_EQ(myFolder.Read("site/doc.pdf"), "small");
    EXPECT_EQ(myFolder.Read("site/Doc.pdf"), "large");
}

} // namespace
} // namespace qel
