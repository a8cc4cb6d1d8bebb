/// The synthesiser, which is loaded for the first tune and stays.
#pragma once

#include "platform/linux/window/TunePlayer.h"

namespace qel
{

/// A tune that plays as long as this object lives.
class Playback
{
public:
    virtual ~Playback() = default;
};

/// Starts playing a tune on the first output that works. Null: there is none, or no synthesiser, or no sound font.
/// Prints nothing. May wait forever for a sound server.
std::unique_ptr<Playback> StartPlayback(const std::vector<std::byte>& myTune,
                                        const std::vector<AudioOutput>& myOutputs) noexcept;

} // namespace qel
