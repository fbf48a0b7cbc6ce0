#include <gtest/gtest.h>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr sys_days kBaseDay = std::chrono::year(1984) / 1 / 1;

TEST(DayOfWeek, AgreesWithPlainCountingOnEveryDay) {
  for (sys_days day = kFirstDay; day <= kLastDay; day += days(1)) {
    const un_date_time date = DateOf(day, OZDate::kNoTime);
    const std::chrono::weekday weekday(day);
    const int sunday_first = static_cast<int>(weekday.c_encoding()) + 1;
    const int monday_first = static_cast<int>(weekday.iso_encoding());
    std::int32_t number = 0;
    ASSERT_EQ(OZDate::DayOfWeek(&date, &number, eCalWeekStartSunday, 0), sunday_first) << date;
    ASSERT_EQ(number, (day - kBaseDay).count()) << date;
    ASSERT_EQ(OZDate::DayOfWeek(&date, &number, eCalWeekStartMonday, 0), monday_first) << date;
    ASSERT_EQ(number, (day - kBaseDay).count()) << date;
    ASSERT_EQ(OZDate::DayOfWeek(&date, &number, eCalWeekStartMonday, 2), sunday_first) << date;
    ASSERT_EQ(OZDate::DayOfWeek(&date, &number, static_cast<eCalWeekStart>(5), 0), sunday_first);
    ASSERT_EQ(OZDate::IsWeekOdd(&date, eCalWeekStartMonday),
              (day - kBaseDay).count() / 7 % 2 == 0 ? 0 : 1)
        << date;
  }
}

TEST(IsWeekOdd, CountsTheBaseWeekTwice) {
  // For the days from 18 December 1983 to 8 January 1984.
  constexpr std::string_view kOdd = "0111111100000000000001";
  for (std::size_t i = 0; i < kOdd.size(); ++i) {
    const un_date_time date = DateOf(kBaseDay + days(static_cast<int>(i) - 14));
    EXPECT_EQ(OZDate::IsWeekOdd(&date, eCalWeekStartSunday), kOdd[i] - '0') << date;
  }
}

TEST(IsWeekend, AcceptsARangeThatCrossesTheEndOfTheWeek) {
  constexpr struct {
    unsigned char first, last;
    const char* weekend;  // from Sunday to Saturday
  } kCases[] = {{1, 5, "1000001"}, {6, 0, "0111110"}, {3, 3, "1110111"}, {0, 6, "0000000"}};
  for (const auto& c : kCases) {
    for (int day = 0; day < 7; ++day) {
      const un_date_time date = un_date_time::Of(2024, 3, 10 + day);  // 10 March is a Sunday
      EXPECT_EQ(OZDate::IsWeekend(&date, eCalWeekStartMonday, c.first, c.last),
                c.weekend[day] - '0')
          << date << " with " << int{c.first} << " to " << int{c.last};
    }
  }
}

TEST(Dow90, CountsNinetyDaysAsNear) {
  FakeHost host;
  host.SetNow(2024, 3, 15);
  const sys_days today = std::chrono::year(2024) / 3 / 15;
  for (const int distance : {-5000, -91, -90, 0, 90, 91, 5000}) {
    const un_date_time date = DateOf(today + days(distance));
    short weekday = 0;
    EXPECT_EQ(OZDate::Dow90(&date, &weekday, eCalWeekStartMonday), distance < -90  ? 1
                                                                   : distance > 90 ? -1
                                                                                   : 0)
        << distance;
    EXPECT_EQ(weekday, std::chrono::weekday(today + days(distance)).c_encoding() + 1);
  }
}

TEST(GetEndTime, ContinuesAfterMidnight) {
  constexpr struct {
    short start;
    int minutes, end;
  } kCases[] = {
      {600, 90, 690}, {1400, 100, 60}, {1000, 440, 1440}, {1440, 1440, 1440}, {0, 0, 0},
      {2047, 10, 0},  {2047, 1441, 0}, {600, 1441, 2047}, {-1, 10, 2047},     {1440, 1, 1},
  };
  for (const auto& c : kCases) {
    const stEventLen length = {.flag = 1,
                               .minutes = static_cast<std::uint16_t>(c.minutes & 0x7FFF)};
    EXPECT_EQ(OZDate::GetEndTime(c.start, length), c.end) << c.start << " + " << c.minutes;
  }
}

}  // namespace
