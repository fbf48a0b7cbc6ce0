// The next occurrence of a rule, compared with libical's recurrence iterator.
#include <libical/ical.h>

#include <memory>

#include "Bench.h"

namespace orzcore::bench {
namespace {

struct RuleRow {
  const char* name;
  st_cyc_time rule;
  const char* rfc_rule;  // the same for libical
};

constexpr int kMondayWednesdayFriday = 0b0101010;
constexpr int kOddWeeks = 1;
constexpr int kTuesday = 3;
constexpr int kThursday = 5;
constexpr int kFourthInNovember = 4 * 16 + 11;

// Of several ways to write a rule for libical, the fastest.
constexpr RuleRow kRules[] = {
    {"next mon, wed, fri", st_cyc_time::Of(eCycWeekly, 0, kMondayWednesdayFriday),
     "FREQ=WEEKLY;WKST=SU;BYDAY=MO,WE,FR"},
    {"next odd mon, wed, fri", st_cyc_time::Of(eCycAltWeekly, kOddWeeks, kMondayWednesdayFriday),
     "FREQ=WEEKLY;INTERVAL=2;WKST=SU;BYDAY=MO,WE,FR"},
    {"next monthly 15", st_cyc_time::Of(eCycMonthly, 0, 15), "FREQ=MONTHLY;BYMONTHDAY=15"},
    {"next monthly 2nd tue", st_cyc_time::Of(eCycMonthly, kTuesday, 2), "FREQ=MONTHLY;BYDAY=2TU"},
    {"next monthly last tue", st_cyc_time::Of(eCycMonthly, kTuesday, OZDate::kCycLast),
     "FREQ=MONTHLY;BYDAY=-1TU"},
    {"next quarterly day 10", st_cyc_time::Of(eCycQuarterly, 0, 10),
     "FREQ=MONTHLY;BYMONTH=1,4,7,10;BYMONTHDAY=10"},
    {"next quarterly 2nd tue", st_cyc_time::Of(eCycQuarterly, kTuesday, 2),
     "FREQ=MONTHLY;BYMONTH=1,4,7,10;BYDAY=2TU"},
    {"next yearly 4 jul", st_cyc_time::Of(eCycYearly, 7, 4), "FREQ=YEARLY;BYMONTH=7;BYMONTHDAY=4"},
    {"next yearly 4th thu nov", st_cyc_time::Of(eCycYearly, kFourthInNovember, kThursday),
     "FREQ=YEARLY;BYMONTH=11;BYDAY=4TH"},
};

auto OurNext(const RuleRow& row) {
  return [rule = row.rule](un_date_time reference) {
    constexpr short kJanuaryFirst = 101;
    return OZDate::NextCycDate(eCyclicalsBumpedForward, 0, 0, &rule, &reference, kJanuaryFirst,
                               eCalWeekStartSunday);
  };
}

std::chrono::year_month_day ToDay(const icaltimetype& ical) {
  return {std::chrono::year(ical.year), std::chrono::month(static_cast<unsigned>(ical.month)),
          std::chrono::day(static_cast<unsigned>(ical.day))};
}

icaltimetype ToIcal(un_date_time date) {
  icaltimetype ical = icaltime_null_date();
  ical.year = static_cast<int>(date.year);
  ical.month = static_cast<int>(date.month);
  ical.day = static_cast<int>(date.day);
  return ical;
}

// What libical is given for a reference date.
struct IcalStart {
  icaltimetype after;  // the first day that may be the result
  icaltimetype begin;  // where the rule begins: the same day, or one in a week of the right parity
};

IcalStart ToIcalStart(un_date_time reference) {
  un_date_time after = reference;
  OZDate::DateFwrd(&after, 1, 'D');
  un_date_time begin = after;
  if (OZDate::IsWeekOdd(&begin, eCalWeekStartSunday) == 0) OZDate::DateBack(&begin, 1, 'W');
  return {ToIcal(after), ToIcal(begin)};
}

using IcalIterator = std::unique_ptr<icalrecur_iterator, decltype(&icalrecur_iterator_free)>;

icaltimetype NextFrom(icalrecur_iterator* iterator, const icaltimetype& after) {
  for (;;) {
    const icaltimetype next = icalrecur_iterator_next(iterator);
    if (icaltime_compare_date_only(next, after) >= 0 || icaltime_is_null_time(next)) return next;
  }
}

void AddIcal(const RuleRow& row, const std::vector<un_date_time>& references,
             const std::vector<un_date_time>& next) {
  const icalrecurrencetype rule = icalrecurrencetype_from_string(row.rfc_rule);
  const auto starts = Converted(references, ToIcalStart);
  const bool is_alternate = row.rule.cycKind == eCycAltWeekly;
  const auto begin = [is_alternate](const IcalStart& start) {
    return is_alternate ? start.begin : start.after;
  };
  // As a program does that looks at one event after the other.
  const auto with_new_iterator = [=](const IcalStart& start) {
    const IcalIterator iterator(icalrecur_iterator_new(rule, begin(start)),
                                icalrecur_iterator_free);
    return NextFrom(iterator.get(), start.after);
  };
  Add(row.name, "libical", starts, with_new_iterator, next, ToDay);

  // As a program can do that asks for the same event again and again. Not for weekly rules: their
  // iterators give wrong days after they were set to an earlier date.
  if (row.rule.cycKind == eCycWeekly || is_alternate) return;
  const std::shared_ptr<icalrecur_iterator> kept(
      icalrecur_iterator_new(rule, ToIcal(un_date_time::Of(1984, 1, 8))), icalrecur_iterator_free);
  const auto with_kept_iterator = [=](const IcalStart& start) {
    icalrecur_iterator_set_start(kept.get(), start.after);
    return NextFrom(kept.get(), start.after);
  };
  Add(row.name, "libical, iterator kept", starts, with_kept_iterator, next, ToDay);
}

}  // namespace

void AddRecurrence() {
  Random random;
  const auto references = Inputs([&] { return random.Date(1985, 2090); });
  for (const RuleRow& row : kRules) {
    const auto next = Converted(references, OurNext(row));
    Add(row.name, "ours", references, OurNext(row), next);
    AddIcal(row, references, next);
  }
}

}  // namespace orzcore::bench
