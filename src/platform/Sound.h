/// The multimedia service, which plays tunes.
#pragma once

#include "text/text.h"

namespace qel
{

class Sound
{
public:
    virtual ~Sound() = default;

    /// Sends one command, in the ANSI code page where the service takes bytes, and does not wait for a tune to end:
    /// `open "FILE" type sequencer alias NAME`, `play NAME `, `stop NAME `, `close NAME `. A command that fails has no
    /// effect. No error.
    virtual void SendMultimediaCommand(TextView myCommand) = 0;
};

} // namespace qel
