/// How a check ended, as one process writes it to a file and another reads it.
///
/// The file is text. While the check runs it contains one line, `step` and the last step that succeeded; at the end the
/// lines `expected`, `got` and `result`. In the texts "\n" stands for a line end and "\\" for "\".
#pragma once

#include "check/Check.h"

#include <fstream>
#include <mutex>
#include <optional>

namespace qel::host
{

/// The writing side. It is open from the beginning, so that a check that counts open files always counts it.
class OutcomeFile
{
public:
    explicit OutcomeFile(std::filesystem::path theName);

    /// Replaces the previous step. On any thread.
    void NoteStep(const std::string& myStep);
    /// Writes the outcome in place of the step. The last call.
    void Write(const Outcome& myOutcome);

private:
    std::filesystem::path myName;
    std::mutex myLock;
    std::ofstream myStream;
};

/// What a file contains.
struct OutcomeContent
{
    std::string LastStep;          ///< empty if none was noted
    std::optional<Outcome> Result; ///< none if the check did not come to its end
};

/// Reads a file; a missing one has no content. No error.
OutcomeContent ReadOutcomeFile(const std::filesystem::path& myName);

} // namespace qel::host
