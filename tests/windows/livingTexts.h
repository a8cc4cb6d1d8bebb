/// The number of texts that this thread holds.
#pragma once

/// The system gives out the texts here, and does not tell how many there are.
inline constexpr int LivingTexts = 0;
