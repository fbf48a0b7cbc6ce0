#include <gtest/gtest.h>

#include <random>
#include <string>

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
  const std::string digits(20, '0');
  const std::string word(20, 'm');
  const struct {
    std::string text;
    P::eEditType type;
    int status;
  } kCases[] = {
      {std::string(32767, ' '), P::eEditInt, 0},
      {std::string(32767, '0'), P::eEditInt, 0},
      {std::string(32768, '0'), P::eEditInt, -1},
      {std::string(32768, ' '), P::eEditInt, -1},
      {digits, P::eEditRealTI, -1},
      {digits, P::eEditIntTI, -1},
      {digits.substr(1), P::eEditIntTI, 0},
      {digits + "5 h", P::eEditRealTI, -1},
      {"1." + digits + " h", P::eEditRealTI, -1},
      {"1.4000000 h", P::eEditRealTI, -1},  // 4,000,000 times 600 is above 32 bits
      {"1.0000000001 h", P::eEditRealTI, 0},
      {"1.5 d" + word, P::eEditRealTI, -1},
      {"1.5 h " + word, P::eEditRealTI, 0},  // not looked at
      {"5 " + word, P::eEditIntTI, -1},
      {word, P::eEditDate, -1},  // one m would do, but the rest is gone
      {"today " + word, P::eEditDate, 0},
      {"next " + word, P::eEditDate, -1},
      {"jan 5 " + word, P::eEditDate, -1},
      {"9999999999999/5", P::eEditDate, -1},
      {"9 p" + word, P::eEditTime, -1},
      {"1.5 h" + word + " 5", P::eEditTime, -1},  // an interval, if the word were shorter
      {"9:30 p" + word + " x", P::eEditTime, 0},  // not looked at
      {"9 pm " + word, P::eEditTime, 0},
      {"99999999999 pm", P::eEditTime, -1},
      {word, P::eEditTime, -1},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Parse(c.text, c.type).status, c.status) << c.text.substr(0, 60) << " as " << c.type;
  }
}

TEST_F(ParseFieldTest, WorksInTheCallersText) {
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

TEST_F(ParseFieldTest, TouchesNothingOnRejectionWhateverTheText) {
  std::minstd_rand random(5);
  constexpr std::string_view kPieces[] = {"jan", "mon",  "next", "12", "5",  "9",    "1.5", "h",
                                          "d",   "mid",  "noon", "pm", ":",  "-",    "/",   " ",
                                          "+",   "\xE9", "\t",   "no", "la", "2026", ".",   "tom"};
  for (int i = 0; i < 50000; ++i) {
    std::string text;
    for (auto pieces = random() % 6; pieces > 0; --pieces) {
      text += kPieces[random() % std::size(kPieces)];
    }
    FieldOptions options;
    options.flags = random() % 4;
    options.twenty_four_hour = random() % 2;
    options.day_position = random() % 2;
    options.week_start = static_cast<eCalWeekStart>(random() % 2);
    for (const P::eEditType type : kFields) {
      const Parsed parsed = Parse(text, type, options);
      if (parsed.status == 0) {
        ASSERT_NE(parsed.result, kOldResult) << text;
      } else {
        ASSERT_EQ(parsed.status, -1) << text;
        ASSERT_EQ(parsed.result, kOldResult) << text;
        ASSERT_TRUE(parsed.Untouched()) << text;
      }
    }
  }
}

}  // namespace
