#include "platform/windows/WindowsMessageQueue.h"

#include "platform/windows/windowsHeaders.h"

namespace qel
{

void WindowsMessageQueue::ProcessPending()
{
    // Most of the time nothing is pending, and this call costs less than a search for a message.
    if (HIWORD(GetQueueStatus(QS_ALLINPUT)) == 0)
    {
        return;
    }
    const DWORD myStart = GetTickCount();
    MSG myMessage = {};
    while (PeekMessageW(&myMessage, nullptr, 0, 0, PM_REMOVE) != 0)
    {
        if (myMessage.message == WM_QUIT)
        {
            PostQuitMessage(static_cast<int>(myMessage.wParam));
            return;
        }
        TranslateMessage(&myMessage);
        DispatchMessageW(&myMessage);
        // A window that never stops painting, or a timer that is faster than its handler, must not make this call
        // endless.
        if (static_cast<LONG>(myMessage.time - myStart) > 0)
        {
            return;
        }
    }
}

} // namespace qel
