/// Running a check in a process of its own.
#pragma once

#include "check/Check.h"

namespace qel::host
{

/// Runs a check with a folder of its own in another process of this program, and gives how it ended. One that crashes,
/// leaves early or takes longer has failed. Neither the folder nor a process in the group of that process is left, also
/// when a signal ends this program meanwhile. On the main thread.
/// Failure: the system has no process to spare, or no folder whose name can be passed to the component.
Outcome RunInProcess(const Check& myCheck, const std::filesystem::path& myFile, double mySeconds);

/// The word that starts this program as the other process: after it stand the name of the check, the component's file
/// and the folder.
inline constexpr char RunCheckCommand[] = "run-check";

/// The other process: runs the check, leaves the outcome in the folder and ends. A check that is not there ends it too.
[[noreturn]] void RunCheckCommandLine(const std::string& myName, const std::filesystem::path& myFile,
                                      const std::filesystem::path& myFolder);

/// For a check: notes that it has come this far, for the case that it does not come to its end. Any thread.
void NoteStep(const std::string& myStep);

} // namespace qel::host
