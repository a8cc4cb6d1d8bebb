/// Plays a tune in the background.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace qel
{

/// The bytes of a MIDI file.
using Tune = std::shared_ptr<const std::vector<std::byte>>;

/// A driver of the synthesiser, and the name of its file if it is the one that writes files.
struct AudioOutput
{
    std::string Driver;
    std::string Filename;
};

/// The sound server, else the sound card.
std::vector<AudioOutput> UsualAudioOutputs();

/// Everything slow happens on a thread of its own: loading the synthesiser and its sound font, and
/// talking to a sound server, which may never answer. That thread starts with the first tune. Without a synthesiser, a
/// sound font or a device there is silence. The calls return at once, and all come from one thread.
class TunePlayer
{
public:
    /// The outputs are tried in their order.
    explicit TunePlayer(std::vector<AudioOutput> myOutputs);
    /// Ends the sound. Waits for that, but only a short time, as a sound server may hang.
    ~TunePlayer();
    TunePlayer(const TunePlayer&) = delete;
    TunePlayer& operator=(const TunePlayer&) = delete;

    /// Plays a tune from its beginning to its end, once; what was playing stops.
    void Play(Tune myTune);
    void Stop();

private:
    struct Shared;

    std::shared_ptr<Shared> myShared;
    std::thread myThread;
};

} // namespace qel
