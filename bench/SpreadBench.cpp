// How the cost of one call depends on what is asked: every form of a rule, every form of a date.
#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <map>

#include "Bench.h"

namespace orzcore::bench {
namespace {

constexpr short kNewYear = 101;

// One search, with all that it depends on.
struct Search {
  st_cyc_time rule;
  un_date_time reference;
  eCyclicalsBumped direction;
  short quarter_anchor;
};

un_date_time Next(const Search& search) {
  return OZDate::NextCycDate(search.direction, 0, 0, &search.rule, &search.reference,
                             search.quarter_anchor, eCalWeekStartSunday);
}

const char* DirectionName(eCyclicalsBumped direction) {
  return direction == eCyclicalsBumpedForward ? "forward" : "back";
}

struct RuleForm {
  const char* name;
  st_cyc_time rule;
  short quarter_anchor = kNewYear;
};

constexpr int kLast = OZDate::kCycLast;
constexpr int kOfMonth = 16;  // an ordinal times this and a month select a yearly weekday

constexpr RuleForm kRuleForms[] = {
    {"weekly mon", st_cyc_time::Of(eCycWeekly, 0, 0b10)},
    {"weekly mon,wed,fri", st_cyc_time::Of(eCycWeekly, 0, 0b101010)},
    {"alternate odd mon", st_cyc_time::Of(eCycAltWeekly, 1, 0b10)},
    {"alternate even tue,thu", st_cyc_time::Of(eCycAltWeekly, 0, 0b10100)},
    {"monthly 1", st_cyc_time::Of(eCycMonthly, 0, 1)},
    {"monthly 31", st_cyc_time::Of(eCycMonthly, 0, 31)},
    {"monthly last", st_cyc_time::Of(eCycMonthly, 0, kLast)},
    {"monthly 2nd tue", st_cyc_time::Of(eCycMonthly, 3, 2)},
    {"monthly 5th fri", st_cyc_time::Of(eCycMonthly, 6, 5)},
    {"monthly last fri", st_cyc_time::Of(eCycMonthly, 6, kLast)},
    {"quarterly day 45", st_cyc_time::Of(eCycQuarterly, 0, 45)},
    {"quarterly day 98", st_cyc_time::Of(eCycQuarterly, 0, 98)},
    {"quarterly last day", st_cyc_time::Of(eCycQuarterly, 0, kLast)},
    {"quarterly 1st mon", st_cyc_time::Of(eCycQuarterly, 2, 1)},
    {"quarterly 14th mon", st_cyc_time::Of(eCycQuarterly, 2, 14)},
    {"quarterly last fri", st_cyc_time::Of(eCycQuarterly, 6, kLast)},
    {"quarterly day 45 from 28 nov", st_cyc_time::Of(eCycQuarterly, 0, 45), 1128},
    {"quarterly last day from 1 feb", st_cyc_time::Of(eCycQuarterly, 0, kLast), 201},
    {"yearly 4 jul", st_cyc_time::Of(eCycYearly, 7, 4)},
    {"yearly 29 feb", st_cyc_time::Of(eCycYearly, 2, 29)},
    {"yearly 4th thu nov", st_cyc_time::Of(eCycYearly, 4 * kOfMonth + 11, 5)},
    {"yearly last mon may", st_cyc_time::Of(eCycYearly, 5 * kOfMonth + 5, 2)},
};

// The ends of the calendar, the base of the weeks, leap days and the ends of months and years.
constexpr un_date_time kEdges[] = {
    un_date_time::Of(1753, 1, 1),   un_date_time::Of(1753, 1, 31),  un_date_time::Of(1753, 4, 1),
    un_date_time::Of(1753, 12, 31), un_date_time::Of(1900, 2, 28),  un_date_time::Of(1983, 12, 26),
    un_date_time::Of(1984, 1, 1),   un_date_time::Of(1984, 1, 7),   un_date_time::Of(2000, 2, 29),
    un_date_time::Of(2024, 12, 31), un_date_time::Of(2096, 2, 29),  un_date_time::Of(2099, 1, 1),
    un_date_time::Of(2099, 10, 1),  un_date_time::Of(2099, 11, 30), un_date_time::Of(2099, 12, 31),
};

void AddRuleForms() {
  Random random;
  const auto dates = Inputs([&] { return random.Date(1770, 2080); });
  const auto edges =
      Inputs([&] { return kEdges[random.Between(0, static_cast<int>(std::size(kEdges)) - 1)]; });
  for (const RuleForm& form : kRuleForms) {
    for (const auto direction : {eCyclicalsBumpedForward, eCyclicalsBumpedBackward}) {
      const auto next = [=](un_date_time reference) {
        return Next({form.rule, reference, direction, form.quarter_anchor});
      };
      const std::string who = std::string(form.name) + ' ' + DirectionName(direction);
      Add("next occurrence, every form of a rule", who, dates, next, Converted(dates, next));
      Add("next occurrence, around the calendar's edges", who, edges, next, Converted(edges, next));
    }
  }
}

// A rule that names a day, within what its fields hold.
Search RandomSearch(Random& random) {
  const auto kind = static_cast<eCycKind>(random.Between(eCycWeekly, eCycYearly));
  int select = random.Between(0, kind == eCycAltWeekly ? 1 : 7);
  int value = random.Between(1, 127);
  if (kind == eCycYearly) {
    const bool fixed = select == 0;
    value = random.Between(1, fixed ? 31 : 7);
    select = select * kOfMonth + random.Between(1, 12);
  }
  return {st_cyc_time::Of(kind, select, value), random.Date(1753, 2099),
          static_cast<eCyclicalsBumped>(random.Between(0, 1)),
          static_cast<short>(random.Between(1, 12) * 100 + random.Between(1, 31))};
}

std::string Name(const Search& search) {
  constexpr const char* kKinds[] = {"weekly", "alternate", "monthly", "quarterly", "yearly"};
  return Format("%s %u:%u %s from %u-%u-%u", kKinds[search.rule.cycKind], search.rule.cycSelect,
                search.rule.cycValue, DirectionName(search.direction), search.reference.year,
                search.reference.month, search.reference.day);
}

// The time of 16 calls, the least of several rounds so that interruptions do not count.
std::chrono::nanoseconds Sample(const Search& search) {
  using Clock = std::chrono::steady_clock;
  auto least = std::chrono::nanoseconds::max();
  for (int round = 0; round < 8; ++round) {
    const auto begin = Clock::now();
    for (int i = 0; i < 16; ++i) benchmark::DoNotOptimize(Next(search));
    least = std::min<std::chrono::nanoseconds>(least, Clock::now() - begin);
  }
  return least;
}

// Times random searches shortly, and measures the cheapest, the middle and the dearest of them. The
// numbers in a name are `cycSelect` and `cycValue` of the rule.
void AddRandomRules() {
  Random random;
  std::multimap<std::chrono::nanoseconds, Search> ranking;
  for (std::size_t i = 0; i < kInputs; ++i) {
    const Search search = RandomSearch(random);
    ranking.emplace(Sample(search), search);
  }
  for (const std::size_t rank : {std::size_t{0}, kInputs / 2, kInputs - 1}) {
    const Search search = std::next(ranking.begin(), static_cast<std::ptrdiff_t>(rank))->second;
    const auto same = Inputs([&] { return search; });
    Add("next occurrence, random rules and dates", Name(search), same, Next, Converted(same, Next));
  }
}

bool Parses(const std::string& text) {
  un_date_time date = un_date_time::Of(2024, 3, 15, 600);
  OZParser::eParseResult result = OZParser::eParseUnset;
  const int status = OZParser::ParseDate(&result, 0, &date, text.c_str(), eCalWeekStartSunday, 1);
  benchmark::DoNotOptimize(date);
  return status == 0;
}

void AddDateForms(std::initializer_list<std::string> forms) {
  const auto accepted = Inputs([] { return true; });
  for (const std::string& form : forms) {
    Add("parse a date, every form", '"' + form + '"', Inputs([&] { return form; }), Parses,
        accepted);
  }
}

void ParseLongText(benchmark::State& state) {
  std::string text = "today ";
  const auto length = static_cast<std::size_t>(state.range(0));
  while (text.size() < length) text += text.size() % 10 == 9 ? ' ' : 'x';
  bool is_parsed = true;
  for (auto _ : state) is_parsed = is_parsed && Parses(text);
  if (!is_parsed) state.SkipWithError("the text is not a date");
}

}  // namespace

void AddSpreads() {
  AddRuleForms();
  AddRandomRules();
  AddDateForms({"", "none", "today", "tod", "tomorrow", "yesterday", "fri", "f", "this mon",
                "t mon", "next mon", "n mon", "last mon", "th", "mark", "fri x y z"});
  AddDateForms({"3/5", "3-5", "3.5", "3 5", "3/5/98", "3/5/1998", "3/5/", "  3/5  ", "12/31/2099",
                "2/29/2000", "mon 3/5"});
  AddDateForms({"jan 5", "5 jan", "january 5", "september 5", "december 5", "jan 5 99", "5-jan-99",
                "5jan99", "uar 5", "jan 5, 1999", "january 5, 1999", "wednesday, january 5, 1999"});
  AddDateForms({"3 d", "2 w", "3 m", "3 mth", "1 min", "5 wed", "1.5 d", "999 m", "+3 d", "-2 w",
                "+1 m", "- 1 mo"});
  Register("parse a date in a text of n characters", "ours", ParseLongText)
      ->ArgsProduct({{10, 100, 1000, 10000}});
}

}  // namespace orzcore::bench
