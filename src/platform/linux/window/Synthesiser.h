/// The synthesiser, which is loaded for the first tune and stays.
#pragma once

#include "platform/linux/window/TunePlayer.h"

namespace qel
{

/// A tune that plays as long as this object lives.
class Performance
{
public:
    virtual ~Performance() = default;
};

/// Begins to play a tune through the first of the outputs that works. Null: there is none, or no synthesiser, or no
/// sound font. Prints nothing. May wait for a sound server without end.
std::unique_ptr<Performance> Perform(const std::vector<std::byte>& myTune,
                                     const std::vector<AudioOutput>& myOutputs) noexcept;

} // namespace qel
