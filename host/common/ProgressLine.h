/// The line of a terminal that shows how far a command has come.
#pragma once

#include <ostream>
#include <string>

namespace qel::host
{

/// Rewrites the terminal's current line, and clears it at the end of the object's life.
class ProgressLine
{
public:
    /// `theIsShown` is false when the stream is no terminal; then nothing is written. The stream must outlive the
    /// object.
    ProgressLine(std::ostream& theTerminal, bool theIsShown) : myTerminal(theTerminal), myIsShown(theIsShown) {}
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { Show(""); }

    /// Replaces the line; the empty text clears it.
    void Show(const std::string& myText) const;

private:
    std::ostream& myTerminal;
    bool myIsShown;
};

} // namespace qel::host
