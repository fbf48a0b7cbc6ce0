#include "rules/Rule.h"

#include <optional>
#include <span>

#include "orzcore/foundation.h"
#include "terminal/Command.h"
#include "terminal/Text.h"

const char* const kRuleHelp =
    R"(Rules. The first word, weekdays and months need only three letters:
  weekly mon,wed,fri     every week on these weekdays
  alternate odd mon      every other week, the odd ones; or 'alternate even tue,thu'
  monthly 31             this day, or the last of a shorter month
  monthly last           the last day of the month
  monthly 2nd tue        a weekday, 1st to 5th or last
  quarterly day 45       this day of the quarter, 1 to 98; or 'quarterly last day'
  quarterly 1st mon      a weekday, 1st to 14th or last
  ... from 1 nov         after a quarterly rule: a quarter begins on this day, 1 to 28
  yearly 4 jul           this date in every year
  yearly 4th thu nov     a weekday of a month, 1st to 4th or last
In a month with four Tuesdays, the 5th Tuesday is the first one of the next
month. The same holds for the weekdays and the days of a quarter. Odd and even
weeks are counted from January 1984, and are not those of ISO 8601.
)";

namespace {

using Names = std::span<const char* const>;
constexpr const char* kKinds[] = {"weekly", "alternate", "monthly", "quarterly", "yearly"};
constexpr const char* kWeeks[] = {"even", "odd"};
constexpr const char* kWeekdays[] = {"sunday",   "monday", "tuesday", "wednesday",
                                     "thursday", "friday", "saturday"};
constexpr const char* kMonths[] = {"january",   "february", "march",    "april",
                                   "may",       "june",     "july",     "august",
                                   "september", "october",  "november", "december"};

// The index of a word in a list of names. The first three letters of a name are enough.
std::optional<int> PlaceOf(const std::string& word, Names names) {
  constexpr std::size_t kLeastLetters = 3;
  const auto length = static_cast<std::uint32_t>(word.size());
  for (std::size_t place = 0; place < names.size() && length >= kLeastLetters; ++place) {
    if (strnicmp(word.c_str(), names[place], length) == 0) return static_cast<int>(place);
  }
  return std::nullopt;
}

// The number in a word such as "2nd".
std::optional<int> Ordinal(const std::string& word, int most) {
  const std::size_t length = word.find_first_not_of("0123456789");
  if (length == std::string::npos) return std::nullopt;
  for (const char* const ending : {"st", "nd", "rd", "th"}) {
    if (stricmp(word.c_str() + length, ending) != 0) continue;
    return WholeNumber(word.substr(0, length), 1, most);
  }
  return std::nullopt;
}

// The words of a rule, which are read one after the other.
class Words {
 public:
  explicit Words(const std::string& text) : words_(SplitWords(text)) {}

  bool AtEnd() const { return next_ == words_.size(); }
  std::string Next() const { return AtEnd() ? "" : words_[next_]; }
  bool NextIs(const char* word) const { return stricmp(Next().c_str(), word) == 0; }

  bool TakeIf(const char* word) {
    const bool fits = NextIs(word);
    if (fits) ++next_;
    return fits;
  }

  // Moves to the following word, and returns the number that the caller has read in this one.
  int Take(std::optional<int> number, const char* expected) {
    if (!number) Fail(expected);
    ++next_;
    return *number;
  }

  int TakeName(const char* expected, Names names) { return Take(PlaceOf(Next(), names), expected); }
  int TakeNumber(const char* expected, int most) {
    return Take(WholeNumber(Next(), 1, most), expected);
  }
  int TakeOrdinal(const char* expected, int most) { return Take(Ordinal(Next(), most), expected); }

  // Weekdays and months are numbered from 1.
  int TakeWeekday() { return TakeName("a weekday, sun to sat", kWeekdays) + 1; }
  int TakeMonth() { return TakeName("a month, jan to dec", kMonths) + 1; }

  [[noreturn]] void Fail(const char* expected) const {
    throw Rejection("the rule field " + (AtEnd() ? "is incomplete" : "rejects '" + Next() + "'") +
                    ": expected " + expected);
  }

 private:
  const std::vector<std::string> words_;
  std::size_t next_ = 0;
};

int TakeWeekdayMask(Words& words) {
  int mask = 0;
  do {
    mask |= 1 << (words.TakeWeekday() - 1);
  } while (!words.AtEnd());
  return mask;
}

struct DayAndMonth {
  int day;
  int month;
};

DayAndMonth TakeDayAndMonth(Words& words, const char* expected, int most_days) {
  constexpr unsigned short kLeapYear = 2000;
  const int day = words.TakeNumber(expected, most_days);
  const std::string name = words.Next();
  const int month = words.TakeMonth();
  if (day > OZDate::DaysInMonth(static_cast<unsigned short>(month - 1), kLeapYear)) {
    throw Rejection("the rule field rejects '" + std::to_string(day) + ' ' + name + "'");
  }
  return {day, month};
}

// The days and weekdays that a rule for a month or a quarter can name.
struct Period {
  eCycKind kind;
  int most_days;
  int most_weekdays;
  const char* expected;
};
constexpr Period kMonth = {eCycMonthly, 31, 5, "a day, 1 to 31, an ordinal, 1st to 5th, or last"};
constexpr Period kQuarter = {eCycQuarterly, OZDate::kCycLast - 1, 14,
                             "a day, 1 to 98, an ordinal, 1st to 14th, or last"};

st_cyc_time TakeDayOfPeriod(Words& words, const Period& period) {
  constexpr int kDayMode = 0;
  if (words.TakeIf("last")) {
    const bool day = words.TakeIf("day") || words.AtEnd() || words.NextIs("from");
    return st_cyc_time::Of(period.kind, day ? kDayMode : words.TakeWeekday(), OZDate::kCycLast);
  }
  if (words.TakeIf("day") || WholeNumber(words.Next(), 1, period.most_days)) {
    return st_cyc_time::Of(period.kind, kDayMode,
                           words.TakeNumber(period.expected, period.most_days));
  }
  const int ordinal = words.TakeOrdinal(period.expected, period.most_weekdays);
  return st_cyc_time::Of(period.kind, words.TakeWeekday(), ordinal);
}

Rule ReadWeekly(Words& words) { return {st_cyc_time::Of(eCycWeekly, 0, TakeWeekdayMask(words))}; }

Rule ReadAlternate(Words& words) {
  const int odd = words.TakeName("odd or even", kWeeks);
  return {st_cyc_time::Of(eCycAltWeekly, odd, TakeWeekdayMask(words))};
}

Rule ReadMonthly(Words& words) { return {TakeDayOfPeriod(words, kMonth)}; }

Rule ReadQuarterly(Words& words) {
  constexpr int kMostAnchorDays = 28;  // some months do not have a later day
  const st_cyc_time cycle = TakeDayOfPeriod(words, kQuarter);
  if (!words.TakeIf("from")) return {cycle};
  const auto [day, month] = TakeDayAndMonth(words, "a day, 1 to 28, and a month", kMostAnchorDays);
  return {cycle, static_cast<short>(month * 100 + day)};
}

Rule ReadYearly(Words& words) {
  constexpr int kMostDays = 31;
  constexpr int kLast = 5;
  constexpr const char* kExpected = "a day and a month, an ordinal, 1st to 4th, or last";
  if (WholeNumber(words.Next(), 1, kMostDays)) {
    const auto [day, month] = TakeDayAndMonth(words, kExpected, kMostDays);
    return {st_cyc_time::Of(eCycYearly, month, day)};
  }
  const int ordinal = words.TakeIf("last") ? kLast : words.TakeOrdinal(kExpected, kLast - 1);
  const int weekday = words.TakeWeekday();
  return {st_cyc_time::Of(eCycYearly, ordinal * 16 + words.TakeMonth(), weekday)};
}

// In the order of `kKinds`.
constexpr Rule (*kReaders[])(Words&) = {ReadWeekly, ReadAlternate, ReadMonthly, ReadQuarterly,
                                        ReadYearly};

short CalendarWeekday(const un_date_time& date) {
  std::int32_t day_number = 0;
  return OZDate::DayOfWeek(&date, &day_number, eCalWeekStartSunday, 1);
}

// A weekly search that reaches the end of the calendar returns the date where it began, whether the
// rule has that date or not.
bool HasDate(const st_cyc_time& cycle, const un_date_time& date) {
  if (cycle.cycKind != eCycWeekly && cycle.cycKind != eCycAltWeekly) return true;
  const bool odd = OZDate::IsWeekOdd(&date, eCalWeekStartSunday) != 0;
  return (cycle.cycValue >> (CalendarWeekday(date) - 1) & 1) != 0 &&
         (cycle.cycKind == eCycWeekly || (cycle.cycSelect != 0) == odd);
}

}  // namespace

Rule ReadRule(const std::string& text) {
  Words words(text);
  const Rule rule =
      kReaders[words.TakeName("weekly, alternate, monthly, quarterly or yearly", kKinds)](words);
  if (!words.AtEnd()) words.Fail("the end of the rule");
  return rule;
}

bool Rule::Advance(eCyclicalsBumped direction, bool include, un_date_time* date) const {
  const un_date_time next = OZDate::NextCycDate(direction, CalendarWeekday(*date), include ? 1 : 0,
                                                &cycle, date, quarter_anchor, eCalWeekStartSunday);
  const int order =
      OZDate::DateCompare(&next, date) * (direction == eCyclicalsBumpedForward ? 1 : -1);
  const bool found = order > 0 || (order == 0 && include && HasDate(cycle, next));
  if (found) *date = next;
  return found;
}
