/// Writes the site's pages, with what the component returns for each module in its place.
#pragma once

#include "build/Component.h"
#include "build/moduleFailures.h"
#include "build/OutputFolder.h"
#include "common/ProgressLine.h"
#include "site/PageText.h"
#include "site/Site.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace qel::host
{

struct BuildOptions
{
    std::optional<std::string> OnlyPage; ///< the other pages stay as they are
    bool KeepsErrors = false;            ///< what the component returns for a failed module goes into the page
    bool Refreshes = true;               ///< pages are taken from their files again where those have changed
};

struct ModuleFailure
{
    std::string Page;
    int64_t Module;
    std::string ErrorNumber; ///< as in the comment on the page; empty: the page has no place for the module
};

struct BuildResult
{
    int Pages = 0;
    int Modules = 0;
    std::vector<ModuleFailure> Failures; ///< modules that are not on their page as their author wants them
    int Problems = 0;                    ///< pages and static files that are not, or not newly, in the build
};

class Builder
{
public:
    /// `theMessages` receives a line for everything that the author should know and, with `theShowsProgress`, one that
    /// shows the progress. The arguments must outlive the builder, and the component must serve this site.
    Builder(Site& theSite, Component& theComponent, std::ostream& theMessages, bool theShowsProgress);
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    ~Builder() = default;

    /// Builds the pages. A failed module does not end it: a comment that names the module and its error number is put
    /// into the page. A build from the same site returns the same bytes. After an interrupted build all pages are
    /// built. Failure: the site cannot be read, or its output cannot be written. Interrupted: see Interruption.
    BuildResult Build(const BuildOptions& myOptions);

private:
    void RefreshPages();
    void CopyStaticFiles(OutputFolder& theOutput);
    void BuildPage(const Page& myPage, OutputFolder& theOutput);
    Text ModuleText(const Module& myModule);
    Text Menu(const std::string& myCurrentPage) const;
    void ReportModule(const Module& myModule, const std::string& myErrorNumber, const std::string& myReason);
    void ReportProblem(const std::string& myText);
    void Say(const std::string& myText);

    Site& mySite;
    Component& myComponent;
    std::ostream& myMessages;
    ProgressLine myProgress;
    BuildOptions myOptions;
    std::vector<Page> myPages;
    Text myTitle;
    BuildResult myResult;
};

} // namespace qel::host
