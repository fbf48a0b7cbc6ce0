// Moving a date forward and backward.
#include <algorithm>

#include "calendar/DayCount.h"
#include "orzcore/calendar.h"

namespace orzcore::calendar {
namespace {

int ClampToCalendarEnd(un_date_time* date) {
  SetDate(date, {kLastYear, 12, 31});
  return 1;
}

int ClampToCalendarStart(un_date_time* date) {
  SetDate(date, {kFirstYear, 1, 1});
  return 1;
}

// The days that a count of `DateFwrd` moves. Recurrence passes -n to reach day n of a period from
// its first day.
std::int64_t DaysForward(std::int64_t count) { return count < 0 ? -count - 1 : count; }

// The part of a count of months or years that is used.
int Low16Bits(std::int32_t count) { return static_cast<std::int16_t>(count); }

int ForwardDays(un_date_time* date, std::int64_t count) {
  const std::int64_t day = date->day + count;
  // For speed: many moves are short and stay in their month.
  if (day >= 1 && day <= kShortestMonth && IsMonthInCalendar(*date)) {
    date->day = static_cast<std::uint32_t>(day) & 0x1F;
    return 0;
  }
  const std::int64_t day_number = DayNumber(*date) + count;
  if (day_number > kLastDayNumber) return ClampToCalendarEnd(date);
  SetDate(date, DateOfDayNumber(static_cast<std::int32_t>(day_number)));
  return 0;
}

int BackDays(un_date_time* date, std::int64_t count) {
  const std::int64_t day = date->day - count;
  if (day <= 0) {
    const std::int64_t day_number = DayNumber(*date) - count;
    if (day_number < kFirstDayNumber) return ClampToCalendarStart(date);
    SetDate(date, DateOfDayNumber(static_cast<std::int32_t>(day_number)));
    return 0;
  }
  // The date stays in its month. A day that is past the month's end becomes its last day.
  const int year = static_cast<int>(date->year);
  const int month = static_cast<int>(date->month);
  if (year < kFirstYear) return ClampToCalendarStart(date);
  SetDate(date,
          {year, month, static_cast<int>(std::min<std::int64_t>(day, MonthLength(year, month)))});
  return 0;
}

// Moves by months, forward if they are above 0 and back if they are below 0. A day past the end of
// the month that is reached becomes its last day.
int MoveMonths(un_date_time* date, int months) {
  constexpr int kFirstMonth = kFirstYear * kMonthsPerYear;
  constexpr int kEndOfMonths = (kLastYear + 1) * kMonthsPerYear;
  const int moved =
      static_cast<int>(date->year) * kMonthsPerYear + static_cast<int>(date->month) - 1 + months;
  if (months >= 0 && moved >= kEndOfMonths) return ClampToCalendarEnd(date);
  if (months < 0 && moved < kFirstMonth) return ClampToCalendarStart(date);
  const auto month_count = static_cast<unsigned>(moved);  // never negative here
  const int year = static_cast<int>(month_count / kMonthsPerYear);
  const int month = static_cast<int>(month_count % kMonthsPerYear) + 1;
  int day = static_cast<int>(date->day);
  if (day > kShortestMonth) day = std::min(day, MonthLength(year, month));
  SetDate(date, {year, month, day});
  return 0;
}

// 0 months act as 0 days do on a date outside the calendar.
int BackMonths(un_date_time* date, int months) {
  return months == 0 ? BackDays(date, 0) : MoveMonths(date, -months);
}

}  // namespace
}  // namespace orzcore::calendar

namespace calendar = orzcore::calendar;

int OZDate::DateFwrd(un_date_time* date, std::int32_t count, char unit) {
  if (date->year == 0) return 0;
  switch (unit) {
    case 'D':
      return calendar::ForwardDays(date, calendar::DaysForward(count));
    case 'W':
      return calendar::ForwardDays(
          date, calendar::DaysForward(std::int64_t{count} * calendar::kDaysPerWeek));
    case 'M':
      return calendar::MoveMonths(date, calendar::Low16Bits(count));
    case 'Y':
      return calendar::MoveMonths(date, calendar::Low16Bits(count) * calendar::kMonthsPerYear);
    default:  // carries a day past its month's end to the next month
      return calendar::ForwardDays(date, 0);
  }
}

int OZDate::DateBack(un_date_time* date, std::int32_t count, char unit) {
  if (date->year == 0) return 0;
  switch (unit) {
    case 'D':
      return calendar::BackDays(date, count);
    case 'W':
      return calendar::BackDays(date, std::int64_t{count} * calendar::kDaysPerWeek);
    case 'M':
      return calendar::BackMonths(date, calendar::Low16Bits(count));
    case 'Y':
      return calendar::BackMonths(date, calendar::Low16Bits(count) * calendar::kMonthsPerYear);
    default:  // makes a day past its month's end the last day
      return calendar::BackDays(date, 0);
  }
}
