// What the commands print, and how they show what happens.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <regex>
#include <string>

#include "RunDaybook.h"
#include "support/TestFiles.h"

namespace {

// A command that a user types, and what it prints.
struct Case {
  const char* arguments;
  const char* output;
  const char* error = "";  // without the name of the program in front
  int status = 0;
  const char* input = "";
};

constexpr const char* kEnd = "no more dates: the calendar ends on 2099-12-31";

// One after the other, in one directory.
const Case kCases[] = {
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
    {"add f --date 'next fri' --time 930p --length '5 h' --priority hi Night shift",
     "stored as 1: Fri-Nov 27,2026 9:30pm-2:30am +1\n"},
    {"add f --every 'weekly sat,mon' --time noon --length 30m Swim",
     "stored as 2: recurs, next Sat-Nov 21,2026 12:00pm-12:30pm\n"},
    {"add f --date 25/12 --day-first Presents", "stored as 3: Fri-25 Dec 2026\n"},
    {"add f --time 3 --24-hour \"$(printf 'Steer\\033[2J\\302\\233')\"",
     "stored as 4: Wed-Nov 18,2026 03:00\n"},
    {"add f --date 2/30 X", "",
     "the date field rejects '2/30'; it accepts: tomorrow, next fri, 3/5, 5 jan 99, 2 w, +3 d", 1},
    {"add f --time 25:00 X", "",
     "the time field rejects '25:00'; it accepts: 9:30, 930p, noon, now, none", 1},
    {"add f --length '25 h' X", "",
     "the length field rejects '25 h'; it accepts: 2:30, 1.5 h, 20 m, up to 24 h", 1},
    {"add f --priority 101 X", "",
     "the priority field rejects '101'; it accepts: hi, lo, c5, 35, none", 1},
    {"add f --every 'weekly mox' X", "",
     "the rule field rejects 'mox': expected a weekday, sun to sat", 1},
    {"add f $(printf %237s | tr ' ' x)", "", "the text has 237 bytes, and an entry holds 236", 1},
    {"add f '' ' '", "", "the text is empty", 1},
    {"list f --to '+1 w'",
     "Wed-Nov 18 to Wed-Nov 25: 3 dates\n"
     "Date         Time             Pri  ID    Entry\n"
     "Wed-Nov 18   3:00am                 4    Steer?[2J?\n"
     "Sat-Nov 21*  12:00pm-12:30pm        2  ~ Swim\n"
     "Mon-Nov 23   12:00pm-12:30pm        2  ~ Swim\n"},
    {"edit f 1 --date '-1 w' --time none --priority none Day shift",
     "stored as 1: Fri-Nov 20,2026 5 h\n"},
    {"edit f 2 --every none", "stored as 2: Wed-Nov 18,2026 12:00pm-12:30pm\n"},
    {"edit f 4 --length 25h", "",
     "the length field rejects '25h'; it accepts: 2:30, 1.5 h, 20 m, up to 24 h", 1},
    {"edit f 4", "", "edit needs WORDS or an option that changes the entry", 2},
    {"done f 3", "done 3: Fri-Dec 25,2026  Presents\n"},
    {"done f 5", "", "there is no entry 5", 1},
    {"done f 0", "", "ID is '0': it must be the number of an entry", 2},
    {"list f --from 'nov 18' --to 'dec 31'",
     "Wed-Nov 18 to Thu-Dec 31: 4 dates\n"
     "Date        Time             Pri  ID    Entry\n"
     "Wed-Nov 18  3:00am                 4    Steer?[2J?\n"
     "Wed-Nov 18  12:00pm-12:30pm        2    Swim\n"
     "Fri-Nov 20  5 h                    1    Day shift\n"
     "Fri-Dec 25                         3  x Presents\n"},
    {"done f 3 --undo --day-first", "not done 3: Fri-25 Dec 2026  Presents\n"},
    {"list f --find PRES --json",
     "{\"id\":3,\"date\":\"2026-12-25\",\"done\":false,\"recurs\":false,\"text\":\"Presents\"}\n"},
    {"list f --all --to today", "", "--all takes no --from and no --to", 2},
    {"month f --day-first",
     "November 2026\n"
     " Mon  Tue  Wed  Thu  Fri  Sat  Sun\n"
     "                                1\n"
     "  2    3    4    5    6    7    8\n"
     "  9   10   11   12   13   14   15\n"
     " 16   17  [18]* 19   20*  21   22\n"
     " 23   24   25   26   27   28   29\n"
     " 30\n"},
    {"remove f 2 4",
     "removed 2: Wed-Nov 18,2026 12:00pm-12:30pm  Swim\n"
     "removed 4: Wed-Nov 18,2026 3:00am  Steer?[2J?\n"},
    {"edit f 4 X", "", "there is no entry 4", 1},
    {"add f Next", "stored as 5: Wed-Nov 18,2026\n"},
    {"add f --every 'weekly mon' --date 12/1/2026 Jog",
     "stored as 6: recurs, next Mon-Dec 7,2026\n"},
    {"list f --find JOG | tail -1", "Mon-Dec 7              6  ~ Jog\n"},
    {"stress-user f 1 0 0 x", "", "'x' must be a number from 0 to 100000", 2},
    {"delete f", "", "delete needs --yes where it cannot ask", 2},
    {"copy f g && cmp f g", ""},
    {"rename g h && ls",
     "f\n"
     "h\n"},
    {"delete h --yes && ls", "f\n"},
};

TEST(Daybook, AnswersEveryCommand) {
  const TestDirectory directory;
  for (const Case& run : kCases) {
    SCOPED_TRACE(run.arguments);
    const Outcome outcome = RunShell("cd '" + directory.Path("") + "'; printf '" + run.input +
                                     "' | { daybook " + run.arguments + "; } 2>.errors");
    EXPECT_EQ(outcome.status, run.status);
    EXPECT_EQ(outcome.text, run.output);
    std::string error = run.error;
    if (!error.empty()) error = "daybook: " + error + '\n';
    if (run.status == 2) error += "Try 'daybook --help'.\n";
    EXPECT_EQ(directory.Read(".errors"), error);
  }
}

// The settings of the user's environment.
struct Setting {
  const char* variable;
  const char* command;
  const char* output;
};
const Setting kSettings[] = {
    {"LC_ALL=en_US.UTF-8", "parse date 3/5 | head -1", "value    2027-03-05\n"},
    {"LC_ALL=de_DE.UTF-8", "parse date 3/5 | head -1", "value    2027-05-03\n"},
    {"LC_ALL=en_US.UTF-8", "parse time 3 | head -1", "value    15:00\n"},
    {"LC_ALL=de_DE.UTF-8", "parse time 3 | head -1", "value    03:00\n"},
    {"LC_ALL=en_US.UTF-8", "month f | sed -n 2p", " Sun  Mon  Tue  Wed  Thu  Fri  Sat\n"},
    {"LC_ALL=de_DE.UTF-8", "month f | sed -n 2p", " Mon  Tue  Wed  Thu  Fri  Sat  Sun\n"},
    {"TZ=XST5", "export f | grep STAMP", "DTSTAMP:20261118T143000Z\r\n"},
};

TEST(Daybook, HasTheSettingsOfItsUser) {
  const TestDirectory directory;
  const std::string begin =
      "cd '" + directory.Path("") + "'; export LOCPATH='" LOCALE_DIRECTORY "' ";
  RunShell(begin + "; daybook add f X");
  for (const Setting& row : kSettings) {
    EXPECT_EQ(RunShell(begin + row.variable + "; daybook " + row.command).text, row.output)
        << row.variable;
  }
}

TEST(Export, TellsFilesWithTheSameNameApart) {
  const TestDirectory directory;
  EXPECT_EQ(RunShell("cd '" + directory.Path("") +
                     "'; mkdir d; daybook add f X >d/out; cp f d; "
                     "for f in f ./f d/f; do daybook export $f; done | grep UID: | sort -u | wc -l")
                .text,
            "2\n");
}

TEST(Clock, RefusesWhatIsNotATime) {
  for (const std::string now : {"", "today", "2026-02-30 10:00", "2026-11-18", "1752-12-31 10:00",
                                "2026-11-18 24:00", "2026-11-18 -1:30", "2026-11-18 09:30 "}) {
    const Outcome error = RunShell("DAYBOOK_NOW='" + now + "' daybook parse date today 2>&1");
    EXPECT_EQ(error.status, 2);
    EXPECT_EQ(error.text.find("daybook: DAYBOOK_NOW is '" + now + "': it must be a date"), 0U);
  }
}

TEST(Help, GoesToStandardOutput) {
  for (const std::string command : {"", "parse", "next", "fields", "add", "list", "stress"}) {
    const Outcome help = RunShell("daybook " + command + " --help 2>/dev/null");
    const std::string usage = "Usage: daybook " + (command.empty() ? "COMMAND" : command) + ' ';
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_EQ(help.text.substr(0, usage.size()), usage);
  }
}

// The demonstration has a box that is drawn with line characters.
TEST(MessageBox, IsDrawnForTheLocale) {
  const std::string box = RunShell("daybook next weekly mon today 2>&1 >/dev/full").text;
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
