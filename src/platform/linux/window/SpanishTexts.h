/// The toolkit's own texts in Spanish.
#pragma once

#include <QTranslator>

namespace qel
{

/// While an object of this class lives, the texts that the toolkit puts into the dialog's windows are Spanish: the file
/// dialog's buttons, columns and menus above all. They do not depend on an installed translation. On the thread that
/// shows windows.
class SpanishTexts final : public QTranslator
{
public:
    SpanishTexts();
    ~SpanishTexts() override;

    bool isEmpty() const override { return false; }
    QString translate(const char* myContext, const char* mySource, const char* myNote, int myCount) const override;
};

} // namespace qel
