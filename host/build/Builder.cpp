#include "build/Builder.h"

#include "common/Failure.h"
#include "common/printable.h"
#include "site/PageText.h"
#include "text/encodings.h"

#include <algorithm>
#include <map>

namespace qel::host
{

Builder::Builder(Site& theSite, Component& theComponent, std::ostream& theMessages, bool theShowsProgress)
    : mySite(theSite), myComponent(theComponent), myMessages(theMessages), myShowsProgress(theShowsProgress)
{
}

BuildResult Builder::Build(const std::optional<std::string>& myOnlyPage)
{
    const Transaction mySnapshot = mySite.Snapshot();
    myResult = {};
    myPages = mySite.Pages();
    myTitle = FromUtf8(EscapedForHtml(mySite.Title()));
    OutputFolder myOutput(mySite.BuildFolder());
    if (myOnlyPage)
    {
        const Page myPage = mySite.PageOf(*myOnlyPage);
        myOutput.Refresh(mySite.Records(), mySite.DataFolder());
        BuildPage(myPage, myOutput);
    }
    else
    {
        std::set<std::string> myNames;
        std::transform(myPages.begin(), myPages.end(), std::inserter(myNames, myNames.end()),
                       [](const Page& myPage) { return myPage.Name; });
        myOutput.Empty(myNames);
        for (const Page& myPage : myPages)
        {
            BuildPage(myPage, myOutput);
        }
    }
    return myResult;
}

void Builder::BuildPage(const Page& myPage, OutputFolder& theOutput)
{
    ShowProgress("[" + std::to_string(myResult.Pages + 1) + "/" + std::to_string(myPages.size()) + "] " + myPage.Name);
    const PageText myText(mySite.PageContent(myPage.Id));
    std::map<std::string, Text> myModules;
    for (const Module& myModule : mySite.Modules(myPage.Id))
    {
        ++myResult.Modules;
        if (myText.HasPlace(myModule.Place))
        {
            myModules[myModule.Place] += OutputOf(myModule);
        }
        else
        {
            Report(myModule, "the page has no place \"" + myModule.Place + "\" any more; move the module with " +
                                 "qelhost module move, or put the place back");
        }
    }
    theOutput.Write(myPage.Name, myText.Filled(myModules, myTitle, myText.HasMenu() ? Menu(myPage.Name) : Text()));
    ++myResult.Pages;
}

Text Builder::OutputOf(const Module& myModule)
{
    try
    {
        myComponent.PutInHand(myModule.Id, myModule.Script);
        Text theText = myComponent.Output();
        if (const Text myReason = myComponent.ErrorText(); !myReason.empty())
        {
            Report(myModule, ToUtf8(myReason));
        }
        return theText;
    }
    catch (const Failure& myFailure)
    {
        Report(myModule, myFailure.what());
        return {};
    }
}

Text Builder::Menu(const std::string& myCurrentPage) const
{
    std::string theMenu = "<ul>";
    for (const Page& myPage : myPages)
    {
        theMenu += "<li><a href=\"" + EscapedForHtml(myPage.Name) + "\"" +
                   (myPage.Name == myCurrentPage ? " aria-current=\"page\">" : ">") + EscapedForHtml(myPage.Title) +
                   "</a></li>";
    }
    return FromUtf8(theMenu + "</ul>");
}

void Builder::Report(const Module& myModule, const std::string& myReason)
{
    ++myResult.Failures;
    ShowProgress("");
    myMessages << myModule.Page << ", module " << myModule.Id << ": " << Printable(myReason) << std::endl;
}

void Builder::ShowProgress(const std::string& myText)
{
    if (myShowsProgress)
    {
        myMessages << "\r\033[K" << myText << std::flush;
    }
}

} // namespace qel::host
