/// The number of texts that this thread holds.
#pragma once

/// How many texts more this thread has been given than it has freed. failingMemory.h counts them.
inline thread_local int LivingTexts = 0;
