#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <utility>

#include "support/Dates.h"

namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;

using Move = int (*)(un_date_time*, std::int32_t, char);

// The special cases, which plain counting does not have. A row: the date, the count, its unit, the
// date after the move, the result.
constexpr char kForward[] = R"(
  a negative count of days is a position, counted from 1; weeks are multiplied first:
    2024-03-01 -1 D 2024-03-01 0    2024-03-01 -5 D 2024-03-05 0    2024-03-01 -1 W 2024-03-07 0
    2024-03-01 -2147483648 D 2099-12-31 1    2024-03-01 -2147483648 W 2099-12-31 1
  a day past its month's end counts on into the next month; with months and years it is cut:
    2023-02-31 0 D 2023-03-03 0    2023-02-31 0 x 2023-03-03 0    2023-02-31 0 M 2023-02-28 0
    2024-03-15 9 d 2024-03-15 0    2024-03-15 9 m 2024-03-15 0
  only the low 16 bits count for months and years:
    2024-03-15 65536 M 2024-03-15 0    2024-03-15 65537 Y 2025-03-15 0
    2024-03-31 65535 M 2024-02-29 0    2024-03-15 40000 Y 1753-01-01 1
    2024-03-15 32767 M 2099-12-31 1    2024-03-15 32767 Y 2099-12-31 1
  at the end of the calendar, and without a date:
    2099-12-31 0 D 2099-12-31 0    2099-12-31 1 D 2099-12-31 1    2099-12-01 1 M 2099-12-31 1
    2099-01-01 1 Y 2099-12-31 1    1753-01-01 2147483647 W 2099-12-31 1    0-0-0 5 D 0-0-0 0 )";

constexpr char kBack[] = R"(
  unlike forward, every unit cuts a day past its month's end; a negative count stays:
    2023-02-31 1 D 2023-02-28 0    2023-02-31 0 x 2023-02-28 0    2023-02-31 5 D 2023-02-26 0
    2023-02-31 31 D 2023-01-31 0    2024-03-15 -2147483648 D 2024-03-31 0
    1000-01-01 -2147483648 W 1753-01-01 1
  only the low 16 bits count for months and years:
    2024-03-15 40000 Y 2099-12-31 1    2024-03-15 65537 M 2024-02-15 0
    2099-12-31 32767 Y 1753-01-01 1
  at the start of the calendar, and without a date:
    1753-01-01 0 D 1753-01-01 0    1753-01-01 1 D 1753-01-01 1    1753-01-02 1 M 1753-01-01 1
    1753-03-15 1 Y 1753-01-01 1    2099-12-31 2147483647 D 1753-01-01 1
    2099-12-31 2147483647 W 1753-01-01 1    0-0-0 5 M 0-0-0 0
  by 0 months and years as by 0 days, past both ends of the calendar:
    1752-12-31 0 D 1753-01-01 1    1752-12-31 0 M 1753-01-01 1    1752-12-31 0 Y 1753-01-01 1
    2100-02-31 0 D 2100-02-28 0    2100-02-31 0 M 2100-02-28 0    2100-01-01 65536 Y 2100-01-01 0)";

void Check(const char* rows, Move move) {
  std::istringstream lines(rows);
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with(':')) continue;
    std::istringstream row(line);
    un_date_time from = {}, to = {};
    std::int32_t count = 0;
    char unit = '\0';
    for (int clamped = 0; row >> from >> count >> unit >> to >> clamped;) {
      for (const unsigned time : {0U, 777U, 1440U, 2047U}) {
        from.time = to.time = time & 0x7FF;
        un_date_time date = from;
        EXPECT_EQ(move(&date, count, unit), clamped) << from << " by " << count << unit;
        EXPECT_EQ(date, to) << from << " by " << count << unit;
      }
    }
    EXPECT_TRUE(row.eof()) << line;
  }
}

TEST(Stepping, FollowsTheRulesForSpecialCases) {
  Check(kForward, OZDate::DateFwrd);
  Check(kBack, OZDate::DateBack);
}

// Returns a date moved by months. A day past the end of the month becomes its last day.
sys_days AddMonths(sys_days from, int count) {
  const std::chrono::year_month_day ymd(from);
  const std::chrono::year_month target = ymd.year() / ymd.month() + months(count);
  return target / std::min(ymd.day(), (target / std::chrono::last).day());
}

un_date_time Clamped(sys_days day, int time) {
  return DateOf(std::clamp(day, kFirstDay, kLastDay), time);
}

TEST(Stepping, AgreesWithPlainCountingFromEveryDay) {
  std::minstd_rand random(20240315);
  std::uniform_int_distribution<int> any_day(0, static_cast<int>((kLastDay - kFirstDay).count()));
  for (sys_days day = kFirstDay; day <= kLastDay; day += days(1)) {
    const int time = static_cast<int>(random() % 2048);
    const un_date_time date = DateOf(day, time);
    const std::pair<char, int> moves[] = {{'D', any_day(random) % 800},
                                          {'D', any_day(random)},
                                          {'W', any_day(random) % 4682},
                                          {'M', any_day(random) % 4200},
                                          {'Y', any_day(random) % 360}};
    for (const auto& [unit, count] : moves) {
      const bool in_days = unit == 'D' || unit == 'W';
      const int amount = unit == 'W' ? count * 7 : unit == 'Y' ? count * 12 : count;
      const sys_days forward = in_days ? day + days(amount) : AddMonths(day, amount);
      const sys_days back = in_days ? day - days(amount) : AddMonths(day, -amount);

      un_date_time moved = date;
      ASSERT_EQ(OZDate::DateFwrd(&moved, count, unit), forward > kLastDay ? 1 : 0)
          << date << " + " << count << unit;
      ASSERT_EQ(moved, Clamped(forward, time)) << date << " + " << count << unit;
      if (in_days && forward <= kLastDay) {
        ASSERT_EQ(OZDate::DateBack(&moved, count, unit), 0);
        ASSERT_EQ(moved, date) << "there and back by " << count << unit;
      }
      moved = date;
      ASSERT_EQ(OZDate::DateBack(&moved, count, unit), back < kFirstDay ? 1 : 0)
          << date << " - " << count << unit;
      ASSERT_EQ(moved, Clamped(back, time)) << date << " - " << count << unit;
    }
  }
}

}  // namespace
