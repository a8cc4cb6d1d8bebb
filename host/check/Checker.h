/// Checks of a build of the component: what they are, and how one is run.
#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace qel::host
{

enum class CheckResult : uint8_t
{
    Passed,
    Failed,
    Warned, ///< it works, but not as well as it should
    Skipped ///< what it needs is not there
};

/// How a check ended. What was expected and what came instead are sentences or values, in UTF-8, for all but Passed.
struct Outcome
{
    CheckResult Result = CheckResult::Passed;
    std::string Expected;
    std::string Got;
    double Seconds = 0;
};

/// What a check works on.
struct Trial
{
    std::filesystem::path File;   ///< the component, absolute
    std::filesystem::path Folder; ///< the check's own, absolute and empty; the current folder too
};

/// One check. It returns when all is well and throws an Outcome otherwise.
struct Check
{
    const char* Name;     ///< such as entry.exports; never changes its meaning
    const char* Sentence; ///< what holds when it passes
    void (*Run)(const Trial& myTrial);
};

// The checks in the order in which they are run.
std::span<const Check> EntryChecks();
std::span<const Check> MemberChecks();
std::span<const Check> ModuleChecks();

/// Runs an operation in a process of its own, with a folder of its own, and gives how it ended. One that crashes, or
/// takes longer, has failed. Neither the folder nor a process in the group of that process is left behind, also when a
/// signal ends this program meanwhile.
/// With `myIsolation` the temporary files, the class registry and the user's folders are private too.
/// Failure: the system has no process to spare, or no folder whose name can be told to the component.
Outcome RunApart(const std::filesystem::path& myFile, const std::function<void(const Trial&)>& myOperation,
                 double mySeconds, bool myIsolation = true);

/// For an operation that is run: notes that it has come this far, for the case that it crashes. Any thread.
void NoteStep(const std::string& myStep);

} // namespace qel::host
