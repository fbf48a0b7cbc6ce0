#include <gtest/gtest.h>

#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

constexpr int kTime = 600;  // of the field
constexpr int kNowTime = 570;

class DateFields : public testing::Test {
 protected:
  DateFields() { host_.SetNow(2026, 11, 18, 9, 30); }  // a Wednesday

  // What a field that holds 31 January 2026 becomes, or no date if the text is rejected.
  un_date_time Date(const std::string& text, eCalWeekStart week_start = eCalWeekStartSunday,
                    int day_position = 1, P::eParseResult expected = P::eParseDate) {
    const un_date_time old_date = un_date_time::Of(2026, 1, 31, kTime);
    un_date_time date = old_date;
    P::eParseResult result = kOldResult;
    const int status = P::ParseDate(&result, 0, &date, text.c_str(), week_start, day_position);
    EXPECT_EQ(result, status == 0 ? expected : kOldResult) << text;
    EXPECT_EQ(date.time, static_cast<unsigned>(kTime)) << text;
    if (status != 0) {
      EXPECT_EQ(status, -1) << text;
      EXPECT_EQ(date, old_date) << text;
      return {};
    }
    return date;
  }

  FakeHost host_;
};

TEST_F(DateFields, AcceptWhatPeopleWrite) {
  const struct {
    const char* text;
    int year, month, day;
  } kCases[] = {
      // Words and weekdays.
      {"today", 2026, 11, 18},
      {"tod", 2026, 11, 18},
      {"tomorrow", 2026, 11, 19},
      {"tom", 2026, 11, 19},
      {"yesterday", 2026, 11, 17},
      {"YES", 2026, 11, 17},
      {"fri", 2026, 11, 20},
      {"f", 2026, 11, 20},
      {"wed", 2026, 11, 25},
      {"w", 2026, 11, 25},
      {"this mon", 2026, 11, 16},
      {"t mon", 2026, 11, 16},
      {"this fri", 2026, 11, 20},
      {"next mon", 2026, 11, 23},
      {"n mon", 2026, 11, 23},
      {"last mon", 2026, 11, 9},
      {"l mon", 2026, 11, 9},
      {"this", 2026, 11, 19},
      {"th", 2026, 11, 19},
      {"this wed", 2026, 11, 18},
      {"t wed", 2026, 11, 18},
      {"next wed", 2026, 11, 25},
      {"next sun", 2026, 11, 22},
      {"last sun", 2026, 11, 8},
      {"mark", 2026, 11, 23},
      {"ma", 2026, 11, 23},
      {"foo", 2026, 11, 20},
      {"today 5", 2026, 11, 18},
      {"tomorrow,", 2026, 11, 19},
      {"fri x y z", 2026, 11, 20},
      // Numbers.
      {"3/5", 2027, 3, 5},
      {"3-5", 2027, 3, 5},
      {"3.5", 2027, 3, 5},
      {"3,5", 2027, 3, 5},
      {"3 5", 2027, 3, 5},
      {"3/5/98", 1998, 3, 5},
      {"3/5/1998", 1998, 3, 5},
      {"11/18", 2026, 11, 18},
      {"2/16", 2027, 2, 16},
      {"8/20", 2026, 8, 20},
      {"8/19", 2027, 8, 19},
      {"12/31", 2026, 12, 31},
      {"1/1", 2027, 1, 1},
      {"3/5/76", 2076, 3, 5},
      {"3/5/77", 1977, 3, 5},
      {"3/5/9", 2009, 3, 5},
      {"3/5/", 2027, 3, 5},
      {"  3/5  ", 2027, 3, 5},
      {"1/1/1753", 1753, 1, 1},
      {"12/31/2099", 2099, 12, 31},
      {"2/29/2000", 2000, 2, 29},
      // Names of months, and weekdays in front.
      {"jan 5", 2027, 1, 5},
      {"5 jan", 2027, 1, 5},
      {"january 5", 2027, 1, 5},
      {"jan 5 99", 1999, 1, 5},
      {"5-jan-99", 1999, 1, 5},
      {"january 5, 1999", 1999, 1, 5},
      {"uar 5", 2027, 1, 5},
      {"ber 5", 2026, 9, 5},
      {"5 jan 5", 2005, 1, 5},
      {"5jan99", 1999, 1, 5},
      {"mon 3/5", 2027, 3, 5},
      {"wed, jan 5, 1999", 1999, 1, 5},
      {"5 dec", 2026, 12, 5},
      {"5 mar", 2027, 3, 5},
      {"5 may", 2027, 5, 5},
      // Amounts from today.
      {"3 d", 2026, 11, 21},
      {"2 w", 2026, 12, 2},
      {"3 m", 2027, 2, 18},
      {"3 mo", 2027, 2, 18},
      {"3 mth", 2027, 2, 18},
      {"1 min", 2026, 12, 18},
      {"5 wed", 2026, 12, 23},
      {"5 mon", 2027, 4, 18},
      {"0 d", 2026, 11, 18},
      {"1.5 d", 2026, 11, 19},
      {"999 m", 2099, 12, 31},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Date(c.text), un_date_time::Of(c.year, c.month, c.day, kTime)) << c.text;
  }
}

TEST_F(DateFields, CountSignedAmountsFromTheFieldsDate) {
  const struct {
    const char* text;
    int year, month, day;
  } kCases[] = {{"+3 d", 2026, 2, 3},  {"-3 d", 2026, 1, 28}, {"-2 w", 2026, 1, 17},
                {"+1 m", 2026, 2, 28}, {"+0 d", 2026, 1, 31}, {"- 1 mo", 2025, 12, 31}};
  for (const auto& c : kCases) {
    EXPECT_EQ(Date(c.text, eCalWeekStartSunday, 1, P::eParseInterval),
              un_date_time::Of(c.year, c.month, c.day, kTime))
        << c.text;
  }
  un_date_time empty = un_date_time::Of(0, 0, 0, OZDate::kNoTime);
  P::eParseResult result = kOldResult;
  EXPECT_EQ(P::ParseDate(&result, 0, &empty, "+3 d", eCalWeekStartSunday, 1), 0);
  EXPECT_EQ(result, P::eParseInterval);
  EXPECT_EQ(empty, un_date_time::Of(2026, 11, 21, OZDate::kNoTime));
}

TEST_F(DateFields, FollowTheWeekAndTheDayPosition) {
  const struct {
    const char* text;
    eCalWeekStart week_start;
    int day_position;
    int year, month, day;
  } kCases[] = {
      {"this sun", eCalWeekStartSunday, 1, 2026, 11, 15},
      {"this sun", eCalWeekStartMonday, 1, 2026, 11, 22},
      {"next sun", eCalWeekStartMonday, 1, 2026, 11, 29},
      {"last sun", eCalWeekStartMonday, 1, 2026, 11, 15},
      {"3/5", eCalWeekStartSunday, 0, 2027, 5, 3},
      {"13/1", eCalWeekStartSunday, 0, 2027, 1, 13},
      {"jan 5", eCalWeekStartSunday, 0, 2027, 1, 5},
      {"12/31", eCalWeekStartSunday, 0, 0, 0, 0},
  };
  for (const auto& c : kCases) {
    const un_date_time expected = un_date_time::Of(c.year, c.month, c.day, c.year == 0 ? 0 : kTime);
    EXPECT_EQ(Date(c.text, c.week_start, c.day_position), expected) << c.text;
  }
}

TEST_F(DateFields, RejectWhatIsNoDate) {
  constexpr const char* kTexts[] = {
      "jan",     "may",       "mar",      "last",     "next",         "t",       "n",
      "l",       "to",        "ye",       "s",        "se",           "now",     "0",
      "5",       "-3",        "+5",       "mon 5",    "next mon 3/5", "this 5",  "tom 5",
      "yes 5",   "3:5",       "3;5",      "3'5",      "today:5",      "12:30",   "1 2 3 4",
      "3/5/076", "3/5/12345", "3/5/1752", "3/5/2100", "2/30/2000",    "4/31",    "0/1",
      "1/0",     "13/1",      "2/29",     "5 6 jan",  "jan x",        "jan jan", "3/32",
      "jan 5th", "1 h",       "1 y",      "-tom",     "fri 3",        "x",       "3/",
      "mon:tue", "3/5/9x",
  };
  for (const char* text : kTexts) EXPECT_EQ(Date(text), un_date_time{}) << text;
  EXPECT_EQ(Parse("", P::eEditDate).status, -1);  // the none bit is clear
  EXPECT_EQ(Parse("No", P::eEditDate).status, -1);
}

TEST_F(DateFields, GuessTheYearFromTheClock) {
  host_.SetNow(2026, 1, 5);
  EXPECT_EQ(Date("12/28"), un_date_time::Of(2025, 12, 28, kTime));
  EXPECT_EQ(Date("10/7"), un_date_time::Of(2025, 10, 7, kTime));  // 90 days ago
  EXPECT_EQ(Date("10/6"), un_date_time::Of(2026, 10, 6, kTime));
  host_.SetNow(2028, 1, 5);
  EXPECT_EQ(Date("2/29"), un_date_time::Of(2028, 2, 29, kTime));
  host_.SetNow(2099, 12, 31);
  EXPECT_EQ(Date("1/5"), un_date_time{});  // in a year behind the calendar
  EXPECT_EQ(Date("tom"), un_date_time::Of(2099, 12, 31, kTime));
}

TEST_F(DateFields, ClearOrSetToTodayForNoValue) {
  for (const char* text : {"", "  ", "no", "NONE"}) {
    for (const int clears : {0, 1}) {
      un_date_time date = un_date_time::Of(2026, 1, 31, kTime);
      P::eParseResult result = kOldResult;
      EXPECT_EQ(P::ParseDate(&result, clears, &date, text, eCalWeekStartSunday, 1), 0);
      EXPECT_EQ(result, P::eParseNone);
      EXPECT_EQ(date, clears != 0 ? un_date_time::Of(0, 0, 0, kTime)
                                  : un_date_time::Of(2026, 11, 18, kTime))
          << text;
    }
  }
}

TEST_F(DateFields, GiveTheTimeOfNowInACombinedField) {
  const struct {
    const char* text;
    int year, month, day;
  } kCases[] = {{"today", 2026, 11, 18}, {"mon", 2026, 11, 23}, {"3/5", 2027, 3, 5},
                {"9 aug", 2027, 8, 9},   {"3 5", 2027, 3, 5},   {"12 mar", 2027, 3, 12}};
  for (const auto& c : kCases) {
    const Parsed parsed = Parse(c.text, P::eEditDateTimeTI);
    EXPECT_EQ(parsed.result, P::eParseDate) << c.text;
    EXPECT_EQ(parsed.As<un_date_time>(), un_date_time::Of(c.year, c.month, c.day, kNowTime))
        << c.text;
  }
}

TEST_F(DateFields, ReadBackWhatFormatDateWrites) {
  using std::chrono::days;
  for (const char* pattern : {"M/d/yy", "d/M/yy"}) {
    host_.short_date = pattern;
    for (auto day = kFirstDay; day <= kLastDay; day += days(7)) {
      const un_date_time date = DateOf(day, kTime);
      char text[17];
      OZDate::FormatDate(&date, text, sizeof(text), 2);
      ASSERT_EQ(Date(text), date) << text;
      OZDate::FormatDate(&date, text, sizeof(text), 3);
      ASSERT_EQ(Date(text), date) << text;
    }
  }
}

}  // namespace
