#include "platform/clock.h"

#include <ctime>

namespace qel
{

Date Today()
{
    const std::time_t myNow = std::time(nullptr);
    std::tm myLocalTime = {};
    localtime_r(&myNow, &myLocalTime);
    return DateOfDay({myLocalTime.tm_year + 1900, myLocalTime.tm_mon + 1, myLocalTime.tm_mday});
}

} // namespace qel
