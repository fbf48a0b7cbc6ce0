// What `ParseDate` adds to the forms in docs/field-forms.md.
#include <gtest/gtest.h>

#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

constexpr int kTime = 600;  // the time in the field, which a date does not change

class DateFields : public testing::Test {
 protected:
  DateFields() { host_.SetNow(2026, 11, 18, 9, 30); }  // a Wednesday

  // Parses a text in a field that holds 31 January 2026. Returns no date if the text is rejected.
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

TEST_F(DateFields, UseWeekStartDayPositionAndTheDateInTheField) {
  EXPECT_EQ(Date("this sun"), un_date_time::Of(2026, 11, 15, kTime));
  EXPECT_EQ(Date("this sun", eCalWeekStartMonday), un_date_time::Of(2026, 11, 22, kTime));
  EXPECT_EQ(Date("3/5", eCalWeekStartSunday, 0), un_date_time::Of(2027, 5, 3, kTime));
  EXPECT_EQ(Date("12/31", eCalWeekStartSunday, 0), un_date_time());
  EXPECT_EQ(Date("+1 m", eCalWeekStartSunday, 1, P::eParseInterval),
            un_date_time::Of(2026, 2, 28, kTime));
  un_date_time empty = un_date_time::Of(0, 0, 0, OZDate::kNoTime);
  EXPECT_EQ(Parse("+3 d", P::eEditDate, {}, &empty).As<un_date_time>(), empty);
  P::eParseResult result = kOldResult;
  EXPECT_EQ(P::ParseDate(&result, 0, &empty, "+3 d", eCalWeekStartSunday, 1), 0);
  EXPECT_EQ(result, P::eParseInterval);
  EXPECT_EQ(empty, un_date_time::Of(2026, 11, 21, OZDate::kNoTime));
}

TEST_F(DateFields, AreClearedOrSetToTodayByNoValue) {
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

TEST_F(DateFields, ReadBackWhatFormatDateWrites) {
  for (auto day = kFirstDay; day <= kLastDay; day += std::chrono::days(7)) {
    const un_date_time date = DateOf(day, kTime);
    host_.short_date = date.day % 2 == 0 ? "M/d/yy" : "d/M/yy";
    for (const int form : {2, 3}) {
      char text[17];
      OZDate::FormatDate(&date, text, sizeof(text), form);
      ASSERT_EQ(Date(text), date) << text;
    }
  }
}

}  // namespace
