/// How everything looks that the component shows, whatever the look of the host's own windows.
#pragma once

#include "resources/formLayout.h"

#include <QFont>
#include <QPixmap>
#include <QWidget>
#include <span>
#include <string_view>

namespace qel
{

/// The font of the form and of all that it opens, complete: nothing of it comes from the host's own.
QFont FormFont(int32_t myWeight = Regular);

/// Gives a finished window, and all that is in it, the form's style, colours and font. `theWindow` must not show yet.
void Dress(QWidget& theWindow);

/// A picture of resources/pictures.h.
QPixmap PixmapOf(std::span<const std::string_view> myRows);

} // namespace qel
