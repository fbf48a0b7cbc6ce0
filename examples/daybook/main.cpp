// daybook: a small organizer for the terminal, with files that several users share.

#include "Commands.h"
#include "fields/FieldCommands.h"

static constexpr std::size_t kAny = 1000;  // words of a text

static const std::string kDateOrder = " --month-first --day-first";
static const std::string kSettings = kDateOrder + " --12-hour --24-hour";
static const std::string kFields = "--date --time --length --priority --every --wait" + kSettings;

static const Program kDaybook = {
    .name = "daybook",
    .notes = R"(
'daybook COMMAND --help' explains a command. Words that begin with two hyphens are
options; after a single '--', no word is an option. The environment variable
DAYBOOK_NOW='2026-11-18 09:30' sets the current time.

Exit status: 0 success; 1 a rejected text, no date found, damage, or a failure;
2 wrong usage; 130 stopped with Ctrl-C. A message on standard error says why.
)",
    .clock = "DAYBOOK_NOW",
    .options = {{"--date", "DATE", "the date, or the first one of a rule (today)"},
                {"--time", "TIME", "when it begins"},
                {"--length", "LENGTH", "how long it takes"},
                {"--priority", "P", "how urgent it is, from 0, the highest, to 100"},
                {"--every", "RULE", "when it recurs; 'none' removes the rule"},
                {"--from", "DATE", "the first day (today)"},
                {"--to", "DATE", "the last day; '+2 w' counts from the first day"},
                {"--users", "N", "how many processes (4)"},
                {"--entries", "N", "how many entries each of them adds (100)"},
                {"--kill", "", "kill some of them now and then, and start them again"},
                {"--runs", "N", "wait until N such commands have used FILE (1)"},
                {"--count", "N", "how many dates to list (5)"},
                {"--back", "", "search backward"},
                {"--include", "", "DATE itself may be the first one listed"},
                {"--undo", "", "mark it as not done"},
                {"--yes", "", "do not ask"},
                {"--all", "", "list every entry once"},
                {"--find", "TEXT", "only entries with TEXT, in upper or lower case"},
                {"--json", "", "a JSON object per line, for scripts"},
                {"--wait", "SECONDS", "wait so long for other users; 0: not at all"},
                {"--month-first", "", "3/5 is 5 March"},
                {"--day-first", "", "3/5 is 3 May"},
                {"--12-hour", "", "3 is 15:00"},
                {"--24-hour", "", "3 is 03:00"}},
    .commands =
        {{"add", "FILE WORDS...", 2, kAny, "Store an entry. If there is no FILE, it is made.",
          kFields, RunAdd, ExplainEntry},
         {"edit", "FILE ID [WORDS...]", 2, kAny, "Change the given parts of an entry.", kFields,
          RunEdit, ExplainEntry},
         {"done", "FILE ID", 2, 2, "Mark an entry as done; one that recurs, on all its dates.",
          "--undo --wait" + kSettings, RunDone},
         {"list", "FILE", 1, 1, "List the entries on their dates.",
          "--from --to --all --find --json --wait" + kSettings, RunList, ExplainList},
         {"month", "FILE [DATE]", 1, kAny, "Show a month, with the days that have entries.",
          "--wait" + kSettings, RunMonth, ExplainMonth},
         {"remove", "FILE ID...", 2, kAny, "Take entries out, damaged ones too, and say which.",
          "--wait" + kSettings, RunRemove},
         {"export", "FILE", 1, 1, "Write a daybook as iCalendar.", "--wait", RunExport,
          ExplainExport},
         {"copy", "FILE NEWFILE", 2, 2, "Copy a daybook to a new name, without damaged entries.",
          "--wait", RunCopy},
         {"rename", "FILE NEWFILE", 2, 2, "Give a daybook a new name, if nobody else uses it.",
          "--wait", RunRename},
         {"delete", "FILE", 1, 1, "Delete a daybook, if nobody else uses it.", "--yes --wait",
          RunDelete},
         {"next", "RULE... DATE", 2, kAny, "List the dates of a rule after a date.",
          "--count --back --include" + kDateOrder, RunNext, ExplainNext},
         {"parse", "KIND TEXT...", 2, kAny, "Show how one kind of field reads a text.", kSettings,
          RunParse, ExplainParse},
         {"fields", "", 0, 0, "Show how every kind of field reads each input line.", kSettings,
          RunFields},
         {"stress", "FILE", 1, 1, "Let many users change FILE, and look for losses.",
          "--users --entries --kill --runs", RunStress, ExplainStress},
         {"stress-user", "FILE RUN USER FIRST ENTRIES", 5, 5, "", "", RunStressUser}},
    .version = DAYBOOK_VERSION};

int main(int argc, char** argv) { return kDaybook.Run({argv + 1, argv + argc}); }
