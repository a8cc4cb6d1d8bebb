/// Checks of a build of the component: what a check is, and what comes of it.
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

/// How a check ended. What was expected and what came instead are sentences or values, in UTF-8, for all but Passed.
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

/// Whose temporary files, class registry and other folders a check works with.
enum class Surroundings : uint8_t
{
    Private, ///< its own, without a display
    OfUser
};

/// One check. It returns when all is well and throws an Outcome otherwise.
struct Check
{
    const char* Name = nullptr;     ///< such as entry.exports; never changes its meaning
    const char* Sentence = nullptr; ///< what holds when it passes
    void (*Run)(const CheckContext& myContext) = nullptr;
    Surroundings Around = Surroundings::Private;
};

/// All checks in the order in which they are run. The first one is that the component opens: no other gets further
/// where this fails.
std::vector<Check> AllChecks();

/// Not one of them: makes an object of the registered class, and passes with the component's file as what it got, or
/// with the empty text if none is registered.
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
