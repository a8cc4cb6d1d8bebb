// Checks of the page that a module gives.
#include "check/pageCases.h"
#include "common/paths.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

constexpr TextView FromDay = u"if (new Date()<new Date(2005, 0, 1)) showme3=false;\r\n";
constexpr TextView UpToDay = u"if (new Date()>new Date(2005, 1, 1)) showme3=false;\r\n";

/// The page of a module that shows and plays nothing, with the params of its period.
Text PeriodPage(const ServedPlugin& myServed, const Text& myDates)
{
    return myServed.Output(Param(u"image", u"a.gif") + Param(u"showimage", u"0") + Param(u"playmidi", u"0") + myDates);
}

void ExpectPeriod(const std::string& myWhat, TextView myLines, const ServedPlugin& myServed, const Text& myDates)
{
    ExpectText(myWhat,
               JoinTexts({u"<script type=\"text/javascript\">\r\nvar showme3=true;\r\n", myLines, u"</script>\r\n"}),
               PeriodPage(myServed, myDates));
}

void Period(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    ExpectPeriod("the page without a period", u"", myServed, u"");
    ExpectPeriod("the page from a day", FromDay, myServed, Param(u"from", u"38353"));
    ExpectPeriod("the page up to a day", UpToDay, myServed, Param(u"to", u"38383"));
    ExpectPeriod("the page of a month", JoinTexts({FromDay, UpToDay}), myServed,
                 Param(u"from", u"38353") + Param(u"to", u"38383"));
    ExpectPeriod("the page up to a year's end", u"if (new Date()>new Date(2006, 0, 1)) showme3=false;\r\n", myServed,
                 Param(u"to", u"38717"));
}

void Staging(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    const Text myPage = myServed.Output(FullScript);
    ExpectPart("the page",
               u"document.write('<div id=\"qelanimsprite3\" style=\"position:absolute;top:10px;left:10px;"
               u"width:3px;height:2px;z-index:50\"><a href=\"files/nota.pdf\"><img "
               u"src=\"images/qelspr17.gif\" width=\"3\" height=\"2\" alt=\"\" border=0></a></div>'); \r\n",
               myPage);
    ExpectPart("the page",
               u"if (showme3) { \r\ndocument.write('<embed src=\"media/qelmid17.mid\" autostart=true "
               u"loop=false width=0 height=0></embed>'); \r\n}\r\n</script>\r\n",
               myPage);
    ExpectText("ErrorText", u"", Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText));
    ExpectFile("the staged picture", PictureBytes(), "images/qelspr17.gif");
    ExpectFile("the staged tune", TuneBytes, "media/qelmid17.mid");
    ExpectFile("the staged file of the link", "paper", "files/nota.pdf");
    ExpectText("the script after the page", FullScript, ScriptOf(*myServed.Plugin.Get()));
}

void Links(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const auto& myCase : LinkCases())
    {
        const std::string myWhat = NameOf(myCase);
        const Text myPage = OutputOf(myCase, myServed);
        const Text myReason = Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText);
        if (myCase.Tag == LinkFails)
        {
            ExpectText(myWhat, ErrorPage, myPage);
        }
        else
        {
            ExpectPart(myWhat, Text(u"z-index:50\">") + myCase.Tag + u"<img ", myPage);
        }
        ExpectText("ErrorText of " + myWhat, myCase.Tag == LinkFails ? u"El vínculo no funciona." : u"", myReason);
    }
}

/// A file of the library beside the component with an ending, the first by name. Throws an Outcome that skips the check
/// if there is none.
fs::path LibraryFile(const CheckContext& myContext, TextView myEnding)
{
    const fs::path myLibrary = myContext.File.parent_path() / "QelPluginAnimationDesigns";
    std::vector<fs::path> myFiles;
    if (fs::is_directory(myLibrary))
    {
        for (const fs::path& myFile : fs::recursive_directory_iterator(myLibrary))
        {
            if (LowerCase(FromUtf8(TextOf(myFile.extension()))) == myEnding)
            {
                myFiles.push_back(myFile);
            }
        }
    }
    if (myFiles.empty())
    {
        throw Outcome{CheckResult::Skipped,
                      "a folder QelPluginAnimationDesigns with motifs and tunes beside the component", "there is none"};
    }
    return *std::ranges::min_element(myFiles);
}

Text NameOf(const fs::path& myFile)
{
    return FromUtf8(TextOf(myFile.filename()));
}

void LibraryMotif(const CheckContext& myContext)
{
    const fs::path myPicture = LibraryFile(myContext, u".gif");
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    const Text myPage =
        myServed.Output(Param(u"image", NameOf(myPicture)) + Param(u"imagefolder", NameOf(myPicture.parent_path())) +
                        Param(u"playmidi", u"0"));
    const std::string myStaged = "images/qelspr17" + TextOf(myPicture.extension());
    ExpectPart("the page with " + TextOf(myPicture.filename()), u"<img src=\"" + FromUtf8(myStaged) + u"\"", myPage);
    ExpectText("the calls of the page with it", u"InstanceNumber InstanceNumber UniqueName ImageFolder ImageURL ",
               Joined(myServed.State.Calls));
    ExpectFile("the staged motif", ReadFile(myPicture), myStaged);
}

void LibraryTune(const CheckContext& myContext)
{
    const fs::path myTune = LibraryFile(myContext, u".mid");
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    const Text myPage =
        myServed.Output(Param(u"image", u"a.gif") + Param(u"showimage", u"0") + Param(u"midi", NameOf(myTune)) +
                        Param(u"midifolder", NameOf(myTune.parent_path())));
    const std::string myStaged = "media/qelmid17" + TextOf(myTune.extension());
    ExpectPart("the page with " + TextOf(myTune.filename()), u"<embed src=\"" + FromUtf8(myStaged) + u"\"", myPage);
    ExpectFile("the staged tune", ReadFile(myTune), myStaged);
}

constexpr auto JpegFrame = std::to_array<unsigned char>(
    {0xFF, 0xC0, 0, 11, 8, 0, 3, 0, 5, 1, 1,    0x11, 0,    0xFF, 0xC4, 0,  20,   0, 1,    0, 0,    0,    0,   0,
     0,    0,    0, 0,  0, 0, 0, 0, 0, 0, 0,    0,    0xFF, 0xC4, 0,    20, 0x10, 1, 0,    0, 0,    0,    0,   0,
     0,    0,    0, 0,  0, 0, 0, 0, 0, 0, 0xFF, 0xDA, 0,    8,    1,    1,  0,    0, 0x3F, 0, 0x3F, 0xFF, 0xD9});

/// A JPEG of 5 by 3 grey pixels.
std::string JpegBytes()
{
    std::string theBytes("\xFF\xD8\xFF\xDB\0\x43\0", 7); // the quantisation table
    theBytes += std::string(64, '\xFF');
    return theBytes.append(reinterpret_cast<const char*>(JpegFrame.data()), JpegFrame.size());
}

/// The name of a picture, and the ending of the staged one.
constexpr std::pair<TextView, TextView> PictureNames[] = {
    {u"qelspr.jpg", u".jpg"}, {u"a.jpeg", u"jpeg"}, {u"A.JPG", u".JPG"},
    {u"abc", u"abc"},         {u"x", u"x"},         {u"a.b.jpg", u".jpg"}};

void Endings(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    for (const auto& [myName, myEnding] : PictureNames)
    {
        for (const char* myFolder : {"images", "media"}) // names that differ in case alone may be one file
        {
            fs::remove_all(myFolder);
            fs::create_directory(myFolder);
        }
        WriteFile("data/archivo.dat",
                  ArchiveOf({{"\\" + ToUtf8(myName), JpegBytes()}, {"\\t" + ToUtf8(myName), "MThd"}}));
        const Text myPage =
            myServed.Output(Text(FullScript) + Param(u"image", myName) + Param(u"midi", Text(u"t").append(myName)));
        const Text myTuneEnding = myName.size() < 4 ? Text(u"t").append(myName) : Text(myEnding);
        ExpectPart("the page with " + Shown(myName),
                   JoinTexts({u"<img src=\"images/qelspr17", myEnding, u"\" width=\"5\" height=\"3\" alt=\"\""}),
                   myPage);
        ExpectPart("the page with " + Shown(myName), JoinTexts({u"<embed src=\"media/qelmid17", myTuneEnding, u"\""}),
                   myPage);
        ExpectFile("the picture of the ending " + Shown(myEnding), JpegBytes(), "images/qelspr17" + ToUtf8(myEnding));
    }
}

void RecordTexts(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const TextView myUID : {u"4711", u"", u"1", u" 47 ", u"UID:1", u"Ñandú", u"-5"})
    {
        myServed.State.ExpectedUID = myUID;
        myServed.State.Calls.clear();
        myServed.Output(LinkedScript(JoinTexts({u"UID:", myUID})));
        ExpectPart("the calls for the record " + Shown(myUID), u"UniqueName SeekUID EOF RecordType ",
                   Joined(myServed.State.Calls));
    }
    myServed.State.ExpectedUID = u"4711";
    for (const TextView myURL : {u"otra.html#a", u"http://x/?a=1&b=%20", u"a\"b'c", u"mailto:a@b"})
    {
        for (const int32_t myKind : {1, 2, 3, 6})
        {
            myServed.State.Kind = myKind;
            myServed.State.RecordURL = myURL;
            ExpectPart("the page with a record at " + Shown(myURL), JoinTexts({u"<a href=\"", myURL, u"\"><img "}),
                       myServed.Output(FullScript));
        }
    }
    for (const int32_t myKind : {-1, 8, 100, INT32_MIN})
    {
        myServed.State.Kind = myKind;
        ExpectPart("the page with a record of kind " + std::to_string(myKind), u"z-index:50\"><a><img ",
                   myServed.Output(FullScript));
    }
    myServed.State.Kind = 1;
    myServed.State.RecordURL = u"";
    ExpectPart("the page with a record without an address", u"z-index:50\"><a><img ", myServed.Output(FullScript));
    myServed.State.RecordURL = u"ERROR";
    ExpectText("the page with a record at ERROR", ErrorPage, myServed.Output(FullScript));
}

/// The part of a page that moves a picture; "%1" and so on stand for what depends on the module.
constexpr TextView MovingPart = u"function animmovesprite%1(){ \r\n"
                                u"animdeg%1+=animturn%1; \r\n"
                                u"y=4*Math.sin(animdeg%1*Math.PI/180); \r\n"
                                u"x=6*Math.cos(animdeg%1*Math.PI/180); \r\n"
                                u"animypos%1+=y; \r\n"
                                u"animxpos%1+=x; \r\n"
                                u"animsprite%1.style.top=animypos%1+\"px\"; \r\n"
                                u"animsprite%1.style.left=animxpos%1+\"px\"; \r\n"
                                u"animturn%1treshold++; \r\n"
                                u"if (animturn%1treshold>10) { \r\n"
                                u"animturn%1treshold=0; \r\n"
                                u"animturn%1=Math.round(Math.random()*[6])-3; \r\n"
                                u"} \r\n"
                                u"animedge%1treshold++; \r\n"
                                u"if (animedge%1treshold>3) { \r\n"
                                u"animedge%1treshold=0; \r\n"
                                u"if (animsprite%1.offsetLeft >= animsprite%1.offsetParent.offsetWidth-45-%4) "
                                u"animdeg%1=Math.round(Math.random()*45+157.5); \r\n"
                                u"if (animsprite%1.offsetTop >= animsprite%1.offsetParent.offsetHeight-25-%5) "
                                u"animdeg%1=Math.round(Math.random()*45-112.5); \r\n"
                                u"if (animsprite%1.offsetTop <= 5) animdeg%1 = Math.round(Math.random()*45+67.5); \r\n"
                                u"if (animsprite%1.offsetLeft <= 5) animdeg%1 = Math.round(Math.random()*45-22.5); \r\n"
                                u"} \r\n"
                                u"setTimeout(\"animmovesprite%1()\",50); \r\n"
                                u"} \r\n"
                                u"function animstartsprite%1(){ \r\n"
                                u"animsprite%1=document.getElementById(\"qelanimsprite%1\"); \r\n"
                                u"animypos%1=10; \r\n"
                                u"animxpos%1=10; \r\n"
                                u"animdeg%1=60; \r\n"
                                u"animturn%1=0; \r\n"
                                u"animturn%1treshold=0; \r\n"
                                u"animedge%1treshold=0; \r\n"
                                u"animmovesprite%1(); \r\n"
                                u"} \r\n"
                                u"if (showme%1) { \r\n"
                                u"document.write('<div id=\"qelanimsprite%1\" "
                                u"style=\"position:absolute;top:10px;left:10px;width:%4px;height:%5px;z-index:50\">%2<"
                                u"img src=\"%3\" width=\"%4\" height=\"%5\" alt=\"\" border=0>%7</div>'); \r\n"
                                u"animstartsprite%1(); \r\n"
                                u"}\r\n";
constexpr TextView TunePart =
    u"if (showme%1) { \r\ndocument.write('<embed src=\"media/qelmid17.mid\" autostart=true loop=false width=0 "
    u"height=0></embed>'); \r\n}\r\n";

void WholePages(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const int32_t myInstance : {3, 0, 1, 12, -7, INT32_MAX, INT32_MIN})
    {
        myServed.State.Instance = myInstance;
        const auto Filled = [&](Text myPart, TextView myOpening, TextView myClosing)
        {
            const Text myNumber = NumberText(int64_t{myInstance});
            const std::pair<TextView, TextView> myValues[] = {{u"%1", myNumber},  {u"%2", myOpening},
                                                              {u"%7", myClosing}, {u"%4", u"3"},
                                                              {u"%5", u"2"},      {u"%3", u"images/qelspr17.gif"}};
            for (const auto& [myPlaceholder, myValue] : myValues)
            {
                myPart = ReplaceAll(myPart, myPlaceholder, myValue);
            }
            return myPart;
        };
        const Text myHead(u"<script type=\"text/javascript\">\r\nvar showme%1=true;\r\n"
                          u"if (new Date()<new Date(2005, 0, 1)) showme%1=false;\r\n"
                          u"if (new Date()>new Date(2005, 1, 1)) showme%1=false;\r\n");
        const Text myPage = myHead + Text(MovingPart) + Text(TunePart) + u"</script>\r\n";
        ExpectText("the whole page of instance " + std::to_string(myInstance),
                   Filled(myPage, u"<a href=\"files/nota.pdf\">", u"</a>"), myServed.Output(FullScript));
        ExpectText("the whole page without a link", Filled(myPage, u"", u""), myServed.Output(LinkedScript(u"")));
    }
}

/// The line of a page that writes its picture.
Text PictureLine(TextView myPage)
{
    const size_t myStart = std::min(myPage.find(u"document.write('<div"), myPage.size());
    return Text(myPage.substr(myStart, myPage.find(u"\r\n", myStart) - myStart));
}

/// A link as the script has it, and the tag in front of the picture.
constexpr std::pair<TextView, TextView> OwnLinks[] = {
    {u"URL:http://x/?a=1&amp;b=2#c", u"<a href=\"http://x/?a=1&b=2#c\">"},
    {u"URL:a&quot;b&lt;c&gt;'d", u"<a href=\"a\"b<c>'d\">"},
    {u"URL: a ", u"<a href=\" a \">"},
    {u"URL:&lt;blank&gt;", u"<a href=\"\">"},
    {u"URL:%1", u"<a href=\"%1\">"},
    {u"URL:%2", u"<a href=\"%2\">"},
    {u"URL:%3", u"<a href=\"images/qelspr17.gif\">"},
    {u"URL:%4x%5", u"<a href=\"3x2\">"},
    {u"URL:%6", u"<a href=\"%6\">"},
    {u"URL:%7", u"<a href=\"</a>\">"},
    {u"URL:error", u"<a href=\"error\">"},
    {u"URL:ERROR.", u"<a href=\"ERROR.\">"},
    {u"URL", u"<a>"},
    {u"U", u"<a>"},
    {u"uid:4711", u"<a>"},
    {u"Uid:4711", u"<a>"},
    {u" URL:x", u"<a>"},
    {u"URL=x", u"<a>"},
    {u"http://x/", u"<a>"},
    {u"UIDX4711", u"<a>"},
};

void LinkTexts(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    for (const auto& [myLink, myTag] : OwnLinks)
    {
        ExpectPart("the page with the link " + Shown(myLink), JoinTexts({u"z-index:50\">", myTag, u"<img src="}),
                   PictureLine(myServed.Output(LinkedScript(myLink))));
    }
    ExpectText("the page with a link that fails, without its picture", u"",
               PictureLine(myServed.Output(LinkedScript(u"URL:ERROR") + Param(u"showimage", u"0"))));
    ExpectText("ErrorText of it", u"", Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText));
}

/// A day of a period in the script, and its date in the page.
constexpr struct
{
    TextView Name;
    TextView Days;
    TextView Date; ///< in the page; empty if it has none
} DayCases[] = {
    {u"from", u"38353", u"2005, 0, 1"},
    {u"from", u"38383", u"2005, 0, 31"},
    {u"from", u"38384", u"2005, 1, 1"},
    {u"from", u"38717", u"2005, 11, 31"},
    {u"from", u"36585", u"2000, 1, 29"},
    {u"from", u"36586", u"2000, 2, 1"},
    {u"from", u"1", u"1899, 11, 31"},
    {u"from", u"2", u"1900, 0, 1"},
    {u"from", u"60", u"1900, 1, 28"},
    {u"from", u"61", u"1900, 2, 1"},
    {u"from", u"-1", u"1899, 11, 29"},
    {u"from", u"-657434", u"100, 0, 1"},
    {u"from", u"2958465", u"9999, 11, 31"},
    {u"from", u"0", u""},
    {u"from", u"0.5", u""},
    {u"from", u"-0.4", u""},
    {u"from", u"38353.4", u"2005, 0, 1"},
    {u"to", u"38383", u"2005, 1, 1"},
    {u"to", u"38384", u"2005, 1, 2"},
    {u"to", u"38717", u"2006, 0, 1"},
    {u"to", u"36584", u"2000, 1, 29"},
    {u"to", u"36585", u"2000, 2, 1"},
    {u"to", u"38411", u"2005, 2, 1"},
    {u"to", u"-1", u"1899, 11, 30"},
    {u"to", u"1", u"1900, 0, 1"},
    {u"to", u"2958464", u"9999, 11, 31"},
    {u"to", u"0", u""},
    {u"to", u"0.5", u""},
};

void Days(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    for (const auto& [myName, myDays, myDate] : DayCases)
    {
        const TextView mySign = myName == u"from" ? u"<" : u">";
        const Text myLine = JoinTexts({u"if (new Date()", mySign, u"new Date(", myDate, u")) showme3=false;\r\n"});
        ExpectPeriod("the page " + ToUtf8(myName) + " day " + ToUtf8(myDays), myDate.empty() ? Text() : myLine,
                     myServed, Param(myName, myDays));
    }
    ExpectPeriod("the page of one day",
                 JoinTexts({FromDay, u"if (new Date()>new Date(2005, 0, 2)) showme3=false;\r\n"}), myServed,
                 Param(u"from", u"38353") + Param(u"to", u"38353"));
    ExpectText("the page up to the last day of all", ErrorPage, PeriodPage(myServed, Param(u"to", u"2958465")));
    ExpectPart("ErrorText of it", u"\"6: ", Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText));
}

constexpr Check PageCheckList[] = {
    {"output.period", "A page contains the days of its period", Period},
    {"output.staging", "A page with everything is written, and its files are where it says", Staging},
    {"output.links", "Links lead where their form and the kind of their record say", Links},
    {"output.library", "A motif of the library beside the component reaches the page", LibraryMotif},
    {"output.library-tune", "A tune of the library beside the component reaches the page", LibraryTune},
    {"output.endings", "A staged file has the last four characters of its name, and a JPEG its own size", Endings},
    {"output.records", "A record is searched for by its text, and its address is put in as it is", RecordTexts},
    {"output.whole", "A page is made of its templates to the character, with the host's number in every name",
     WholePages},
    {"output.link-texts", "An address of the link's own is put in as it is, and its placeholders are filled",
     LinkTexts},
    {"output.days", "The days of a period are those of the calendar, and the end is the day after", Days},
};

} // namespace

std::span<const Check> PageChecks()
{
    return PageCheckList;
}

} // namespace qel::host
