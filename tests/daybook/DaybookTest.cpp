// What the commands print: the pages that show it, and what depends on the locale or a terminal.
#include <algorithm>
#include <csignal>
#include <regex>
#include <string>

#include "RunDaybook.h"

namespace {

TEST_F(Daybook, PrintsWhatItsPagesShow) {
  for (const std::string page : {"demo.md", "daybook.md"}) {
    const Outcome check =
        Shell("'" PROJECT "/tests/daybook/check-demo' '" DAYBOOK_PATH "' '" PROJECT "/docs/" +
              page + "' 2>&1");
    EXPECT_EQ(check.status, 0) << page << ", and what the program prints:\n" << check.text;
  }
}

TEST_F(Daybook, HasTheSettingsOfItsUser) {
  constexpr struct {
    const char* locale;
    const char* date;  // how it reads 3/5
    const char* time;  // how it reads 3
    const char* week;
  } kRows[] = {
      {"en_US.UTF-8", "2027-03-05", "15:00", " Sun  Mon  Tue  Wed  Thu  Fri  Sat"},
      {"de_DE.UTF-8", "2027-05-03", "03:00", " Mon  Tue  Wed  Thu  Fri  Sat  Sun"},
  };
  Shell("daybook add f X");
  for (const auto& row : kRows) {
    const Outcome shown = Shell(std::string("export LC_ALL=") + row.locale +
                                "; daybook parse date 3/5 | head -1; daybook parse time 3 | head "
                                "-1; daybook month f | sed -n 2p");
    EXPECT_EQ(shown.text, std::string("value    ") + row.date + "\nvalue    " + row.time + '\n' +
                              row.week + '\n')
        << row.locale;
  }
}

TEST_F(Daybook, IsColoredOnATerminalOnly) {
  Shell("daybook add f --date sat X");
  EXPECT_NE(OnTerminal("daybook list f").text.find("\033[36mSat-Nov 21*"), std::string::npos);
  EXPECT_NE(Shell("daybook list f").text.find("\nSat-Nov 21*"), std::string::npos);
}

TEST_F(Daybook, AsksBeforeItDeletes) {
  Shell("daybook add f X");
  // The terminal also shows the answer, somewhere.
  const std::string no = OnTerminal("daybook delete f", "n").text;
  EXPECT_NE(no.find("Delete f with 1 entry? (y/n) "), std::string::npos) << no;
  EXPECT_TRUE(no.ends_with("daybook: nothing is deleted\n")) << no;
  EXPECT_TRUE(directory.Has("f"));
  OnTerminal("daybook delete f", "y");
  EXPECT_FALSE(directory.Has("f"));
}

// Lists every date of the calendar, which is far more than a pipe can hold.
const std::string kLongListing =
    "daybook next weekly sun,mon,tue,wed,thu,fri,sat 1/1/1753 --include --count 200000";
constexpr int kAllDates = 126739;

TEST_F(Daybook, StopsBetweenLinesWhenInterrupted) {
  std::signal(SIGINT, SIG_DFL);  // the command would inherit that it is ignored
  const std::string text = Shell("{ timeout --foreground --preserve-status -s INT 0.5 " +
                                 kLongListing + "; echo \"=> $?\"; } 2>&1 | { sleep 1; cat; }")
                               .text;
  EXPECT_TRUE(text.ends_with("\ndaybook: stopped\n=> 130\n")) << text.substr(text.size() - 99);
  EXPECT_LT(std::count(text.begin(), text.end(), '\n'), kAllDates);
}

TEST_F(Daybook, ShowsABarInATerminalAndClearsIt) {
  const std::string text = Shell("script -qec \"stty cols 60; " + kLongListing +
                                 " | { sleep 1; wc -l; }\" /dev/null </dev/null")
                               .text;
  const std::string bars = R"((\rListing dates \[#*\.+\] [0-9]+%)+\r {59}\r)";
  const std::string end =
      "daybook: no more dates: the calendar ends on 2099-12-31\r\n" + std::to_string(kAllDates);
  EXPECT_TRUE(std::regex_match(text, std::regex(bars + end + "\r\n"))) << text;
}

}  // namespace
