// The commands that show how fields read texts, and the messages of the program.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <ostream>
#include <regex>
#include <string>

#include "RunDaybook.h"

namespace {

constexpr const char* kEnd = "no more dates: the calendar ends on 2099-12-31";

struct Case {
  const char* arguments;
  const char* output;
  const char* error = "";  // without the program's name in front
  int status = 0;
  const char* input = "";
};

void PrintTo(const Case& test, std::ostream* out) { *out << test.arguments; }

class Answer : public testing::TestWithParam<Case> {};

TEST_P(Answer, IsExact) {
  const Case& test = GetParam();
  const Outcome output = RunDaybook(test.arguments, kOutput, test.input);
  EXPECT_EQ(output.status, test.status);
  EXPECT_EQ(output.text, test.output);

  std::string error = test.error;
  if (!error.empty()) error = "daybook: " + error + '\n';
  if (test.status == 2) error += "Try 'daybook --help'.\n";
  EXPECT_EQ(RunDaybook(test.arguments, kError, test.input).text, error);
}

const Case kParse[] = {
    {"parse date next fri", "value    2026-11-27\nresult   date\ndisplay  Fri-Nov 27\n"},
    {"parse date 31/1 --day-first", "value    2027-01-31\nresult   date\ndisplay  Sun-31 Jan\n"},
    {"parse date -2 w", "value    2026-11-04\nresult   interval\ndisplay  Wed-Nov 4\n"},
    {"parse date 2/30", "", "the date field rejects '2/30'", 1},
    {"parse time 3", "value    15:00\nresult   time\ndisplay  3:00pm\n"},
    {"parse interval 1.333 d",
     "value    19195/10 min\nresult   interval\ndisplay  1 d 7 h 59.5 min\n"},
    {"parse count 3 weeks", "value    3 W\nresult   interval\n"},
    {"parse datetime -90 m", "value    -90 M\nresult   interval\ndisplay  -1 h 30 min\n"},
    {"parse int ''", "value    none\nresult   none\n"},
    {"parse priority -- --", "value    255\nresult   priority\ndisplay  none\n"},
};
INSTANTIATE_TEST_SUITE_P(Parse, Answer, testing::ValuesIn(kParse));

const Case kNext[] = {
    {"next weekly mon,wed today --count 2",
     "2026-11-23  Mon  Mon-Nov 23\n2026-11-25  Wed  Wed-Nov 25\n"},
    {"next alternate odd mon 3/12/2024 --count 2",
     "2024-03-25  Mon  Mar 25,2024\n2024-04-08  Mon  Apr 8,2024\n"},
    {"next 'monthly last' 2/29/2024 --include --count 2",
     "2024-02-29  Thu  Feb 29,2024\n2024-03-31  Sun  Mar 31,2024\n"},
    {"next 'monthly 2nd tue' 3/12/2024 --back --count 1", "2024-02-13  Tue  Feb 13,2024\n"},
    {"next MONTHLY last Friday 3/1/2024 --count 1", "2024-03-29  Fri  Mar 29,2024\n"},
    {"next quarterly day 45 2/20/2024 --count 1", "2024-05-15  Wed  May 15,2024\n"},
    {"next quarterly day 1 from 1 nov 1/15/2024 --count 1", "2024-02-01  Thu  Feb 1,2024\n"},
    {"next yearly 4 jul 7/4/2024 --count 1", "2025-07-04  Fri  Jul 4,2025\n"},
    {"next yearly 4th thu nov 1/1/2024 --count 1", "2024-11-28  Thu  Nov 28,2024\n"},
    {"next yearly last mon may 5/27/2024 --count 1", "2025-05-26  Mon  May 26,2025\n"},
    {"next monthly 31 12/1/2099", "2099-12-31  Thu  Dec 31,2099\n", kEnd},
    {"next weekly sun 12/31/2099 --include", "", kEnd, 1},
    {"next weekly thu 12/31/2099 --include", "2099-12-31  Thu  Dec 31,2099\n", kEnd},
    {"next yearly 4 jul 3/1/1753 --back", "", "no more dates: the calendar begins on 1753-01-01",
     1},
};
INSTANTIATE_TEST_SUITE_P(Next, Answer, testing::ValuesIn(kNext));

const Case kRefusals[] = {
    {"", "", "a command is missing", 2},
    {"prase", "", "unknown command 'prase'; did you mean 'parse'?", 2},
    {"fields x", "", "'x' is one argument too many: fields takes none", 2},
    {"parse date", "", "TEXT is missing: parse KIND TEXT...", 2},
    {"parse day 5", "", "unknown KIND 'day'", 2},
    {"parse date 5 --count 3", "", "unknown option '--count'", 2},
    {"next weekly mon today --count", "", "option '--count' needs a value: N", 2},
    {"next weekly mon today --count 1.5", "",
     "--count is '1.5': it must be a whole number from 1 to 1000000", 2},
    {"next monthly 2nd tue", "", "next needs a DATE after the rule, such as today", 2},
    {"next hourly today", "",
     "the rule field rejects 'hourly': expected weekly, alternate, monthly, quarterly or yearly",
     1},
    {"next alternate mon today", "", "the rule field rejects 'mon': expected odd or even", 1},
    {"next monthly 2 tue today", "", "the rule field rejects 'tue': expected the end of the rule",
     1},
    {"next quarterly day 1 from 31 jan today", "",
     "the rule field rejects '31': expected a day, 1 to 28, and a month", 1},
    {"next yearly last mon today", "", "the rule field is incomplete: expected a month, jan to dec",
     1},
    {"next yearly 30 feb today", "", "the rule field rejects '30 feb'", 1},
};
INSTANTIATE_TEST_SUITE_P(Refusals, Answer, testing::ValuesIn(kRefusals));

const Case kFields[] = {
    {"fields --24-hour",
     "> 2:30\n"
     "FIELD     RESULT    VALUE             DISPLAY\n"
     "date      -\n"
     "time      time      02:30             02:30\n"
     "datetime  time      02:30             02:30\n"
     "interval  interval  1500/10 min       2 h 30 min\n"
     "count     -\nhours     -\nint       -\nreal      -\nmoney     -\npriority  -\n\n"
     "> 12\n"
     "FIELD     RESULT    VALUE             DISPLAY\n"
     "date      -\n"
     "time      time      12:00             12:00\n"
     "datetime  time      12:00             12:00\n"
     "interval  -\ncount     -\nhours     -\n"
     "int       int       12\n"
     "real      real      12.000\n"
     "money     real      12.000            $12.000\n"
     "priority  priority  12\n\n",
     "", 0, "2:30\n\n  \n12"},
};
INSTANTIATE_TEST_SUITE_P(Fields, Answer, testing::ValuesIn(kFields));

TEST(Clock, RefusesWhatIsNotATime) {
  for (const std::string now : {"", "today", "2026-02-30 10:00", "2026-11-18", "1752-12-31 10:00",
                                "2026-11-18 24:00", "2026-11-18 -1:30", "2026-11-18 09:30 "}) {
    const Outcome error = RunDaybook("parse date today", kError, "", now);
    EXPECT_EQ(error.status, 2);
    EXPECT_EQ(error.text.find("daybook: DAYBOOK_NOW is '" + now + "': it must be a date"), 0U);
  }
}

TEST(Help, GoesToStandardOutput) {
  for (const std::string command : {"", "parse", "next", "fields", "add", "list", "stress"}) {
    const Outcome help = RunDaybook(command + " --help", kOutput);
    const std::string usage = "Usage: daybook " + (command.empty() ? "COMMAND" : command) + ' ';
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_EQ(help.text.substr(0, usage.size()), usage);
    EXPECT_EQ(RunDaybook(command + " --help", kError).text, "");
  }
}

// The demonstration has a box that is drawn with line characters.
TEST(MessageBox, IsDrawnForTheLocale) {
  const std::string box = RunDaybook("next weekly mon today", "2>&1 >/dev/full").text;
  EXPECT_TRUE(std::regex_match(
      box, std::regex("\\+- Morvane -+\\+\n(\\| Writing the output [^]* Error Code: 108 [^]*\\|\n)"
                      "\\+-+ \\[OK\\] -\\+\n")))
      << box;
}

// Lists every date of the calendar, which is far more than a pipe can hold.
const std::string kLongListing =
    "'" DAYBOOK_PATH "' next weekly sun,mon,tue,wed,thu,fri,sat 1/1/1753 --include --count 200000";
constexpr int kAllDates = 126739;

TEST(LongListings, StopBetweenLinesWhenInterrupted) {
  std::signal(SIGINT, SIG_DFL);  // the command would inherit that it is ignored
  const std::string text = RunShell("{ timeout --foreground --preserve-status -s INT 0.5 " +
                                    kLongListing + "; echo \"=> $?\"; } 2>&1 | { sleep 1; cat; }")
                               .text;
  EXPECT_TRUE(text.ends_with("\ndaybook: stopped\n=> 130\n")) << text.substr(text.size() - 99);
  EXPECT_LT(std::count(text.begin(), text.end(), '\n'), kAllDates);
}

TEST(LongListings, ShowABarInATerminalAndClearIt) {
  const std::string text = RunShell("script -qec \"stty cols 60; " + kLongListing +
                                    " | { sleep 1; wc -l; }\" /dev/null </dev/null")
                               .text;
  const std::string bars = R"((\rListing dates \[#*\.+\] [0-9]+%)+\r {59}\r)";
  const std::string end = std::string("daybook: ") + kEnd + "\r\n" + std::to_string(kAllDates);
  EXPECT_TRUE(std::regex_match(text, std::regex(bars + end + "\r\n"))) << text;
}

}  // namespace
