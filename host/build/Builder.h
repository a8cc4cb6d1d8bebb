/// Writes the site's pages, with what the component gives for each module in its place.
#pragma once

#include "build/Component.h"
#include "build/OutputFolder.h"
#include "site/Site.h"

#include <optional>
#include <ostream>
#include <string>

namespace qel::host
{

struct BuildResult
{
    int Pages;
    int Modules;
    int Failures; ///< modules that are not on their page as their author wants them
};

class Builder
{
public:
    /// `myMessages` takes each failed module's reason, and with `myShowsProgress` a line that is written over and over.
    /// All of them outlive the builder, and the component serves this site.
    Builder(Site& theSite, Component& theComponent, std::ostream& theMessages, bool theShowsProgress);
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    ~Builder() { ShowProgress(""); }

    /// Builds all pages, or one and leaves the others as they are. A failed module does not end it: what the component
    /// gives instead goes into the page. A build from the same site gives the same bytes.
    /// Failure: the site cannot be read, or its output not be written.
    BuildResult Build(const std::optional<std::string>& myOnlyPage);

private:
    void BuildPage(const Page& myPage, OutputFolder& theOutput);
    Text OutputOf(const Module& myModule);
    Text Menu(const std::string& myCurrentPage) const;
    void Report(const Module& myModule, const std::string& myReason);
    void ShowProgress(const std::string& myText);

    Site& mySite;
    Component& myComponent;
    std::ostream& myMessages;
    bool myShowsProgress;
    std::vector<Page> myPages;
    Text myTitle;
    BuildResult myResult{};
};

} // namespace qel::host
