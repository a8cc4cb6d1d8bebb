/// The number of texts that this thread holds.
#pragma once

/// The system allocates the texts here, and does not report how many there are.
inline constexpr int LivingTexts = 0;
