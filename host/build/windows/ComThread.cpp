#include "build/ComThread.h"

#include "common/Failure.h"
#include "platform/windows/windowsHeaders.h"

#include <ole2.h>

namespace qel::host
{

ComThread::ComThread()
{
    if (FAILED(OleInitialize(nullptr)))
    {
        throw Failure("the system's component object model cannot be started; close other programs and try again");
    }
}

ComThread::~ComThread()
{
    OleUninitialize();
}

} // namespace qel::host
