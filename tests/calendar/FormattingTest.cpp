#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <utility>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

class Formatting : public testing::Test {
 protected:
  Formatting() { host_.SetNow(2024, 3, 15); }

  // Returns the text, and checks the bytes around it.
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
  // A row: month (M) or day (d) first, the date, the form, the text. Today is 15 March 2024.
  constexpr const char* kRows[] = {"M 2024-03-15 1 Fri-Mar 15",
                                   "M 2024-03-15 2 Mar 15,2024",
                                   "M 2024-03-15 3 Fri-Mar 15,2024",
                                   "M 2024-06-13 0 Thu-Jun 13",
                                   "M 2024-06-14 0 Jun 14,2024",
                                   "M 2023-12-16 4 Sat-Dec 16",
                                   "M 2023-12-15 -1 Dec 15,2023",
                                   "M 1998-01-05 2 Jan 5,1998",
                                   "d 1998-01-05 2  5 Jan 1998",
                                   "d 1998-01-15 2 15 Jan 1998",
                                   "d 1998-01-05 1 Mon-5 Jan",
                                   "d 1998-01-05 3 Mon-5 Jan 1998",
                                   "M 1753-01-01 3 Mon-Jan 1,1753",
                                   "M 2099-12-31 3 Thu-Dec 31,2099",
                                   "M 0-0-0 0 None",
                                   "M 1751-01-01 1 None",
                                   "M 2101-01-01 2 None",
                                   "M 2024-13-01 3 None",
                                   "M 2024-15-01 3 None",
                                   "M 1752-12-31 2 No Lower Limit",
                                   "M 1752-00-00 2 No Lower Limit",
                                   "M 2100-06-01 1 No Upper Limit",
                                   "M 1752-14-01 2 None"};
  for (const char* row : kRows) {
    std::istringstream words(row);
    std::string pattern, text;
    un_date_time date = {};
    int form = 0;
    std::getline((words >> pattern >> date >> form).ignore(), text);
    host_.short_date = pattern;
    EXPECT_EQ(DateText(date, form), text) << row;
  }
}

TEST_F(Formatting, ReadsTheOrderFromTheSettingAtEachCall) {
  const un_date_time date = un_date_time::Of(2024, 3, 15);
  EXPECT_EQ(DateText(date, 1), "Fri-Mar 15");  // there is no such setting
  for (const char* pattern : {"yyyy-MM-dd", "", "abc", "Md"}) {
    host_.short_date = pattern;
    EXPECT_EQ(DateText(date, 1), "Fri-Mar 15") << pattern;
  }
  for (const char* pattern : {"dd/MM/yyyy", "d.M.yy", "yy/dd/MM", "D"}) {
    host_.short_date = pattern;
    EXPECT_EQ(DateText(date, 1), "Fri-15 Mar") << pattern;
  }
  host_.short_date = std::string(49, 'y') + "d";  // only 49 characters are read
  EXPECT_EQ(DateText(date, 1), "Fri-Mar 15");
}

TEST_F(Formatting, CutsALongDateAndRemovesSeparatorsAtItsEnd) {
  const std::pair<int, const char*> kCases[] = {{16, "Fri-Mar 15,2024"},
                                                {15, "Fri-Mar 15,202"},
                                                {12, "Fri-Mar 15"},
                                                {9, "Fri-Mar"},
                                                {5, "Fri-"},
                                                {1, ""},
                                                {0, ""},
                                                {33, "Fri-Mar 15,2024"}};
  for (const auto& [size, text] : kCases) {
    EXPECT_EQ(DateText(un_date_time::Of(2024, 3, 15), 3, size), text) << size;
  }
  EXPECT_EQ(DateText(un_date_time::Of(1752, 1, 1), 0, 5), "No L");
  EXPECT_EQ(DateText(un_date_time::Of(1752, 1, 1), 0, 4), "No ");  // such texts keep their blanks
  host_.short_date = "d/M/yy";
  EXPECT_EQ(DateText(un_date_time::Of(1998, 1, 5), 2, 2), "");
}

TEST_F(Formatting, WritesTimesOfThe12HourAndThe24HourClock) {
  const struct {
    int minutes;
    const char *twelve, *twenty_four;
  } kCases[] = {
      {0, "12:00am", "00:00  "},    {65, " 1:05am", "01:05  "},   {599, " 9:59am", "09:59  "},
      {600, "10:00am", "10:00  "},  {720, "12:00pm", "12:00  "},  {785, " 1:05pm", "13:05  "},
      {1439, "11:59pm", "23:59  "}, {1440, "12:00M ", "24:00  "}, {1441, "None", "None"},
      {2047, "None", "None"},       {-1, "None", "None"},
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
      const char* const no_pad = c.twelve + (c.twelve[0] == ' ' ? 1 : 0);
      EXPECT_EQ(text(c.minutes, 1, 0), twelve ? no_pad : c.twenty_four) << setting;
      host_.setting_reads = 0;
      EXPECT_EQ(text(c.minutes, 1, 1), c.twenty_four);
      EXPECT_EQ(host_.setting_reads, 0);
    }
  }
  host_.clock_24hour.reset();
  EXPECT_EQ(text(785, 0, 0), " 1:05pm");
}

}  // namespace
