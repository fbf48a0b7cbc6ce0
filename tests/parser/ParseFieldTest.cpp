// What the pages of the parser do not tell.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

class ParseFieldTest : public testing::Test {
 protected:
  ParseFieldTest() { host_.SetNow(2026, 11, 18, 9, 30); }
  FakeHost host_;
};

TEST_F(ParseFieldTest, AcceptsAnythingForAnEditTypeThatNamesNoField) {
  for (const int type : {1, 6, 10, -1, 1000000}) {
    const Parsed parsed = Parse("whatever", static_cast<P::eEditType>(type));
    EXPECT_EQ(parsed.status, 0);
    EXPECT_EQ(parsed.result, P::eParseUnset);
    EXPECT_TRUE(parsed.Untouched());
  }
}

TEST_F(ParseFieldTest, WritesNothingWithoutADestination) {
  const struct {
    P::eEditType type;
    const char* text;
    int status;
  } kRows[] = {{P::eEditInt, "12", 0},  {P::eEditInt, "x", -1}, {P::eEditDate, "+3 d", 0},
               {P::eEditDate, "x", -1}, {P::eEditTime, "9", 0}, {P::eEditDateTimeTI, "2 h", 0}};
  for (const auto& row : kRows) {
    P::eParseResult result = kOldResult;
    EXPECT_EQ(P::ParseField(&result, 0, nullptr, 0, row.text, row.type, nullptr,
                            eCalWeekStartSunday, 0, 1),
              row.status)
        << row.text;
    EXPECT_EQ(result, kOldResult) << row.text;
  }
}

TEST_F(ParseFieldTest, LeavesADateFieldWithoutADateEmpty) {
  const un_date_time empty = un_date_time::Of(0, 0, 0, OZDate::kNoTime);
  EXPECT_EQ(Parse("+3 d", P::eEditDate, {}, &empty).As<un_date_time>().Number(), empty.Number());
}

TEST_F(ParseFieldTest, ReadsTheClockOncePerParse) {
  for (const char* text : {"12", "3/5", "8/19", "fri", "+3 d", "now", "x y z", "2/29"}) {
    for (const P::eEditType type : {P::eEditInt, P::eEditTime, P::eEditDate, P::eEditDateTimeTI}) {
      host_.clock_reads = 0;
      Parse(text, type);
      EXPECT_EQ(host_.clock_reads, 1) << text << " as " << type;
    }
  }
}

TEST_F(ParseFieldTest, RejectsTextsOfMoreThan32767Characters) {
  for (const char letter : {' ', '0'}) {
    EXPECT_EQ(Parse(std::string(32767, letter), P::eEditInt).status, 0) << letter;
    EXPECT_EQ(Parse(std::string(32768, letter), P::eEditInt).status, -1) << letter;
  }
}

TEST_F(ParseFieldTest, ParseBufferChangesTheCallersText) {
  const stCurrencyFormat money = {"$", '.'};
  char text[] = "  $12.5 ";
  P::eParseResult result = kOldResult;
  std::int32_t value = 0;
  EXPECT_EQ(
      P::parseBuffer(&result, 0, &value, 0, text, P::eEditReal, &money, eCalWeekStartSunday, 0, 1),
      0);
  EXPECT_EQ(value, 12500);
  EXPECT_STREQ(text, "12.5");
}

TEST(divchk, ChecksTheLastSplitTextUpToAnIndex) {
  char tokens[P::kTokens][P::kTokenSize];
  P::seperateText("1.2/3", tokens);
  ST_TIME_RETURN_VAL interval;
  P::ParseRealTI(&interval, "1:30");  // splits a text, too, but for itself
  EXPECT_EQ(P::divchk(1, 0), 0);
  EXPECT_EQ(P::divchk(1, 1), 1);
  EXPECT_EQ(P::divchk(2, 100), 0);
}

}  // namespace
