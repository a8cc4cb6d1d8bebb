#include "commands/commands.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "site/PageText.h"
#include "site/references.h"
#include "site/Site.h"
#include "site/siteFiles.h"

#include <algorithm>
#include <iostream>

namespace qel::host
{

namespace
{

constexpr const char* PlacesHelp =
    "A page is an HTML file as you write it. A build fills these comments in it:\n"
    "  <!-- qel:modules -->       the page's modules; without it they are at the end of the body\n"
    "  <!-- qel:modules NAME -->  the modules of the place with that name\n"
    "  <!-- qel:title -->         the site's title\n"
    "  <!-- qel:menu -->          a list with links to all pages\n"
    "What the page refers to in href, src, srcset, data, poster, background and its own styles and\n"
    "the site does not have is reported. Scripts and other files are not looked at.";

/// True when a path below the folder of the pages is something that the site has or may have.
bool IsInSite(Site& theSite, const std::string& myPath)
{
    const fs::path myNormal = PathOf(myPath).lexically_normal();
    const std::vector<Page> myPages = theSite.Pages();
    const bool myIsPage = std::ranges::find(myPages, TextOf(myNormal), &Page::Name) != myPages.end();
    const std::string myFolder = myNormal.begin() == myNormal.end() ? std::string() : myNormal.begin()->string();
    // Only a build knows what it puts into its folders.
    const bool myIsOfBuild = myFolder == "images" || myFolder == "media" || myFolder == "files";
    std::error_code myIgnored;
    return myIsPage || myIsOfBuild || (myFolder != ".." && fs::exists(theSite.StaticFolder() / myNormal, myIgnored));
}

/// Reports the references of a page without a target, and the comments that look like places but are not.
void ReportProblems(Site& theSite, const std::string& myPage, const PageInput& myInput)
{
    for (const std::string& myComment : PageText(myInput.Content).UnknownComments())
    {
        std::cerr << "qelhost: " << Printable(myPage) << ", " << Printable(myComment) << "." << std::endl;
    }
    for (const std::string& myPath : RelativeReferences(myInput.Content))
    {
        if (!IsInSite(theSite, myPath))
        {
            std::cerr << "qelhost: " << Printable(myPage) << " refers to \"" << Printable(myPath)
                      << "\", which the site does not have; add it as a page, or put it into "
                      << TextOf(theSite.StaticFolder() / "") << "." << std::endl;
        }
    }
}

void AddPage(const Arguments& myArguments)
{
    const std::string myName = myArguments.Name.value_or(TextOf(myArguments.File.filename()));
    const std::string myTitle = myArguments.Title.value_or(TextOf(PathOf(myName).stem()));
    const PageInput myInput = ReadPage(myArguments.File);
    Site mySite(myArguments.Site);
    mySite.AddPage(myName, myTitle, myInput);
    WarnOfName(myName);
    ReportProblems(mySite, myName, myInput);
}

void ShowPage(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    std::cout << mySite.PageContent(mySite.PageOf(myArguments.Page).Id);
}

void Set(const Arguments& myArguments)
{
    std::optional<PageInput> myInput;
    if (myArguments.OptionalFile)
    {
        myInput = ReadPage(*myArguments.OptionalFile);
    }
    else if (!myArguments.Title && !myArguments.Name)
    {
        throw UsageFailure("there is nothing to change; give a FILE, --title or --name");
    }
    Site mySite(myArguments.Site);
    std::string myName = myArguments.Page;
    if (myArguments.Name)
    {
        mySite.RenamePage(myName, *myArguments.Name);
        myName = *myArguments.Name;
        WarnOfName(myName);
    }
    mySite.SetPage(myName, myArguments.Title, myInput);
    if (myInput)
    {
        ReportProblems(mySite, myName, *myInput);
    }
}

void ListPages(const Arguments& myArguments)
{
    std::vector<std::vector<std::string>> myRows{{"POSITION", "PAGE", "MODULES", "TITLE"}};
    std::vector<JsonMembers> myObjects;
    for (const Page& myPage : Site(myArguments.Site).Pages())
    {
        myObjects.push_back({{"position", myPage.Position},
                             {"page", myPage.Name},
                             {"modules", myPage.Modules},
                             {"title", myPage.Title}});
        myRows.push_back({std::to_string(myPage.Position), myPage.Name, std::to_string(myPage.Modules), myPage.Title});
    }
    PrintList(myRows, myObjects, myArguments);
}

} // namespace

void AddPageCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myGroup = AddGroup(theApplication, "page", "The pages of a site");
    const auto AddPageCommand = [&](const char* myName, const char* myHelp)
    {
        CLI::App* const theCommand = AddSiteCommand(*myGroup, myName, myHelp, theArguments);
        theCommand->add_option("PAGE", theArguments.Page, "The page's name, such as index.html")
            ->required()
            ->type_name("");
        return theCommand;
    };

    CLI::App* const myAdd = AddSiteCommand(*myGroup, "add", "Adds a page after the others", theArguments);
    AddPath(*myAdd, "FILE", theArguments.File, "The HTML file; - reads the standard input")->required()->type_name("");
    myAdd->add_option("--name", theArguments.Name, "The page's name, if not that of the file")->type_name("NAME.html");
    myAdd->add_option("--title", theArguments.Title, "What the menu calls the page, if not its name");
    myAdd->footer(PlacesHelp);
    myAdd->callback([&theArguments] { AddPage(theArguments); });

    AddPageCommand("show", "Prints a page's HTML as the site has it")
        ->callback([&theArguments] { ShowPage(theArguments); });

    CLI::App* const mySet = AddPageCommand("set", "Changes a page's HTML, its title or its name");
    AddPath(*mySet, "FILE", theArguments.OptionalFile, "The HTML file; - reads the standard input")->type_name("");
    mySet->add_option("--title", theArguments.Title, "What the menu calls the page");
    mySet->add_option("--name", theArguments.Name, "The page's new name")->type_name("NAME.html");
    mySet->footer(PlacesHelp);
    mySet->callback([&theArguments] { Set(theArguments); });

    CLI::App* const myMove = AddPageCommand("move", "Moves a page to another position in the site");
    AddNumber(*myMove, "POSITION", theArguments.Position, "Its new position, from 1");
    myMove->callback([&theArguments] { Site(theArguments.Site).MovePage(theArguments.Page, theArguments.Position); });

    CLI::App* const myRemove = AddPageCommand("remove", "Removes a page");
    myRemove->add_flag("--with-modules", theArguments.WithModules, "Removes the modules on it too");
    myRemove->callback(
        [&theArguments]
        {
            Site mySite(theArguments.Site);
            const UserLock myLock = LockForWriting(mySite);
            mySite.RemovePage(theArguments.Page, theArguments.WithModules);
        });

    AddListCommand(*myGroup, "Lists the pages in their order", theArguments)
        ->callback([&theArguments] { ListPages(theArguments); });
}

} // namespace qel::host
