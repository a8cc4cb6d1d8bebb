/// What the component object model of the system needs of a thread that uses components.
#pragma once

namespace qel::host
{

/// Makes the calling thread one that components can be used on, with their windows, for as long as the object lives.
/// Components must be released before it.
class ComThread
{
public:
    /// Failure: the system refuses.
    ComThread();
    ComThread(const ComThread&) = delete;
    ComThread& operator=(const ComThread&) = delete;
    ~ComThread();
};

} // namespace qel::host
