// Checks of the page that a module gives.
#include "check/pageCases.h"
#include "text/encodings.h"

#include <algorithm>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

void Period(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    const Text myScript = Param(u"image", u"a.gif") + Param(u"showimage", u"0") + Param(u"playmidi", u"0");
    const auto ExpectLines = [&](const char* myWhat, const Text& myDates, TextView myLines)
    {
        ExpectText(myWhat,
                   Text(u"<script type=\"text/javascript\">\r\nvar showme3=true;\r\n").append(myLines) +
                       u"</script>\r\n",
                   myServed.Output(myScript + myDates));
    };
    constexpr TextView myFrom = u"if (new Date()<new Date(2005, 0, 1)) showme3=false;\r\n";
    constexpr TextView myTo = u"if (new Date()>new Date(2005, 1, 1)) showme3=false;\r\n";
    ExpectLines("the page without a period", u"", u"");
    ExpectLines("the page from a day", Param(u"from", u"38353"), myFrom);
    ExpectLines("the page up to a day", Param(u"to", u"38383"), myTo);
    ExpectLines("the page of a month", Param(u"from", u"38353") + Param(u"to", u"38383"), Text(myFrom).append(myTo));
    ExpectLines("the page up to a year's end", Param(u"to", u"38717"),
                u"if (new Date()>new Date(2006, 0, 1)) showme3=false;\r\n");
}

Text Bytes(const fs::path& myFile)
{
    return FromAnsi(ReadFile(myFile));
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
    ExpectText("the staged picture", FromAnsi(PictureBytes()), Bytes("images/qelspr17.gif"));
    ExpectText("the staged tune", FromAnsi(TuneBytes), Bytes("media/qelmid17.mid"));
    ExpectText("the staged file of the link", u"paper", Bytes("files/nota.pdf"));
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

/// A picture of the library beside the component, the first by name; the empty path without one.
fs::path LibraryPicture(const fs::path& myLibrary)
{
    std::vector<fs::path> myPictures;
    if (fs::is_directory(myLibrary))
    {
        for (const fs::path& myFile : fs::recursive_directory_iterator(myLibrary))
        {
            if (LowerCase(FromUtf8(myFile.extension().string())) == u".gif")
            {
                myPictures.push_back(myFile);
            }
        }
    }
    return myPictures.empty() ? fs::path() : *std::ranges::min_element(myPictures);
}

void LibraryMotif(const CheckContext& myContext)
{
    const fs::path myPicture = LibraryPicture(myContext.File.parent_path() / "QelPluginAnimationDesigns");
    if (myPicture.empty())
    {
        throw Outcome{CheckResult::Skipped, "a folder QelPluginAnimationDesigns with motifs beside the component",
                      "there is none"};
    }
    const OpenedComponent myComponent(myContext);
    const ServedPlugin myServed(myComponent, myContext);
    const Text myPage = myServed.Output(Param(u"image", FromUtf8(myPicture.filename().string())) +
                                        Param(u"imagefolder", FromUtf8(myPicture.parent_path().filename().string())) +
                                        Param(u"playmidi", u"0"));
    const std::string myStaged = "images/qelspr17" + myPicture.extension().string();
    ExpectPart("the page with " + myPicture.filename().string(), u"<img src=\"" + FromUtf8(myStaged) + u"\"", myPage);
    ExpectText("the calls of the page with it", u"InstanceNumber InstanceNumber UniqueName ImageFolder ImageURL ",
               Joined(myServed.State.Calls));
    ExpectText("the staged motif", Bytes(myPicture), Bytes(myStaged));
}

constexpr Check Checks[] = {
    {"output.period", "A page holds the days of its period", Period},
    {"output.staging", "A page with everything is written, and its files are where it says", Staging},
    {"output.links", "Links lead where their form and the kind of their record say", Links},
    {"output.library", "A motif of the library beside the component reaches the page", LibraryMotif},
};

} // namespace

std::span<const Check> PageChecks()
{
    return Checks;
}

} // namespace qel::host
