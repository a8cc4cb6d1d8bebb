#include "build/Component.h"
#include "build/moduleFailures.h"
#include "commands/commands.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "site/markup.h"
#include "site/scriptTags.h"
#include "site/Site.h"
#include "site/siteFiles.h"
#include "text/encodings.h"
#include "text/ScopeGuard.h"
#include "text/succeeds.h"

#include <iostream>

namespace qel::host
{

namespace
{

constexpr const char* ArchiveHelp =
    "An archive contains the files that a module's author imported. The site stores it as module, the module's id and\n"
    ".dat, such as module3.dat, and the module's script has to contain that name: <pg.file filename=\"module3.dat\">";

std::string ReadScript(const std::filesystem::path& myFile)
{
    const auto myProblem = [&](const char* myReason)
    {
        return Failure((myFile == "-" ? "the script on the standard input " : "the script " + TextOf(myFile) + " ") +
                       myReason);
    };
    std::string theScript = ReadWholeFile(myFile, LongestText);
    if (!IsUtf8(theScript))
    {
        throw myProblem("is not valid UTF-8; save it as UTF-8");
    }
    if (LowerCase(FromUtf8(theScript)).find(u"<pg.") == Text::npos)
    {
        throw myProblem("has no tag of a module's script, such as <pg.param name=\"image\" value=\"Globo.gif\">; "
                        "qelhost module script SITE ID prints one");
    }
    return theScript;
}

/// The script with a link param of its own: without one, the link of the previous module would stay in force. The
/// component is asked, because only it knows how a script is read.
std::string WithLink(Component& theComponent, const std::string& myScript)
{
    const std::string myNoLink = "<pg.param name=\"link\">\r\n";
    const std::string myMark = "URL:no link in this script";
    theComponent.PutInHand(0, "<pg.param name=\"link\" value=\"" + myMark + "\">");
    theComponent.PutInHand(0, myScript);
    if (ToUtf8(theComponent.Script()).find(myMark) == std::string::npos)
    {
        return myScript;
    }
    // At the end, unless the script ends within a tag.
    const std::size_t myEnd = myScript.find_last_not_of("\r\n") + 1;
    const bool myIsClosed = myEnd > 0 && myScript[myEnd - 1] == '>';
    return myIsClosed ? myScript.substr(0, myEnd) + "\r\n" + myNoLink : myNoLink + myScript;
}

/// Writes the script to the component, and reports what it says about it.
void TryScript(Component& theComponent, int64_t myModule, const std::string& myScript)
{
    theComponent.PutInHand(myModule, myScript);
    if (const Text myReason = theComponent.ErrorText(); !myReason.empty())
    {
        std::cerr << "qelhost: the component says of this script: " << ToUtf8(myReason) << std::endl;
    }
}

void AddModule(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    Component myComponent(myArguments.Plugin);
    myComponent.Serve(mySite);
    const std::string myScript = myArguments.OptionalFile ? ReadScript(*myArguments.OptionalFile)
                                                          : ToUtf8(myComponent.Read(&QelPlugin::get_InitialScript));
    if (myArguments.Archive)
    {
        DemandArchive(*myArguments.Archive);
    }
    const std::string myStored = WithLink(myComponent, myScript);
    TryScript(myComponent, 0, myStored);
    const int64_t myId =
        mySite.AddModule(myArguments.Page, myArguments.Place.value_or(""), myStored, myArguments.Archive);
    std::cout << "module " << myId << std::endl;
}

void PrintOrSetScript(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    if (!myArguments.OptionalFile)
    {
        std::cout << mySite.ModuleOf(myArguments.Id).Script << std::flush;
        return;
    }
    Component myComponent(myArguments.Plugin);
    myComponent.Serve(mySite);
    const UserLock myLock = LockForWriting(mySite);
    const std::string myScript = WithLink(myComponent, ReadScript(*myArguments.OptionalFile));
    TryScript(myComponent, myArguments.Id, myScript);
    mySite.SetScript(myArguments.Id, myScript);
}

/// Prints what the module in hand will do.
void PrintSummary(const Component& myComponent)
{
    const bool myWithEscapes = WantsEscapes();
    std::string mySummary = RenderedMarkup(ToUtf8(myComponent.TextSettings()), myWithEscapes) + "\n";
    if (const Text myReason = myComponent.ErrorText(); !myReason.empty())
    {
        mySummary += RenderedMarkup("<warning>" + ToUtf8(myReason), myWithEscapes) + "\n";
    }
    std::cout << mySummary;
}

void ShowModule(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    const Module myModule = mySite.ModuleOf(myArguments.Id);
    Component myComponent(myArguments.Plugin);
    myComponent.Serve(mySite);
    myComponent.PutInHand(myModule.Id, myModule.Script);
    // The component has a summary of a module without a motif, but none of one that lacks only its tune.
    if (const std::string myMissing = MissingChoice(myModule.Script);
        !myMissing.empty() && !ScriptParam(myModule.Script, "image").empty())
    {
        throw Failure("module " + std::to_string(myModule.Id) + " cannot be built yet: " + myMissing);
    }
    PrintSummary(myComponent);
}

void Edit(const Arguments& myArguments)
{
    Site mySite(myArguments.Site);
    Component myComponent(myArguments.Plugin);
    myComponent.Serve(mySite);
    const UserLock myLock = LockForWriting(mySite);
    // Read only now: another program may have changed it before the lock was taken.
    TryScript(myComponent, myArguments.Id, mySite.ModuleOf(myArguments.Id).Script);
    mySite.BeginEdit(myArguments.Id);
    bool myIsEnded = false;
    // After a failure the module stays unchanged. If the undoing fails too, the first failure is reported, and the next
    // command that writes undoes the edit.
    const ScopeGuard myUndo([&] { myIsEnded || Succeeds([&] { mySite.UndoEdit(myArguments.Id); }); });
    if (myComponent.Edit())
    {
        mySite.EndEdit(myArguments.Id, ToUtf8(myComponent.Script()));
        myIsEnded = true;
        PrintSummary(myComponent);
    }
    else
    {
        myIsEnded = true;
        mySite.UndoEdit(myArguments.Id);
        std::cout << "module " << myArguments.Id << " is unchanged: the dialog was cancelled" << std::endl;
    }
}

void ListModules(const Arguments& myArguments)
{
    std::vector<std::vector<std::string>> myRows{{"MODULE", "PAGE", "PLACE", "POSITION"}};
    std::vector<JsonMembers> myObjects;
    for (const Module& myModule : Site(myArguments.Site).Modules())
    {
        myObjects.push_back({{"module", myModule.Id},
                             {"page", myModule.Page},
                             {"place", myModule.Place},
                             {"position", myModule.Position}});
        myRows.push_back({std::to_string(myModule.Id), myModule.Page, myModule.Place.empty() ? "-" : myModule.Place,
                          std::to_string(myModule.Position)});
    }
    PrintList(myRows, myObjects, myArguments);
}

/// Adds a command about one module, which is its second argument.
CLI::App* AddModuleCommand(CLI::App& theGroup, const char* myName, const char* myHelp, Arguments& theArguments)
{
    CLI::App* const theCommand = AddSiteCommand(theGroup, myName, myHelp, theArguments);
    AddNumber(*theCommand, "ID", theArguments.Id, "The module's id");
    return theCommand;
}

/// The commands that read and change the contents of a module.
void AddContentCommands(CLI::App& theGroup, Arguments& theArguments)
{
    CLI::App* const myScript =
        AddModuleCommand(theGroup, "script", "Prints a module's script, or stores another one", theArguments);
    AddPath(*myScript, "FILE", theArguments.OptionalFile, "The new script; - reads the standard input")->type_name("");
    myScript->footer("A new script is stored unchanged, once the component has accepted it. If it names no link,\n"
                     "an empty one is added as its last line (as its first, if it ends within a tag):\n"
                     "without it a build would use the link of the previous module.");
    myScript->callback([&theArguments] { PrintOrSetScript(theArguments); });

    CLI::App* const myArchive =
        AddModuleCommand(theGroup, "archive", "Stores a module's archive of imported files", theArguments);
    AddPath(*myArchive, "FILE", theArguments.Archive, "The archive")->required()->type_name("");
    myArchive->footer(ArchiveHelp);
    myArchive->callback(
        [&theArguments]
        {
            Site mySite(theArguments.Site);
            DemandArchive(*theArguments.Archive);
            const UserLock myLock = LockForWriting(mySite);
            mySite.SetArchive(theArguments.Id, *theArguments.Archive);
        });
}

} // namespace

void AddModuleCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myGroup = AddGroup(theApplication, "module", "The modules on the pages of a site");
    CLI::App* const myAdd = AddSiteCommand(*myGroup, "add", "Adds a module to a page and prints its id", theArguments);
    myAdd->add_option("PAGE", theArguments.Page, "The page's name")->required()->type_name("");
    myAdd->add_option("--place", theArguments.Place, "A named place of the page")->type_name("NAME");
    AddPath(*myAdd, "--script", theArguments.OptionalFile,
            "Its script, if not that of a new module; - reads the standard input")
        ->type_name("FILE");
    AddPath(*myAdd, "--archive", theArguments.Archive, "Its archive of imported files")->type_name("FILE");
    myAdd->footer(ArchiveHelp);
    myAdd->callback([&theArguments] { AddModule(theArguments); });

    CLI::App* const myMove =
        AddModuleCommand(*myGroup, "move", "Moves a module to another position, place or page", theArguments);
    AddNumber(*myMove, "POSITION", theArguments.Position, "Its new position in its place, from 1");
    myMove
        ->add_option("--page", theArguments.OtherPage,
                     "To this page, there to the unnamed place unless --place is given")
        ->type_name("PAGE");
    myMove->add_option("--place", theArguments.Place, "To this place of the page; '' is the unnamed one")
        ->type_name("NAME");
    myMove->callback(
        [&theArguments]
        {
            Site(theArguments.Site)
                .MoveModule(theArguments.Id, theArguments.Position, theArguments.OtherPage, theArguments.Place);
        });

    CLI::App* const myEdit = AddModuleCommand(
        *myGroup, "edit", "Opens a module's settings dialog, and stores what it confirms", theArguments);
    myEdit->footer("The dialog needs a display. Its button for links opens a window with the site's records.\n"
                   "If the dialog is cancelled, the module stays unchanged.");
    myEdit->callback([&theArguments] { Edit(theArguments); });

    AddModuleCommand(*myGroup, "remove", "Removes a module and its archive", theArguments)
        ->callback(
            [&theArguments]
            {
                Site mySite(theArguments.Site);
                const UserLock myLock = LockForWriting(mySite);
                mySite.RemoveModule(theArguments.Id);
            });

    AddContentCommands(*myGroup, theArguments);
    AddModuleCommand(*myGroup, "show", "Shows what a module will do", theArguments)
        ->callback([&theArguments] { ShowModule(theArguments); });

    AddListCommand(*myGroup, "Lists the modules", theArguments)
        ->callback([&theArguments] { ListModules(theArguments); });
}

} // namespace qel::host
