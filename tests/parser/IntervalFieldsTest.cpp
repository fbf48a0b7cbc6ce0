#include <gtest/gtest.h>

#include <string>

#include "support/FakeHost.h"
#include "support/Fields.h"

static bool operator==(const ST_TIME_RETURN_VAL& a, const ST_TIME_RETURN_VAL& b) {
  return a.unit == b.unit && a.sign == b.sign && a.value == b.value;
}

namespace {

using P = OZParser;

constexpr ST_TIME_RETURN_VAL kOld = {'x', 9, 4711};

TEST(RealInterval, CountsTenthsOfAMinute) {
  const struct {
    const char* text;
    int value;
    char sign = 0;
  } kCases[] = {
      {"5h", 3000},       {"1.5 h", 900},        {".5 h", 300},
      {"2:30", 1500},     {":30", 300},          {"2:30 h", 1500},
      {"12.5 m", 125},    {"1.5 h x", 900},      {"2:3", 1230},
      {"2.3 h", 1380},    {"2,5 h", 1250},       {"1.25 h", 750},
      {"1.333 h", 799},   {"1 d", 14400},        {"1 w", 100800},
      {"1.5 d", 21600},   {"5 mid", 50},         {"0 h", 0},
      {"2-30 h", 1500},   {"2 30 h", 1500},      {"a:30", 300},
      {"2:", 1200},       {"999 w", 100699200},  {"+1 h", 600, 2},
      {"- 1 h", -600, 1}, {"-  2:30", -1500, 1}, {"5 did", 72000},
  };
  for (const auto& c : kCases) {
    ST_TIME_RETURN_VAL out = kOld;
    EXPECT_EQ(P::ParseRealTI(&out, c.text), 0) << c.text;
    EXPECT_EQ(out, (ST_TIME_RETURN_VAL{'M', c.sign, c.value})) << c.text;
  }
  for (const char* text : {"5", "2.5", "1 mo", "1 mth", "1 y", "1000 h", "2:75", "1:60 h", "a h",
                           "1.2.3 h", "1:2:3", "12 mid", "h", "+", "1 2 3", "x:y", "2:60"}) {
    ST_TIME_RETURN_VAL out = kOld;
    EXPECT_EQ(P::ParseRealTI(&out, text), -1) << text;
    EXPECT_EQ(out, kOld) << text;
  }
  for (const char* text : {"0", "00", "+0", "No", "+No", "NONE", "", "   "}) {
    ST_TIME_RETURN_VAL out = kOld;
    EXPECT_EQ(P::ParseRealTI(&out, text), 0) << text;
    EXPECT_EQ(out, (ST_TIME_RETURN_VAL{kOld.unit, kOld.sign, 0})) << text;
  }
}

TEST(TimeInterval, CountsWholeMinutesAndLeavesTheRestToTheTime) {
  const FakeHost host;
  const struct {
    const char* text;
    int value;
  } kCases[] = {{"2.5 h", 150}, {"1.333 h", 79}, {"9:30 h", 570}, {"12 m", 12},
                {"11 m", 11},   {"5 mar", 5},    {"-2 h", -120}};
  for (const auto& c : kCases) {
    const Parsed parsed = Parse(c.text, P::eEditTime);
    EXPECT_EQ(parsed.result, P::eParseInterval) << c.text;
    const char sign = *c.text == '-' ? 1 : 0;
    EXPECT_EQ(parsed.As<ST_TIME_RETURN_VAL>(), (ST_TIME_RETURN_VAL{'M', sign, c.value})) << c.text;
  }
}

TEST(Count, KeepsTheCountAndItsUnit) {
  const struct {
    int (*parse)(const char*, ST_TIME_RETURN_VAL*);
    const char* text;
    char unit;  // NUL: rejected
    int value;
  } kCases[] = {
      {P::ParseIntTI, "5 d", 'D', 5},       {P::ParseIntTI, "5d", 'D', 5},
      {P::ParseIntTI, "5 days", 'D', 5},    {P::ParseIntTI, "5 m", 'M', 5},
      {P::ParseIntTI, "5 mo", 'M', 5},      {P::ParseIntTI, "5 y", 'Y', 5},
      {P::ParseIntTI, "5 wx", 'W', 5},      {P::ParseIntTI, "999 d", 'D', 999},
      {P::ParseIntTI, "0", ' ', 0},         {P::ParseIntTI, "000", ' ', 0},
      {P::ParseIntTI, "No", ' ', 0},        {P::ParseIntTI, "none", ' ', 0},
      {P::ParseIntTI, "", ' ', 0},          {P::ParseIntTI, "1000 d", 0, 0},
      {P::ParseIntTI, "5", 0, 0},           {P::ParseIntTI, "1.5 d", 0, 0},
      {P::ParseIntTI, "+5 d", 0, 0},        {P::ParseIntTI, "x", 0, 0},
      {P::ParseIntTI, "5 x", 0, 0},         {P::ParseIntTI, "5 h", 0, 0},
      {P::ParseIntTI, "5 min", 0, 0},       {P::ParseIntTI, "d 5", 0, 0},
      {P::ParseIntTI, "5:", 0, 0},          {P::ParseHoursMinTI, "5 h", 'H', 5},
      {P::ParseHoursMinTI, "5 m", 'M', 5},  {P::ParseHoursMinTI, "5 min", 'M', 5},
      {P::ParseHoursMinTI, "5 mt", 'M', 5}, {P::ParseHoursMinTI, "99 h", 'H', 99},
      {P::ParseHoursMinTI, "0", ' ', 0},    {P::ParseHoursMinTI, "100 h", 0, 0},
      {P::ParseHoursMinTI, "5", 0, 0},      {P::ParseHoursMinTI, "5 mo", 0, 0},
      {P::ParseHoursMinTI, "5 d", 0, 0},    {P::ParseHoursMinTI, "1:30", 0, 0},
  };
  for (const auto& c : kCases) {
    ST_TIME_RETURN_VAL out = kOld;
    EXPECT_EQ(c.parse(c.text, &out), c.unit != 0 ? 0 : -1) << c.text;
    EXPECT_EQ(out, c.unit != 0 ? (ST_TIME_RETURN_VAL{c.unit, 0, c.value}) : kOld) << c.text;
  }
}

}  // namespace
