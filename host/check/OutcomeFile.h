/// How a check ended, as one process writes it to a file and another reads it.
///
/// The file is text. While the check runs it holds one line, `step` and the last step that went well; at the end the
/// lines `expected`, `got` and `result`. In the texts "\n" stands for a line end and "\\" for "\".
#pragma once

#include "check/Check.h"

#include <fstream>
#include <mutex>
#include <optional>

namespace qel::host
{

/// The writing side. It is open from the beginning, so that a check that counts open files counts it always.
class OutcomeFile
{
public:
    explicit OutcomeFile(std::filesystem::path theName);

    /// Replaces the step before. Any thread.
    void NoteStep(const std::string& myStep);
    /// Replaces the step; nothing follows.
    void Write(const Outcome& myOutcome);

private:
    std::filesystem::path myName;
    std::mutex myLock;
    std::ofstream myStream;
};

/// What a file holds.
struct OutcomeContent
{
    std::string LastStep;          ///< empty if none was noted
    std::optional<Outcome> Result; ///< none if the check did not come to its end
};

/// Nothing for a file that is not there. No error.
OutcomeContent ReadOutcomeFile(const std::filesystem::path& myName);

} // namespace qel::host
