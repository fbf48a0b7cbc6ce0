// The iCalendar export, read back with libical: its dates must be those of the rule.
#include <libical/ical.h>

#include <algorithm>
#include <string>
#include <vector>

#include "RunDaybook.h"

namespace {

struct Export {
  const char* rule;
  const char* first;  // where the search for dates begins
  bool has_rule;      // whether iCalendar can say it
};

const Export kExports[] = {
    {"weekly mon,wed,sun", "1/5/2026", true},
    {"alternate odd mon,sun", "1/5/2026", true},
    {"alternate even sat", "1/5/1980", false},
    {"monthly 31", "1/31/2026", true},
    {"monthly 29", "1/5/2026", true},
    {"monthly last", "1/5/2026", true},
    {"monthly 2nd tue", "1/5/2026", true},
    {"monthly last fri", "1/5/2026", true},
    {"monthly 5th tue", "1/5/2026", false},
    {"quarterly day 28", "1/5/2026", true},
    {"quarterly day 45", "1/5/2026", false},
    {"quarterly last day from 1 nov", "1/5/2026", true},
    {"quarterly last mon", "1/5/2026", true},
    {"quarterly 3rd mon from 1 feb", "1/5/2026", true},
    {"quarterly 1st mon from 5 feb", "1/5/2026", false},
    {"yearly 29 feb", "1/5/2026", true},
    {"yearly 4 jul", "1/5/2026", true},
    {"yearly last mon may", "1/5/2026", true},
    {"yearly 4th thu nov", "1/5/2026", true},
};

void Collect(icalcomponent* /*event*/, icaltime_span* span, void* dates) {
  const icaltimetype day = icaltime_from_timet_with_zone(span->start, 1, nullptr);
  static_cast<std::vector<std::string>*>(dates)->push_back(icaltime_as_ical_string(day));
}

constexpr std::size_t kMost = 1000;  // dates of an event without a rule

// Returns the first dates of an exported entry, each in a line.
std::string DatesIn(const std::string& text) {
  icalcomponent* const calendar = icalparser_parse_string(text.c_str());
  if (calendar == nullptr || icalcomponent_count_errors(calendar) != 0) return "wrong: " + text;
  std::vector<std::string> dates;
  icalcomponent_foreach_recurrence(
      icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT),
      icaltime_from_string("17530101"), icaltime_from_string("21000101"), Collect, &dates);
  icalcomponent_free(calendar);
  std::sort(dates.begin(), dates.end());
  dates.resize(std::min(dates.size(), kMost));
  std::string lines;
  for (const std::string& date : dates) lines += date + '\n';
  return lines;
}

TEST_F(Daybook, ExportsTheDatesOfEveryRule) {
  for (const Export& row : kExports) {
    SCOPED_TRACE(row.rule);
    directory.Write("rule", std::string(row.rule) + ' ');
    directory.Write("first", row.first);
    const std::string text =
        Shell(
            "rm -f f; daybook add f --date $(cat first) --every \"$(cat rule)\" X >/dev/null; "
            "daybook export f")
            .text;
    EXPECT_EQ(text.find("\r\nRRULE:") != std::string::npos, row.has_rule) << text;
    const Outcome next = Shell(
        "daybook next $(cat rule first) --include --count 1000 2>/dev/null | cut -c -10 | tr -d -");
    EXPECT_NE(next.text, "");
    EXPECT_EQ(DatesIn(text), next.text);
  }
}

}  // namespace
