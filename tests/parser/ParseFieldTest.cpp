#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orzcore/frame.h"
#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

constexpr P::eEditType kFields[] = {P::eEditInt,  P::eEditRealTI,    P::eEditTime,
                                    P::eEditDate, P::eEditIntTI,     P::eEditDateTimeTI,
                                    P::eEditReal, P::eEditHoursMinTI};

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
  } kCases[] = {{P::eEditInt, "12", 0},  {P::eEditInt, "x", -1}, {P::eEditDate, "+3 d", 0},
                {P::eEditDate, "x", -1}, {P::eEditTime, "9", 0}, {P::eEditDateTimeTI, "2 h", 0}};
  for (const auto& c : kCases) {
    P::eParseResult result = kOldResult;
    EXPECT_EQ(
        P::ParseField(&result, 0, nullptr, 0, c.text, c.type, nullptr, eCalWeekStartSunday, 0, 1),
        c.status)
        << c.text;
    EXPECT_EQ(result, kOldResult) << c.text;
  }
}

TEST_F(ParseFieldTest, ReadsTheClockOncePerParse) {
  for (const char* text : {"12", "3/5", "8/19", "fri", "+3 d", "now", "x y z", "2/29"}) {
    for (const P::eEditType type : kFields) {
      host_.clock_reads = 0;
      Parse(text, type);
      EXPECT_EQ(host_.clock_reads, 1) << text << " as " << type;
    }
  }
}

TEST_F(ParseFieldTest, RejectsWhatIsTooLong) {
  const struct {
    P::eEditType type;
    std::vector<std::string> accepted, rejected;  // # stands for 20 zeros, ~ for 20 times m
  } kCases[] = {
      {P::eEditInt,
       {std::string(32767, ' '), std::string(32767, '0')},
       {std::string(32768, ' '), std::string(32768, '0')}},
      // The text after the unit is ignored.
      {P::eEditRealTI, {"1.0000000001 h", "1.5 h ~"}, {"#", "#5 h", "1.# h", "1.5 d~"}},
      {P::eEditIntTI, {std::string(19, '0')}, {"#", "5 ~"}},
      // The first letter m names Monday, but the word is too long.
      {P::eEditDate, {"today ~"}, {"~", "next ~", "jan 5 ~", "9999999999999/5"}},
      {P::eEditTime, {"9:30 p~ x", "9 pm ~"}, {"9 p~", "1.5 h~ 5", "99999999999 pm", "~"}},
  };
  for (const auto& c : kCases) {
    const auto expect = [&](int status, std::string text) {
      for (std::size_t i = 0; (i = text.find_first_of("#~")) != text.npos;) {
        text.replace(i, 1, 20, text[i] == '#' ? '0' : 'm');
      }
      EXPECT_EQ(Parse(text, c.type).status, status) << text.substr(0, 60) << " as " << c.type;
    };
    for (const std::string& text : c.accepted) expect(0, text);
    for (const std::string& text : c.rejected) expect(-1, text);
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
