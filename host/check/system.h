/// What the checks need of the system beyond the standard library.
#pragma once

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
/// For as long as an object lives, a signal that would end this program waits, so that what a run leaves can be put
/// away first; then the signal does what it always does. On the main thread.
class ProgramRunner
{
public:
    ProgramRunner();
    ProgramRunner(const ProgramRunner&) = delete;
    ProgramRunner& operator=(const ProgramRunner&) = delete;
    ~ProgramRunner();

    /// Runs the program with arguments, without input and output, and waits until it has ended, or the time is over, or
    /// a signal waits. Afterwards neither the process nor one of its group is left. Gives how it ended, as a sentence
    /// in UTF-8 without a full stop. Failure: the system has no process to spare.
    std::string Run(const std::vector<std::string>& myArguments, double mySeconds) const;

private:
    struct HeldSignals;
    std::unique_ptr<HeldSignals> mySignals;
};

/// For a program that was run so: it ends with the one that runs it.
void EndWithRunner();

/// For a program that was run so: cuts it off from the user's files, desktop and programs, by private folders below the
/// one that is given. No memory image is written if it crashes.
void IsolateProcess(const std::filesystem::path& myFolder);

/// Makes a new folder for this user alone in the folder for temporary files. Failure: it cannot be made, or its name
/// cannot be passed to the component.
std::filesystem::path MakeTemporaryFolder();

/// The bytes of memory that this process has allocated.
size_t MemoryInUse();
/// The number of files that this process has open.
int64_t OpenFileCount();

/// The names that a shared library exports. Throws an Outcome: the file is not whole, or does not have a table of them.
std::set<std::string> ExportedNames(const std::filesystem::path& myFile);

} // namespace qel::host
