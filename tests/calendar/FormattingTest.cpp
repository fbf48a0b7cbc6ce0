#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

constexpr char kMonthFirst[] = "M/d/yy";
constexpr char kDayFirst[] = "dd/MM/yyyy";

class Formatting : public testing::Test {
 protected:
  Formatting() { host_.SetNow(2024, 3, 15); }

  // The text, after a look at what lies around it.
  std::string DateText(un_date_time date, int form, int size = 32) {
    char buffer[40];
    std::memset(buffer, '#', sizeof(buffer));
    OZDate::FormatDate(&date, buffer, size, form);
    EXPECT_EQ(buffer[size], '#') << "written past the buffer";
    if (size > 0) {
      EXPECT_EQ(buffer[size - 1], '\0');
    }
    return size > 0 ? buffer : "";
  }

  FakeHost host_;
};

TEST_F(Formatting, WritesDatesInEachForm) {
  const struct {
    const char* pattern;
    int year, month, day, form;
    const char* text;
  } kCases[] = {
      {kMonthFirst, 2024, 3, 15, 1, "Fri-Mar 15"},
      {kMonthFirst, 2024, 3, 15, 2, "Mar 15,2024"},
      {kMonthFirst, 2024, 3, 15, 3, "Fri-Mar 15,2024"},
      {kMonthFirst, 2024, 6, 13, 0, "Thu-Jun 13"},  // 90 days ahead
      {kMonthFirst, 2024, 6, 14, 0, "Jun 14,2024"},
      {kMonthFirst, 2023, 12, 16, 4, "Sat-Dec 16"},  // 90 days back
      {kMonthFirst, 2023, 12, 15, -1, "Dec 15,2023"},
      {kMonthFirst, 1998, 1, 5, 2, "Jan 5,1998"},
      {kDayFirst, 1998, 1, 5, 2, " 5 Jan 1998"},
      {kDayFirst, 1998, 1, 15, 2, "15 Jan 1998"},
      {kDayFirst, 1998, 1, 5, 1, "Mon-5 Jan"},
      {kDayFirst, 1998, 1, 5, 3, "Mon-5 Jan 1998"},
      {kMonthFirst, 1753, 1, 1, 3, "Mon-Jan 1,1753"},
      {kMonthFirst, 2099, 12, 31, 3, "Thu-Dec 31,2099"},
      {kMonthFirst, 0, 0, 0, 0, "None"},
      {kMonthFirst, 1751, 1, 1, 1, "None"},
      {kMonthFirst, 2101, 1, 1, 2, "None"},
      {kMonthFirst, 2024, 13, 1, 3, "None"},
      {kMonthFirst, 2024, 15, 1, 3, "None"},
      {kMonthFirst, 1752, 12, 31, 2, "No Lower Limit"},
      {kMonthFirst, 1752, 0, 0, 2, "No Lower Limit"},
      {kMonthFirst, 2100, 6, 1, 1, "No Upper Limit"},
      {kMonthFirst, 1752, 14, 1, 2, "None"},
  };
  for (const auto& c : kCases) {
    host_.short_date = c.pattern;
    const un_date_time date = un_date_time::Of(c.year, c.month, c.day, 600);
    EXPECT_EQ(DateText(date, c.form), c.text) << date << " in form " << c.form;
  }
}

TEST_F(Formatting, TakesTheOrderFromTheSettingAtEachCall) {
  const struct {
    const char* pattern;
    bool day_first;
  } kCases[] = {
      {"dd/MM/yyyy", true}, {"d.M.yy", true}, {"yy/dd/MM", true}, {"yyyy-MM-dd", false},
      {"", false},          {"abc", false},   {"D", true},        {"Md", false},
  };
  const un_date_time date = un_date_time::Of(2024, 3, 15);
  EXPECT_EQ(DateText(date, 1), "Fri-Mar 15");  // no entry at all
  for (const auto& c : kCases) {
    host_.short_date = c.pattern;
    EXPECT_EQ(DateText(date, 1), c.day_first ? "Fri-15 Mar" : "Fri-Mar 15") << c.pattern;
  }
  host_.short_date = std::string(49, 'y') + "d";  // past the 49 characters that are read
  EXPECT_EQ(DateText(date, 1), "Fri-Mar 15");
}

TEST_F(Formatting, CutsADateAtTheBufferAndDropsSeparatorsThere) {
  const struct {
    int size;
    const char* text;
  } kCases[] = {{16, "Fri-Mar 15,2024"},
                {15, "Fri-Mar 15,202"},
                {12, "Fri-Mar 15"},
                {9, "Fri-Mar"},
                {5, "Fri-"},
                {1, ""},
                {0, ""},
                {33, "Fri-Mar 15,2024"}};
  for (const auto& c : kCases) {
    EXPECT_EQ(DateText(un_date_time::Of(2024, 3, 15), 3, c.size), c.text) << c.size;
  }
  EXPECT_EQ(DateText(un_date_time::Of(1752, 1, 1), 0, 5), "No L");
  EXPECT_EQ(DateText(un_date_time::Of(1752, 1, 1), 0, 4), "No ");  // markers keep their blanks
  host_.short_date = kDayFirst;
  EXPECT_EQ(DateText(un_date_time::Of(1998, 1, 5), 2, 2), "");
}

TEST_F(Formatting, WritesTimesByBothClocks) {
  const struct {
    int minutes;
    const char* twelve;
    const char* twelve_no_pad;
    const char* twenty_four;
  } kCases[] = {
      {0, "12:00am", "12:00am", "00:00  "},
      {65, " 1:05am", "1:05am", "01:05  "},
      {599, " 9:59am", "9:59am", "09:59  "},
      {600, "10:00am", "10:00am", "10:00  "},
      {720, "12:00pm", "12:00pm", "12:00  "},
      {785, " 1:05pm", "1:05pm", "13:05  "},
      {1439, "11:59pm", "11:59pm", "23:59  "},
      {1440, "12:00M ", "12:00M ", "24:00  "},
      {1441, "None", "None", "None"},
      {2047, "None", "None", "None"},
      {-1, "None", "None", "None"},
  };
  const auto text = [](int minutes, int no_pad, int force) {
    char buffer[9];
    std::memset(buffer, '#', sizeof(buffer));
    OZDate::FormatTime(minutes, buffer, no_pad, force);
    EXPECT_EQ(buffer[8], '#') << "written past the buffer";
    return std::string(buffer);
  };
  for (const auto& c : kCases) {
    for (const int setting : {0, 2, 1, -1}) {
      host_.clock_24hour = setting;
      const bool twelve = setting == 0 || setting == 2;
      EXPECT_EQ(text(c.minutes, 0, 0), twelve ? c.twelve : c.twenty_four) << setting;
      EXPECT_EQ(text(c.minutes, 1, 0), twelve ? c.twelve_no_pad : c.twenty_four) << setting;
      host_.setting_reads = 0;
      EXPECT_EQ(text(c.minutes, 1, 1), c.twenty_four);
      EXPECT_EQ(host_.setting_reads, 0);
    }
  }
  host_.clock_24hour.reset();
  EXPECT_EQ(text(785, 0, 0), " 1:05pm");
}

}  // namespace
