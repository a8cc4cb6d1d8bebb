/// Ctrl+C, and the request to end, while a build runs: the build ends at the next module, leaves its folder in a state
/// that the next build completes, and then the program ends as it would have without this.
#pragma once

#include "common/Failure.h"

namespace qel::host
{

/// The build was asked to end.
class Interrupted : public Failure
{
public:
    using Failure::Failure;

    /// Ends the program as the request would have: by the signal, or with the exit code that stands for it. A shell
    /// that runs it in a loop ends then too.
    [[noreturn]] static void EndProgram();
};

/// Handles the requests while it lives. A second one ends the program at once. Only one object exists at a time.
class Interruption
{
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// Does nothing without a request. Interrupted: there was one.
    static void ThrowIfRequested();
};

} // namespace qel::host
