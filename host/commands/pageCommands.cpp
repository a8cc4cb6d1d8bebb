#include "commands/commands.h"
#include "common/Failure.h"
#include "site/Site.h"
#include "site/siteFiles.h"

namespace qel::host
{

namespace
{

constexpr const char* myPlaces =
    "A page is an HTML file as you write it. A build fills these comments in it:\n"
    "  <!-- qel:modules -->       the page's modules; without it they stand at the end of the body\n"
    "  <!-- qel:modules NAME -->  the modules of a place of that name\n"
    "  <!-- qel:title -->         the site's title\n"
    "  <!-- qel:menu -->          a list with links to all pages";

void Add(const Arguments& myArguments)
{
    const std::string myName = myArguments.Name.value_or(myArguments.File.filename().string());
    const std::string myTitle = myArguments.Title.value_or(std::filesystem::path(myName).stem().string());
    Site(myArguments.Site).AddPage(myName, myTitle, ReadWholeFile(myArguments.File));
}

void Set(const Arguments& myArguments)
{
    std::optional<std::string> myContent;
    if (myArguments.OptionalFile)
    {
        myContent = ReadWholeFile(*myArguments.OptionalFile);
    }
    else if (!myArguments.Title)
    {
        throw UsageFailure("there is nothing to change; give a FILE, --title or both");
    }
    Site(myArguments.Site).SetPage(myArguments.Page, myArguments.Title, myContent);
}

void List(const Arguments& myArguments)
{
    std::vector<std::vector<std::string>> myRows{{"POSITION", "PAGE", "MODULES", "TITLE"}};
    for (const Page& myPage : Site(myArguments.Site).Pages())
    {
        myRows.push_back({std::to_string(myPage.Position), myPage.Name, std::to_string(myPage.Modules), myPage.Title});
    }
    PrintTable(myRows);
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

    CLI::App* const myAdd = AddSiteCommand(*myGroup, "add", "Adds a page behind the others", theArguments);
    myAdd->add_option("FILE", theArguments.File, "The HTML file; - reads the standard input")
        ->required()
        ->type_name("");
    myAdd->add_option("--name", theArguments.Name, "The page's name, if not that of the file")->type_name("NAME.html");
    myAdd->add_option("--title", theArguments.Title, "What the menu calls the page, if not its name");
    myAdd->footer(myPlaces);
    myAdd->callback([&theArguments] { Add(theArguments); });

    CLI::App* const mySet = AddPageCommand("set", "Replaces a page's HTML or its title");
    mySet->add_option("FILE", theArguments.OptionalFile, "The HTML file; - reads the standard input")->type_name("");
    mySet->add_option("--title", theArguments.Title, "What the menu calls the page");
    mySet->footer(myPlaces);
    mySet->callback([&theArguments] { Set(theArguments); });

    CLI::App* const myMove = AddPageCommand("move", "Moves a page to another position in the site");
    myMove->add_option("POSITION", theArguments.Position, "Counts from 1")->required()->type_name("");
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

    AddSiteCommand(*myGroup, "list", "Lists the pages in their order", theArguments)
        ->callback([&theArguments] { List(theArguments); });
}

} // namespace qel::host
