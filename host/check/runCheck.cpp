#include "check/runCheck.h"

#include "check/OutcomeFile.h"
#include "check/system.h"
#include "common/paths.h"
#include "text/ScopeGuard.h"

#include <algorithm>
#include <chrono>
#include <memory>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr char OutcomeName[] = "outcome";
constexpr char WorkName[] = "work";

/// The outcome of the check that this process runs; there is one.
std::unique_ptr<OutcomeFile> TheOutcomeFile;

Outcome RunHere(const Check& myCheck, const CheckContext& myContext)
{
    try
    {
        fs::create_directory(myContext.Folder);
        if (myCheck.Around == Surroundings::Private)
        {
            IsolateProcess(myContext.Folder.parent_path());
        }
        fs::current_path(myContext.Folder);
        myCheck.Run(myContext);
        return {};
    }
    catch (const Outcome& myOutcome)
    {
        return myOutcome;
    }
    catch (const std::exception& myError)
    {
        return {CheckResult::Failed, "the check comes to its end", myError.what()};
    }
}

} // namespace

Outcome RunInProcess(const Check& myCheck, const fs::path& myFile, double mySeconds)
{
    const ProgramRunner myRunner; // destroyed last, so that no signal ends the program before the folder is removed
    const fs::path myFolder = MakeTemporaryFolder();
    const ScopeGuard myRemoval([&] { RemoveTemporaryFolder(myFolder); });
    const auto myStart = Clock::now();
    const std::string myEnd =
        myRunner.Run({RunCheckCommand, myCheck.Name, TextOf(myFile), TextOf(myFolder)}, mySeconds);
    const OutcomeContent myContent = ReadOutcomeFile(myFolder / OutcomeName);
    Outcome theOutcome = myContent.Result.value_or(
        Outcome{CheckResult::Failed, "the check comes to its end",
                myEnd + (myContent.LastStep.empty() ? "" : "; the last that went well: " + myContent.LastStep)});
    theOutcome.Seconds = std::chrono::duration<double>(Clock::now() - myStart).count();
    return theOutcome;
}

void RunCheckCommandLine(const std::string& myName, const fs::path& myFile, const fs::path& myFolder)
{
    BeginRun();
    std::vector<Check> myChecks = AllChecks();
    myChecks.push_back(FindRegistered);
    const auto myCheck = std::ranges::find(myChecks, myName, &Check::Name);
    if (myCheck != myChecks.end())
    {
        TheOutcomeFile = std::make_unique<OutcomeFile>(myFolder / OutcomeName);
        TheOutcomeFile->Write(RunHere(*myCheck, {myFile, myFolder / WorkName}));
    }
    EndRun(); // what the component does at the end of a process is no part of the check
}

void NoteStep(const std::string& myStep)
{
    if (TheOutcomeFile)
    {
        TheOutcomeFile->NoteStep(myStep);
    }
}

} // namespace qel::host
