/// @file
/// The calendar: packed dates, moving them, weekdays, recurring dates and short texts for display.
#pragma once

#include <bit>
#include <cstdint>

#include "orzcore/export.h"

static_assert(std::endian::native == std::endian::little,
              "the packed records have their first field in the lowest bits of the first byte");

/// A date and a time of day in 32 bits, in the form in which it is stored in files. As an unsigned
/// number it sorts chronologically.
///
/// A `year` of 0 (with `month` and `day` 0) means no date; the `time` of such a value still counts.
struct un_date_time {
  std::uint32_t time : 11;  ///< minutes since midnight, 0 to 1440; 2047 is no time
  std::uint32_t day : 5;    ///< 1 to 31
  std::uint32_t month : 4;  ///< 1 (January) to 12
  std::uint32_t year : 12;  ///< the Gregorian year, 1753 to 2099

  /// The value with these fields, each cut to its width.
  static constexpr un_date_time Of(int year, int month, int day, int time = 0) {
    return {.time = static_cast<std::uint32_t>(time) & 0x7FF,
            .day = static_cast<std::uint32_t>(day) & 0x1F,
            .month = static_cast<std::uint32_t>(month) & 0xF,
            .year = static_cast<std::uint32_t>(year) & 0xFFF};
  }

  /// The value as one number, which compares chronologically.
  std::uint32_t Number() const { return std::bit_cast<std::uint32_t>(*this); }

  /// The value whose number is `number`.
  static un_date_time FromNumber(std::uint32_t number) {
    return std::bit_cast<un_date_time>(number);
  }
};
static_assert(sizeof(un_date_time) == 4);

/// Which day opens the week. Every value other than `eCalWeekStartMonday` acts as Sunday.
enum eCalWeekStart : std::int32_t {
  eCalWeekStartSunday = 0,
  eCalWeekStartMonday = 1,
};

/// The length of an event as it is stored.
struct stEventLen {
  std::uint16_t flag : 1;      ///< the application's; not read here
  std::uint16_t minutes : 15;  ///< the length in minutes
};
static_assert(sizeof(stEventLen) == 2);

/// The kinds of recurrence, values of `st_cyc_time::cycKind`.
enum eCycKind : std::uint32_t {
  eCycWeekly = 0,     ///< every week on the marked weekdays
  eCycAltWeekly = 1,  ///< every other week on the marked weekdays
  eCycMonthly = 2,    ///< once a month
  eCycQuarterly = 3,  ///< once a quarter
  eCycYearly = 4,     ///< once a year
};

/// The rule of a recurring date in 32 bits, in the form in which it is stored in files.
///
/// | `cycKind`       | `cycSelect`               | `cycValue`                             |
/// |-----------------|---------------------------|----------------------------------------|
/// | `eCycWeekly`    | not read                  | weekdays: bit 0 Sunday, bit 6 Saturday |
/// | `eCycAltWeekly` | wanted `IsWeekOdd`, 0, 1  | weekdays, likewise                     |
/// | `eCycMonthly`   | 0                         | day of the month, 99 the last          |
/// |                 | weekday, 1 Sunday to 7    | its ordinal from 1, 99 the last        |
/// | `eCycQuarterly` | 0                         | day of the quarter from 1, 99 the last |
/// |                 | weekday, 1 Sunday to 7    | its ordinal in the quarter, 99 last    |
/// | `eCycYearly`    | month, 1 to 12            | day of the month, in the low 5 bits    |
/// |                 | ordinal * 16 + month      | weekday, 1 Sunday to 7 Saturday        |
///
/// A yearly ordinal of 5 or more is the last. Any other kind never occurs.
struct st_cyc_time {
  std::uint32_t reserved1 : 11;  ///< the application's; not read here
  std::uint32_t cycKind : 5;     ///< an `eCycKind`
  std::uint32_t reserved2 : 2;   ///< the application's; not read here
  std::uint32_t cycSelect : 7;   ///< selects what `cycValue` counts, as the table tells
  std::uint32_t cycValue : 7;    ///< the day, weekday or weekdays, as the table tells

  /// The rule with these fields, each cut to its width.
  static constexpr st_cyc_time Of(eCycKind kind, int select, int value) {
    return {.reserved1 = 0,
            .cycKind = static_cast<std::uint32_t>(kind) & 0x1F,
            .reserved2 = 0,
            .cycSelect = static_cast<std::uint32_t>(select) & 0x7F,
            .cycValue = static_cast<std::uint32_t>(value) & 0x7F};
  }

  /// The rule as one number.
  std::uint32_t Number() const { return std::bit_cast<std::uint32_t>(*this); }

  /// The rule whose number is `number`.
  static st_cyc_time FromNumber(std::uint32_t number) { return std::bit_cast<st_cyc_time>(number); }
};
static_assert(sizeof(st_cyc_time) == 4);

/// The direction of a search for a recurring date. Any value but 0 is backward.
enum eCyclicalsBumped : std::int32_t {
  eCyclicalsBumpedForward = 0,
  eCyclicalsBumpedBackward = 1,
};

/// Calendar operations on packed dates. The calendar runs from 1 January 1753 to 31 December 2099;
/// dates are clamped at its ends.
///
/// Pointers must not be null. Two weekday numberings are in use: the calendar numbering from 1 for
/// Sunday to 7 for Saturday, and the Monday-first numbering from 1 for Monday to 7 for Sunday.
///
/// Operations that read the clock write `mNow`; all others touch nothing but their arguments.
class ORZCORE_API OZDate {
 public:
  OZDate() = delete;

  static constexpr int kEndOfDay = 1440;  ///< 24:00, the end of the day, in minutes
  static constexpr int kNoTime = 2047;    ///< the `time` that means no time
  static constexpr int kNearDays = 90;    ///< how far from today `Dow90` still calls near
  static constexpr int kCycLast =
      99;  ///< the `cycValue` of the last day or weekday, but for yearly rules

  static const un_date_time BegOfTime;     ///< 1 January 1753 at minute 0
  static const un_date_time EndOfTime;     ///< 31 December 2099 at minute 1440
  static un_date_time mNow;                ///< the last reading of the clock; 0 before the first
  static const unsigned short mMonth[12];  ///< days per month of a common year, January first

  /// Reads the clock into `mNow`. Seconds are dropped; a clock outside the calendar is not clamped.
  static void UpdateSystemDate();

  /// Reads the clock, through `UpdateSystemDate`, and returns the local date and time.
  static un_date_time CurDateTime();

  /// Returns 1 for a leap year of the Gregorian calendar, else 0.
  static int LeapYear(unsigned short year);

  /// Returns the number of days in a month.
  ///
  /// @param month  index of the month from 0 for January; taken modulo 12
  static unsigned short DaysInMonth(unsigned short month, unsigned short year);

  /// Compares the dates of two values, whatever their times: -1, 0 or 1.
  static short DateCompare(const un_date_time* a, const un_date_time* b);

  /// Compares two values by date and time: -1, 0 or 1.
  static short DateTimeCompare(const un_date_time* a, const un_date_time* b);

  /// Moves a date forward, in place. The time field is never touched.
  ///
  /// Months and years stick to the month's end: 31 January and a month is the last of February. Any
  /// other unit carries a day past its month's end over to the next month, also one that moves
  /// nothing. A value without a date stays as it is.
  ///
  /// @param date   a real date, but for a day past its month's end
  /// @param count  how many units. For 'D' a negative count n moves -n - 1 days forward, and for
  ///               'W' the count times 7 is treated so. For 'M' and 'Y' only the low 16 bits count;
  ///               a number that is negative in them moves as `DateBack` does.
  /// @param unit   'D' days, 'W' weeks, 'M' months, 'Y' years; any other letter moves nothing
  /// @return 1 if the move ran past 2099 and the date is now 31 December 2099, else 0
  static int DateFwrd(un_date_time* date, std::int32_t count, char unit);

  /// Moves a date backward, in place. The time field is never touched.
  ///
  /// Every unit sticks to the month's end: a day past the end of the month that is reached becomes
  /// its last, also with a unit that moves nothing. A value without a date stays as it is.
  ///
  /// @param date   a real date
  /// @param count  how many units, 0 or above. For 'M' and 'Y' only the low 16 bits count; a number
  ///               that is negative in them moves as `DateFwrd` does.
  /// @param unit   as for `DateFwrd`
  /// @return 1 if the move ran before 1753 and the date is now 1 January 1753, else 0
  static int DateBack(un_date_time* date, std::int32_t count, char unit);

  /// Finds the weekday and the day number of a date.
  ///
  /// @param date        a real date
  /// @param day_number  receives the days from 1 January 1984 to the date, negative before it
  /// @param week_start  the caller's week
  /// @param calendar    if not 0, the weekday is in calendar numbering whatever the week start
  /// @return the weekday, 1 to 7: Monday-first if `week_start` is Monday and `calendar` is 0, else
  ///         in calendar numbering
  static short DayOfWeek(const un_date_time* date, std::int32_t* day_number,
                         eCalWeekStart week_start, int calendar);

  /// Tells whether a date lies within 90 days of today. Reads the clock.
  ///
  /// @param weekday  receives the weekday of the date in calendar numbering
  /// @return 1 if the date lies more than 90 days in the past, -1 if more than 90 days in the
  ///         future, else 0
  static short Dow90(const un_date_time* date, short* weekday, eCalWeekStart week_start);

  /// Returns 1 if a date lies in an odd week, else 0. A week is the day number divided by 7, cut
  /// toward zero: from 1984 on it changes on Sundays, before on Mondays, and the 13 days from 26
  /// December 1983 to 7 January 1984 are week 0. The week start has no effect.
  static int IsWeekOdd(const un_date_time* date, eCalWeekStart week_start);

  /// Returns 1 if a date lies outside the working days, else 0. The week start has no effect.
  ///
  /// @param first  first working day, 0 for Sunday to 6 for Saturday
  /// @param last   last working day; if it lies before `first` the range runs over the week's end
  static int IsWeekend(const un_date_time* date, eCalWeekStart week_start, unsigned char first,
                       unsigned char last);

  /// Returns when an event ends, in minutes from 0 to 1440. One that runs past midnight ends at the
  /// matching time of the next day.
  ///
  /// @param start   when it starts, in minutes from 0 to 1440
  /// @param length  its length, at most 1440 minutes
  /// @return the end; 0 if `start` is above 1440; `kNoTime` if `start` is negative or the length
  ///         above 1440
  static short GetEndTime(short start, const stEventLen& length);

  /// Finds the nearest occurrence of a rule at or past a date, in a direction. With `include` 0, a
  /// result handed back as the reference date yields the occurrence after it.
  ///
  /// The search starts in the period (month, quarter) of the reference date: an ordinal that runs
  /// over its period's end is not found from within the next one. A search that runs off the
  /// calendar ends on the reference date (weekly rules, whether that date occurs or not) or on the
  /// last candidate that fits the calendar, mostly on the wrong side of the reference date (all
  /// others).
  ///
  /// @param direction       forward or backward
  /// @param weekday         calendar weekday of the reference date, 1 to 7; read only for weekly
  ///                        rules when `include` is not 0
  /// @param include         if not 0, the reference date itself may be the result
  /// @param rule            the rule
  /// @param reference       where the search starts
  /// @param quarter_anchor  month * 100 + day of a day that opens a quarter, 101 for 1 January;
  ///                        read only for quarterly rules; anything but a month and a day acts as
  ///                        101. After a 28th, quarters that open in a short month overlap by days.
  /// @param week_start      has no effect on the result
  /// @return the occurrence, with the time of the reference date; `EndOfTime` for a kind that never
  ///         occurs; the reference date if it lies outside the calendar, or for a rule that names
  ///         no day (an empty weekday mask, a weekday outside 1 to 7, a yearly date without a month
  ///         or a day)
  static un_date_time NextCycDate(eCyclicalsBumped direction, short weekday, int include,
                                  const st_cyc_time* rule, const un_date_time* reference,
                                  short quarter_anchor, eCalWeekStart week_start);

  /// Writes a date as a short text. Reads the clock, and the order of day and month from the user's
  /// regional settings ("sShortDate").
  ///
  /// | form  | month first       | day first         |
  /// |-------|-------------------|-------------------|
  /// | 1     | Fri-Mar 15        | Fri-15 Mar        |
  /// | 2     | Mar 15,2024       | 15 Mar 2024       |
  /// | 3     | Fri-Mar 15,2024   | Fri-15 Mar 2024   |
  /// | other | form 1 within 90 days of today, else form 2 |
  ///
  /// A day of one digit is padded with a leading blank in form 2 with the day first. The year 1752
  /// is written as "No Lower Limit" and 2100 as "No Upper Limit"; any other year outside the
  /// calendar, and a month above 12, as "None".
  ///
  /// @param buffer  receives the text; its last byte is always set to zero
  /// @param size    bytes in `buffer`; 16 hold every text. A shorter buffer cuts it, and a date
  ///                then loses blanks and commas at the cut. With 0 or less nothing is written.
  static void FormatDate(const un_date_time* date, char* buffer, int size, int form);

  /// Writes a time of day as a text of 7 characters, such as " 1:05pm" or "13:05  "; the end of the
  /// day is "12:00M " on a 12-hour clock. Whether the clock has 12 or 24 hours comes from the user's
  /// regional settings ("iTime").
  ///
  /// @param minutes       minutes since midnight, 0 to 1440; any other number is written as "None"
  /// @param buffer        at least 8 bytes
  /// @param no_pad        if not 0, a 12-hour time with one hour digit has no leading blank
  /// @param force_24hour  if not 0, the 24-hour clock is used and the setting is not read
  static void FormatTime(int minutes, char* buffer, int no_pad, int force_24hour);
};
