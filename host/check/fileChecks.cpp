// Checks of the files that a page stages, and of the addresses that it gives for them.
#include "check/pageCases.h"
#include "common/paths.h"
#include "text/encodings.h"

#include <utility>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

/// The page of FullScript with a link in place of its own, without a tune.
Text LinkedPage(ServedPlugin& theServed, TextView myLink)
{
    return theServed.Output(LinkedScript(myLink) + Param(u"playmidi", u"0"));
}

/// The host's address of files, the record's file name, and the address of both.
constexpr struct
{
    TextView Folder;
    TextView Name;
    TextView Address;
} AddressCases[] = {
    {u"files", u"nota.pdf", u"files/nota.pdf"},
    {u"files/", u"nota.pdf", u"files/nota.pdf"},
    {u"files\\", u"nota.pdf", u"files/nota.pdf"},
    {u"files\\/", u"nota.pdf", u"files/nota.pdf"},
    {u"files/\\", u"nota.pdf", u"files//nota.pdf"},
    {u"files//", u"nota.pdf", u"files//nota.pdf"},
    {u"files\\\\", u"nota.pdf", u"files\\/nota.pdf"},
    {u"files", u"/nota.pdf", u"files/nota.pdf"},
    {u"files/", u"/nota.pdf", u"files/nota.pdf"},
    {u"files/", u"\\nota.pdf", u"files/nota.pdf"},
    {u"files/", u"/\\nota.pdf", u"files/nota.pdf"},
    {u"files/", u"//nota.pdf", u"files//nota.pdf"},
    {u"files/", u"\\/nota.pdf", u"files//nota.pdf"},
    {u"", u"nota.pdf", u"/nota.pdf"},
    {u"/", u"nota.pdf", u"/nota.pdf"},
    {u"http://x/a?b=", u"n ñ&.pdf", u"http://x/a?b=/n ñ&.pdf"},
};

void Addresses(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const auto& [myFolder, myName, myAddress] : AddressCases)
    {
        for (const int32_t myKind : {4, 5})
        {
            myServed.State.Kind = myKind;
            myServed.State.RecordFilename = myName;
            myServed.State.FileURL = myKind == 5 ? Text(myFolder) : u"other/";
            myServed.State.ImageURL = myKind == 4 ? Text(myFolder) : u"images/";
            ExpectPart("the page with a file at " + Shown(myFolder) + " named " + Shown(myName),
                       JoinTexts({u"z-index:50\"><a href=\"", myAddress, u"\"><img src="}),
                       LinkedPage(myServed, u"UID:4711"));
        }
    }
}

void PlainJoins(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const TextView myURL : {u"", u"x", u"x/", u"http://x/?y="})
    {
        myServed.State.ImageURL = myURL;
        myServed.State.MediaURL = myURL;
        const Text myPage = myServed.Output(LinkedScript(u""));
        ExpectPart("the page with files at " + Shown(myURL), JoinTexts({u"<img src=\"", myURL, u"qelspr17.gif\""}),
                   myPage);
        ExpectPart("the page with files at " + Shown(myURL), JoinTexts({u"<embed src=\"", myURL, u"qelmid17.mid\""}),
                   myPage);
    }
    for (const TextView myName : {u"", u"5", u"Uno_2", u"-1"})
    {
        myServed.State.UniqueName = myName;
        myServed.Output(FullScript);
        ExpectFile("the picture of the name " + Shown(myName), PictureBytes(),
                   "images/qelspr" + ToUtf8(myName) + ".gif");
        ExpectFile("the tune of the name " + Shown(myName), TuneBytes, "media/qelmid" + ToUtf8(myName) + ".mid");
    }
}

void CopiedOnce(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const auto& [myKind, myFolder] : {std::pair(4, "images"), std::pair(5, "files")})
    {
        myServed.State.Kind = myKind;
        const fs::path myTarget = fs::path(myFolder) / "nota.pdf";
        const auto ExpectPage = [&](const std::string& myWhat)
        {
            ExpectPart("the page " + myWhat, u"<a href=\"" + FromUtf8(PortableTextOf(myTarget)) + u"\">",
                       LinkedPage(myServed, u"UID:4711"));
        };
        WriteFile("data/nota.pdf", "first");
        ExpectPage("with a new file");
        ExpectFile("the copy of a linked file", "first", myTarget);
        WriteFile("data/nota.pdf", "second");
        ExpectPage("with a file that has a copy");
        ExpectFile("the copy of a linked file that changed", "first", myTarget);
        fs::remove("data/nota.pdf");
        ExpectPage("with a file that has a copy alone");
        ExpectFile("the copy of a linked file that has gone", "first", myTarget);
        fs::remove(myTarget);
        ExpectPage("with a file that is missing");
        Expect("no copy is made of a missing file", !fs::exists(myTarget));
        fs::create_directory(myTarget);
        ExpectPage("with a folder in the way of the file");
        fs::remove(myTarget);
        WriteFile("data/nota.pdf", "");
        ExpectPage("with an empty file");
        ExpectFile("the copy of an empty file", "", myTarget);
        WriteFile("data/nota.pdf", std::string(100'000, 'x'));
        ExpectPage("with a file that has an empty copy");
        ExpectFile("an empty copy stays", "", myTarget);
    }
    Expect("a linked file is put into its own folder alone", !fs::exists("media/nota.pdf"));
}

void Replaced(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    for (const char* myFile : {"images/qelspr17.gif", "media/qelmid17.mid"})
    {
        WriteFile(myFile, std::string(100'000, 'x'));
    }
    myServed.Output(FullScript);
    ExpectFile("a staged picture in place of an older one", PictureBytes(), "images/qelspr17.gif");
    ExpectFile("a staged tune in place of an older one", TuneBytes, "media/qelmid17.mid");
    const std::string myArchive = ReadFile("data/archivo.dat");
    myServed.Output(FullScript);
    ExpectFile("the archive after the page", myArchive, "data/archivo.dat");
    ExpectFile("the record's file after the page", "paper", "data/nota.pdf");
}

void NothingStaged(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    const auto ExpectStaged = [&](const std::string& myWhat, const Text& mySettings, bool myHasPicture, bool myHasTune)
    {
        fs::remove("images/qelspr17.gif");
        fs::remove("media/qelmid17.mid");
        fs::remove("files/nota.pdf");
        myServed.Output(Text(FullScript) + mySettings);
        Expect("the picture is staged for a page " + myWhat + " only if it is shown",
               fs::exists("images/qelspr17.gif") == myHasPicture);
        Expect("the tune is staged for a page " + myWhat + " only if it is played",
               fs::exists("media/qelmid17.mid") == myHasTune);
        Expect("the file of the link is staged for a page " + myWhat + " only if its picture is shown",
               fs::exists("files/nota.pdf") == myHasPicture);
    };
    ExpectStaged("of everything", u"", true, true);
    ExpectStaged("without its picture", Param(u"showimage", u"0"), false, true);
    ExpectStaged("without its tune", Param(u"playmidi", u"0"), true, false);
    ExpectStaged("without both", Param(u"showimage", u"0") + Param(u"playmidi", u"0"), false, false);
    ExpectStaged("of a tune without a motif", EmptyParam(u"image"), false, false);
}

constexpr Check FileCheckList[] = {
    {"files.addresses", "The address of a linked file is joined with one slash", Addresses},
    {"files.joins", "Other addresses and names are joined as the host gives them", PlainJoins},
    {"files.copied-once", "A linked file is copied once, and its address is given whatever comes of it", CopiedOnce},
    {"files.replaced", "A staged picture or tune replaces an older one, and the site's files stay as they are",
     Replaced},
    {"files.needed-alone", "A page stages the files that it shows or plays, and no other", NothingStaged},
};

} // namespace

std::span<const Check> FileChecks()
{
    return FileCheckList;
}

} // namespace qel::host
