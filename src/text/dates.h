/// Dates as days since 30 December 1899, from 1 January 100 to 31 December 9999, with the time of day as a fraction.
///
/// A date that rounds to 0 means no date. Nothing here depends on a locale or a rounding mode.
#pragma once

#include <cstdint>

namespace qel
{

using Date = double;

/// A calendar day; `Month` from 1 to 12, `Day` from 1.
struct CalendarDay
{
    int32_t Year;
    int32_t Month;
    int32_t Day;
};

/// The nearest whole number, halves to the even neighbour.
/// Error 6: outside 32 bits, or not a number.
int32_t RoundToWhole(double myNumber);

/// The whole day that a date rounds to, halves to the even neighbour. A date that would round out of the range gives
/// the first or the last day of the range.
int32_t NearestDay(Date myDate);

/// True when the date rounds to something other than 0.
bool DateIsSet(Date myDate);

/// The number as a date. Error 6: outside the range of dates, or not a number.
Date CheckedDate(double myDays);

/// The date of a calendar day, which must exist and be in the range of dates.
Date DateOfDay(CalendarDay myDay);

/// The calendar day of a date, without its time of day. Error 6: outside the range of dates.
CalendarDay DayOfDate(Date myDate);

} // namespace qel
