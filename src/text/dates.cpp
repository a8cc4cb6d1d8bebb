#include "text/dates.h"

#include "text/errors.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace qel
{
namespace
{

constexpr std::chrono::sys_days DayZero = std::chrono::year(1899) / 12 / 30;
constexpr std::chrono::sys_days FirstDay = std::chrono::year(100) / 1 / 1;
constexpr std::chrono::sys_days LastDay = std::chrono::year(9999) / 12 / 31;

/// The nearest whole number, halves to the even neighbour, whatever the rounding mode of the process.
double RoundHalfToEven(double myNumber)
{
    const double myFloor = std::floor(myNumber);
    const double myRest = myNumber - myFloor;
    const bool myFloorIsEven = std::fmod(myFloor, 2) == 0;
    return myRest < 0.5 || (myRest == 0.5 && myFloorIsEven) ? myFloor : myFloor + 1;
}

} // namespace

int32_t RoundToWhole(double myNumber)
{
    const double myWhole = RoundHalfToEven(myNumber);
    if (!(myWhole >= INT32_MIN && myWhole <= INT32_MAX))
    {
        Raise(ErrorNumber::Overflow);
    }
    return static_cast<int32_t>(myWhole);
}

int32_t NearestDay(Date myDate)
{
    return RoundToWhole(std::clamp<Date>(myDate, (FirstDay - DayZero).count(), (LastDay - DayZero).count()));
}

bool DateIsSet(Date myDate)
{
    return RoundHalfToEven(myDate) != 0;
}

Date CheckedDate(double myDays)
{
    // A day lasts until the next whole number away from zero, so that a time of day never puts a date outside the first
    // or last day.
    const double myDay = std::trunc(myDays);
    if (!(myDay >= (FirstDay - DayZero).count() && myDay <= (LastDay - DayZero).count()))
    {
        Raise(ErrorNumber::Overflow);
    }
    return myDays;
}

Date DateOfDay(CalendarDay myDay)
{
    const std::chrono::sys_days myDays = std::chrono::year(myDay.Year) / myDay.Month / myDay.Day;
    return static_cast<Date>((myDays - DayZero).count());
}

CalendarDay DayOfDate(Date myDate)
{
    const std::chrono::days myDays{static_cast<int32_t>(std::trunc(CheckedDate(myDate)))};
    const std::chrono::year_month_day myDay{DayZero + myDays};
    return {static_cast<int32_t>(myDay.year()), static_cast<int32_t>(static_cast<unsigned>(myDay.month())),
            static_cast<int32_t>(static_cast<unsigned>(myDay.day()))};
}

} // namespace qel
