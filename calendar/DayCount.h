// Days counted from 1 January 1984, a Sunday, and the way back to year, month and day.
//
// Everything is a closed formula of a few multiplications. Years are counted from 1 March, so that
// the leap day is the last day of its year, and from 400 years before year 0, so that no term is
// ever negative.
#pragma once

#include <cstdint>

#include "orzcore/calendar.h"

namespace orzcore::calendar {

constexpr int kFirstYear = 1753;
constexpr int kLastYear = 2099;
constexpr int kMonthsPerYear = 12;
constexpr int kDaysPerWeek = 7;
constexpr int kMinutesPerHour = 60;
constexpr int kDaysPerCycle = 146097;  // of 400 Gregorian years
constexpr int kDaysPerFourYears = 1461;
constexpr int kFebruary = 2;
constexpr int kShortestMonth = 28;  // in days
constexpr int kLongestMonth = 31;

/// A date field by field.
struct Day {
  int year;
  int month;
  int day;
};

/// Days from 1 March of the year -400 to a date. The month may be any from 0 to 15 and the day any
/// number: what runs over the end of a month or of a year is counted on.
constexpr std::int32_t DaysSinceCycleStart(int year, int month, int day) {
  const bool before_march = month <= kFebruary;
  const auto y = static_cast<std::uint32_t>(year + 400 - (before_march ? 1 : 0));
  const auto months_since_march =
      static_cast<std::uint32_t>(month - 3 + (before_march ? kMonthsPerYear : 0));
  const std::uint32_t century = y / 100;
  const std::uint32_t days_before_year = y * kDaysPerFourYears / 4 - century + century / 4;
  // Months have 31, 30, 31, 30, 31 days and again from the start: 30.6 in the mean.
  const std::uint32_t days_before_month = (979 * months_since_march + 16) / 32;
  return static_cast<std::int32_t>(days_before_year + days_before_month) + day - 1;
}

constexpr std::int32_t kBaseDay = DaysSinceCycleStart(1984, 1, 1);

/// The day number of a date: 0 for 1 January 1984, negative before it.
constexpr std::int32_t DayNumber(int year, int month, int day) {
  return DaysSinceCycleStart(year, month, day) - kBaseDay;
}

inline std::int32_t DayNumber(un_date_time date) {
  return DayNumber(static_cast<int>(date.year), static_cast<int>(date.month),
                   static_cast<int>(date.day));
}

constexpr std::int32_t kFirstDayNumber = DayNumber(kFirstYear, 1, 1);
constexpr std::int32_t kLastDayNumber = DayNumber(kLastYear, 12, 31);
static_assert(kFirstDayNumber == -84370 && kLastDayNumber == 42368);

/// The date of a day number from `kFirstDayNumber` to `kLastDayNumber`.
///
/// Quotient and remainder come out of one multiplication by a scaled fraction each, as C. Neri and
/// L. Schneider show in "Euclidean affine functions and their application to calendar algorithms".
constexpr Day DateOfDayNumber(std::int32_t day_number) {
  constexpr std::uint32_t kYearsPerDay = 2939745;  // 2^32 / 1461, rounded up: a day in quarters
  constexpr std::uint32_t kMonthsPerDay = 2141;    // 2^16 * 5 / 153, rounded down
  constexpr std::uint32_t kMarch = 197913;         // 3 * 2^16, and what the rounding takes away
  constexpr std::uint32_t kFirstOfJanuary = 306;   // counted from 1 March

  // Quarters of a day make the division by the mean length of a century come out right.
  const std::uint32_t quarters = 4 * static_cast<std::uint32_t>(day_number + kBaseDay) + 3;
  const std::uint32_t century = quarters / kDaysPerCycle;
  const std::uint32_t quarters_of_century = quarters % kDaysPerCycle | 3;
  const std::uint64_t years = std::uint64_t{kYearsPerDay} * quarters_of_century;
  const std::uint32_t day_of_year = static_cast<std::uint32_t>(years) / kYearsPerDay / 4;
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

/// Calendar weekday of a day number: 1 for Sunday to 7 for Saturday.
constexpr int WeekdayOfDayNumber(std::int32_t day_number) {
  // The cycle of 400 years is a whole number of weeks.
  return static_cast<int>(static_cast<std::uint32_t>(day_number + 10 * kDaysPerCycle) %
                          kDaysPerWeek) +
         1;
}

/// Rewrites the date of a value, not its time.
inline void SetDate(un_date_time* value, Day day) {
  *value = un_date_time::Of(day.year, day.month, day.day, static_cast<int>(value->time));
}

constexpr bool IsLeapYear(int year) {
  const auto y = static_cast<std::uint32_t>(year);
  return y % 4 == 0 && (y % 25 != 0 || y % 16 == 0);  // centuries among the multiples of 4
}

/// Days of a month. Numbers other than 1 to 12 have the length of some month.
constexpr int MonthLength(int year, int month) {
  if (month == kFebruary) return IsLeapYear(year) ? 29 : 28;
  return 30 + ((month ^ month >> 3) & 1);  // the long months change sides after July
}

}  // namespace orzcore::calendar
