/// Prepares a thread for the component object model of the system.
#pragma once

namespace qel::host
{

/// While an object lives, the calling thread can use components and their windows. Components must be released before
/// it is destroyed.
class ComThread
{
public:
    /// Failure: the system refuses it.
    ComThread();
    ComThread(const ComThread&) = delete;
    ComThread& operator=(const ComThread&) = delete;
    ~ComThread(); // NOLINT(performance-trivially-destructible): on Windows there is something to do
};

} // namespace qel::host
