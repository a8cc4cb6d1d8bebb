/// What the checks need of the system beyond the standard library. Each system has its own implementation.
#pragma once

#include "com/qelcom.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace qel::host
{

/// Runs this program once more, in a process of its own.
///
/// While an object lives, a signal that would end this program (on a console: Ctrl+C, or its closing) waits, so that
/// what a run leaves can be removed first; then the signal has its usual effect. On the main thread.
class ProgramRunner
{
public:
    ProgramRunner();
    ProgramRunner(const ProgramRunner&) = delete;
    ProgramRunner& operator=(const ProgramRunner&) = delete;
    ~ProgramRunner();

    /// Runs the program with arguments, without input and output, and waits until it has ended, the time is over, or a
    /// signal is waiting. Afterwards neither the process nor one that it started is left, as far as the system can tell
    /// which it started. Returns how it ended, as a sentence in UTF-8 without a full stop. Failure: no process can be
    /// started.
    std::string Run(const std::vector<std::string>& myArguments, double mySeconds) const;

private:
    struct HeldSignals;
    std::unique_ptr<HeldSignals> mySignals;
};

/// For a program that was run so, before anything else: from now on it ends together with the program that runs it, a
/// crash ends it without a question to the user, and its main thread can create objects of registered classes. It may
/// lose access to the display.
void BeginRun();

/// For a program that was run so: ends it at once, without what libraries do at the end of a process.
[[noreturn]] void EndRun();

/// For a program that was run so: replaces the user's files, class registry, desktop and programs by private ones,
/// which belong to a folder of MakeTemporaryFolder. No core dump is written if it crashes.
void IsolateProcess(const std::filesystem::path& myFolder);

/// Makes a new folder for this user alone in the folder for temporary files. Failure: it cannot be made, or its name
/// cannot be passed to the component.
std::filesystem::path MakeTemporaryFolder();

/// Removes such a folder, and what IsolateProcess has made for it elsewhere, as far as possible.
void RemoveTemporaryFolder(const std::filesystem::path& myFolder);

/// Makes a link, to a folder or to a file. Throws an Outcome that skips the check: this user cannot make links.
void MakeLink(const std::filesystem::path& myTarget, const std::filesystem::path& myLink);

/// Creates an object of a class by its name in the class registry of this process, which may be a private one.
/// CO_E_CLASSSTRING: no class has that name. Otherwise the results of CoCreateInstance.
HRESULT CreateByName(const char16_t* myProgramName, REFIID myInterface, void** theObject);

/// The number of type descriptions that each interface of a component has.
extern const uint32_t TypeDescriptionCount;

/// True when names in archives are in the code page Windows-1252. In another one their letters beyond ASCII cannot be
/// checked.
bool CodePageIsWestern();

/// The bytes of memory that this process has allocated.
size_t MemoryInUse();
/// The number of files that this process has open.
int64_t OpenFileCount();

/// The names that a shared library exports. Throws an Outcome: the file is incomplete, or has no table of them.
std::set<std::string> ExportedNames(const std::filesystem::path& myFile);

} // namespace qel::host
