/// The toolkit's application object: one per process, bound to the thread that created it.
#pragma once

namespace qel
{

/// Makes sure that this thread can show windows. Creates the application object if there is none; it exists until the
/// process ends. An existing one is left as it is.
/// Error 57: there is no display. 5: another thread owns the application object, or it is one without windows.
void DemandApplication();

/// Processes the pending events, once, if this thread owns an application object.
void ProcessPendingEvents() noexcept;

} // namespace qel
