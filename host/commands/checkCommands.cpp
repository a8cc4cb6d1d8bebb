#include "check/OpenedComponent.h"
#include "check/runCheck.h"
#include "commands/commands.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "common/programFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <iostream>
#include <vector>

namespace qel::host
{

namespace
{

namespace fs = std::filesystem;

constexpr std::array ResultNames{"passed", "failed", "warned", "skipped"};

const char* NameOf(CheckResult myResult)
{
    return ResultNames[static_cast<size_t>(myResult)];
}

std::vector<Check> ChosenChecks(const std::vector<std::string>& myNames)
{
    std::vector<Check> theChecks = AllChecks();
    for (const std::string& myName : myNames)
    {
        if (std::ranges::find(theChecks, myName, &Check::Name) == theChecks.end())
        {
            throw UsageFailure("there is no check \"" + myName + "\"; qelhost check --list lists them");
        }
    }
    std::erase_if(theChecks, [&](const Check& myCheck)
                  { return !myNames.empty() && std::ranges::find(myNames, myCheck.Name) == myNames.end(); });
    return theChecks;
}

/// The file to check: the one that is named, the registered one, or the one beside this program.
fs::path FileToCheck(const Arguments& myArguments)
{
    const std::optional<fs::path>& myNamed = myArguments.OptionalFile ? myArguments.OptionalFile : myArguments.Plugin;
    fs::path theFile = myNamed.value_or("");
    if (!myNamed)
    {
        const Outcome myFound = RunInProcess(FindRegistered, {}, myArguments.Seconds);
        if (myFound.Result != CheckResult::Passed)
        {
            throw Failure("the registered component cannot be opened: " + myFound.Got +
                          "; register it again with qelhost register, or name a file");
        }
        theFile = myFound.Got.empty() ? ComponentBesideProgram() : PathOf(myFound.Got);
    }
    if (!fs::is_regular_file(theFile))
    {
        throw Failure("there is no file \"" + Printable(TextOf(theFile)) + "\" to check");
    }
    return fs::absolute(theFile); // unchanged: ".." after a link does not lead back
}

/// Runs the first check, on which all others depend. Fails if the system cannot open the file as a shared library at
/// all.
Outcome OpenFirst(const Check& myOpening, const fs::path& myFile, double mySeconds)
{
    Outcome theOutcome = RunInProcess(myOpening, myFile, mySeconds);
    if (theOutcome.Expected == OpenedComponent::Opens)
    {
        throw Failure("the component cannot be opened: " + Printable(theOutcome.Got) + "; name another file");
    }
    return theOutcome;
}

/// Writes the results, one check after the other.
class Report
{
public:
    Report(const fs::path& myFile, bool myIsJson) : myJson(myIsJson)
    {
        std::cout << (myJson ? "{\"component\": " + JsonText(TextOf(myFile)) + ", \"checks\": [" : "");
    }

    void Add(const Check& myCheck, const Outcome& myOutcome)
    {
        std::array<char, 32> mySeconds{};
        std::snprintf(mySeconds.data(), mySeconds.size(), "%.3f", myOutcome.Seconds);
        if (myJson)
        {
            std::cout << (myCount == 0 ? "\n" : ",\n") << "{\"name\": " << JsonText(myCheck.Name)
                      << ", \"sentence\": " << JsonText(myCheck.Sentence)
                      << ", \"result\": " << JsonText(NameOf(myOutcome.Result))
                      << ", \"expected\": " << JsonText(myOutcome.Expected) << ", \"got\": " << JsonText(myOutcome.Got)
                      << ", \"seconds\": " << mySeconds.data() << "}";
        }
        else
        {
            std::string myResult = NameOf(myOutcome.Result);
            myResult.resize(9, ' ');
            std::cout << myResult << myCheck.Name << "\n";
            if (myOutcome.Result != CheckResult::Passed)
            {
                std::cout << "         Rule:     " << myCheck.Sentence << ".\n"
                          << "         Expected: " << Printable(myOutcome.Expected) << "\n"
                          << "         Got:      " << Printable(myOutcome.Got) << "\n";
            }
        }
        std::cout.flush();
        ++myCounts[static_cast<size_t>(myOutcome.Result)];
        ++myCount;
    }

    /// Ends the report. False: something failed.
    bool End() const
    {
        std::cout << (myJson ? "\n]" : "Checks: " + std::to_string(myCount));
        for (size_t i = 0; i < ResultNames.size(); ++i)
        {
            std::cout << ", " << (myJson ? JsonText(ResultNames[i]) : ResultNames[i]) << ": " << myCounts[i];
        }
        std::cout << (myJson ? "}\n" : ".\n");
        return myCounts[static_cast<size_t>(CheckResult::Failed)] == 0;
    }

private:
    bool myJson;
    size_t myCount = 0;
    std::array<size_t, ResultNames.size()> myCounts{};
};

void List(const std::vector<Check>& myChecks, bool myIsJson)
{
    std::vector<std::vector<std::string>> myRows{{"CHECK", "WHAT HOLDS WHEN IT PASSES"}};
    std::string myItems;
    for (const Check& myCheck : myChecks)
    {
        myRows.push_back({myCheck.Name, myCheck.Sentence});
        myItems += std::string(myItems.empty() ? "\n" : ",\n") + "{\"name\": " + JsonText(myCheck.Name) +
                   ", \"sentence\": " + JsonText(myCheck.Sentence) + "}";
    }
    if (myIsJson)
    {
        std::cout << "{\"checks\": [" << myItems << "\n]}\n";
        return;
    }
    PrintTable(myRows);
}

/// Why a text cannot be the time for one check; empty if it can.
std::string SecondsProblem(const std::string& myText)
{
    double mySeconds = 0;
    const char* const myEnd = myText.data() + myText.size();
    const auto [myRest, myError] = std::from_chars(myText.data(), myEnd, mySeconds);
    const bool myIsTime = myError == std::errc() && myRest == myEnd && mySeconds >= 0.01 && mySeconds <= 86400;
    return myIsTime ? "" : "\"" + Printable(myText) + "\" is not a number of seconds from 0.01 to 86400";
}

void Run(const Arguments& myArguments)
{
    const std::vector<Check> myChecks = ChosenChecks(myArguments.Checks);
    if (myArguments.List)
    {
        List(myChecks, myArguments.Json);
        return;
    }
    const fs::path myFile = FileToCheck(myArguments);
    const Check myOpening = AllChecks().front();
    const Outcome myFirst = OpenFirst(myOpening, myFile, myArguments.Seconds);
    const bool myIsOpen = myFirst.Result == CheckResult::Passed;
    Report myReport(myFile, myArguments.Json);
    if (!myIsOpen || std::string_view(myChecks.front().Name) == myOpening.Name)
    {
        myReport.Add(myOpening, myFirst);
    }
    for (const Check& myCheck : myChecks)
    {
        if (std::string_view(myCheck.Name) != myOpening.Name)
        {
            myReport.Add(myCheck, myIsOpen ? RunInProcess(myCheck, myFile, myArguments.Seconds)
                                           : Outcome{CheckResult::Skipped, "a component that can be opened",
                                                     std::string("it fails ") + myOpening.Name});
        }
    }
    if (!myReport.End())
    {
        throw CLI::RuntimeError(1);
    }
}

} // namespace

void AddCheckCommands(CLI::App& theApplication, Arguments& theArguments)
{
    CLI::App* const myCheck = theApplication.add_subcommand("check", "Checks a build of the component");
    AddPath(*myCheck, "FILE", theArguments.OptionalFile, "The component; without it the one of --plugin")
        ->type_name("");
    myCheck->add_flag("--list", theArguments.List, "Lists the checks and what each one means, and runs none");
    myCheck->add_option("--only", theArguments.Checks, "Runs this check; may be given several times")
        ->type_name("NAME")
        ->allow_extra_args(false);
    myCheck->add_flag("--json", theArguments.Json, "Writes one JSON document");
    myCheck->add_option("--timeout", theArguments.Seconds, "The time for one check; without it 10")
        ->type_name("SECONDS")
        ->check(SecondsProblem);
    myCheck->footer("Each check runs in a process of its own, with private folders, so that a crash is one failed "
                    "check.\nThe program ends with 0 if none failed, else with 1.");
    myCheck->callback([&theArguments] { Run(theArguments); });

    // The command above starts this one for each check. Without a group no help lists it.
    CLI::App* const myRun = theApplication.add_subcommand(RunCheckCommand)->group("");
    myRun->add_option("NAME", theArguments.Kind)->required();
    AddPath(*myRun, "FILE", theArguments.File, "")->required();
    AddPath(*myRun, "FOLDER", theArguments.Folder, "")->required();
    myRun->callback([&theArguments]
                    { RunCheckCommandLine(theArguments.Kind, theArguments.File, theArguments.Folder); });
}

} // namespace qel::host
