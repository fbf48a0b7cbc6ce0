// Dates as records, and counting with dates.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <random>

#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/PageTables.h"

namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using std::literals::chrono_literals::operator""y;

TEST(PackedRecords, HaveAFixedLayoutOfBits) {
  EXPECT_EQ(std::bit_cast<std::uint32_t>(un_date_time::Of(1753, 1, 1)), 0x6D910800U);
  EXPECT_EQ(OZDate::BegOfTime, un_date_time::FromNumber(0x6D910800U));
  EXPECT_EQ(OZDate::EndOfTime.Number(), 0x833CFDA0U);
  const st_cyc_time rule = {
      .reserved1 = 0, .cycKind = 3, .reserved2 = 0, .cycSelect = 85, .cycValue = 99};
  EXPECT_EQ(rule.Number(), 3U << 11 | 85U << 18 | 99U << 25);
  EXPECT_EQ(std::bit_cast<std::uint16_t>(stEventLen{.flag = 1, .minutes = 1440}), 1440 << 1 | 1);
}

TEST(Clock, IsReadAtEachCallAndNotLimitedToTheCalendar) {
  FakeHost host;
  host.SetNow(1700, 2, 28, 23, 59);
  EXPECT_EQ(OZDate::CurDateTime(), un_date_time::Of(1700, 2, 28, 1439));
  EXPECT_EQ(OZDate::mNow, un_date_time::Of(1700, 2, 28, 1439));
}

// Returns a date moved by a count of a unit. A day past the end of the month becomes its last day.
sys_days Moved(year_month_day from, int count, char unit) {
  if (unit == 'D' || unit == 'W') return sys_days(from) + days(unit == 'D' ? count : 7 * count);
  const auto target = from.year() / from.month() + months(unit == 'M' ? count : 12 * count);
  return target / std::min(from.day(), (target / std::chrono::last).day());
}

// 1 if a is greater than b, -1 if it is smaller.
template <typename T>
int Order(const T& a, const T& b) {
  return (a > b ? 1 : 0) - (a < b ? 1 : 0);
}

class EveryDay : public testing::Test {
 protected:
  EveryDay() { host_.SetNow(2024, 3, 15); }

  template <typename Check>
  void ForEach(Check check) {
    for (sys_days day = kFirstDay; day <= kLastDay && !HasFailure(); day += days(1)) check(day);
  }

  FakeHost host_;
  std::minstd_rand random_{20240315};
};

TEST_F(EveryDay, HasItsPlaceInTheCalendar) {
  ForEach([this](sys_days day) {
    const year_month_day ymd(day);
    const un_date_time date = DateOf(ymd, OZDate::kNoTime);
    const auto year = static_cast<unsigned short>(static_cast<int>(ymd.year()));
    const auto month = static_cast<unsigned short>(unsigned(ymd.month()) - 1 + random_() % 3 * 12);
    EXPECT_EQ(OZDate::LeapYear(year), ymd.year().is_leap() ? 1 : 0) << date;
    EXPECT_EQ(OZDate::DaysInMonth(month, year),
              unsigned((ymd.year() / ymd.month() / std::chrono::last).day()))
        << date;

    const int number = static_cast<int>((day - sys_days(1984y / 1 / 1)).count());
    const int sunday_first = static_cast<int>(std::chrono::weekday(day).c_encoding()) + 1;
    const int monday_first = static_cast<int>(std::chrono::weekday(day).iso_encoding());
    for (const auto& [start, flag, expected] :
         {std::tuple(0, 0, sunday_first), {1, 0, monday_first}, {1, 2, sunday_first}}) {
      std::int32_t found = 0;
      EXPECT_EQ(OZDate::DayOfWeek(&date, &found, static_cast<eCalWeekStart>(start), flag), expected)
          << date << " with " << start << ", " << flag;
      EXPECT_EQ(found, number) << date;
    }
    // The division cuts towards 0. So the two weeks around the base day are both even.
    EXPECT_EQ(OZDate::IsWeekOdd(&date, eCalWeekStartMonday), number / 7 % 2 != 0 ? 1 : 0) << date;

    const auto days_ago = (sys_days(2024y / 3 / 15) - day).count();
    const int distance = days_ago > 90 ? 1 : days_ago < -90 ? -1 : 0;
    short weekday = 0;
    EXPECT_EQ(OZDate::Dow90(&date, &weekday, eCalWeekStartMonday), distance) << date;
    EXPECT_EQ(weekday, sunday_first) << date;

    // The working days are counted from 0 for Sunday. They may go on after Saturday.
    const auto first = static_cast<unsigned char>(random_() % 7);
    const auto last = static_cast<unsigned char>(random_() % 7);
    const bool is_working = (sunday_first - 1 - first + 7) % 7 <= (last - first + 7) % 7;
    EXPECT_EQ(OZDate::IsWeekend(&date, eCalWeekStartMonday, first, last), is_working ? 0 : 1)
        << date << " with " << int{first} << " to " << int{last};
  });
}

TEST_F(EveryDay, MovesAndComparesAsPlainCounting) {
  ForEach([this](sys_days day) {
    for (const auto& [unit, limit] :
         {std::pair('D', 2U), {'D', 800}, {'D', 130000}, {'W', 4682}, {'M', 4200}, {'Y', 360}}) {
      const int count = static_cast<int>(random_() % limit);
      for (const bool back : {false, true}) {
        const int time = static_cast<int>(random_() % 2048);
        const int other_time = static_cast<int>(random_() % 2048);
        const un_date_time from = DateOf(day, other_time);
        const sys_days target = Moved(day, back ? -count : count, unit);
        const sys_days to = std::clamp(target, kFirstDay, kLastDay);
        un_date_time date = DateOf(day, time);
        const int at_end = (back ? OZDate::DateBack : OZDate::DateFwrd)(&date, count, unit);
        EXPECT_EQ(at_end, to != target ? 1 : 0) << from << " by " << count << unit;
        EXPECT_EQ(date, DateOf(to, time)) << from << " by " << count << unit;
        EXPECT_EQ(OZDate::DateCompare(&date, &from), Order(to, day)) << date << ", " << from;
        EXPECT_EQ(OZDate::DateTimeCompare(&date, &from),
                  Order(std::pair(to, time), std::pair(day, other_time)))
            << date << ", " << from;
      }
    }
  });
}

constexpr char kGuide[] = "guide/calendar.md";

TEST(Guide, TellsWhereMovesEnd) {
  for (const PageRow& row :
       RowsUnder(kGuide, {"Date", "Count and unit", "`DateFwrd`", "`DateBack`"})) {
    int count = 0;
    char unit = ' ';
    ASSERT_EQ(std::sscanf(row.cells[1].c_str(), "`%d, '%c'`", &count, &unit), 2) << row.place;
    for (const bool back : {false, true}) {
      un_date_time date = DatesFrom(row.cells[0], 777).at(0);
      const int at_end = (back ? OZDate::DateBack : OZDate::DateFwrd)(&date, count, unit);
      EXPECT_EQ(TextOf(date) + (at_end == 1 ? ", clamped" : ""), row.cells[back ? 3 : 2])
          << row.place;
      EXPECT_EQ(date.time + 0, 777U) << row.place;
    }
  }
  un_date_time none = {};
  EXPECT_EQ(OZDate::DateFwrd(&none, 5, 'D') + OZDate::DateBack(&none, 5, 'M'), 0);
  EXPECT_EQ(none, un_date_time());
}

TEST(Guide, TellsWhenEventsEnd) {
  for (const PageRow& row : RowsUnder(kGuide, {"`start`", "`minutes`", "Result", "Meaning"})) {
    stEventLen length = {.flag = 1, .minutes = 0};
    length.minutes = static_cast<unsigned>(std::stoi(row.cells[1])) & 0x7FFF;
    EXPECT_EQ(OZDate::GetEndTime(static_cast<short>(std::stoi(row.cells[0])), length),
              std::stoi(row.cells[2]))
        << row.place;
  }
}

}  // namespace
