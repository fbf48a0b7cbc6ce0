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

TEST_F(ParseFieldTest, ReadsTheClockOncePerParse) {
  for (const char* text : {"12", "3/5", "8/19", "fri", "+3 d", "now", "x y z", "2/29"}) {
    for (const P::eEditType type : {P::eEditInt, P::eEditTime, P::eEditDate, P::eEditDateTimeTI}) {
      host_.clock_reads = 0;
      Parse(text, type);
      EXPECT_EQ(host_.clock_reads, 1) << text << " as " << type;
    }
  }
}

TEST_F(ParseFieldTest, RejectsWhatIsTooLong) {
  const std::string zeros(20, '0');
  const std::string word(20, 'm');  // its first letter names Monday
  const struct {
    P::eEditType type;
    std::vector<std::string> accepted, rejected;
  } kRows[] = {
      {P::eEditInt,
       {std::string(32767, ' '), std::string(32767, '0')},
       {std::string(32768, ' '), std::string(32768, '0')}},
      // The text after the unit is ignored.
      {P::eEditRealTI,
       {"1.0000000001 h", "1.5 h " + word},
       {zeros, zeros + "5 h", "1." + zeros + " h", "1.5 d" + word}},
      {P::eEditIntTI, {std::string(19, '0')}, {zeros, "5 " + word}},
      {P::eEditDate, {"today " + word}, {word, "next " + word, "jan 5 " + word, "9999999999999/5"}},
      {P::eEditTime,
       {"9:30 p" + word + " x", "9 pm " + word},
       {"9 p" + word, "9:30 p" + word, "1.5 h" + word + " 5", "99999999999 pm", word}},
      {P::eEditDateTimeTI, {}, {"9:30 p" + word}},
  };
  for (const auto& row : kRows) {
    for (const std::string& text : row.accepted) {
      EXPECT_EQ(Parse(text, row.type).status, 0) << text.substr(0, 60) << " as " << row.type;
    }
    for (const std::string& text : row.rejected) {
      EXPECT_EQ(Parse(text, row.type).status, -1) << text.substr(0, 60) << " as " << row.type;
    }
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

}  // namespace
