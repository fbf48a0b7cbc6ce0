// daybook: a small organizer in the terminal, whose files several users share.

#include "Commands.h"

static constexpr std::size_t kAny = 1000;  // words of a text

static const Program kDaybook = {
    .name = "daybook",
    .notes = R"(
'daybook COMMAND --help' explains a command. What begins with two hyphens is an
option, up to a lone '--'. DAYBOOK_NOW='2026-11-18 09:30' in the environment
fixes the current time.

Exit status: 0 success; 1 a rejected text, nothing found, damage, or a failure,
which a message box explains; 2 wrong usage; 130 stopped with Ctrl-C.
)",
    .clock = "DAYBOOK_NOW",
    .options = {{"--date", "DATE", "its date, or the first one (today)"},
                {"--time", "TIME", "when it begins"},
                {"--length", "LENGTH", "how long it takes"},
                {"--priority", "P", "how urgent it is, from 0, the highest, to 100"},
                {"--every", "RULE", "when it recurs; 'none' to end that"},
                {"--from", "DATE", "the first day (today)"},
                {"--to", "DATE", "the last day, which may count from the first: '+2 w'"},
                {"--users", "N", "how many processes (4)"},
                {"--entries", "N", "how many entries each of them adds (100)"},
                {"--kill", "", "kill some of them now and then, and start them again"},
                {"--runs", "N", "how many such commands share FILE, each on any machine (1)"},
                {"--count", "N", "how many dates are listed (5)"},
                {"--back", "", "search backward"},
                {"--include", "", "DATE itself may be the first"},
                {"--day-first", "", "3/5 is 3 May"},
                {"--24-hour", "", "a bare 3 is 03:00"}},
    .commands = {
        {"add", "FILE WORDS...", 2, kAny, "Store an entry; a missing FILE is made.",
         "--date --time --length --priority --every --day-first --24-hour", RunAdd, ExplainEntry},
        {"edit", "FILE ID [WORDS...]", 2, kAny, "Change what is given of an entry.",
         "--date --time --length --priority --every --day-first --24-hour", RunEdit, ExplainEntry},
        {"done", "FILE ID", 2, 2, "Mark an entry as done.", "", RunDone},
        {"list", "FILE", 1, 1, "List the entries on their dates.",
         "--from --to --day-first --24-hour", RunList, ExplainList},
        {"copy", "FILE NEWFILE", 2, 2, "Copy a daybook.", "", RunCopy},
        {"rename", "FILE NEWFILE", 2, 2, "Give a daybook a new name.", "", RunRename},
        {"delete", "FILE", 1, 1, "Delete a daybook.", "", RunDelete},
        {"next", "RULE... DATE", 2, kAny, "List the dates of a rule behind a date.",
         "--count --back --include --day-first", RunNext, ExplainNext},
        {"parse", "KIND TEXT...", 2, kAny, "Show what one kind of field makes of a text.",
         "--day-first --24-hour", RunParse, ExplainParse},
        {"fields", "", 0, 0, "Show what all kinds make of each line of the input.",
         "--day-first --24-hour", RunFields},
        {"stress", "FILE", 1, 1, "Have many users share one FILE, and look for losses.",
         "--users --entries --kill --runs", RunStress, ExplainStress}}};

int main(int argc, char** argv) { return kDaybook.Run({argv + 1, argv + argc}); }
