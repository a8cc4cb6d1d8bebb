#include "site/processes.h"

#include "platform/windows/Handle.h"
#include "platform/windows/windowsHeaders.h"

namespace qel::host
{

int64_t OwnProcess()
{
    return GetCurrentProcessId();
}

bool HasEnded(int64_t myProcess)
{
    const HANDLE myOpened = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(myProcess));
    if (myOpened == nullptr)
    {
        return GetLastError() == ERROR_INVALID_PARAMETER; // no process has this number
    }
    const Handle myHandle(myOpened);
    return WaitForSingleObject(myHandle.Get(), 0) == WAIT_OBJECT_0;
}

} // namespace qel::host
