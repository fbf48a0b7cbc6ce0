// Moving a date forward and backward.
#include <algorithm>

#include "calendar/DayCount.h"
#include "orzcore/calendar.h"

namespace orzcore::calendar {
namespace {

int ClampToLastDay(un_date_time* date) {
  SetDate(date, {kLastYear, 12, 31});
  return 1;
}

int ClampToFirstDay(un_date_time* date) {
  SetDate(date, {kFirstYear, 1, 1});
  return 1;
}

// A negative count n moves -n - 1 days forward: recurrence reaches day n of a period with -n.
std::int64_t ForwardDayCount(std::int64_t count) { return count < 0 ? -count - 1 : count; }

// Months and years are counted in 16 bits.
int LowWord(std::int32_t count) { return static_cast<std::int16_t>(count); }

int ForwardDays(un_date_time* date, std::int64_t count) {
  const std::int64_t day = date->day + count;
  if (day >= 1 && day <= kShortestMonth && IsMonthInCalendar(*date)) {
    date->day = static_cast<std::uint32_t>(day) & 0x1F;  // most moves by a day or two end here
    return 0;
  }
  const std::int64_t day_number = DayNumber(*date) + count;
  if (day_number > kLastDayNumber) return ClampToLastDay(date);
  SetDate(date, DateOfDayNumber(static_cast<std::int32_t>(day_number)));
  return 0;
}

int BackDays(un_date_time* date, std::int64_t count) {
  const std::int64_t day = date->day - count;
  if (day <= 0) {
    const std::int64_t day_number = DayNumber(*date) - count;
    if (day_number < kFirstDayNumber) return ClampToFirstDay(date);
    SetDate(date, DateOfDayNumber(static_cast<std::int32_t>(day_number)));
    return 0;
  }
  // A date that stays in its month sticks to the month's end even where it began past it.
  const int year = static_cast<int>(date->year);
  const int month = static_cast<int>(date->month);
  if (year < kFirstYear) return ClampToFirstDay(date);
  SetDate(date,
          {year, month, static_cast<int>(std::min<std::int64_t>(day, MonthLength(year, month)))});
  return 0;
}

// Moves forward by a positive count of months, and backward by a negative one, a day past the
// month's end becoming its last. A count that is negative in its 16 bits thus moves the other way.
int MoveMonths(un_date_time* date, int months) {
  constexpr int kFirstMonth = kFirstYear * kMonthsPerYear;
  constexpr int kEndOfMonths = (kLastYear + 1) * kMonthsPerYear;
  const int moved =
      static_cast<int>(date->year) * kMonthsPerYear + static_cast<int>(date->month) - 1 + months;
  if (months >= 0 && moved >= kEndOfMonths) return ClampToLastDay(date);
  if (months < 0 && moved < kFirstMonth) return ClampToFirstDay(date);
  const auto count = static_cast<unsigned>(moved);  // not negative, since no year is 0 here
  const int year = static_cast<int>(count / kMonthsPerYear);
  const int month = static_cast<int>(count % kMonthsPerYear) + 1;
  int day = static_cast<int>(date->day);
  if (day > kShortestMonth) day = std::min(day, MonthLength(year, month));
  SetDate(date, {year, month, day});
  return 0;
}

// A move by 0 months is one by 0 days: only moves in days check a date that is outside the calendar.
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
      return calendar::ForwardDays(date, calendar::ForwardDayCount(count));
    case 'W':
      return calendar::ForwardDays(
          date, calendar::ForwardDayCount(std::int64_t{count} * calendar::kDaysPerWeek));
    case 'M':
      return calendar::MoveMonths(date, calendar::LowWord(count));
    case 'Y':
      return calendar::MoveMonths(date, calendar::LowWord(count) * calendar::kMonthsPerYear);
    default:
      return calendar::ForwardDays(date, 0);  // still carries a day past its month's end
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
      return calendar::BackMonths(date, calendar::LowWord(count));
    case 'Y':
      return calendar::BackMonths(date, calendar::LowWord(count) * calendar::kMonthsPerYear);
    default:
      return calendar::BackDays(date, 0);  // still cuts a day past its month's end
  }
}
