// Dates as records, and counting with dates.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <random>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using std::literals::chrono_literals::operator""y;

constexpr sys_days kBaseDay = 1984y / 1 / 1;
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(PackedRecords, HaveAFixedLayoutOfBits) {
  EXPECT_EQ(std::bit_cast<std::uint32_t>(un_date_time::Of(1753, 1, 1)), 0x6D910800U);
  EXPECT_EQ(OZDate::BegOfTime.Number(), 0x6D910800U);
  EXPECT_EQ(OZDate::EndOfTime.Number(), 0x833CFDA0U);
  EXPECT_EQ(un_date_time::FromNumber(0x833CFDA0U), un_date_time::Of(2099, 12, 31, 1440));
  const st_cyc_time rule = {
      .reserved1 = 0, .cycKind = 3, .reserved2 = 0, .cycSelect = 85, .cycValue = 99};
  EXPECT_EQ(rule.Number(), 3U << 11 | 85U << 18 | 99U << 25);
  EXPECT_EQ(std::bit_cast<std::uint16_t>(stEventLen{.flag = 1, .minutes = 1440}), 1440 << 1 | 1);
}

TEST(Clock, IsReadAtEachCallAndNotLimitedToTheCalendar) {
  FakeHost host;
  for (const year_month_day today : {2024y / 2 / 29, 1700y / 12 / 31}) {
    host.SetNow(int(today.year()), int(unsigned(today.month())), int(unsigned(today.day())), 23,
                59);
    EXPECT_EQ(OZDate::CurDateTime(), DateOf(today, 1439));
    EXPECT_EQ(OZDate::mNow, DateOf(today, 1439));
  }
}

TEST(DateCompare, ComparesWithAndWithoutTheTimes) {
  const struct {
    un_date_time a, b;
    short by_date, by_time;
  } kRows[] = {
      {un_date_time::Of(2024, 3, 15, 1), un_date_time::Of(2024, 3, 15, 0), 0, 1},
      {un_date_time::Of(2024, 3, 15, 1440), un_date_time::Of(2024, 3, 16, 0), -1, -1},
      {un_date_time::Of(0, 0, 0, 2047), un_date_time::Of(0, 0, 0, 5), 0, 1},
      {un_date_time::Of(2099, 1, 1), un_date_time::Of(1999, 12, 31), 1, 1},  // the top bit is set
      {OZDate::EndOfTime, OZDate::EndOfTime, 0, 0},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(OZDate::DateCompare(&row.a, &row.b), row.by_date) << row.a << " and " << row.b;
    EXPECT_EQ(OZDate::DateCompare(&row.b, &row.a), -row.by_date) << row.a << " and " << row.b;
    EXPECT_EQ(OZDate::DateTimeCompare(&row.a, &row.b), row.by_time) << row.a << " and " << row.b;
    EXPECT_EQ(OZDate::DateTimeCompare(&row.b, &row.a), -row.by_time) << row.a << " and " << row.b;
  }
}

// A move of a date. `at_end` is 1 if the move ends at an end of the calendar.
struct Move {
  year_month_day from;
  std::int32_t count;
  char unit;
  year_month_day to;
  int at_end;
};

// The special cases, which plain counting does not have. Only the low 16 bits of a count of months
// or years matter. A negative count of days is a position, counted from 1, and weeks are multiplied
// first. A day past its month's end counts on into the next month; with months and years it is cut.
constexpr Move kForward[] = {
    {2024y / 3 / 1, -1, 'D', 2024y / 3 / 1, 0},      {2024y / 3 / 1, -5, 'D', 2024y / 3 / 5, 0},
    {2024y / 3 / 1, -1, 'W', 2024y / 3 / 7, 0},      {2024y / 3 / 1, kMin, 'D', kLastDay, 1},
    {2024y / 3 / 1, kMin, 'W', kLastDay, 1},         {2023y / 2 / 31, 0, 'D', 2023y / 3 / 3, 0},
    {2023y / 2 / 31, 0, 'x', 2023y / 3 / 3, 0},      {2023y / 2 / 31, 0, 'M', 2023y / 2 / 28, 0},
    {2024y / 3 / 15, 9, 'd', 2024y / 3 / 15, 0},     {2024y / 3 / 5, 65537, 'Y', 2025y / 3 / 5, 0},
    {2024y / 3 / 31, 65535, 'M', 2024y / 2 / 29, 0}, {2024y / 3 / 15, 40000, 'Y', kFirstDay, 1},
    {2024y / 3 / 5, 32767, 'M', kLastDay, 1},        {2099y / 12 / 31, 0, 'D', kLastDay, 0},
    {2099y / 12 / 31, 1, 'D', kLastDay, 1},          {2099y / 12 / 1, 1, 'M', kLastDay, 1},
    {1753y / 1 / 1, kMax, 'W', kLastDay, 1},         {0000y / 0 / 0, 5, 'D', 0000y / 0 / 0, 0},
};

// Unlike forward, every unit cuts a day past its month's end, and a negative count stays. By 0
// months or years is as by 0 days, past both ends of the calendar.
constexpr Move kBack[] = {
    {2023y / 2 / 31, 1, 'D', 2023y / 2 / 28, 0},     {2023y / 2 / 31, 0, 'x', 2023y / 2 / 28, 0},
    {2023y / 2 / 31, 31, 'D', 2023y / 1 / 31, 0},    {2024y / 3 / 15, kMin, 'D', 2024y / 3 / 31, 0},
    {1000y / 1 / 1, kMin, 'W', kFirstDay, 1},        {2024y / 3 / 15, 40000, 'Y', kLastDay, 1},
    {2024y / 3 / 15, 65537, 'M', 2024y / 2 / 15, 0}, {1753y / 1 / 1, 0, 'D', kFirstDay, 0},
    {1753y / 1 / 1, 1, 'D', kFirstDay, 1},           {1753y / 1 / 2, 1, 'M', kFirstDay, 1},
    {2099y / 1 / 1, kMax, 'W', kFirstDay, 1},        {0000y / 0 / 0, 5, 'M', 0000y / 0 / 0, 0},
    {1752y / 12 / 31, 0, 'D', kFirstDay, 1},         {1752y / 12 / 31, 0, 'Y', kFirstDay, 1},
    {2100y / 2 / 31, 0, 'M', 2100y / 2 / 28, 0},     {2100y / 1 / 1, 65536, 'Y', 2100y / 1 / 1, 0},
};

void Check(const Move& row, bool back, int time = 777) {
  un_date_time date = DateOf(row.from, time);
  const int at_end = (back ? OZDate::DateBack : OZDate::DateFwrd)(&date, row.count, row.unit);
  EXPECT_EQ(at_end, row.at_end) << DateOf(row.from) << " by " << row.count << row.unit;
  EXPECT_EQ(date, DateOf(row.to, time)) << DateOf(row.from) << " by " << row.count << row.unit;
}

TEST(Stepping, FollowsTheRulesForSpecialCases) {
  for (const Move& row : kForward) Check(row, false);
  for (const Move& row : kBack) Check(row, true);
}

// Returns a date moved by a count of a unit. A day past the end of the month becomes its last day.
sys_days Moved(year_month_day from, int count, char unit) {
  if (unit == 'D' || unit == 'W') return sys_days(from) + days(unit == 'D' ? count : 7 * count);
  const auto target = from.year() / from.month() + months(unit == 'M' ? count : 12 * count);
  return target / std::min(from.day(), (target / std::chrono::last).day());
}

TEST(EveryDay, AgreesWithPlainCounting) {
  std::minstd_rand random(20240315);
  for (sys_days day = kFirstDay; day <= kLastDay && !testing::Test::HasFailure(); day += days(1)) {
    const year_month_day ymd(day);
    const auto year = static_cast<unsigned short>(static_cast<int>(ymd.year()));
    const auto month = static_cast<unsigned short>(unsigned(ymd.month()) - 1 + random() % 3 * 12);
    EXPECT_EQ(OZDate::LeapYear(year), ymd.year().is_leap() ? 1 : 0) << year;
    EXPECT_EQ(OZDate::DaysInMonth(month, year),
              unsigned((ymd.year() / ymd.month() / std::chrono::last).day()))
        << year << " month " << month;

    const un_date_time date = DateOf(ymd, OZDate::kNoTime);
    const int number = static_cast<int>((day - kBaseDay).count());
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

    const Move moves[] = {
        {ymd, static_cast<int>(random() % 800), 'D', {}, 0},
        {ymd, static_cast<int>(random() % 130000), 'D', {}, 0},
        {ymd, static_cast<int>(random() % 4682), 'W', {}, 0},
        {ymd, static_cast<int>(random() % 4200), 'M', {}, 0},
        {ymd, static_cast<int>(random() % 360), 'Y', {}, 0},
    };
    for (Move move : moves) {
      for (const bool back : {false, true}) {
        const sys_days target = Moved(ymd, back ? -move.count : move.count, move.unit);
        move.to = std::clamp(target, kFirstDay, kLastDay);
        move.at_end = target < kFirstDay || target > kLastDay ? 1 : 0;
        Check(move, back, static_cast<int>(random() % 2048));
      }
    }
  }
}

TEST(IsWeekend, AcceptsARangeThatCrossesTheEndOfTheWeek) {
  const struct {
    unsigned char first, last;
    bool weekend[7];  // from Sunday to Saturday
  } kRows[] = {
      {1, 5, {true, false, false, false, false, false, true}},
      {6, 0, {false, true, true, true, true, true, false}},
      {3, 3, {true, true, true, false, true, true, true}},
      {0, 6, {}},
  };
  for (const auto& row : kRows) {
    for (int day = 0; day < 7; ++day) {
      const un_date_time date = un_date_time::Of(2024, 3, 10 + day);  // 10 March is a Sunday
      EXPECT_EQ(OZDate::IsWeekend(&date, eCalWeekStartMonday, row.first, row.last) != 0,
                row.weekend[day])
          << date << " with " << int{row.first} << " to " << int{row.last};
    }
  }
}

TEST(Dow90, CountsNinetyDaysAsNear) {
  FakeHost host;
  host.SetNow(2024, 3, 15);  // a Friday
  const struct {
    int distance;
    short weekday;
    int result;
  } kRows[] = {
      {-5000, 4, 1}, {-91, 6, 1}, {-90, 7, 0}, {0, 6, 0}, {90, 5, 0}, {91, 6, -1}, {5000, 1, -1},
  };
  for (const auto& row : kRows) {
    const un_date_time date = DateOf(sys_days(2024y / 3 / 15) + days(row.distance));
    short weekday = 0;
    EXPECT_EQ(OZDate::Dow90(&date, &weekday, eCalWeekStartMonday), row.result) << row.distance;
    EXPECT_EQ(weekday, row.weekday) << row.distance;
  }
}

TEST(GetEndTime, ContinuesAfterMidnight) {
  constexpr struct {
    short start;
    std::uint16_t minutes;
    int end;
  } kRows[] = {
      {600, 90, 690}, {1400, 100, 60}, {1000, 440, 1440}, {1440, 1440, 1440}, {0, 0, 0},
      {2047, 10, 0},  {2047, 1441, 0}, {600, 1441, 2047}, {-1, 10, 2047},     {1440, 1, 1},
  };
  for (const auto& row : kRows) {
    stEventLen length = {.flag = 1, .minutes = 0};
    length.minutes = row.minutes & 0x7FFF;
    EXPECT_EQ(OZDate::GetEndTime(row.start, length), row.end) << row.start << " + " << row.minutes;
  }
}

}  // namespace
