#include <iostream>

#include "Commands.h"
#include "fields/FieldKinds.h"
#include "rules/Rule.h"
#include "terminal/Print.h"
#include "terminal/Progress.h"

std::string ExplainNext() {
  return "The last argument is DATE (quote it: 'next fri'). All words before it are RULE.\n\n" +
         std::string(kRuleHelp);
}

static void PrintDate(const un_date_time& date) {
  constexpr std::size_t kWeekday = 3;  // letters, at the beginning
  std::cout << IsoDate(date) << "  " << FullDate(date).substr(0, kWeekday) << "  "
            << DisplayDate(date) << '\n';
}

// Whether a text is a whole rule.
static bool IsRule(const std::string& text) {
  try {
    ReadRule(text);
    return true;
  } catch (const Rejection&) {
    return false;
  }
}

ExitStatus RunNext(const Options& options) {
  const Settings settings(options);
  const std::size_t words = options.Words().size();
  const std::string before = options.Text(0, words - 1);
  if (!IsRule(before) && IsRule(options.Text(0, words))) {
    throw UsageError("next needs a DATE after the rule, such as today");
  }
  const Rule rule = ReadRule(before);
  un_date_time date = ReadDate(options.Words().back(), OZDate::CurDateTime(), settings);
  const bool back = options.Has("--back");
  const int count = options.Number("--count", 1, 1000000, 5);

  int found = 0;
  Progress progress;
  int stop = progress.Phase("Listing dates", 0);
  while (stop == 0 && found < count &&
         rule.Advance(back ? eCyclicalsBumpedBackward : eCyclicalsBumpedForward,
                      options.Has("--include") && found == 0, &date)) {
    PrintDate(date);
    stop = progress.Cycle(++found, count);
  }
  progress.Finish();

  if (stop != 0) throw Stopped{};
  if (found == count) return kSuccess;
  std::cerr << "daybook: no more dates: the calendar "
            << (back ? "begins on " + IsoDate(OZDate::BegOfTime)
                     : "ends on " + IsoDate(OZDate::EndOfTime))
            << '\n';
  return found == 0 ? kNegative : kSuccess;
}
