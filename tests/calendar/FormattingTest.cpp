// Checks the texts in the tables of docs/guide/calendar.md. There it is 15 March 2024.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/PageTables.h"

namespace {

using std::literals::chrono_literals::operator""y;

class FormatDate : public testing::Test {
 protected:
  FormatDate() { host_.SetNow(2024, 3, 15); }

  // Returns the text, and checks the bytes around it.
  static std::string Text(un_date_time date, int form, int size = 32) {
    char buffer[40] = "";
    std::fill(std::begin(buffer), std::end(buffer), '#');
    OZDate::FormatDate(&date, buffer, size, form);
    EXPECT_EQ(buffer[size], '#') << "written past the buffer: " << date;
    EXPECT_EQ(size > 0 ? buffer[size - 1] : '\0', '\0') << date;
    return size > 0 ? buffer : "";
  }

  FakeHost host_;
};

TEST_F(FormatDate, WritesEachFormInTheOrderOfTheSetting) {
  EXPECT_EQ(Text(un_date_time::Of(2024, 3, 15), 1), "Fri-Mar 15");  // there is no setting
  for (const PageRow& row : RowsUnder(
           "guide/calendar.md", {"Date", "Setting", "Form 0", "Form 1", "Form 2", "Form 3"})) {
    host_.short_date = CodeIn(row.cells[1]).at(0);
    for (int form = -1; form < 5; ++form) {  // any other form is as form 0
      const std::size_t column = form >= 1 && form <= 3 ? 2U + unsigned(form) : 2;
      EXPECT_EQ(Text(DatesFrom(row.cells[0]).at(0), form), CodeIn(row.cells[column]).at(0))
          << row.place << ", form " << form;
    }
  }
  host_.short_date = std::string(49, 'y') + "d";  // only 49 characters are read
  EXPECT_EQ(Text(un_date_time::Of(2024, 3, 15), 1), "Fri-Mar 15");
  EXPECT_EQ(Text(un_date_time::Of(2024, 0, 5), 3), "Tue- 5,2024");
  for (const auto& none : {0y / 0 / 0, 2024y / 13 / 1, 2024y / 15 / 1, 1752y / 14 / 1}) {
    EXPECT_EQ(Text(DateOf(none), 1), "None") << DateOf(none);
  }
}

TEST_F(FormatDate, CutsALongText) {
  for (const PageRow& row : RowsUnder("guide/calendar.md", {"Date", "`size`", "Text"})) {
    const std::vector<std::string> text = CodeIn(row.cells[2]);
    EXPECT_EQ(Text(DatesFrom(row.cells[0]).at(0), 3, std::stoi(row.cells[1])),
              text.empty() ? "" : text[0])
        << row.place;
  }
  EXPECT_EQ(Text(un_date_time::Of(2024, 3, 15), 3, 0), "");
  host_.short_date = "d/M/yy";
  EXPECT_EQ(Text(un_date_time::Of(1998, 1, 5), 2, 2), "");
}

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
  for (const PageRow& row :
       RowsUnder("guide/calendar.md", {"Minute", "12 hours", "`no_pad`", "24 hours"})) {
    const int minutes = std::stoi(row.cells[0]);
    const auto cell = [&](int column) { return CodeIn(row.cells[unsigned(column)]).at(0); };
    for (const int setting : {0, 2, 1, -1}) {
      const bool twelve = setting == 0 || setting == 2;
      SCOPED_TRACE(row.place + ", setting " + std::to_string(setting));
      host.clock_24hour = setting;
      EXPECT_EQ(text(minutes, 0, 0), cell(twelve ? 1 : 3));
      EXPECT_EQ(text(minutes, 1, 0), cell(twelve ? 2 : 3));
      host.setting_reads = 0;
      EXPECT_EQ(text(minutes, 1, 1), cell(3));
      EXPECT_EQ(host.setting_reads, 0);
    }
  }
}

}  // namespace
