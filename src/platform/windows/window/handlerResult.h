/// The boundary between the system and the code that it calls back.
#pragma once

#include <optional>

namespace qel
{

/// Runs a handler that the system has called, through which nothing may be thrown. None if it has thrown, as it does
/// for lack of memory; the caller then leaves the message to the system.
template <class Handler>
auto HandlerResult(const Handler& myHandler) noexcept -> std::optional<decltype(myHandler())>
{
    try
    {
        return myHandler();
    }
    catch (...)
    {
        return std::nullopt;
    }
}

} // namespace qel
