#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "support/Dates.h"

namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

struct Step {
  int year, month, day;
  std::int32_t count;
  char unit;
  int to_year, to_month, to_day;
  int clamped;
};

template <std::size_t kSize>
void Check(const Step (&steps)[kSize], int (*move)(un_date_time*, std::int32_t, char)) {
  for (const Step& step : steps) {
    for (const int time : {0, 777, 1440, OZDate::kNoTime}) {
      un_date_time date = un_date_time::Of(step.year, step.month, step.day, time);
      const un_date_time from = date;
      EXPECT_EQ(move(&date, step.count, step.unit), step.clamped)
          << from << " by " << step.count << step.unit;
      EXPECT_EQ(date, un_date_time::Of(step.to_year, step.to_month, step.to_day, time))
          << from << " by " << step.count << step.unit;
    }
  }
}

TEST(DateFwrd, SticksCarriesAndClamps) {
  constexpr Step kSteps[] = {
      {2023, 1, 31, 1, 'M', 2023, 2, 28, 0},
      {2024, 1, 31, 1, 'M', 2024, 2, 29, 0},
      {2024, 2, 29, 1, 'Y', 2025, 2, 28, 0},
      {2023, 11, 15, 14, 'M', 2025, 1, 15, 0},
      {2023, 12, 10, 12, 'M', 2024, 12, 10, 0},
      {2023, 12, 10, 24, 'M', 2025, 12, 10, 0},
      {2024, 1, 31, 30, 'D', 2024, 3, 1, 0},
      {1900, 1, 15, 366, 'D', 1901, 1, 16, 0},
      // A negative count of days is a position, counted from 1; weeks are multiplied first.
      {2024, 3, 1, -1, 'D', 2024, 3, 1, 0},
      {2024, 3, 1, -5, 'D', 2024, 3, 5, 0},
      {2024, 3, 1, -1, 'W', 2024, 3, 7, 0},
      {2024, 3, 1, kMin, 'D', 2099, 12, 31, 1},
      {2024, 3, 1, kMin, 'W', 2099, 12, 31, 1},
      // A day past its month's end is carried over, for months and years too far is cut.
      {2023, 2, 31, 0, 'D', 2023, 3, 3, 0},
      {2023, 2, 31, 0, 'x', 2023, 3, 3, 0},
      {2023, 2, 31, 0, 'M', 2023, 2, 28, 0},
      {2024, 3, 15, 9, 'd', 2024, 3, 15, 0},
      {2024, 3, 15, 9, 'm', 2024, 3, 15, 0},
      // Only the low 16 bits count for months and years.
      {2024, 3, 15, 65536, 'M', 2024, 3, 15, 0},
      {2024, 3, 15, 65537, 'Y', 2025, 3, 15, 0},
      {2024, 3, 15, 32767, 'M', 2099, 12, 31, 1},
      {2024, 3, 15, 32767, 'Y', 2099, 12, 31, 1},
      {2024, 3, 31, 65535, 'M', 2024, 2, 29, 0},  // -1 in 16 bits
      {2024, 3, 15, 40000, 'Y', 1753, 1, 1, 1},
      {2099, 12, 31, 0, 'D', 2099, 12, 31, 0},
      {2099, 12, 31, 1, 'D', 2099, 12, 31, 1},
      {2099, 12, 1, 1, 'M', 2099, 12, 31, 1},
      {2099, 1, 1, 1, 'Y', 2099, 12, 31, 1},
      {1753, 1, 1, kMax, 'W', 2099, 12, 31, 1},
      {0, 0, 0, 5, 'D', 0, 0, 0, 0},  // no date
  };
  Check(kSteps, OZDate::DateFwrd);
}

TEST(DateBack, SticksBorrowsAndClamps) {
  constexpr Step kSteps[] = {
      {2024, 3, 31, 1, 'M', 2024, 2, 29, 0},
      {2024, 2, 29, 1, 'Y', 2023, 2, 28, 0},
      {2024, 3, 15, 3, 'M', 2023, 12, 15, 0},
      {2024, 3, 15, 15, 'M', 2022, 12, 15, 0},
      {2024, 6, 15, 17, 'M', 2023, 1, 15, 0},
      {2024, 12, 31, 12, 'M', 2023, 12, 31, 0},
      {2024, 12, 15, 24, 'M', 2022, 12, 15, 0},
      {2024, 3, 1, 1, 'D', 2024, 2, 29, 0},
      {2099, 12, 31, 4681, 'W', 2010, 4, 15, 0},
      // Unlike forward, every unit cuts a day past its month's end, and nothing is rewritten.
      {2023, 2, 31, 1, 'D', 2023, 2, 28, 0},
      {2023, 2, 31, 0, 'x', 2023, 2, 28, 0},
      {2023, 2, 31, 5, 'D', 2023, 2, 26, 0},
      {2023, 2, 31, 31, 'D', 2023, 1, 31, 0},
      {1000, 1, 1, kMin, 'W', 1753, 1, 1, 1},
      {2024, 3, 15, kMin, 'D', 2024, 3, 31, 0},
      {2024, 3, 15, 40000, 'Y', 2099, 12, 31, 1},
      {2024, 3, 15, 65537, 'M', 2024, 2, 15, 0},
      {1753, 1, 1, 1, 'D', 1753, 1, 1, 1},
      {1753, 1, 2, 1, 'M', 1753, 1, 1, 1},
      {1753, 3, 15, 1, 'Y', 1753, 1, 1, 1},
      {1753, 1, 1, 0, 'D', 1753, 1, 1, 0},
      {2099, 12, 31, kMax, 'D', 1753, 1, 1, 1},
      {2099, 12, 31, kMax, 'W', 1753, 1, 1, 1},
      {2099, 12, 31, 32767, 'Y', 1753, 1, 1, 1},
      {0, 0, 0, 5, 'M', 0, 0, 0, 0},
  };
  Check(kSteps, OZDate::DateBack);
}

// The date some months away, a day past the month's end becoming its last.
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
    const struct {
      char unit;
      int count;
      sys_days forward;
      sys_days back;
    } moves[] = {
        {'D', any_day(random) % 800, {}, {}},  {'D', any_day(random), {}, {}},
        {'W', any_day(random) % 4682, {}, {}}, {'M', any_day(random) % 4200, {}, {}},
        {'Y', any_day(random) % 360, {}, {}},
    };
    for (auto [unit, count, forward, back] : moves) {
      const bool in_days = unit == 'D' || unit == 'W';
      const int amount = unit == 'W' ? count * 7 : unit == 'Y' ? count * 12 : count;
      forward = in_days ? day + days(amount) : AddMonths(day, amount);
      back = in_days ? day - days(amount) : AddMonths(day, -amount);

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
