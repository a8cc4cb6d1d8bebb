/// The message queue of the calling thread.
#pragma once

#include "platform/MessageQueue.h"

namespace qel
{

/// Dispatches posted messages, input, timers and painting, and lets messages that other threads have sent arrive. A
/// request to quit stays in the queue for the host.
class WindowsMessageQueue final : public MessageQueue
{
public:
    void ProcessPending() override;
};

} // namespace qel
