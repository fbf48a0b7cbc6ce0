#include <gtest/gtest.h>

#include <string>

#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

constexpr int kReject = -1;
constexpr int kNow = 570;

class TimeFields : public testing::Test {
 protected:
  TimeFields() { host_.SetNow(2026, 11, 18, 9, 30); }

  int Time(const std::string& text, P::eEditType type = P::eEditTime, int twenty_four_hour = 0) {
    const Parsed parsed = Parse(text, type, {.twenty_four_hour = twenty_four_hour});
    if (parsed.status != 0) {
      EXPECT_TRUE(parsed.Untouched()) << text;
      return kReject;
    }
    EXPECT_EQ(parsed.result, P::eParseTime) << text;
    return parsed.As<short>();
  }

  FakeHost host_;
};

TEST_F(TimeFields, AcceptWhatPeopleWrite) {
  const struct {
    const char* text;
    int minutes;
  } kCases[] = {
      {"now", kNow},      {"noon", 720},    {"noo", 720},      {"oon", 720},
      {"midnight", 1440}, {"mid", 1440},    {"night", 1440},   {"ght", 1440},
      {"9", 540},         {"12", 720},      {"13", 780},       {"1", 780},
      {"6", 1080},        {"7", 420},       {"930", 570},      {"1230", 750},
      {"0930", 570},      {"130", 810},     {"9:30", 570},     {"9.30", 570},
      {"9;30", 570},      {"9'30", 570},    {"9 pm", 1260},    {"9pm", 1260},
      {"9p", 1260},       {"9 a", 540},     {"9:30 pm", 1290}, {"9:30p", 1290},
      {"930 pm", 1290},   {"12 am", 0},     {"12:30 am", 30},  {"12 pm", 720},
      {"12 noon", 720},   {"12 n", 720},    {"12 no", 720},    {"12 midnight", 1440},
      {"12 midn", 1440},  {"0", 0},         {"00", 0},         {"000", 0},
      {"0000", 0},        {"6:59", 1139},   {"7:00", 420},     {"1:05", 785},
      {"1:5", 785},       {"105", 785},     {"9.5", 545},      {"9:", 540},
      {"13:00 pm", 780},  {"13 am", 780},   {"0:30 pm", 750},  {"12:00:", 1440},
      {"1200:00", 1440},  {"9 pm x", 1260}, {"9 am 5", 540},   {"9:30 pm x", 570},
      {"24:00", 1440},    {"2400", 1440},   {"12.", 720},
  };
  for (const auto& c : kCases) EXPECT_EQ(Time(c.text), c.minutes) << c.text;
}

TEST_F(TimeFields, RejectWhatIsNoTime) {
  constexpr const char* kTexts[] = {
      "24:01",
      "2401",
      "25:00",
      "9:60",
      "960",
      "12345",
      "9:30:15",
      "12:00:00",
      "9 30",
      "9,30",
      "9-30",
      "9/30",
      "9 x",
      "9:30 x",
      "x pm",
      "am",
      "pm",
      "a",
      "12:01 n",
      "12:30 n",
      "11 n",
      "+9",
      "-9",
      "+9:30",
      "9:30:",
      "930:15",
      "no no",
      "ni",
      "on",
      "2 mo",
      "1 d",
      "1 w",
      "9 mid",
      "12:30 mid",
      "9\3510",
      ".30",
  };
  for (const char* text : kTexts) EXPECT_EQ(Time(text), kReject) << text;
}

TEST_F(TimeFields, KnowNoAfternoonInTwentyFourHourMode) {
  constexpr struct {
    const char* text;
    int minutes;
  } kCases[] = {{"1", 60}, {"6:59", 419}, {"1:30", 90}, {"1:30 pm", 810}, {"130", 90}, {"9", 540}};
  for (const auto& c : kCases) EXPECT_EQ(Time(c.text, P::eEditTime, 1), c.minutes) << c.text;
}

TEST_F(TimeFields, ShareACombinedFieldWithDatesAndIntervals) {
  const struct {
    const char* text;
    P::eParseResult result;
    int value;
  } kCases[] = {
      {"5", P::eParseTime, 1020},         {"9:30", P::eParseTime, 570},
      {"3.5", P::eParseTime, 905},        {"9 a", P::eParseTime, 540},
      {"12 midn", P::eParseTime, 1440},   {"1 d", P::eParseInterval, 1440},
      {"1 w", P::eParseInterval, 10080},  {"1 mo", P::eParseInterval, 43200},
      {"1 mt", P::eParseInterval, 43200}, {"1.5 d", P::eParseInterval, 2160},
      {"-1 d", P::eParseInterval, -1440}, {"11 m", P::eParseInterval, 11},
      {"2 h", P::eParseInterval, 120},
  };
  for (const auto& c : kCases) {
    const Parsed parsed = Parse(c.text, P::eEditDateTimeTI);
    EXPECT_EQ(parsed.result, c.result) << c.text;
    const int value =
        c.result == P::eParseTime ? parsed.As<short>() : parsed.As<ST_TIME_RETURN_VAL>().value;
    EXPECT_EQ(value, c.value) << c.text;
  }
  for (const char* text : {"3/5", "12/25", "3 5", "9 aug", "12 mar", "5 may", "today"}) {
    EXPECT_EQ(Parse(text, P::eEditDateTimeTI).result, P::eParseDate) << text;
  }
  for (const char* text : {"0", "00", "no", "None", ""}) {
    EXPECT_EQ(Parse(text, P::eEditDateTimeTI).result, P::eParseNone) << text;
  }
}

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
      ASSERT_EQ(Time(text, P::eEditTime, clock), minutes) << text;
    }
  }
}

}  // namespace
