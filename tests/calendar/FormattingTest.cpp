#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

using std::literals::chrono_literals::operator""y;

class FormatDate : public testing::Test {
 protected:
  FormatDate() { host_.SetNow(2024, 3, 15); }

  // Returns the text, and checks the bytes around it.
  std::string Text(std::chrono::year_month_day day, int form, int size = 32) {
    char buffer[40] = "";
    std::fill(std::begin(buffer), std::end(buffer), '#');
    const un_date_time date = DateOf(day);
    OZDate::FormatDate(&date, buffer, size, form);
    EXPECT_EQ(buffer[size], '#') << "written past the buffer: " << date;
    EXPECT_EQ(size > 0 ? buffer[size - 1] : '\0', '\0') << date;
    return size > 0 ? buffer : "";
  }

  FakeHost host_;
};

const struct {
  const char* pattern;
  std::chrono::year_month_day date;
  int form;
  const char* text;
} kDates[] = {
    {"M", 2024y / 3 / 15, 1, "Fri-Mar 15"},        {"M", 2024y / 3 / 15, 2, "Mar 15,2024"},
    {"M", 2024y / 3 / 15, 3, "Fri-Mar 15,2024"},   {"M", 2024y / 3 / 9, 1, "Sat-Mar 9"},
    {"M", 2024y / 3 / 10, 1, "Sun-Mar 10"},        {"M", 2024y / 6 / 13, 0, "Thu-Jun 13"},
    {"M", 2024y / 6 / 14, 0, "Jun 14,2024"},       {"M", 2023y / 12 / 16, 4, "Sat-Dec 16"},
    {"M", 2023y / 12 / 15, -1, "Dec 15,2023"},     {"M", 1998y / 1 / 5, 2, "Jan 5,1998"},
    {"d", 1998y / 1 / 5, 2, " 5 Jan 1998"},        {"d", 1998y / 1 / 10, 2, "10 Jan 1998"},
    {"d", 1998y / 1 / 5, 1, "Mon-5 Jan"},          {"d", 1998y / 1 / 5, 3, "Mon-5 Jan 1998"},
    {"M", 1752y / 12 / 31, 2, "No Lower Limit"},   {"M", 1752y / 0 / 0, 2, "No Lower Limit"},
    {"M", 2024y / 0 / 5, 3, "Tue- 5,2024"},        {"M", 2100y / 6 / 1, 1, "No Upper Limit"},
    {"yy-MM-dd", 2024y / 3 / 15, 1, "Fri-Mar 15"}, {"abc", 2024y / 3 / 15, 1, "Fri-Mar 15"},
    {"d.M.yy", 2024y / 3 / 15, 1, "Fri-15 Mar"},   {"yy/dd/MM", 2024y / 3 / 15, 1, "Fri-15 Mar"},
    {"D", 2024y / 3 / 15, 1, "Fri-15 Mar"},
};

TEST_F(FormatDate, WritesEachFormInTheOrderOfTheSetting) {
  EXPECT_EQ(Text(2024y / 3 / 15, 1), "Fri-Mar 15");  // there is no setting
  for (const auto& row : kDates) {
    host_.short_date = row.pattern;
    EXPECT_EQ(Text(row.date, row.form), row.text) << row.pattern << " in form " << row.form;
  }
  host_.short_date = std::string(49, 'y') + "d";  // only 49 characters are read
  EXPECT_EQ(Text(2024y / 3 / 15, 1), "Fri-Mar 15");
  for (const auto& none :
       {0y / 0 / 0, 1751y / 1 / 1, 2101y / 1 / 1, 2024y / 13 / 1, 2024y / 15 / 1, 1752y / 14 / 1}) {
    for (const int form : {0, 1, 2, 3}) EXPECT_EQ(Text(none, form), "None") << DateOf(none);
  }
}

TEST_F(FormatDate, CutsALongTextAndRemovesSeparatorsAtItsEnd) {
  const std::string text = "Fri-Mar 15,2024";
  const struct {
    int size;
    std::size_t length;  // of what is left
  } kRows[] = {{33, 15}, {16, 15}, {15, 14}, {12, 10}, {9, 7}, {5, 4}, {1, 0}, {0, 0}};
  for (const auto& row : kRows) {
    EXPECT_EQ(Text(2024y / 3 / 15, 3, row.size), text.substr(0, row.length)) << row.size;
  }
  EXPECT_EQ(Text(1752y / 1 / 1, 0, 4), "No ");  // such texts keep their blanks
  host_.short_date = "d/M/yy";
  EXPECT_EQ(Text(1998y / 1 / 5, 2, 2), "");
}

constexpr struct {
  int minutes;
  const char *twelve, *unpadded, *twenty_four;
} kTimes[] = {
    {0, "12:00am", "12:00am", "00:00  "},    {65, " 1:05am", "1:05am", "01:05  "},
    {599, " 9:59am", "9:59am", "09:59  "},   {600, "10:00am", "10:00am", "10:00  "},
    {720, "12:00pm", "12:00pm", "12:00  "},  {785, " 1:05pm", "1:05pm", "13:05  "},
    {1439, "11:59pm", "11:59pm", "23:59  "}, {1440, "12:00M ", "12:00M ", "24:00  "},
    {1441, "None", "None", "None"},          {-1, "None", "None", "None"},
};

TEST(FormatTime, WritesThe12HourAndThe24HourClock) {
  FakeHost host;
  const auto text = [](int minutes, int no_pad, int force) {
    char buffer[9] = "########";
    buffer[8] = '#';
    OZDate::FormatTime(minutes, buffer, no_pad, force);
    EXPECT_EQ(buffer[8], '#') << "written past the buffer";
    return std::string(buffer);
  };
  EXPECT_EQ(text(785, 0, 0), " 1:05pm");  // there is no setting
  for (const auto& row : kTimes) {
    for (const int setting : {0, 2, 1, -1}) {
      SCOPED_TRACE(setting);
      host.clock_24hour = setting;
      const bool twelve = setting == 0 || setting == 2;
      EXPECT_EQ(text(row.minutes, 0, 0), twelve ? row.twelve : row.twenty_four);
      EXPECT_EQ(text(row.minutes, 1, 0), twelve ? row.unpadded : row.twenty_four);
      host.setting_reads = 0;
      EXPECT_EQ(text(row.minutes, 1, 1), row.twenty_four);
      EXPECT_EQ(host.setting_reads, 0);
    }
  }
}

}  // namespace
