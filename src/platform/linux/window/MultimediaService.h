/// The multimedia service of the logic, over a synthesiser.
#pragma once

#include "platform/linux/window/TunePlayer.h"
#include "platform/shared/SystemFiles.h"
#include "text/text.h"

#include <optional>
#include <utility>
#include <vector>

namespace qel
{

/// Knows one device, which plays MIDI files. The commands are those of Sound::SendMultimediaCommand: `open` reads the
/// whole file and gives the device a name, `play` starts it from the beginning, `stop` and `close` end the sound and
/// may come at any time. No command waits for the sound system. On one thread.
class MultimediaService
{
public:
    explicit MultimediaService(std::vector<AudioOutput> myOutputs = UsualAudioOutputs())
        : myPlayer(std::move(myOutputs))
    {
    }

    /// A command that fails has no effect. No error.
    void Send(TextView myCommand);

private:
    struct Device
    {
        Text Alias;
        Tune Content;
    };

    void Open(TextView myArguments);
    bool IsOpen(TextView myAlias) const { return myDevice && EqualInLowerCase(myDevice->Alias, myAlias); }

    SystemFiles myFiles;
    std::optional<Device> myDevice;
    TunePlayer myPlayer;
};

} // namespace qel
