/// The toolkit's application object: one for the process, bound to the thread that made it.
#pragma once

namespace qel
{

/// Makes sure that this thread can show windows. Brings the application object to life if there is none, for as long as
/// the process lasts, and leaves one that is there as it is.
/// Error 57: there is no display. 5: another thread owns the application object, or it is one without windows.
void DemandApplication();

/// Lets what is pending run, once, if this thread owns an application object.
void ProcessPendingEvents() noexcept;

} // namespace qel
