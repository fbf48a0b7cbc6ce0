// What the pages of the parser do not tell.
#include <gtest/gtest.h>

#include <string>

#include "support/Fields.h"

namespace {

using P = OZParser;

TEST(ParseField, AcceptsAnythingForAnEditTypeThatNamesNoField) {
  for (const int type : {1, 6, 10, -1, 1000000}) {
    const Parsed parsed = Parse("whatever", static_cast<P::eEditType>(type));
    EXPECT_EQ(parsed.status, 0);
    EXPECT_EQ(parsed.result, P::eParseUnset);
    EXPECT_TRUE(parsed.Untouched());
  }
}

TEST(ParseField, LeavesADateFieldWithoutADateEmpty) {
  const un_date_time empty = un_date_time::Of(0, 0, 0, OZDate::kNoTime);
  EXPECT_TRUE(Parse("+3 d", P::eEditDate, {}, &empty).Untouched());
}

TEST(ParseField, RejectsTextsOfMoreThan32767Characters) {
  for (const char letter : {' ', '0'}) {
    EXPECT_EQ(Parse(std::string(32767, letter), P::eEditInt).status, 0) << letter;
    EXPECT_EQ(Parse(std::string(32768, letter), P::eEditInt).status, -1) << letter;
  }
}

TEST(ParseField, ParseBufferChangesTheCallersText) {
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
