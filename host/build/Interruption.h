/// Ctrl+C, and the request to end, while a build runs: the build ends at the next module, leaves its folder in a state
/// that the next build completes, and then the program ends by the signal as it would have without this.
#pragma once

#include "common/Failure.h"

namespace qel::host
{

/// The build was asked to end.
class Interrupted : public Failure
{
public:
    using Failure::Failure;

    /// Ends the program by the signal. A shell that runs it in a loop ends then too.
    [[noreturn]] static void EndProgram();
};

/// Takes the signals for as long as it lives. A second one ends the program at once. One exists at a time.
class Interruption
{
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// Passes while no signal has come. Interrupted: one has.
    static void ThrowIfRequested();

private:
    using Handler = void (*)(int);

    Handler myOldInterrupt;
    Handler myOldTermination;
};

} // namespace qel::host
