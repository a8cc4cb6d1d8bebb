/// The appearance of everything that the component shows, independent of the host's own windows.
#pragma once

#include "resources/formLayout.h"

#include <QFont>
#include <QPixmap>
#include <QWidget>
#include <span>
#include <string_view>

namespace qel
{

/// The font of the form and of all windows that it opens, complete: it does not depend on the host's font.
QFont FormFont(int32_t myWeight = Regular);

/// Gives a finished window, and all that is in it, the form's style, colours and font. `theWindow` must not show yet.
void ApplyFormLook(QWidget& theWindow);

/// Narrows the font of a widget whose caption needs more room than the widget has, until the caption fits or nothing
/// more can be gained. The widget has its font and its size already.
void FitCaption(QWidget& theWidget);

/// Moves a window, which has its final size, completely onto its screen. Of one that is larger than the screen, the top
/// left corner is visible.
void MoveOntoScreen(QWidget& theWindow);

/// The colours of a text that is refused.
inline constexpr QRgb RefusedText = 0xFFB00000;
inline constexpr QRgb RefusedBase = 0xFFFFE8E8;

/// A picture of resources/pictures.h.
QPixmap PixmapOf(std::span<const std::string_view> myRows);

} // namespace qel
