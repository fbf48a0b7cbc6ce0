#include <gtest/gtest.h>

#include "support/FakeHost.h"
#include "support/Fields.h"

// docs/field-forms.md, which a test holds against the parser, has the forms. Here is what
// `ParseTime` adds to them.
namespace {

using P = OZParser;

constexpr int kNow = 570;

class TimeFields : public testing::Test {
 protected:
  TimeFields() { host_.SetNow(2026, 11, 18, 9, 30); }
  FakeHost host_;
};

TEST_F(TimeFields, MoveByIntervalsWithinTheDay) {
  constexpr short kNone = OZDate::kNoTime;
  const struct {
    short field;
    short reference;
    int subtract;
    const char* text;
    int status;
    P::eParseResult result;
    short after;
  } kCases[] = {
      {600, kNone, 0, "+30 m", 0, P::eParseInterval, 630},
      {600, kNone, 0, "-30 m", 0, P::eParseInterval, 570},
      {600, 540, 0, "30 m", 0, P::eParseInterval, 570},
      {600, 540, 1, "30 m", 0, P::eParseInterval, 510},
      {600, 540, 1, "+30 m", 0, P::eParseInterval, 630},  // its sign stands
      {600, 540, 0, "2 h", 0, P::eParseInterval, 660},
      {kNone, kNone, 0, "+30 m", 0, P::eParseInterval, kNow + 30},
      {kNone, kNone, 1, "30 m", 0, P::eParseInterval, kNow - 30},
      {1400, kNone, 0, "+2 h", 0, P::eParseInterval, 1440},
      {30, kNone, 0, "-2 h", 0, P::eParseInterval, 0},
      {30, kNone, 0, "999 h", 0, P::eParseInterval, 1440},
      {30, kNone, 0, "1.333 h", 0, P::eParseInterval, 109},
      {600, 540, 1, "noon", 0, P::eParseTime, 720},
      {kNone, kNone, 0, "now", 0, P::eParseTime, kNow},
      {600, 540, 0, "none", 0, P::eParseNone, kNone},
      {600, 540, 0, "", 0, P::eParseNone, kNone},
      {600, 540, 0, "x", -1, kOldResult, 600},
  };
  for (const auto& c : kCases) {
    short time = c.field;
    P::eParseResult result = kOldResult;
    EXPECT_EQ(P::ParseTime(&result, c.subtract, &time, c.reference, c.text, 0), c.status) << c.text;
    EXPECT_EQ(result, c.result) << c.text;
    EXPECT_EQ(time, c.after) << c.text << " from " << c.field;
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
