/// The multimedia service of the system.
#pragma once

#include "platform/Sound.h"
#include "platform/windows/windowsHeaders.h"

namespace qel
{

/// The service is loaded from the system's folder by the first command that opens a device: before that there is
/// nothing to stop. It stays loaded, because its threads may outlive this object.
class MultimediaService final : public Sound
{
public:
    void SendMultimediaCommand(TextView myCommand) override;

private:
    using SendFunction = DWORD(WINAPI*)(const char* myCommand, char* theAnswer, UINT mySize, HANDLE myWindow);
    SendFunction mySend = nullptr;
};

} // namespace qel
