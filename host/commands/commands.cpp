#include "commands/commands.h"

#include "build/Builder.h"
#include "build/Component.h"
#include "build/Interruption.h"
#include "commands/openInBrowser.h"
#include "commands/terminal.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "common/programFiles.h"
#include "site/markup.h"
#include "site/Site.h"
#include "site/siteFiles.h"
#include "site/UserLock.h"
#include "text/encodings.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>

namespace qel::host
{

namespace
{

/// The number of characters of UTF-8: its bytes without the continuing ones.
std::size_t WidthOf(const std::string& myText)
{
    return static_cast<std::size_t>(
        std::count_if(myText.begin(), myText.end(), [](char myByte) { return (myByte & 0xC0) != 0x80; }));
}

BuildResult BuildPages(Site& theSite, const Arguments& myArguments)
{
    Component myComponent(myArguments.Plugin);
    myComponent.Serve(theSite);
    const UserLock myLock = LockForWriting(theSite);
    const Interruption myInterruption;
    return Builder(theSite, myComponent, std::cerr, IsTerminal(Output::Errors))
        .Build({myArguments.OtherPage, myArguments.KeepErrors, !myArguments.NoRefresh});
}

/// Ends the program with 1 if something failed, which has been reported.
void DemandSuccess(const BuildResult& myResult)
{
    if (!myResult.Failures.empty() || myResult.Problems > 0)
    {
        throw CLI::RuntimeError(1);
    }
}

/// Runs a command that builds. If the user interrupts it, the program ends after everything has been closed.
void RunBuilding(void (*myCommand)(const Arguments&), const Arguments& myArguments)
{
    try
    {
        myCommand(myArguments);
    }
    catch (const Interrupted& myEnd)
    {
        std::cerr << "qelhost: " << myEnd.what() << "." << std::endl;
        Interrupted::EndProgram();
    }
}

/// Why a text is not a whole number that the site can store; empty if it is one.
std::string NumberProblem(const std::string& myText)
{
    int64_t myNumber = 0;
    const char* const myEnd = myText.data() + myText.size();
    const auto [myRest, myError] = std::from_chars(myText.data(), myEnd, myNumber);
    const std::string myShown = "\"" + Printable(myText) + "\"";
    if (myError == std::errc::result_out_of_range)
    {
        return myShown + " is too large a number";
    }
    return myError == std::errc() && myRest == myEnd ? "" : myShown + " is not a whole number, such as 1";
}

std::string FailuresAsJson(const std::vector<ModuleFailure>& myFailures)
{
    std::vector<JsonMembers> myObjects;
    myObjects.reserve(myFailures.size());
    for (const ModuleFailure& myFailure : myFailures)
    {
        myObjects.push_back({{"page", myFailure.Page}, {"module", myFailure.Module}, {"error", myFailure.ErrorNumber}});
    }
    return JsonArray(myObjects);
}

void Build(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    const BuildResult myResult = BuildPages(mySite, myArguments);
    const std::string myFolder = TextOf(mySite.BuildFolder());
    if (myArguments.Json)
    {
        std::cout << JsonObject({{"pages", int64_t{myResult.Pages}},
                                 {"modules", int64_t{myResult.Modules}},
                                 {"failed", static_cast<int64_t>(myResult.Failures.size())},
                                 {"problems", int64_t{myResult.Problems}},
                                 {"failures", Json{FailuresAsJson(myResult.Failures)}},
                                 {"folder", myFolder}})
                  << std::endl;
    }
    else
    {
        std::cout << "Pages: " << myResult.Pages << ", modules: " << myResult.Modules
                  << ", failed: " << myResult.Failures.size()
                  << (myResult.Problems > 0 ? ", other problems: " + std::to_string(myResult.Problems) : "")
                  << ". They are in " << myFolder << std::endl;
    }
    DemandSuccess(myResult);
}

/// Builds all pages, since each may link to the others, and opens one of them.
void Preview(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    const std::vector<Page> myPages = mySite.Pages();
    if (myPages.empty())
    {
        throw Failure("the site has no page yet; add one with qelhost page add");
    }
    const std::string myPage = myArguments.Page.empty() ? myPages.front().Name : mySite.PageOf(myArguments.Page).Name;
    const BuildResult myResult = BuildPages(mySite, myArguments);
    const std::filesystem::path myFile = mySite.BuildFolder() / PathOf(myPage);
    OpenInBrowser(myFile);
    std::cout << TextOf(myFile) << std::endl;
    DemandSuccess(myResult);
}

void SetSite(const Arguments& myArguments)
{
    if (!myArguments.Title)
    {
        throw UsageFailure("there is nothing to change; give --title");
    }
    Site(myArguments.Site).SetTitle(*myArguments.Title);
}

void PrintInfo(const Arguments& myArguments)
{
    const Component myComponent(myArguments.Plugin);
    const bool myWithEscapes = WantsEscapes();
    std::string myInfo; // written when everything has been read
    const auto Print = [&](const char* myHeading, const Text& myText)
    {
        myInfo += myHeading + RenderedMarkup(ToUtf8(myText), myWithEscapes) + "\n";
    };
    Print("Description:  ", myComponent.Read(&QelPlugin::get_Description));
    Print("Version:      ", myComponent.Version());
    Print("Function:     ", myComponent.Read(&QelPlugin::get_TextFunction));
    Print("Settings:     ", myComponent.Read(&QelPlugin::get_TextConfig));
    Print("Server:       ", myComponent.Read(&QelPlugin::get_TextRequirementsServer));
    Print("Browser:      ", myComponent.Read(&QelPlugin::get_TextRequirementsClient));
    Print("Requires PHP: ", myComponent.RequiresPHP() ? u"yes" : u"no");
    Print("Logo:         ", myComponent.Read(&QelPlugin::get_LogoFilename));
    Print("Preview:      ", myComponent.Read(&QelPlugin::get_PreviewImageFilename));
    std::cout << myInfo;
}

} // namespace

bool WantsEscapes()
{
    const char* const myNoColor = std::getenv("NO_COLOR");
    return IsTerminal(Output::Standard) && (myNoColor == nullptr || *myNoColor == '\0');
}

void PrintTable(const std::vector<std::vector<std::string>>& myRows)
{
    std::vector<std::size_t> myWidths(myRows.front().size());
    for (const auto& myRow : myRows)
    {
        for (std::size_t myColumn = 0; myColumn < myRow.size(); ++myColumn)
        {
            myWidths[myColumn] = std::max(myWidths[myColumn], WidthOf(Printable(myRow[myColumn])));
        }
    }
    for (const auto& myRow : myRows)
    {
        std::string myLine;
        for (std::size_t myColumn = 0; myColumn < myRow.size(); ++myColumn)
        {
            myLine += Printable(myRow[myColumn]) +
                      std::string(myWidths[myColumn] - WidthOf(Printable(myRow[myColumn])) + 2, ' ');
        }
        std::cout << myLine.substr(0, myLine.find_last_not_of(' ') + 1) << "\n";
    }
}

void PrintList(const std::vector<std::vector<std::string>>& myRows, const std::vector<JsonMembers>& myObjects,
               const Arguments& myArguments)
{
    if (myArguments.Json)
    {
        std::cout << JsonArray(myObjects) << "\n";
        return;
    }
    PrintTable(myRows);
}

CLI::App* AddListCommand(CLI::App& theGroup, const std::string& myHelp, Arguments& theArguments)
{
    CLI::App* const theCommand = AddSiteCommand(theGroup, "list", myHelp, theArguments);
    theCommand->add_flag("--json", theArguments.Json, "Writes a JSON array");
    return theCommand;
}

CLI::App* AddGroup(CLI::App& theApplication, const std::string& myName, const std::string& myHelp)
{
    CLI::App* const theGroup = theApplication.add_subcommand(myName, myHelp);
    theGroup->require_subcommand(1);
    return theGroup;
}

CLI::App* AddSiteCommand(CLI::App& theGroup, const std::string& myName, const std::string& myHelp,
                         Arguments& theArguments)
{
    CLI::App* const theCommand = theGroup.add_subcommand(myName, myHelp);
    AddPath(*theCommand, "SITE", theArguments.Site, "The site's folder")->required()->type_name("");
    return theCommand;
}

CLI::Option* AddPath(CLI::App& theCommand, const std::string& myName, std::filesystem::path& thePath,
                     const std::string& myHelp)
{
    return theCommand.add_option_function<std::string>(
        myName, [&thePath](const std::string& myText) { thePath = PathOf(myText); }, myHelp);
}

CLI::Option* AddPath(CLI::App& theCommand, const std::string& myName, std::optional<std::filesystem::path>& thePath,
                     const std::string& myHelp)
{
    return theCommand.add_option_function<std::string>(
        myName, [&thePath](const std::string& myText) { thePath = PathOf(myText); }, myHelp);
}

CLI::Option* AddNumber(CLI::App& theCommand, const std::string& myName, int64_t& theNumber, const std::string& myHelp)
{
    return theCommand.add_option(myName, theNumber, myHelp)->required()->type_name("")->check(NumberProblem);
}

void WarnOfName(const std::string& myName)
{
    if (const std::string myWarning = WindowsNameWarning(myName); !myWarning.empty())
    {
        std::cerr << "qelhost: " << Printable(myWarning) << "." << std::endl;
    }
}

UserLock LockForWriting(Site& theSite)
{
    UserLock theLock(std::cerr);
    for (const int64_t myModule : theSite.UndoInterruptedEdits())
    {
        std::cerr << "qelhost: the dialog of module " << myModule << " was interrupted; the module is unchanged."
                  << std::endl;
    }
    return theLock;
}

void AddSiteCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myInit = AddSiteCommand(theApplication, "init", "Makes a new site", theArguments);
    myInit->add_option("--title", theArguments.Title, "Its title, for <!-- qel:title --> in the pages");
    myInit->callback([&theArguments] { Site::Create(theArguments.Site, theArguments.Title.value_or("")); });

    CLI::App* const myBuild = AddSiteCommand(theApplication, "build", "Builds the pages into SITE/build", theArguments);
    myBuild->add_option("--only", theArguments.OtherPage, "Builds only this page; the others stay unchanged")
        ->type_name("PAGE");
    myBuild->add_flag("--json", theArguments.Json, "Writes the result as a JSON object");
    myBuild->footer("A page whose file has changed since it was added or set is read from that file again.\n"
                    "The files in SITE/static are copied into the build unchanged: styles, scripts, pictures.\n"
                    "A module that fails does not stop the build: a comment with its number takes its place, the\n"
                    "reason is shown, and the program ends with 1.");
    myBuild->callback([&theArguments] { RunBuilding(Build, theArguments); });

    CLI::App* const myPreview =
        AddSiteCommand(theApplication, "preview", "Builds the pages and opens one in the browser", theArguments);
    myPreview->add_option("PAGE", theArguments.Page, "The page to open; without it the first one")->type_name("");
    for (CLI::App* const myCommand : {myBuild, myPreview})
    {
        myCommand->add_flag("--keep-errors", theArguments.KeepErrors,
                            "Puts the component's text for a failed module into the page instead of a comment");
        myCommand->add_flag("--no-refresh", theArguments.NoRefresh,
                            "Builds the stored pages, even if the files from which they were read have changed");
    }
    myPreview->callback([&theArguments] { RunBuilding(Preview, theArguments); });

    CLI::App* const myGroup = AddGroup(theApplication, "site", "The site as a whole");
    CLI::App* const mySet = AddSiteCommand(*myGroup, "set", "Changes the site's title", theArguments);
    mySet->add_option("--title", theArguments.Title, "Its title, for <!-- qel:title --> in the pages");
    mySet->callback([&theArguments] { SetSite(theArguments); });
}

void AddComponentCommands(CLI::App& theApplication, Arguments& theArguments)
{
    theApplication.add_subcommand("info", "Shows the component's version and what it says about itself")
        ->callback([&theArguments] { PrintInfo(theArguments); });

    const auto AddRegistration =
        [&](const char* myName, const char* myHelp, void (*myAction)(const std::filesystem::path&))
    {
        CLI::App* const myCommand = theApplication.add_subcommand(myName, myHelp);
        AddPath(*myCommand, "FILE", theArguments.OptionalFile, "The component; without it the one beside this program")
            ->type_name("");
        myCommand->callback([&theArguments, myAction]
                            { myAction(theArguments.OptionalFile.value_or(ComponentBesideProgram())); });
    };
    AddRegistration("register", "Adds a component to the user's class registry", RegisterComponent);
    AddRegistration("unregister", "Removes a component from the user's class registry", UnregisterComponent);
}

} // namespace qel::host
