/// Running a check in a process of its own.
#pragma once

#include "check/Check.h"

namespace qel::host
{

/// Runs a check with a folder of its own in another process of this program, and returns how it ended. One that
/// crashes, exits early or takes longer has failed. Afterwards neither the folder nor a process in the group of that
/// process is left, even if a signal ends this program meanwhile. On the main thread. Failure: no process can be
/// started, or there is no folder whose name can be passed to the component.
Outcome RunInProcess(const Check& myCheck, const std::filesystem::path& myFile, double mySeconds);

/// The command that starts this program as the other process. Its arguments are the name of the check, the component's
/// file and the folder.
inline constexpr char RunCheckCommand[] = "run-check";

/// The other process: runs the check, writes the outcome to the folder and ends, also if there is no such check.
[[noreturn]] void RunCheckCommandLine(const std::string& myName, const std::filesystem::path& myFile,
                                      const std::filesystem::path& myFolder);

/// For a check: notes the step that it has reached, in case it does not come to its end. On any thread.
void NoteStep(const std::string& myStep);

} // namespace qel::host
