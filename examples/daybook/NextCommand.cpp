#include <iostream>

#include "Command.h"
#include "Print.h"
#include "Progress.h"
#include "Rule.h"
#include "Text.h"

void ExplainNext(std::ostream& out) {
  out << "The last argument is DATE, in any form of a date field (quote it: 'next fri'); all\n"
         "words in front of it are RULE, quoted or not. The dates behind DATE are listed.\n\n"
      << kRuleHelp;
}

// A weekly search that runs off the calendar hands back the date where it started, so that alone
// does not tell whether the rule has it.
static bool HasDate(const st_cyc_time& rule, const un_date_time& date) {
  if (rule.cycKind != eCycWeekly && rule.cycKind != eCycAltWeekly) return true;
  const unsigned week = OZDate::IsWeekOdd(&date, eCalWeekStartSunday) != 0 ? 1 : 0;
  return (rule.cycValue >> (CalendarWeekday(date) - 1) & 1) != 0 &&
         (rule.cycKind == eCycWeekly || rule.cycSelect == week);
}

// Moves a date to the next occurrence. Returns false at the end of the calendar.
static bool Advance(const Rule& rule, const Options& options, bool include, un_date_time* date) {
  const auto direction = options.back ? eCyclicalsBumpedBackward : eCyclicalsBumpedForward;
  const un_date_time next =
      OZDate::NextCycDate(direction, CalendarWeekday(*date), include ? 1 : 0, &rule.cycle, date,
                          rule.quarter_anchor, options.week_start);
  const int order = OZDate::DateCompare(&next, date) * (options.back ? -1 : 1);
  const bool found = order > 0 || (order == 0 && include && HasDate(rule.cycle, next));
  if (found) *date = next;
  return found;
}

static void PrintDate(const un_date_time& date) {
  constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  std::cout << IsoDate(date) << "  " << kWeekdays[CalendarWeekday(date) - 1] << "  "
            << DisplayDate(date) << '\n';
}

ExitStatus RunNext(const Options& options) {
  if (options.words.size() < 2) throw UsageError("next needs a RULE and a DATE");
  const Rule rule = ReadRule(SplitWords(Join({options.words.begin(), options.words.end() - 1})));
  const auto reference = ReadDate(options.words.back(), options);
  if (!reference) throw UsageError("DATE is '" + options.words.back() + "': it must be a date");

  un_date_time date = *reference;
  int found = 0;
  Progress progress;
  int stop = progress.Phase("Listing dates", 0);
  while (stop == 0 && found < options.count &&
         Advance(rule, options, options.include && found == 0, &date)) {
    PrintDate(date);
    stop = progress.Cycle(++found, options.count);
  }
  progress.Finish();

  if (stop != 0) {
    std::cerr << "daybook: stopped; dates listed: " << found << '\n';
    return kStopped;
  }
  if (found == options.count) return kSuccess;
  std::cerr << "daybook: no more dates: the calendar "
            << (options.back ? "begins on " + IsoDate(OZDate::BegOfTime)
                             : "ends on " + IsoDate(OZDate::EndOfTime))
            << '\n';
  return found == 0 ? kNegative : kSuccess;
}
