// Dates as day numbers, which count from 1 January 1984, a Sunday, and day numbers as dates.
//
// Both count from 1 March of the year -400: the leap day is then the last day of its year, and no
// term is negative. For speed there are no loops, no divisions and no branches that depend on a
// date: processors cannot predict these.
#pragma once

#include <array>
#include <cstddef>
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

constexpr bool IsLeapYear(int year) {
  const auto y = static_cast<std::uint32_t>(year);
  return y % 4 == 0 && (y % 25 != 0 || y % 16 == 0);  // 4 and 25 divide a century, 4 and 16 400
}

/// Returns the days of a month. For a month outside 1 to 12 it returns 30 or 31.
constexpr int MonthLength(int year, int month) {
  if (month == kFebruary) return IsLeapYear(year) ? 29 : 28;
  return 30 + ((month ^ month >> 3) & 1);  // odd months are long up to July, even ones after it
}

/// The days from 1 March to the first of a month, by the field `month` of a value. Months that do
/// not exist go on after December; 0 is the month before January.
constexpr auto kDaysBeforeMonth = [] {
  std::array<std::uint16_t, 16> days{};
  for (int month = 0; month < 16; ++month) {
    const int since_march = month - 3 + (month <= kFebruary ? kMonthsPerYear : 0);
    // From March on, months have 31, 30, 31, 30, 31 days, again and again: 30.6 on average.
    days[static_cast<std::size_t>(month)] =
        static_cast<std::uint16_t>((979 * since_march + 16) / 32);
  }
  return days;
}();

/// Returns the days from 1 March of the year -400 to a date. The month may be any from 0 to 15, and
/// the day any number: months and days past an end count on into the next year and month.
constexpr std::int32_t DaysSinceYearMinus400(int year, int month, int day) {
  const auto y = static_cast<std::uint32_t>(year + 400 - static_cast<int>(month <= kFebruary));
  const std::uint32_t century = y / 100;
  const std::uint32_t days_before_year = y * kDaysPerFourYears / 4 - century + century / 4;
  const std::uint32_t days_before_month = kDaysBeforeMonth[static_cast<std::size_t>(month)];
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

constexpr bool IsYearInCalendar(std::int64_t year) {
  return year >= kFirstYear && year <= kLastYear;
}

/// Returns true if the year and the month of a value are in the calendar. Its day may be any.
inline bool IsMonthInCalendar(un_date_time date) {
  return IsYearInCalendar(date.year) && date.month >= 1 && date.month <= kMonthsPerYear;
}

/// Returns the weekday of a day number: 1 for Sunday to 7 for Saturday.
constexpr int WeekdayOfDayNumber(std::int32_t day_number) {
  // 400 years are a whole number of weeks. They make the count positive.
  const auto days = static_cast<std::uint32_t>(day_number + 10 * kDaysPer400Years);
  // The remainder, without a division: the product is the number of weeks, with 32 bits after the
  // point. Its whole weeks do not fit and are lost, and 7 times the rest is the day.
  constexpr std::uint32_t kWeeksPerDay = 613566757;  // 2^32 / 7, rounded up
  const std::uint32_t part_of_week = days * kWeeksPerDay;
  return static_cast<int>(std::uint64_t{part_of_week} * kDaysPerWeek >> 32) + 1;
}

/// Reads a value in one piece, for speed: compilers load each field that is used from memory.
inline un_date_time Load(const un_date_time& value) {
  return un_date_time::FromNumber(value.Number());
}

// The lowest bits of the fields in a value's number, and all bits of its time.
constexpr int kDayBit = 11;
constexpr int kMonthBit = 16;
constexpr int kYearBit = 20;
constexpr std::uint32_t kTimeMask = 0x7FF;

/// Returns a value with another date and the same time.
inline un_date_time WithDate(un_date_time value, YearMonthDay date) {
  const un_date_time midnight = un_date_time::Of(date.year, date.month, date.day);
  return un_date_time::FromNumber(midnight.Number() | (value.Number() & kTimeMask));
}

/// The days of a year that begins on 1 March, as the bits of a value's number from `kDayBit` on.
/// The year is 0 up to December, and 1 from January on.
constexpr auto kDaysOfYear = [] {
  constexpr int kLeapYear = 2000;
  std::array<std::uint16_t, 366> days{};
  std::size_t i = 0;
  for (int month = 3; month < 3 + kMonthsPerYear; ++month) {
    const int year = month > kMonthsPerYear ? 1 : 0;
    const int in_year = month - year * kMonthsPerYear;
    for (int day = 1; day <= MonthLength(kLeapYear, in_year); ++day) {
      const int number = (year << kYearBit) + (in_year << kMonthBit) + (day << kDayBit);
      days[i++] = static_cast<std::uint16_t>(number >> kDayBit);
    }
  }
  return days;
}();

/// Returns a value with the date of a day number, and with the same time. The day number goes from
/// `kFirstDayNumber` to `kLastDayNumber`.
///
/// Each division is one multiplication by a scaled fraction that gives the quotient and the
/// remainder together. C. Neri and L. Schneider describe this in "Euclidean affine functions and
/// their application to calendar algorithms".
inline un_date_time WithDayNumber(un_date_time value, std::int32_t day_number) {
  constexpr std::uint32_t kYearsPerQuarterDay = 2939745;  // 2^32 / 1461, rounded up
  // A century has 36524.25 days on average: a whole number of quarters of a day.
  const std::uint32_t quarters = 4 * static_cast<std::uint32_t>(day_number + kDaysTo1984) + 3;
  const std::uint32_t century = quarters / kDaysPer400Years;
  const std::uint32_t quarters_of_century = quarters % kDaysPer400Years | 3;
  const std::uint64_t years = std::uint64_t{kYearsPerQuarterDay} * quarters_of_century;
  const std::uint32_t day_of_year = static_cast<std::uint32_t>(years) / kYearsPerQuarterDay / 4;
  const std::uint32_t year = century * 100 + static_cast<std::uint32_t>(years >> 32) - 400;
  const std::uint32_t date =
      (year << kYearBit) + (std::uint32_t{kDaysOfYear[day_of_year]} << kDayBit);
  return un_date_time::FromNumber(date | (value.Number() & kTimeMask));
}

}  // namespace orzcore::calendar
