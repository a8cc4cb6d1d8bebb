// Checks of design archives, as a page unpacks them.
#include "check/pageCases.h"
#include "check/system.h"
#include "common/paths.h"
#include "text/encodings.h"

#include <algorithm>
#include <utility>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

const ArchivedFile& Picture()
{
    static const ArchivedFile myPicture{"\\qelspr.gif", std::string(PictureBytes())};
    return myPicture;
}

const ArchivedFile& Tune()
{
    static const ArchivedFile myTune{"\\qelmid.mid", std::string(TuneBytes)};
    return myTune;
}

/// Bytes of which no two blocks of an archive's size are alike.
std::string VariedBytes(size_t myLength)
{
    std::string theBytes(myLength, '\0');
    for (size_t i = 0; i < myLength; ++i)
    {
        theBytes[i] = static_cast<char>(i * i / 251 + i);
    }
    return theBytes;
}

/// The picture with a comment, so that it has this many bytes; at least 100.
std::string PictureOfSize(size_t myLength)
{
    constexpr size_t HeaderSize = 19; // header, screen and colours
    constexpr size_t LongestBlock = 255;
    const std::string myPicture(PictureBytes());
    std::string myComment = "\x21\xFE";
    for (size_t myRest = myLength - myPicture.size() - 3; myRest > 0;)
    {
        // A block has a length of at least one; no block may take all but one byte of the rest.
        const size_t myBlock = std::min(myRest, LongestBlock + 1) - (myRest == LongestBlock + 2 ? 1 : 0) - 1;
        myComment += static_cast<char>(myBlock) + VariedBytes(myRest + myBlock).substr(myRest);
        myRest -= myBlock + 1;
    }
    return myPicture.substr(0, HeaderSize) + myComment + '\0' + myPicture.substr(HeaderSize);
}

/// A module with an archive of its own, on a page.
class ArchivedModule
{
public:
    explicit ArchivedModule(const CheckContext& myContext) : myComponent(myContext), Served(myComponent, myContext) {}

    /// The page with these bytes as the archive; what was staged before is deleted first.
    Text Output(const std::string& myArchive, const Text& myScript = LinkedScript(u""))
    {
        for (const char* myFile : {"images/qelspr17.gif", "media/qelmid17.mid"})
        {
            fs::remove(myFile);
        }
        WriteFile("data/archivo.dat", myArchive);
        return Served.Output(myScript);
    }

    void ExpectPage(const std::string& myWhat, const std::string& myArchive, std::string_view myPicture,
                    std::string_view myTune, const Text& myScript = LinkedScript(u""))
    {
        ExpectPart("the page with " + myWhat, u"</script>", Output(myArchive, myScript));
        ExpectFile("the picture of " + myWhat, myPicture, "images/qelspr17.gif");
        ExpectFile("the tune of " + myWhat, myTune, "media/qelmid17.mid");
    }

    void ExpectError(const std::string& myWhat, const std::string& myArchive, const Text& myScript = LinkedScript(u""))
    {
        ExpectText("the page with " + myWhat, ErrorPage, Output(myArchive, myScript));
        ExpectPart("ErrorText with " + myWhat, u"\"53: ", Read(*Served.Plugin.Get(), &QelPlugin::get_ErrorText));
    }

private:
    OpenedComponent myComponent;

public:
    ServedPlugin Served;
};

/// The folder into which the component unpacks.
fs::path UnpackFolder()
{
    for (const fs::directory_entry& myEntry : fs::recursive_directory_iterator(fs::temp_directory_path()))
    {
        if (myEntry.is_directory() && myEntry.path().filename() == "qelpluginanimtemp")
        {
            return myEntry.path();
        }
    }
    FailCheck("a folder qelpluginanimtemp below the one for temporary files", "there is none");
}

/// Fails if a file of this name lies anywhere but in the folder into which the component unpacks.
void ExpectInside(const std::string& myName, const CheckContext& myContext)
{
    const fs::path myInside = UnpackFolder();
    for (const fs::path& myPath : fs::recursive_directory_iterator(myContext.Folder.parent_path()))
    {
        const auto myWay = myPath.lexically_relative(myInside);
        if (TextOf(myPath.filename()).find(myName) != std::string::npos && *myWay.begin() == "..")
        {
            FailCheck("nothing of an archive outside of " + TextOf(myInside), TextOf(myPath));
        }
    }
}

void Sizes(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    for (const size_t mySize : {0U, 1U, 31'999U, 32'000U, 32'001U, 63'999U, 64'000U, 64'001U, 200'000U})
    {
        const std::string myBytes = VariedBytes(mySize);
        myModule.ExpectPage("a tune of " + std::to_string(mySize) + " bytes",
                            ArchiveOf({Picture(), {"\\qelmid.mid", myBytes}}), PictureBytes(), myBytes);
        myModule.ExpectPage("the picture after " + std::to_string(mySize) + " bytes",
                            ArchiveOf({{"\\qelmid.mid", myBytes}, Picture()}), PictureBytes(), myBytes);
    }
    for (const size_t mySize : {31'999U, 32'000U, 32'001U, 64'001U, 150'000U})
    {
        const std::string myBytes = PictureOfSize(mySize);
        ExpectNumber("the bytes of the picture", static_cast<int64_t>(mySize), static_cast<int64_t>(myBytes.size()));
        myModule.ExpectPage("a picture of " + std::to_string(mySize) + " bytes",
                            ArchiveOf({{"\\qelspr.gif", myBytes}, Tune()}), myBytes, TuneBytes);
    }
}

/// A name in the archive, and the name in the script.
constexpr std::pair<const char*, TextView> ArchivedNames[] = {
    {"qelspr.gif", u"qelspr.gif"},
    {"\\sub\\qelspr.gif", u"sub\\qelspr.gif"},
    {"\\a\\b\\c d\\x.gif", u"a\\b\\c d\\x.gif"},
    {"\\canci\xF3n \x80.gif", u"canción €.gif"},
    {"\\a.b.c.gif", u"a.b.c.gif"},
    {"\\x y.gif", u"x y.gif"},
    {"\\sub.d\\x.gif", u"sub.d\\x.gif"},
};

void Names(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    for (const auto& [myArchived, myName] : ArchivedNames)
    {
        if (!CodePageIsWestern() && ToUtf8(myName).size() != myName.size())
        {
            continue;
        }
        myModule.ExpectPage("a picture that an archive has as " + Shown(FromWindows1252(myArchived)),
                            ArchiveOf({Tune(), {myArchived, std::string(PictureBytes())}}), PictureBytes(), TuneBytes,
                            LinkedScript(u"") + Param(u"image", myName));
    }
    constexpr int OtherFiles = 500;
    std::vector<ArchivedFile> myFiles;
    myFiles.reserve(OtherFiles + 2);
    for (int i = 0; i < OtherFiles; ++i)
    {
        myFiles.push_back({"\\f" + std::to_string(i % 7) + "\\" + std::to_string(i) + ".txt", std::to_string(i)});
    }
    myFiles.insert(myFiles.end(), {Picture(), Tune()});
    myModule.ExpectPage("500 other files", ArchiveOf(myFiles), PictureBytes(), TuneBytes);
    myModule.ExpectPage("a file that comes twice, the last of which counts",
                        ArchiveOf({{"\\qelmid.mid", std::string(100, 'x')}, Picture(), Tune()}), PictureBytes(),
                        TuneBytes);
}

void HostileNames(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    const std::string myAbsolute = TextOf(myContext.Folder / "escaped.txt");
    for (const std::string& myName :
         {std::string("\\..\\escaped.txt"), std::string("..\\escaped.txt"), std::string("\\..\\..\\..\\escaped.txt"),
          std::string("\\sub\\..\\..\\escaped.txt"), std::string("\\../escaped.txt"),
          std::string("\\../../../escaped.txt"), std::string("../escaped.txt"), std::string("\\.\\..\\escaped.txt"),
          std::string("\\..\\images\\escaped.txt"), myAbsolute, "\\" + myAbsolute,
          std::string("\\..\\qelpluginanimtemp2\\escaped.txt"), std::string("\\..\\escaped\\x"),
          std::string("\\") + std::string(5000, 'e') + "scaped.txt"})
    {
        // The entries before it are unpacked.
        myModule.Output(ArchiveOf({Picture(), Tune(), {myName, "hostile"}}));
        ExpectFile("the picture before a hostile name", PictureBytes(), "images/qelspr17.gif");
        ExpectInside("escaped", myContext);
    }
}

void LinksInTheWay(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    myModule.Output(ArchiveOf({Picture(), Tune()}));
    const fs::path myInside = UnpackFolder();
    const fs::path myOutside = myContext.Folder / "outside";
    fs::create_directory(myOutside);
    WriteFile(myOutside / "kept.txt", "kept");
    MakeLink(myOutside, myInside / "sub");
    myModule.Output(ArchiveOf({Picture(), Tune(), {"\\sub\\escaped.txt", "hostile"}, {"\\sub\\kept.txt", "hostile"}}));
    ExpectInside("escaped", myContext);
    ExpectFile("a file that a link to its folder leads to", "kept", myOutside / "kept.txt");
    fs::remove(myInside / "sub");
    fs::remove(myInside / "qelmid.mid");
    MakeLink(myOutside / "kept.txt", myInside / "qelmid.mid");
    myModule.ExpectPage("a link in the way of a file", ArchiveOf({Picture(), Tune()}), PictureBytes(), TuneBytes);
    ExpectFile("the file that the link leads to", "kept", myOutside / "kept.txt");
}

void Magic(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    const std::string myArchive = ArchiveOf({Picture(), Tune()});
    for (const char* myMagic : {"qelarchive1.1", "qelarchive2.0", "QELARCHIVE1.0", "Qelarchive1.0", "qelarchive1,0",
                                "qelarchive 10", "\0elarchive1.0"})
    {
        const std::string myBytes = std::string(myMagic, 13) + myArchive.substr(13);
        myModule.ExpectError("an archive that begins with " + Shown(FromWindows1252(myBytes.substr(0, 13))), myBytes);
        ExpectFile("an archive of another kind after the page", myBytes, "data/archivo.dat");
    }
    for (const std::string& myBytes : {std::string(), myArchive.substr(0, 5), myArchive.substr(0, 13),
                                       myArchive.substr(1), ArchiveOf({}), "\xEF\xBB\xBF" + myArchive})
    {
        myModule.ExpectError("an archive of " + std::to_string(myBytes.size()) + " bytes", myBytes);
    }
    myModule.ExpectPage("a whole archive after them", myArchive, PictureBytes(), TuneBytes);
}

void Truncated(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    const std::string myStart = ArchiveOf({Picture(), Tune()});
    const std::string myFiles = myStart.substr(0, myStart.size() - 4);
    const std::string myName = "\\more.txt";
    const auto ExpectFirst = [&](const std::string& myWhat, const std::string& myRest)
    {
        myModule.ExpectPage("whole files before " + myWhat, myFiles + myRest, PictureBytes(), TuneBytes);
    };
    ExpectFirst("the end of the file", "");
    ExpectFirst("half a length", std::string("\x09\0", 2));
    ExpectFirst("a length without a name", FourBytes(myName.size()));
    ExpectFirst("half a name", FourBytes(myName.size()) + myName.substr(0, 4));
    ExpectFirst("a name without a size", FourBytes(myName.size()) + myName);
    ExpectFirst("a size without bytes", FourBytes(myName.size()) + myName + FourBytes(1000));
    ExpectFirst("a size beyond the end", FourBytes(myName.size()) + myName + FourBytes(INT32_MAX) + "bytes");
    ExpectFirst("a negative size", FourBytes(myName.size()) + myName + FourBytes(0xFFFFFFFFU) + "bytes");
    ExpectFirst("a name beyond the end", FourBytes(INT32_MAX) + myName);
    ExpectFirst("a name of negative length", FourBytes(0xFFFFFFFFU) + myName);
    ExpectFirst("bytes after the end", FourBytes(0) + "more bytes");
    const std::string myPicture = ArchiveOf({Picture()});
    myModule.ExpectError("an archive that ends before the tune", myPicture);
    myModule.ExpectError("a tune after the end of the archive", myPicture + ArchiveOf({Tune()}).substr(13));
    myModule.ExpectError("an archive that ends in the name of the picture",
                         ArchiveOf({Tune(), Picture()}).substr(0, 13 + 8 + 11 + 4 + 8));
}

void Emptied(const CheckContext& myContext)
{
    ArchivedModule myModule(myContext);
    const std::string myWhole = ArchiveOf({Picture(), Tune()});
    const Text myNoArchive = ReplaceAll(LinkedScript(u""), u"<pg.file filename=\"archivo.dat\">\r\n", u"");
    const auto Whole = [&]
    {
        myModule.ExpectPage("a whole archive", myWhole, PictureBytes(), TuneBytes);
    };
    Whole();
    myModule.ExpectError("an archive without the tune that another one had", ArchiveOf({Picture()}));
    Whole();
    myModule.ExpectError("an archive without the picture that another one had", ArchiveOf({Tune()}));
    Whole();
    myModule.ExpectError("a module without an archive after one with it", myWhole, myNoArchive);
    Whole();
    myModule.ExpectError("an archive that is not there after one that was", myWhole,
                         ReplaceAll(LinkedScript(u""), u"archivo.dat", u"otro.dat"));
    Whole();
    WriteFile(UnpackFolder() / "x.gif", PictureBytes());
    myModule.ExpectError("a file that somebody put where archives are unpacked", myWhole,
                         LinkedScript(u"") + Param(u"image", u"x.gif"));
    const std::string myOther = PictureOfSize(500);
    Whole();
    myModule.ExpectPage("another archive with files of the same names",
                        ArchiveOf({{"\\qelspr.gif", myOther}, {"\\qelmid.mid", "other"}}), myOther, "other");
}

constexpr Check ArchiveCheckList[] = {
    {"archives.sizes", "Files of an archive come out to the last byte, whatever their size", Sizes},
    {"archives.names", "Files come out under their names, in folders and with letters of the code page", Names},
    {"archives.hostile-names", "No name in an archive leads out of the folder into which it is unpacked", HostileNames},
    {"archives.links", "Links in the way of an archive's files are not followed", LinksInTheWay},
    {"archives.magic", "A file that does not begin as an archive does is refused, and stays as it is", Magic},
    {"archives.truncated", "The files before the damage in an archive are unpacked", Truncated},
    {"archives.emptied", "A page uses the files of its own module's archive, and none of an earlier one", Emptied},
};

} // namespace

std::span<const Check> ArchiveChecks()
{
    return ArchiveCheckList;
}

} // namespace qel::host
