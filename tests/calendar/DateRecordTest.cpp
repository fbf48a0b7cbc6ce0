#include <gtest/gtest.h>

#include <cstring>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

TEST(PackedRecords, HaveAFixedLayoutOfBits) {
  const un_date_time date = un_date_time::Of(1753, 1, 1);
  unsigned char bytes[4];
  std::memcpy(bytes, &date, sizeof(bytes));
  constexpr unsigned char kExpected[] = {0x00, 0x08, 0x91, 0x6D};
  EXPECT_EQ(std::memcmp(bytes, kExpected, sizeof(bytes)), 0);
  EXPECT_EQ(OZDate::BegOfTime.Number(), 0x6D910800U);
  EXPECT_EQ(OZDate::EndOfTime.Number(), 0x833CFDA0U);
  EXPECT_EQ(un_date_time::FromNumber(0x833CFDA0U), un_date_time::Of(2099, 12, 31, 1440));

  const st_cyc_time rule = {
      .reserved1 = 0, .cycKind = 3, .reserved2 = 0, .cycSelect = 85, .cycValue = 99};
  EXPECT_EQ(rule.Number(), 3U << 11 | 85U << 18 | 99U << 25);

  const stEventLen length = {.flag = 1, .minutes = 1440};
  std::uint16_t word = 0;
  std::memcpy(&word, &length, sizeof(word));
  EXPECT_EQ(word, 1440 << 1 | 1);
}

TEST(Clock, IsReadAtEachCallAndNotLimitedToTheCalendar) {
  FakeHost host;
  host.SetNow(2024, 2, 29, 23, 59);
  EXPECT_EQ(OZDate::CurDateTime(), un_date_time::Of(2024, 2, 29, 1439));
  host.SetNow(1700, 12, 31);  // outside the calendar
  EXPECT_EQ(OZDate::mNow, un_date_time::Of(2024, 2, 29, 1439));
  EXPECT_EQ(OZDate::CurDateTime(), un_date_time::Of(1700, 12, 31, 0));
  EXPECT_EQ(OZDate::mNow, un_date_time::Of(1700, 12, 31, 0));
}

TEST(DateRecord, KnowsMonthsAndLeapYearsOfTheWholeCalendar) {
  for (int year = 1600; year <= 2400; ++year) {
    const std::chrono::year reference(year);
    ASSERT_EQ(OZDate::LeapYear(static_cast<unsigned short>(year)), reference.is_leap() ? 1 : 0);
    for (unsigned month = 0; month < 36; ++month) {
      const std::chrono::year_month_day_last last =
          reference / std::chrono::month(month % 12 + 1) / std::chrono::last;
      ASSERT_EQ(OZDate::DaysInMonth(static_cast<unsigned short>(month),
                                    static_cast<unsigned short>(year)),
                unsigned(last.day()))
          << year << '-' << month;
    }
  }
}

TEST(DateRecord, ComparesDatesWithAndWithoutTheirTimes) {
  struct Case {
    un_date_time a, b;
    short by_date, by_time;
  };
  const Case kCases[] = {
      {un_date_time::Of(2024, 3, 15, 1), un_date_time::Of(2024, 3, 15, 0), 0, 1},
      {un_date_time::Of(2024, 3, 15, 1440), un_date_time::Of(2024, 3, 16, 0), -1, -1},
      {un_date_time::Of(0, 0, 0, 2047), un_date_time::Of(0, 0, 0, 5), 0, 1},
      {un_date_time::Of(2099, 1, 1), un_date_time::Of(1999, 12, 31), 1, 1},  // the top bit is set
      {OZDate::EndOfTime, OZDate::EndOfTime, 0, 0},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(OZDate::DateCompare(&c.a, &c.b), c.by_date) << c.a << " and " << c.b;
    EXPECT_EQ(OZDate::DateCompare(&c.b, &c.a), -c.by_date) << c.a << " and " << c.b;
    EXPECT_EQ(OZDate::DateTimeCompare(&c.a, &c.b), c.by_time) << c.a << " and " << c.b;
    EXPECT_EQ(OZDate::DateTimeCompare(&c.b, &c.a), -c.by_time) << c.a << " and " << c.b;
  }
}

}  // namespace
