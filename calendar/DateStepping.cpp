// Moving a date forward and backward.
#include <algorithm>

#include "calendar/DayCount.h"
#include "orzcore/calendar.h"

namespace orzcore::calendar {
namespace {

// The functions below take the old value and write the new one. They return 1 if they clamped it.

int ClampToCalendarEnd(un_date_time from, un_date_time* to) {
  *to = WithDate(from, {kLastYear, 12, 31});
  return 1;
}

int ClampToCalendarStart(un_date_time from, un_date_time* to) {
  *to = WithDate(from, {kFirstYear, 1, 1});
  return 1;
}

// The days that a count of `DateFwrd` moves. Recurrence passes -n to reach day n of a period from
// its first day.
std::int64_t DaysForward(std::int64_t count) { return count < 0 ? -count - 1 : count; }

// The part of a count of months or years that is used.
int Low16Bits(std::int32_t count) { return static_cast<std::int16_t>(count); }

int ForwardDays(un_date_time from, std::int64_t count, un_date_time* to) {
  const std::int64_t day_number = DayNumber(from) + count;
  if (day_number > kLastDayNumber) return ClampToCalendarEnd(from, to);
  *to = WithDayNumber(from, static_cast<std::int32_t>(day_number));
  return 0;
}

// Sets the day, but a day past the month's end becomes its last day.
int SetDay(un_date_time from, std::int64_t day, un_date_time* to) {
  const int year = static_cast<int>(from.year);
  const int month = static_cast<int>(from.month);
  if (year < kFirstYear) return ClampToCalendarStart(from, to);
  const int last_day = MonthLength(year, month);
  *to = WithDate(from, {year, month, static_cast<int>(std::min<std::int64_t>(day, last_day))});
  return 0;
}

int BackDays(un_date_time from, std::int64_t count, un_date_time* to) {
  const std::int64_t day = from.day - count;
  if (day > 0) return SetDay(from, day, to);
  const std::int64_t day_number = DayNumber(from) - count;
  if (day_number < kFirstDayNumber) return ClampToCalendarStart(from, to);
  *to = WithDayNumber(from, static_cast<std::int32_t>(day_number));
  return 0;
}

// Moves by months, forward if they are above 0 and back if they are below 0. A day past the end of
// the month that is reached becomes its last day.
int MoveMonths(un_date_time from, int months, un_date_time* to) {
  constexpr int kFirstMonth = kFirstYear * kMonthsPerYear;
  constexpr int kEndOfMonths = (kLastYear + 1) * kMonthsPerYear;
  const int moved =
      static_cast<int>(from.year) * kMonthsPerYear + static_cast<int>(from.month) - 1 + months;
  if (months >= 0 && moved >= kEndOfMonths) return ClampToCalendarEnd(from, to);
  if (months < 0 && moved < kFirstMonth) return ClampToCalendarStart(from, to);
  const auto month_count = static_cast<unsigned>(moved);  // never negative here
  const int year = static_cast<int>(month_count / kMonthsPerYear);
  const int month = static_cast<int>(month_count % kMonthsPerYear) + 1;
  int day = static_cast<int>(from.day);
  if (day > kShortestMonth) day = std::min(day, MonthLength(year, month));
  *to = WithDate(from, {year, month, day});
  return 0;
}

// Moves by years if nothing but the year changes: it stays in the calendar, and the month has the
// day in every year. For speed: a move by 12 months a year would do the same.
bool ChangeYear(un_date_time from, int years, un_date_time* to) {
  // By the field `month`. Its values that are no month have no days.
  static constexpr std::uint8_t kDaysOfMonth[16] = {0,  31, 28, 31, 30, 31, 30,
                                                    31, 31, 30, 31, 30, 31};
  if (from.day - 1U >= kDaysOfMonth[from.month]) return false;
  const auto added = static_cast<std::uint32_t>(years);  // modulo 2^32 if negative
  if (from.year + added - kFirstYear > kLastYear - kFirstYear) return false;
  *to = un_date_time::FromNumber(from.Number() + (added << kYearBit));
  return true;
}

}  // namespace
}  // namespace orzcore::calendar

namespace calendar = orzcore::calendar;

int OZDate::DateFwrd(un_date_time* date, std::int32_t count, char unit) {
  const un_date_time from = calendar::Load(*date);
  if (from.year == 0) return 0;
  const int months_or_years = calendar::Low16Bits(count);
  if (unit == 'Y' && calendar::ChangeYear(from, months_or_years, date)) return 0;
  std::int64_t days = 0;  // by any other unit; carries a day past its month's end to the next month
  switch (unit) {
    case 'D':
      days = calendar::DaysForward(count);
      break;
    case 'W':
      days = calendar::DaysForward(std::int64_t{count} * calendar::kDaysPerWeek);
      break;
    case 'M':
      return calendar::MoveMonths(from, months_or_years, date);
    case 'Y':
      return calendar::MoveMonths(from, months_or_years * calendar::kMonthsPerYear, date);
    default:
      break;
  }
  return calendar::ForwardDays(from, days, date);
}

int OZDate::DateBack(un_date_time* date, std::int32_t count, char unit) {
  const un_date_time from = calendar::Load(*date);
  if (from.year == 0) return 0;
  const int months_or_years = calendar::Low16Bits(count);
  if (unit == 'Y' && calendar::ChangeYear(from, -months_or_years, date)) return 0;
  std::int64_t days = 0;  // by any other unit; makes a day past its month's end the last day
  switch (unit) {
    case 'D':
      days = count;
      break;
    case 'W':
      days = std::int64_t{count} * calendar::kDaysPerWeek;
      break;
    case 'M':
      if (months_or_years == 0) break;
      return calendar::MoveMonths(from, -months_or_years, date);
    case 'Y':
      if (months_or_years == 0) break;
      return calendar::MoveMonths(from, -months_or_years * calendar::kMonthsPerYear, date);
    default:
      break;
  }
  return calendar::BackDays(from, days, date);
}
