// Dates as day numbers, which count from 1 January 1984, a Sunday, and day numbers as dates.
//
// All of it is done by formulas of a few multiplications, without loops or tables. They count from
// 1 March of the year -400: the leap day is then the last day of its year, and no term is negative.
#pragma once

#include <cstdint>

#include "orzcore/calendar.h"

namespace orzcore::calendar {

constexpr int kFirstYear = 1753;
constexpr int kLastYear = 2099;
constexpr int kMonthsPerYear = 12;
constexpr int kDaysPerWeek = 7;
constexpr int kMinutesPerHour = 60;
constexpr int kDaysPer400Years = 146097;
constexpr int kDaysPerFourYears = 1461;
constexpr int kFebruary = 2;
constexpr int kShortestMonth = 28;  // in days
constexpr int kLongestMonth = 31;

struct YearMonthDay {
  int year;
  int month;
  int day;
};

/// Returns the days from 1 March of the year -400 to a date. The month may be any from 0 to 15, and
/// the day any number: months and days past an end count on into the next year and month.
constexpr std::int32_t DaysSinceYearMinus400(int year, int month, int day) {
  const bool before_march = month <= kFebruary;
  const auto y = static_cast<std::uint32_t>(year + 400 - (before_march ? 1 : 0));
  const auto months_since_march =
      static_cast<std::uint32_t>(month - 3 + (before_march ? kMonthsPerYear : 0));
  const std::uint32_t century = y / 100;
  const std::uint32_t days_before_year = y * kDaysPerFourYears / 4 - century + century / 4;
  // From March on, months have 31, 30, 31, 30, 31 days, again and again: 30.6 on average.
  const std::uint32_t days_before_month = (979 * months_since_march + 16) / 32;
  return static_cast<std::int32_t>(days_before_year + days_before_month) + day - 1;
}

constexpr std::int32_t kDaysTo1984 = DaysSinceYearMinus400(1984, 1, 1);

/// Returns the day number of a date: 0 for 1 January 1984, negative before it.
constexpr std::int32_t DayNumber(int year, int month, int day) {
  return DaysSinceYearMinus400(year, month, day) - kDaysTo1984;
}

inline std::int32_t DayNumber(un_date_time date) {
  return DayNumber(static_cast<int>(date.year), static_cast<int>(date.month),
                   static_cast<int>(date.day));
}

constexpr std::int32_t kFirstDayNumber = DayNumber(kFirstYear, 1, 1);
constexpr std::int32_t kLastDayNumber = DayNumber(kLastYear, 12, 31);
static_assert(kFirstDayNumber == -84370 && kLastDayNumber == 42368);

/// Returns the date of a day number from `kFirstDayNumber` to `kLastDayNumber`.
///
/// Each division is one multiplication by a scaled fraction that gives the quotient and the
/// remainder together. C. Neri and L. Schneider describe this in "Euclidean affine functions and
/// their application to calendar algorithms".
constexpr YearMonthDay DateOfDayNumber(std::int32_t day_number) {
  constexpr std::uint32_t kYearsPerQuarterDay = 2939745;  // 2^32 / 1461, rounded up
  constexpr std::uint32_t kMonthsPerDay = 2141;           // 2^16 * 5 / 153, rounded down
  constexpr std::uint32_t kMarch = 197913;        // 3 * 2^16, and what the rounding has lost
  constexpr std::uint32_t kFirstOfJanuary = 306;  // counted from 1 March

  // A century has 36524.25 days on average: a whole number of quarters of a day.
  const std::uint32_t quarters = 4 * static_cast<std::uint32_t>(day_number + kDaysTo1984) + 3;
  const std::uint32_t century = quarters / kDaysPer400Years;
  const std::uint32_t quarters_of_century = quarters % kDaysPer400Years | 3;
  const std::uint64_t years = std::uint64_t{kYearsPerQuarterDay} * quarters_of_century;
  const std::uint32_t day_of_year = static_cast<std::uint32_t>(years) / kYearsPerQuarterDay / 4;
  const std::uint32_t months = kMonthsPerDay * day_of_year + kMarch;
  const std::uint32_t day = (months & 0xFFFF) / kMonthsPerDay + 1;
  const bool before_march = day_of_year >= kFirstOfJanuary;
  const auto year = static_cast<int>(century * 100 + static_cast<std::uint32_t>(years >> 32));
  const auto month = static_cast<int>(months >> 16);
  return {year - 400 + (before_march ? 1 : 0), before_march ? month - kMonthsPerYear : month,
          static_cast<int>(day)};
}

constexpr bool IsYearInCalendar(std::int64_t year) {
  return year >= kFirstYear && year <= kLastYear;
}

/// Returns true if the year and the month of a value are in the calendar. Its day may be any.
inline bool IsMonthInCalendar(un_date_time date) {
  return IsYearInCalendar(date.year) && date.month >= 1 && date.month <= kMonthsPerYear;
}

/// Returns the weekday of a day number: 1 for Sunday to 7 for Saturday.
constexpr int WeekdayOfDayNumber(std::int32_t day_number) {
  // 400 years are a whole number of weeks. They make the dividend positive.
  return static_cast<int>(static_cast<std::uint32_t>(day_number + 10 * kDaysPer400Years) %
                          kDaysPerWeek) +
         1;
}

/// Reads a value in one piece, for speed: compilers load each field that is used from memory.
inline un_date_time Load(const un_date_time& value) {
  return un_date_time::FromNumber(value.Number());
}

constexpr std::uint32_t kTimeMask = 0x7FF;  // the bits of the time in a value's number

/// Returns a value with another date and the same time.
inline un_date_time WithDate(un_date_time value, YearMonthDay date) {
  const un_date_time midnight = un_date_time::Of(date.year, date.month, date.day);
  return un_date_time::FromNumber(midnight.Number() | (value.Number() & kTimeMask));
}

constexpr bool IsLeapYear(int year) {
  const auto y = static_cast<std::uint32_t>(year);
  return y % 4 == 0 && (y % 25 != 0 || y % 16 == 0);  // 4 and 25 divide a century, 4 and 16 400
}

/// Returns the days of a month. For a month outside 1 to 12 it returns 30 or 31.
constexpr int MonthLength(int year, int month) {
  if (month == kFebruary) return IsLeapYear(year) ? 29 : 28;
  return 30 + ((month ^ month >> 3) & 1);  // odd months are long up to July, even ones after it
}

}  // namespace orzcore::calendar
