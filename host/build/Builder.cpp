#include "build/Builder.h"

#include "build/Interruption.h"
#include "build/staticFiles.h"
#include "common/Failure.h"
#include "common/printable.h"
#include "site/siteFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <map>

namespace qel::host
{

Builder::Builder(Site& theSite, Component& theComponent, std::ostream& theMessages, bool theShowsProgress)
    : mySite(theSite), myComponent(theComponent), myMessages(theMessages), myProgress(theMessages, theShowsProgress)
{
}

BuildResult Builder::Build(const BuildOptions& theOptions)
{
    myOptions = theOptions;
    myResult = {};
    RemoveUnfinishedFiles(mySite.DataFolder(), Unfinished::OfEndedPrograms);
    if (myOptions.Refreshes)
    {
        RefreshPages();
    }
    const Transaction mySnapshot = mySite.Snapshot();
    myPages = mySite.Pages();
    myTitle = FromUtf8(EscapedForHtml(mySite.Title()));
    std::vector<Page> myBuilt = myOptions.OnlyPage ? std::vector{mySite.PageOf(*myOptions.OnlyPage)} : myPages;
    OutputFolder myOutput(mySite.BuildFolder());
    if (myOptions.OnlyPage && myOutput.WasInterrupted())
    {
        Say("the last build was interrupted, so all pages are built");
        myBuilt = myPages;
        myOptions.OnlyPage.reset();
    }
    if (myOptions.OnlyPage)
    {
        myOutput.Refresh(mySite.Records(), mySite.DataFolder());
    }
    else
    {
        std::set<std::string> myNames;
        std::transform(myPages.begin(), myPages.end(), std::inserter(myNames, myNames.end()),
                       [](const Page& myPage) { return myPage.Name; });
        myOutput.Empty(myNames);
    }
    CopyStaticFiles(myOutput);
    for (const Page& myPage : myBuilt)
    {
        BuildPage(myPage, myOutput);
    }
    myOutput.Finish();
    return myResult;
}

void Builder::RefreshPages()
{
    for (const SourceNews& myNews : mySite.RefreshPages(myOptions.OnlyPage))
    {
        myResult.Problems += myNews.IsFailure ? 1 : 0;
        Say(myNews.Page + ": " + myNews.Text);
    }
}

void Builder::CopyStaticFiles(OutputFolder& theOutput)
{
    StaticFiles myFiles = ListStaticFiles(mySite.StaticFolder(), myPages);
    for (const StaticFile& myFile : theOutput.ClaimStatic(myFiles.Files, myFiles.Problems))
    {
        Interruption::ThrowIfRequested();
        try
        {
            theOutput.CopyStatic(myFile);
        }
        catch (const Failure& myFailure)
        {
            myFiles.Problems.push_back("static/" + myFile.Path + ": " + myFailure.what());
        }
    }
    for (const std::string& myProblem : myFiles.Problems)
    {
        ReportProblem(myProblem);
    }
    for (const std::string& myWarning : myFiles.Warnings)
    {
        Say(myWarning);
    }
}

void Builder::BuildPage(const Page& myPage, OutputFolder& theOutput)
{
    myProgress.Show("[" + std::to_string(myResult.Pages + 1) + "/" + std::to_string(myPages.size()) + "] " +
                    myPage.Name);
    if (const std::string myProblem = NameProblem(myPage.Name); !myProblem.empty())
    {
        ReportProblem(myPage.Name + ": the page is not built: its name cannot be that of a file, " + myProblem +
                      "; give it another one with qelhost page set --name");
        return;
    }
    const PageText myText(mySite.PageContent(myPage.Id));
    for (const std::string& myComment : myText.UnknownComments())
    {
        Say(myPage.Name + ", " + myComment);
    }
    std::map<std::string, Text> myModules;
    for (const Module& myModule : mySite.Modules(myPage.Id))
    {
        Interruption::ThrowIfRequested();
        ++myResult.Modules;
        if (myText.HasPlace(myModule.Place))
        {
            myModules[myModule.Place] += ModuleText(myModule);
        }
        else
        {
            ReportModule(myModule, "",
                         "the page has no place \"" + myModule.Place + "\" any more; move the module with " +
                             "qelhost module move, or put the place back");
        }
    }
    Interruption::ThrowIfRequested();
    theOutput.Write(myPage.Name, myText.Filled(myModules, myTitle, myText.HasMenu() ? Menu(myPage.Name) : Text()));
    ++myResult.Pages;
}

Text Builder::ModuleText(const Module& myModule)
{
    try
    {
        myComponent.PutInHand(myModule.Id, "<pg.param name=\"link\">"); // a script from an older site may name none
        myComponent.PutInHand(myModule.Id, myModule.Script);
        Text theText = myComponent.Output();
        const std::string myReason = ToUtf8(myComponent.ErrorText());
        if (myReason.empty())
        {
            if (const std::string myProblem = LinkProblem(mySite, myModule); !myProblem.empty())
            {
                ReportProblem(myModule.Page + ", module " + std::to_string(myModule.Id) + ": " + myProblem);
            }
            return theText;
        }
        const std::string myNumber = ErrorNumberOf(myReason, theText.empty());
        ReportModule(myModule, myNumber,
                     myReason + " (" + FailureDetails(mySite, myModule, myNumber, myComponent.LibraryFolder()) + ")");
        return myOptions.KeepsErrors ? theText : FailureComment(myModule.Id, myNumber);
    }
    catch (const CallFailure& myFailure)
    {
        const std::string myNumber = ErrorNumberOf(myFailure.Result);
        ReportModule(myModule, myNumber, myFailure.what());
        return FailureComment(myModule.Id, myNumber);
    }
}

Text Builder::Menu(const std::string& myCurrentPage) const
{
    std::string theMenu = "<ul>";
    for (const Page& myPage : myPages)
    {
        theMenu += "<li><a href=\"" + EncodedForAddress(myPage.Name) + "\"" +
                   (myPage.Name == myCurrentPage ? " aria-current=\"page\">" : ">") + EscapedForHtml(myPage.Title) +
                   "</a></li>";
    }
    return FromUtf8(theMenu + "</ul>");
}

void Builder::ReportModule(const Module& myModule, const std::string& myErrorNumber, const std::string& myReason)
{
    myResult.Failures.push_back({myModule.Page, myModule.Id, myErrorNumber});
    Say(myModule.Page + ", module " + std::to_string(myModule.Id) + ": " + myReason);
}

void Builder::ReportProblem(const std::string& myText)
{
    ++myResult.Problems;
    Say(myText);
}

void Builder::Say(const std::string& myText)
{
    myProgress.Show("");
    myMessages << Printable(myText) << std::endl;
}

} // namespace qel::host
