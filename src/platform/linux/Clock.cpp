#include "platform/Clock.h"

#include <chrono>
#include <ctime>

namespace qel
{

Date Today()
{
    using namespace std::chrono;
    const std::time_t myNow = std::time(nullptr);
    std::tm myLocalTime = {};
    localtime_r(&myNow, &myLocalTime);
    const sys_days myDay = year(myLocalTime.tm_year + 1900) / (myLocalTime.tm_mon + 1) / myLocalTime.tm_mday;
    return static_cast<Date>((myDay - sys_days(year(1899) / 12 / 30)).count());
}

} // namespace qel
