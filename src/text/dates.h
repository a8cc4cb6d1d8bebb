/// Dates as days since 30 December 1899, from 1 January 100 to 31 December 9999, with the time of day as a fraction.
///
/// A date that rounds to 0 stands for no date. Nothing here depends on a locale or a rounding mode.
#pragma once

#include <cstdint>

namespace qel
{

using Date = double;

/// A day of the calendar; `Month` from 1 to 12, `Day` from 1.
struct CalendarDay
{
    int32_t Year;
    int32_t Month;
    int32_t Day;
};

/// The nearest whole number, halves to the even neighbour.
/// Error 6: outside 32 bits, or not a number.
int32_t RoundToWhole(double myNumber);

/// The whole day that a date rounds to, halves to the even neighbour. What would round out of the range of dates stays
/// on its first or last day.
int32_t NearestDay(Date myDate);

/// True when the date rounds to something other than 0.
bool DateIsSet(Date myDate);

/// The number as a date. Error 6: outside the range of dates, or not a number.
Date CheckedDate(double myDays);

/// The date of a day of the calendar, which must exist and be in the range of dates.
Date DateOfDay(CalendarDay myDay);

/// The day of the calendar that a date lies in, its time of day cut off. Error 6: outside the range of dates.
CalendarDay DayOfDate(Date myDate);

} // namespace qel
