#include "platform/clock.h"

#include "platform/windows/windowsHeaders.h"

namespace qel
{

Date Today()
{
    SYSTEMTIME myNow = {};
    GetLocalTime(&myNow);
    return DateOfDay({myNow.wYear, myNow.wMonth, myNow.wDay});
}

} // namespace qel
