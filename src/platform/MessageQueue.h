/// The queue of window messages of the calling thread.
#pragma once

namespace qel
{

class MessageQueue
{
public:
    virtual ~MessageQueue() = default;

    /// Processes the pending messages once and returns. Does nothing while the process has no windows. No error.
    virtual void ProcessPending() = 0;
};

} // namespace qel
