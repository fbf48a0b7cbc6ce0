/// @file
/// The calendar: packed dates, moving them, weekdays, recurring dates and short texts for display.
#pragma once

#include <bit>
#include <cstdint>

#include "orzcore/export.h"

static_assert(std::endian::native == std::endian::little,
              "the packed records have their first field in the lowest bits of the first byte");

/// A date and a time of day in 32 bits, as they are stored in files.
///
/// A `year` of 0 (with `month` and `day` 0) means no date. Such a value can still have a time.
struct un_date_time {
  std::uint32_t time : 11;  ///< minutes since midnight, 0 to 1440; 2047 is no time
  std::uint32_t day : 5;    ///< 1 to 31
  std::uint32_t month : 4;  ///< 1 (January) to 12
  std::uint32_t year : 12;  ///< the Gregorian year, 1753 to 2099

  /// Returns the value with these fields. Nothing is checked: of each argument only the low bits
  /// that fit the field are used.
  static constexpr un_date_time Of(int year, int month, int day, int time = 0) {
    return {.time = static_cast<std::uint32_t>(time) & 0x7FF,
            .day = static_cast<std::uint32_t>(day) & 0x1F,
            .month = static_cast<std::uint32_t>(month) & 0xF,
            .year = static_cast<std::uint32_t>(year) & 0xFFF};
  }

  /// Returns the value as one number. A later value has a larger number.
  std::uint32_t Number() const { return std::bit_cast<std::uint32_t>(*this); }

  /// Returns the value whose number is `number`.
  static un_date_time FromNumber(std::uint32_t number) {
    return std::bit_cast<un_date_time>(number);
  }
};
static_assert(sizeof(un_date_time) == 4);

/// The first day of the week. Every value other than `eCalWeekStartMonday` means Sunday.
enum eCalWeekStart : std::int32_t {
  eCalWeekStartSunday = 0,
  eCalWeekStartMonday = 1,
};

/// The length of an event as it is stored.
struct stEventLen {
  std::uint16_t flag : 1;      ///< for the application; the library does not read it
  std::uint16_t minutes : 15;  ///< the length
};
static_assert(sizeof(stEventLen) == 2);

/// How often a date recurs: the values of `st_cyc_time::cycKind`.
enum eCycKind : std::uint32_t {
  eCycWeekly = 0,     ///< every week on the marked weekdays
  eCycAltWeekly = 1,  ///< every other week on the marked weekdays
  eCycMonthly = 2,    ///< once a month
  eCycQuarterly = 3,  ///< once a quarter
  eCycYearly = 4,     ///< once a year
};

/// The rule of a recurring date in 32 bits, as it is stored in files.
///
/// | `cycKind`       | `cycSelect`               | `cycValue`                             |
/// |-----------------|---------------------------|----------------------------------------|
/// | `eCycWeekly`    | not read                  | weekdays: bit 0 Sunday, bit 6 Saturday |
/// | `eCycAltWeekly` | 1 odd weeks, 0 even weeks | weekdays: bit 0 Sunday, bit 6 Saturday |
/// | `eCycMonthly`   | 0                         | day of the month; 99 for the last      |
/// |                 | weekday, 1 to 7           | which one: 1 the first; 99 the last    |
/// | `eCycQuarterly` | 0                         | day of the quarter; 99 for the last    |
/// |                 | weekday, 1 to 7           | which one: 1 the first; 99 the last    |
/// | `eCycYearly`    | month, 1 to 12            | day of the month, in the low 5 bits    |
/// |                 | n * 16 + month            | weekday, 1 to 7                        |
///
/// Weekdays are numbered from 1 for Sunday to 7 for Saturday. The first day of a month or quarter
/// is 1. `IsWeekOdd` says which weeks are odd. A yearly rule with n names the nth such weekday of
/// its month; n from 5 to 7 means the last. A rule of any other kind has no occurrence.
struct st_cyc_time {
  std::uint32_t reserved1 : 11;  ///< for the application; the library does not read it
  std::uint32_t cycKind : 5;     ///< an `eCycKind`
  std::uint32_t reserved2 : 2;   ///< for the application; the library does not read it
  std::uint32_t cycSelect : 7;   ///< see the table
  std::uint32_t cycValue : 7;    ///< see the table

  /// Returns the rule with these fields. Nothing is checked: of each argument only the low bits
  /// that fit the field are used.
  static constexpr st_cyc_time Of(eCycKind kind, int select, int value) {
    return {.reserved1 = 0,
            .cycKind = static_cast<std::uint32_t>(kind) & 0x1F,
            .reserved2 = 0,
            .cycSelect = static_cast<std::uint32_t>(select) & 0x7F,
            .cycValue = static_cast<std::uint32_t>(value) & 0x7F};
  }

  /// Returns the rule as one number.
  std::uint32_t Number() const { return std::bit_cast<std::uint32_t>(*this); }

  /// Returns the rule whose number is `number`.
  static st_cyc_time FromNumber(std::uint32_t number) { return std::bit_cast<st_cyc_time>(number); }
};
static_assert(sizeof(st_cyc_time) == 4);

/// The direction of a search for a recurring date. Every value except 0 is backward.
enum eCyclicalsBumped : std::int32_t {
  eCyclicalsBumpedForward = 0,
  eCyclicalsBumpedBackward = 1,
};

/// Calendar operations on packed dates. The calendar goes from 1 January 1753 to 31 December 2099.
/// A move that would leave it stops at its first or last day.
///
/// A *real date* is in the calendar, and its month has this day. The operations do not check this.
/// For any other value their results have no meaning, unless a comment says otherwise.
///
/// Pointers must not be null. Weekdays are numbered in two ways: the calendar numbering goes from 1
/// for Sunday to 7 for Saturday, the Monday-first numbering from 1 for Monday to 7 for Sunday.
///
/// Operations that read the clock write `mNow`. All others write only what their arguments point
/// to.
class ORZCORE_API OZDate {
 public:
  OZDate() = delete;

  static constexpr int kEndOfDay = 1440;  ///< 24:00, the end of the day, in minutes
  static constexpr int kNoTime = 2047;    ///< the `time` that means no time
  static constexpr int kNearDays = 90;  ///< the largest distance from today that `Dow90` calls near

  /// The `cycValue` for the last day or the last such weekday, except in yearly rules.
  static constexpr int kCycLast = 99;

  static const un_date_time BegOfTime;     ///< 1 January 1753 at minute 0
  static const un_date_time EndOfTime;     ///< 31 December 2099 at minute 1440
  static un_date_time mNow;                ///< the date and time read last; 0 before that
  static const unsigned short mMonth[12];  ///< days of the months in a common year, January first

  /// Reads the local date and time into `mNow`, without the seconds. A date outside the calendar is
  /// stored as it is.
  static void UpdateSystemDate();

  /// Calls `UpdateSystemDate` and returns `mNow`: the local date and time.
  static un_date_time CurDateTime();

  /// Returns 1 for a leap year of the Gregorian calendar, else 0.
  static int LeapYear(unsigned short year);

  /// Returns the number of days in a month.
  ///
  /// @param month  0 for January to 11 for December; 12 is January again, and so on
  /// @param year   the Gregorian year
  static unsigned short DaysInMonth(unsigned short month, unsigned short year);

  /// Compares the dates of two values and ignores their times. Returns -1 if the first is earlier,
  /// 0 if they are equal, 1 if the first is later.
  static short DateCompare(const un_date_time* a, const un_date_time* b);

  /// Compares two values by date and time. Returns -1 if the first is earlier, 0 if they are equal,
  /// 1 if the first is later.
  static short DateTimeCompare(const un_date_time* a, const un_date_time* b);

  /// Moves a date forward, in place. The time does not change, and a value without a date (year 0)
  /// does not change at all.
  ///
  /// With months and years, a day past the end of the month that is reached becomes its last day:
  /// 31 January plus one month is the last of February. With every other unit, a day past its
  /// month's end becomes a day of the next month, even if nothing is moved: 31 February 2023
  /// becomes 3 March.
  ///
  /// @param date   a real date, or one with a day past its month's end
  /// @param count  how many units. With 'D' a negative count n moves -n - 1 days forward: -1 moves
  ///               none, -5 moves 4. With 'W' the same applies to the count times 7. With 'M' and
  ///               'Y' only the low 16 bits are used, as a signed number; a negative one moves
  ///               back.
  /// @param unit   'D' days, 'W' weeks, 'M' months, 'Y' years; any other letter moves nothing
  /// @return 1 if the move stopped at an end of the calendar, else 0
  static int DateFwrd(un_date_time* date, std::int32_t count, char unit);

  /// Moves a date back, in place. The time does not change, and a value without a date (year 0)
  /// does not change at all.
  ///
  /// With every unit, a day past the end of the month that is reached becomes its last day, even if
  /// nothing is moved: 31 March minus one month is the last of February. Days are subtracted before
  /// that: 31 February 2023 minus 1 day is 28 February, and minus 5 days it is 26 February.
  ///
  /// A count of 0 moves a date before 1753 to 1 January 1753, and does not change the year of a
  /// date after 2099.
  ///
  /// @param date   a real date, or one with a day past its month's end
  /// @param count  how many units, 0 or more. With 'M' and 'Y' only the low 16 bits are used, as a
  ///               signed number; a negative one moves forward.
  /// @param unit   'D' days, 'W' weeks, 'M' months, 'Y' years; any other letter moves nothing
  /// @return 1 if the move stopped at an end of the calendar, else 0
  static int DateBack(un_date_time* date, std::int32_t count, char unit);

  /// Finds the weekday and the day number of a date.
  ///
  /// @param date        a real date
  /// @param day_number  receives the days from 1 January 1984 to the date, negative for earlier
  ///                    dates
  /// @param week_start  the first day of the week
  /// @param calendar    if not 0, `week_start` has no effect
  /// @return the weekday, 1 to 7: in Monday-first numbering if `week_start` is Monday and
  ///         `calendar` is 0, else in calendar numbering
  static short DayOfWeek(const un_date_time* date, std::int32_t* day_number,
                         eCalWeekStart week_start, int calendar);

  /// Checks whether a date is at most 90 days away from today. Reads the clock once.
  ///
  /// @param date        a real date
  /// @param weekday     receives the weekday of the date in calendar numbering
  /// @param week_start  has no effect
  /// @return 1 if the date is more than 90 days in the past, -1 if it is more than 90 days in the
  ///         future, else 0
  static short Dow90(const un_date_time* date, short* weekday, eCalWeekStart week_start);

  /// Returns 1 if a date is in an odd week, else 0. The number of a week is the day number divided
  /// by 7, rounded toward zero. So weeks begin on Sundays from 1984 on and on Mondays before, and
  /// week 0 has the 13 days from 26 December 1983 to 7 January 1984.
  ///
  /// @param date        a real date
  /// @param week_start  has no effect
  static int IsWeekOdd(const un_date_time* date, eCalWeekStart week_start);

  /// Returns 1 if a date is not a working day, else 0.
  ///
  /// @param date        a real date
  /// @param week_start  has no effect
  /// @param first       the first working day, 0 for Sunday to 6 for Saturday
  /// @param last        the last working day. If it is below `first`, the working days go past
  ///                    Saturday to Sunday: 6 and 0 mean Saturday and Sunday.
  static int IsWeekend(const un_date_time* date, eCalWeekStart week_start, unsigned char first,
                       unsigned char last);

  /// Returns the time of day when an event ends, even if it ends on the next day.
  ///
  /// @param start   when it starts, in minutes since midnight, 0 to 1440
  /// @param length  its length, at most 1440 minutes
  /// @return minutes since midnight, 0 to 1440; an end at midnight is 1440. 0 if `start` is above
  ///         1440, whatever the length; `kNoTime` if `start` is negative or the length is above
  ///         1440
  static short GetEndTime(short start, const stEventLen& length);

  /// Finds the nearest occurrence of a rule after or before a date. To get one occurrence after the
  /// other, call it with `include` 0 and with the last result as the reference date.
  ///
  /// If a month does not have the day of a rule, the occurrence is on the last day of the month:
  /// day 31 of a monthly rule, or 31 April and 29 February of a yearly one. A yearly search first
  /// compares the day of the rule (29 February) with the reference date, and only then takes the
  /// last day. So a backward search finds 28 February 2025 only from 2 March 2025 on, or from 1
  /// March with `include`; from earlier days it finds 29 February 2024. A forward search finds 28
  /// February 2025 from reference dates up to 27 February, or up to 28 February with `include`.
  ///
  /// If a quarter does not have the day of a rule, or a month or quarter does not have its nth
  /// weekday, the occurrence is in the next month or quarter: the fifth Tuesday of February 2024 is
  /// 5 March. A search that starts in that next month or quarter does not find it.
  ///
  /// Near an end of the calendar there may be no further occurrence. Then the result is not past
  /// the reference date in the direction of the search: a weekly rule returns the reference date
  /// itself, and any other rule an occurrence that is usually on the other side of it.
  ///
  /// @param direction       forward or backward
  /// @param weekday         the weekday of the reference date in calendar numbering, 1 to 7; read
  ///                        only for weekly rules with an `include` other than 0
  /// @param include         if not 0, the reference date itself may be the result
  /// @param rule            the rule
  /// @param reference       where the search starts
  /// @param quarter_anchor  the first day of a quarter as month * 100 + day: 101 for 1 January.
  ///                        Read only for quarterly rules. A number that is no month and day acts
  ///                        as 101. Use a day up to 28: with a later one quarters overlap, and
  ///                        occurrences may be some days early or come twice.
  /// @param week_start      has no effect
  /// @return the occurrence, with the time of the reference date; `EndOfTime` if `cycKind` is no
  ///         `eCycKind`; the reference date if its year or month is outside the calendar, or if the
  ///         rule names no day: no marked weekday, a weekday outside 1 to 7, or a yearly rule
  ///         without a month or a day
  static un_date_time NextCycDate(eCyclicalsBumped direction, short weekday, int include,
                                  const st_cyc_time* rule, const un_date_time* reference,
                                  short quarter_anchor, eCalWeekStart week_start);

  /// Writes a date as a short text. The order of day and month comes from the user's regional
  /// settings ("sShortDate"). The clock is read once, but not for a date outside the calendar.
  ///
  /// | form  | month first       | day first         |
  /// |-------|-------------------|-------------------|
  /// | 1     | Fri-Mar 15        | Fri-15 Mar        |
  /// | 2     | Mar 15,2024       | 15 Mar 2024       |
  /// | 3     | Fri-Mar 15,2024   | Fri-15 Mar 2024   |
  /// | other | form 1 within 90 days of today, else form 2 |
  ///
  /// In form 2 with the day first, a day of one digit has a blank before it. The text for the year
  /// 1752 is "No Lower Limit", for 2100 "No Upper Limit", and for any other year outside the
  /// calendar and for a month above 12 "None".
  ///
  /// @param date    the date
  /// @param buffer  receives the text with a terminator; its last byte is always set to 0
  /// @param size    the bytes of `buffer`; 16 hold every text. A shorter buffer cuts the text, and
  ///                a date also loses the blanks and commas before the cut. With 0 or less nothing
  ///                is written.
  /// @param form    see the table
  static void FormatDate(const un_date_time* date, char* buffer, int size, int form);

  /// Writes a time of day as a text of 7 characters, such as " 1:05pm" or "13:05  ". The end of the
  /// day is "12:00M " on a 12-hour clock. The user's regional settings ("iTime") decide between 12
  /// and 24 hours.
  ///
  /// @param minutes       minutes since midnight, 0 to 1440; the text for any other number is
  ///                      "None"
  /// @param buffer        receives the text with a terminator; it must have at least 8 bytes
  /// @param no_pad        if not 0, a 12-hour time with one hour digit has no blank before it and 6
  ///                      characters
  /// @param force_24hour  if not 0, the 24-hour clock is used and the setting is not read
  static void FormatTime(int minutes, char* buffer, int no_pad, int force_24hour);
};
