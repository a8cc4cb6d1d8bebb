/// The toolkit's application object: one for the process, bound to the thread that made it.
#pragma once

namespace qel
{

/// Makes sure that this thread can show windows. Makes the application object if there is none, for as long as the
/// process lasts, and leaves an existing one as it is.
/// Error 57: there is no display. 5: another thread owns the application object, or it is one without windows.
void DemandApplication();

/// Processes the pending events, once, if this thread owns an application object.
void ProcessPendingEvents() noexcept;

} // namespace qel
