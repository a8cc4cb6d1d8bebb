/// The toolkit's application object: one for the process, bound to the thread that made it.
#pragma once

class QTranslator;

namespace qel
{

/// Makes sure that this thread can show windows. Brings the application object to life if there is none, for as long as
/// the process lasts, and leaves one that is there as it is.
/// Error 57: there is no display. 5: another thread owns the application object, or it is one without windows.
void DemandApplication();

/// As long as an object of this class lives the toolkit's own texts, those of the file dialog above all, are in the
/// language of the dialog. In an application that is not the host's they are so all the time. On the thread that shows
/// windows.
class SpanishTexts
{
public:
    SpanishTexts();
    ~SpanishTexts();
    SpanishTexts(const SpanishTexts&) = delete;
    SpanishTexts& operator=(const SpanishTexts&) = delete;

private:
    QTranslator* const myTexts;
};

/// Lets what is pending run, once, if this thread owns an application object.
void ProcessPendingEvents() noexcept;

} // namespace qel
