#include "check/Checker.h"
#include "check/CheckSupport.h"
#include "commands/commands.h"
#include "site/Failure.h"
#include "site/markup.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <vector>

#include <dlfcn.h>

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

std::vector<Check> AllChecks()
{
    std::vector<Check> theChecks;
    for (const auto myChecks : {EntryChecks(), MemberChecks(), ModuleChecks()})
    {
        theChecks.insert(theChecks.end(), myChecks.begin(), myChecks.end());
    }
    return theChecks;
}

std::vector<Check> ChosenChecks(const std::vector<std::string>& myNames)
{
    std::vector<Check> theChecks = AllChecks();
    for (const std::string& myName : myNames)
    {
        if (std::ranges::find(theChecks, myName, &Check::Name) == theChecks.end())
        {
            throw UsageFailure("there is no check \"" + myName + "\"; qelhost check --list names them");
        }
    }
    std::erase_if(theChecks, [&](const Check& myCheck)
                  { return !myNames.empty() && std::ranges::find(myNames, myCheck.Name) == myNames.end(); });
    return theChecks;
}

/// Makes an object of the registered class, and ends with the file that its members lie in.
void FindRegistered(const Trial& /*myTrial*/)
{
    CLSID myClass{};
    void* myObject = nullptr;
    Dl_info myInfo{};
    if (SUCCEEDED(CLSIDFromProgID(u"QelPluginAnimation.Main", &myClass)))
    {
        ExpectResult("the registered component opens", S_OK,
                     CoCreateInstance(&myClass, nullptr, CLSCTX_INPROC_SERVER, &IID_IUnknown, &myObject));
        Expect("its file is found", dladdr(*static_cast<void**>(myObject), &myInfo) != 0);
        throw Outcome{CheckResult::Passed, "", myInfo.dli_fname};
    }
}

/// The file to check: the one that is named, the registered one, or the one beside this program.
fs::path FileToCheck(const Arguments& myArguments)
{
    const std::optional<fs::path>& myNamed = myArguments.OptionalFile ? myArguments.OptionalFile : myArguments.Plugin;
    fs::path theFile = myNamed.value_or("");
    if (!myNamed)
    {
        const Outcome myFound = RunApart({}, FindRegistered, myArguments.Seconds, false);
        if (myFound.Result != CheckResult::Passed)
        {
            throw Failure("the registered component cannot be opened: " + myFound.Got +
                          "; enter it again with qelhost register, or name a file");
        }
        theFile = myFound.Got.empty() ? ComponentBesideProgram() : fs::path(myFound.Got);
    }
    if (!fs::is_regular_file(theFile))
    {
        throw Failure("there is no file \"" + Tamed(theFile.string()) + "\" to check");
    }
    return fs::absolute(theFile); // as it stands: ".." behind a link does not lead back
}

/// Fails if the system does not take the file for a shared object, which no check would get beyond.
void DemandSharedObject(const fs::path& myFile, double mySeconds)
{
    const Outcome myOpening = RunApart(
        myFile, [](const Trial& myTrial) { OpenedComponent{myTrial}; }, mySeconds);
    if (myOpening.Expected == OpenedComponent::Opens)
    {
        throw Failure(Tamed(myFile.string()) + " is no shared object that can be opened: " + Tamed(myOpening.Got));
    }
}

std::string Json(std::string_view myText)
{
    std::string theText = "\"";
    for (const char myByte : ToUtf8(FromUtf8(myText))) // names of files need not be valid
    {
        std::array<char, 8> myEscape{};
        std::snprintf(myEscape.data(), myEscape.size(), "\\u%04x", static_cast<unsigned char>(myByte));
        const bool isControl = static_cast<unsigned char>(myByte) < 0x20;
        theText += myByte == '"' || myByte == '\\' ? std::string{'\\', myByte}
                   : isControl                     ? myEscape.data()
                                                   : std::string(1, myByte);
    }
    return theText + '"';
}

/// Writes what comes out, one check after the other.
class Report
{
public:
    Report(const fs::path& myFile, bool myIsJson) : myJson(myIsJson)
    {
        std::cout << (myJson ? "{\"component\": " + Json(myFile.string()) + ", \"checks\": [" : "");
    }

    void Add(const Check& myCheck, const Outcome& myOutcome)
    {
        std::array<char, 32> mySeconds{};
        std::snprintf(mySeconds.data(), mySeconds.size(), "%.3f", myOutcome.Seconds);
        if (myJson)
        {
            std::cout << (myCount == 0 ? "\n" : ",\n") << "{\"name\": " << Json(myCheck.Name)
                      << ", \"sentence\": " << Json(myCheck.Sentence)
                      << ", \"result\": " << Json(NameOf(myOutcome.Result))
                      << ", \"expected\": " << Json(myOutcome.Expected) << ", \"got\": " << Json(myOutcome.Got)
                      << ", \"seconds\": " << mySeconds.data() << "}";
        }
        else
        {
            std::string myResult = NameOf(myOutcome.Result);
            myResult.resize(9, ' ');
            std::cout << myResult << myCheck.Name << "\n";
            if (myOutcome.Result != CheckResult::Passed)
            {
                std::cout << "         Meant:    " << myCheck.Sentence << ".\n"
                          << "         Expected: " << Tamed(myOutcome.Expected) << "\n"
                          << "         Got:      " << Tamed(myOutcome.Got) << "\n";
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
            std::cout << ", " << (myJson ? Json(ResultNames[i]) : ResultNames[i]) << ": " << myCounts[i];
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
        myItems += std::string(myItems.empty() ? "\n" : ",\n") + "{\"name\": " + Json(myCheck.Name) +
                   ", \"sentence\": " + Json(myCheck.Sentence) + "}";
    }
    if (myIsJson)
    {
        std::cout << "{\"checks\": [" << myItems << "\n]}\n";
        return;
    }
    PrintTable(myRows);
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
    DemandSharedObject(myFile, myArguments.Seconds);
    Report myReport(myFile, myArguments.Json);
    for (const Check& myCheck : myChecks)
    {
        myReport.Add(myCheck, RunApart(myFile, myCheck.Run, myArguments.Seconds));
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
    myCheck->add_option("FILE", theArguments.OptionalFile, "The component; without it the one of --plugin")
        ->type_name("");
    myCheck->add_flag("--list", theArguments.List, "Names the checks and what each is about, and runs none");
    myCheck->add_option("--only", theArguments.Checks, "Runs this check; may be given several times")
        ->type_name("NAME")
        ->allow_extra_args(false);
    myCheck->add_flag("--json", theArguments.Json, "Writes one JSON document");
    myCheck->add_option("--timeout", theArguments.Seconds, "The time for one check; without it 10")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.01, 86400.0));
    myCheck->footer("Each check runs in a process of its own, with private folders, so that a crash is one failed "
                    "check.\nThe program ends with 0 if none failed, else with 1.");
    myCheck->callback([&theArguments] { Run(theArguments); });
}

} // namespace qel::host
