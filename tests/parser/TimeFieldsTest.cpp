// What `ParseTime` adds to the forms in docs/field-forms.md. In all tests it is 9:30.
#include <gtest/gtest.h>

#include <string>

#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

class TimeFields : public testing::Test {
 protected:
  TimeFields() { host_.SetNow(2026, 11, 18, 9, 30); }
  FakeHost host_;
};

TEST_F(TimeFields, MoveByIntervalsWithinTheDay) {
  constexpr short kNone = OZDate::kNoTime;
  const struct {
    short field, reference;
    int subtract;
    const char* text;
    short after;
  } kCases[] = {{600, kNone, 0, "+30 m", 630},   {600, kNone, 0, "-30 m", 570},
                {600, 540, 0, "30 m", 570},      {600, 540, 1, "30 m", 510},
                {600, 540, 1, "+30 m", 630},     {600, 540, 0, "2 h", 660},
                {kNone, kNone, 0, "+30 m", 600}, {kNone, kNone, 1, "30 m", 540},
                {1400, kNone, 0, "+2 h", 1440},  {30, kNone, 0, "-2 h", 0},
                {30, kNone, 0, "999 h", 1440},   {30, kNone, 0, "1.333 h", 109},
                {600, 540, 1, "noon", 720},      {kNone, kNone, 0, "now", 570},
                {600, 540, 0, "none", kNone},    {600, 540, 0, "", kNone},
                {600, 540, 0, "x", 600}};
  for (const auto& c : kCases) {
    short time = c.field;
    P::eParseResult result = kOldResult;
    const std::string text = c.text;
    const int status = P::ParseTime(&result, c.subtract, &time, c.reference, c.text, 0);
    EXPECT_EQ(status, text == "x" ? -1 : 0);
    EXPECT_EQ(result, status != 0                                     ? kOldResult
                      : text.find_first_of("0123456789") != text.npos ? P::eParseInterval
                      : c.after == kNone                              ? P::eParseNone
                                                                      : P::eParseTime)
        << text;
    EXPECT_EQ(time, c.after) << text << " from " << c.field;
  }
}

TEST_F(TimeFields, ReadBackWhatFormatTimeWrites) {
  for (const int clock : {0, 1}) {
    host_.clock_24hour = clock;
    for (int minutes = 0; minutes < OZDate::kEndOfDay; ++minutes) {
      char text[8];
      OZDate::FormatTime(minutes, text, 0, 0);
      short time = 0;
      P::eParseResult result = kOldResult;
      ASSERT_EQ(P::ParseTime(&result, 0, &time, OZDate::kNoTime, text, clock), 0) << text;
      ASSERT_EQ(time, minutes) << text;
    }
  }
}

}  // namespace
