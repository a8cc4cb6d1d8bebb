/// Checks of a build of the component: what a check is, and how it ends.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace qel::host
{

enum class CheckResult : uint8_t
{
    Passed,
    Failed,
    Warned, ///< it works, but not as well as it should
    Skipped ///< what it needs is not there
};

/// How a check ended. For all results but Passed, the texts say in UTF-8 what was expected and what came instead, as a
/// sentence or a value.
struct Outcome
{
    CheckResult Result = CheckResult::Passed;
    std::string Expected;
    std::string Got;
    double Seconds = 0;
};

/// What a check works on.
struct CheckContext
{
    std::filesystem::path File;   ///< the component, absolute
    std::filesystem::path Folder; ///< the check's own, absolute and empty; the current folder too
};

/// Whose temporary files, class registry and other folders a check uses.
enum class Surroundings : uint8_t
{
    Private, ///< its own, without a display
    OfUser
};

/// One check. It returns if it passes, and throws an Outcome otherwise.
struct Check
{
    const char* Name = nullptr;     ///< such as entry.exports; never changes its meaning
    const char* Sentence = nullptr; ///< what holds when it passes
    void (*Run)(const CheckContext& myContext) = nullptr;
    Surroundings Around = Surroundings::Private;
};

/// All checks in the order in which they are run. The first one opens the component; if it fails, no other can pass.
std::vector<Check> AllChecks();

/// Not one of them: creates an object of the registered class. Its Outcome has the component's file as what it got, or
/// the empty text if none is registered.
extern const Check FindRegistered;

// The groups of checks.
std::span<const Check> EntryChecks();
std::span<const Check> IdentityChecks();
std::span<const Check> MemberChecks();
std::span<const Check> SortChecks();
std::span<const Check> LateBindingChecks();
std::span<const Check> ScriptChecks();
std::span<const Check> ReadingChecks();
std::span<const Check> SummaryChecks();
std::span<const Check> PageChecks();
std::span<const Check> FileChecks();
std::span<const Check> ArchiveChecks();
std::span<const Check> HostChecks();
std::span<const Check> LeakChecks();

} // namespace qel::host
