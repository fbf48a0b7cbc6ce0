#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"

namespace {

using std::literals::chrono_literals::operator""y;

struct DateText {
  std::optional<std::string> pattern;  // of the regional settings; empty: there is none
  std::chrono::year_month_day date;
  int form;
  const char* text;
  int size = 32;
};

// Today is 15 March 2024. First dates in each form, and values that are no date. Then the order of
// day and month in a pattern, of which only 49 characters are read. Then dates that are too long
// for the buffer: they are cut, and separators at the end are removed. Other texts keep their
// blanks.
const DateText kDates[] = {
    {"M", 2024y / 3 / 15, 1, "Fri-Mar 15"},
    {"M", 2024y / 3 / 15, 2, "Mar 15,2024"},
    {"M", 2024y / 3 / 15, 3, "Fri-Mar 15,2024"},
    {"M", 2024y / 3 / 9, 1, "Sat-Mar 9"},
    {"M", 2024y / 3 / 10, 1, "Sun-Mar 10"},
    {"M", 2024y / 6 / 13, 0, "Thu-Jun 13"},
    {"M", 2024y / 6 / 14, 0, "Jun 14,2024"},
    {"M", 2023y / 12 / 16, 4, "Sat-Dec 16"},
    {"M", 2023y / 12 / 15, -1, "Dec 15,2023"},
    {"M", 1998y / 1 / 5, 2, "Jan 5,1998"},
    {"d", 1998y / 1 / 5, 2, " 5 Jan 1998"},
    {"d", 1998y / 1 / 15, 2, "15 Jan 1998"},
    {"d", 1998y / 1 / 10, 2, "10 Jan 1998"},
    {"d", 1998y / 1 / 5, 1, "Mon-5 Jan"},
    {"d", 1998y / 1 / 5, 3, "Mon-5 Jan 1998"},
    {"M", 0y / 0 / 0, 0, "None"},
    {"M", 1751y / 1 / 1, 1, "None"},
    {"M", 2101y / 1 / 1, 2, "None"},
    {"M", 2024y / 13 / 1, 3, "None"},
    {"M", 2024y / 15 / 1, 3, "None"},
    {"M", 1752y / 12 / 31, 2, "No Lower Limit"},
    {"M", 1752y / 0 / 0, 2, "No Lower Limit"},
    {"M", 2100y / 6 / 1, 1, "No Upper Limit"},
    {"M", 1752y / 14 / 1, 2, "None"},
    {{}, 2024y / 3 / 15, 1, "Fri-Mar 15"},
    {"yyyy-MM-dd", 2024y / 3 / 15, 1, "Fri-Mar 15"},
    {"abc", 2024y / 3 / 15, 1, "Fri-Mar 15"},
    {std::string(49, 'y') + "d", 2024y / 3 / 15, 1, "Fri-Mar 15"},
    {"d.M.yy", 2024y / 3 / 15, 1, "Fri-15 Mar"},
    {"yy/dd/MM", 2024y / 3 / 15, 1, "Fri-15 Mar"},
    {"D", 2024y / 3 / 15, 1, "Fri-15 Mar"},
    {"M", 2024y / 3 / 15, 3, "Fri-Mar 15,2024", 16},
    {"M", 2024y / 3 / 15, 3, "Fri-Mar 15,202", 15},
    {"M", 2024y / 3 / 15, 3, "Fri-Mar 15", 12},
    {"M", 2024y / 3 / 15, 3, "Fri-Mar", 9},
    {"M", 2024y / 3 / 15, 3, "Fri-", 5},
    {"M", 2024y / 3 / 15, 3, "", 1},
    {"M", 2024y / 3 / 15, 3, "", 0},
    {"d", 1998y / 1 / 5, 2, "", 2},
    {"M", 1752y / 1 / 1, 0, "No ", 4},
};

TEST(FormatDate, WritesEachFormInTheOrderOfTheSetting) {
  FakeHost host;
  host.SetNow(2024, 3, 15);
  for (const DateText& row : kDates) {
    host.short_date = row.pattern;
    char buffer[40] = "###";
    buffer[row.size] = '#';
    const un_date_time date = DateOf(row.date);
    OZDate::FormatDate(&date, buffer, row.size, row.form);
    EXPECT_EQ(std::string(row.size > 0 ? buffer : ""), row.text)
        << date << " in form " << row.form << ", size " << row.size;
    EXPECT_EQ(buffer[row.size], '#') << "written past the buffer: " << row.text;
    EXPECT_EQ(row.size > 0 ? buffer[row.size - 1] : '\0', '\0') << row.text;
  }
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
