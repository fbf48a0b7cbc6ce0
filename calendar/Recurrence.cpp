// The next occurrence of a recurring date.
#include <algorithm>
#include <bit>

#include "calendar/DayCount.h"
#include "orzcore/calendar.h"

namespace orzcore::calendar {
namespace {

constexpr int kSaturday = 7;
constexpr int kSunday = 1;
constexpr int kYearlyLastOrdinal = 5;  // in a yearly rule, 5 or more means the last
constexpr int kMonthsPerQuarter = 3;
constexpr int kQuartersPerYear = 4;

// Days of the year as the number month * 100 + day. So a quarter is 300, and a year is 1200.
constexpr int kFirstOfJanuary = 101;
constexpr int kLastOfDecember = 1231;
constexpr int kQuarterStep = 300;
constexpr int kYearStep = 1200;

// What one call of `NextCycDate` searches for.
struct Search {
  bool backward;
  bool includes_reference;
  st_cyc_time rule;
  un_date_time reference;

  int Select() const { return static_cast<int>(rule.cycSelect); }
  int Value() const { return static_cast<int>(rule.cycValue); }

  // Moves a date in the direction of the search. Returns 1 at an end of the calendar, else 0.
  int Step(un_date_time* date, int count, char unit) const {
    return backward ? OZDate::DateBack(date, count, unit) : OZDate::DateFwrd(date, count, unit);
  }

  // The reference date, or the day after it in the direction of the search.
  un_date_time FirstPossible() const {
    un_date_time date = reference;
    if (!includes_reference) Step(&date, 1, 'D');
    return date;
  }

  // Returns true if `date` is `goal` or lies past it in the direction of the search.
  bool HasReached(un_date_time date, un_date_time goal) const {
    const short order = OZDate::DateCompare(&date, &goal);
    return backward ? order <= 0 : order >= 0;
  }
};

bool IsWeekday(int number) { return number >= kSunday && number <= kSaturday; }

int Weekday(un_date_time date) { return WeekdayOfDayNumber(DayNumber(date)); }

// Returns the days from a date to the next `weekday`, 0 if the date itself is one.
int DaysToWeekday(un_date_time date, int weekday) {
  const int distance = weekday - Weekday(date);
  return distance >= 0 ? distance : distance + kDaysPerWeek;
}

// Moves a date to a weekday. With `last`, moves back to the last such day before the date.
// Otherwise moves forward to such a day, the first one (which may be the date itself) if `ordinal`
// is 1, the second one if it is 2. Returns 1 at the end of the calendar, else 0.
int MoveToWeekday(un_date_time* date, int weekday, int ordinal, bool last) {
  const int weeks = last ? -1 : ordinal - 1;
  const int days = DaysToWeekday(*date, weekday) + weeks * kDaysPerWeek;
  if (days >= 0) return OZDate::DateFwrd(date, days, 'D');
  OZDate::DateBack(date, -days, 'D');
  return 0;
}

// Returns the last day in the month of a date that is this weekday.
un_date_time LastWeekdayOfMonth(un_date_time date, int weekday) {
  const int year = static_cast<int>(date.year);
  const int month = static_cast<int>(date.month);
  const int last = MonthLength(year, month);
  const int distance = WeekdayOfDayNumber(DayNumber(year, month, last)) - weekday;
  const int days_back = distance >= 0 ? distance : distance + kDaysPerWeek;
  date = WithDate(date, {year, month, last - days_back});
  return date;
}

bool IsLastMonthOfCalendar(un_date_time date) {
  return date.year == kLastYear && date.month == kMonthsPerYear;
}

// Returns the days from a weekday to the nearest marked one in a direction, 0 if it is marked
// itself. Bit 0 of the mask is Sunday. The mask must not be 0.
int DaysToMarkedDay(unsigned mask, int weekday, bool backward) {
  const unsigned two_weeks = mask | mask << kDaysPerWeek;
  const int bit = weekday - 1;
  if (!backward) return std::countr_zero(two_weeks >> bit);
  const unsigned up_to_weekday = two_weeks & ((2U << (bit + kDaysPerWeek)) - 1);
  return bit + kDaysPerWeek + 1 - static_cast<int>(std::bit_width(up_to_weekday));
}

un_date_time NextInWeek(const Search& search, int reference_weekday) {
  const unsigned mask = search.rule.cycValue;
  if (mask == 0) return search.reference;
  un_date_time day = search.FirstPossible();
  int weekday = search.includes_reference ? reference_weekday : Weekday(day);
  if (!IsWeekday(weekday)) return search.reference;

  for (bool second_week = false;; second_week = true) {
    if (search.Step(&day, DaysToMarkedDay(mask, weekday, search.backward), 'D') != 0) break;
    if (search.rule.cycKind == eCycWeekly) return day;
    if (OZDate::IsWeekOdd(&day, eCalWeekStartSunday) == search.Select()) return day;
    if (second_week) {
      // Two even weeks follow each other around 1 January 1984. So the second week may be wrong,
      // too; the third one is returned.
      if (search.Step(&day, kDaysPerWeek, 'D') != 0) break;
      return day;
    }
    weekday = Weekday(day);
    const int to_next_week = search.backward ? weekday : kSaturday + 1 - weekday;
    if (search.Step(&day, to_next_week, 'D') != 0) break;
    weekday = search.backward ? kSaturday : kSunday;
  }
  return search.reference;
}

bool IsMonthAndDay(int anchor) {
  const int month = anchor / 100;
  const int day = anchor % 100;
  return month >= 1 && month <= kMonthsPerYear && day >= 1 && day <= kLongestMonth;
}

// Returns the first day of the quarter that contains a date. The quarter may begin in the year
// before the date. If its first month is too short for the anchor's day, the result is a day that
// does not exist.
un_date_time QuarterStart(un_date_time date, int anchor) {
  if (!IsMonthAndDay(anchor)) anchor = kFirstOfJanuary;
  const int in_year = static_cast<int>(date.month) * 100 + static_cast<int>(date.day);
  const int in_next_year = in_year + kYearStep;
  int year = static_cast<int>(date.year);
  int month = 0;
  for (int i = 0; i < kQuartersPerYear; ++i) {
    int begin = anchor + i * kQuarterStep;
    if (begin > kLastOfDecember) begin -= kYearStep;
    const int end = begin + kQuarterStep;
    month = begin / 100;
    if (begin <= in_year && in_year < end) break;
    if (begin <= in_next_year && in_next_year < end) {
      --year;
      break;
    }
  }
  return un_date_time::Of(year, month, anchor % 100, static_cast<int>(date.time));
}

struct Candidate {
  un_date_time date;
  bool clamped;  // to the end of the calendar
};

// A backward search gets the last day of the quarter that begins at `start`. A forward search gets
// the last day of an earlier quarter, the second one before it, and goes on from there. This
// decides what it returns at the end of the calendar.
Candidate LastDayOfQuarter(const Search& search, un_date_time start) {
  Candidate candidate = {start, false};
  if (search.backward) {
    candidate.clamped = OZDate::DateFwrd(&candidate.date, kMonthsPerQuarter, 'M') != 0;
  } else {
    OZDate::DateBack(&candidate.date, kMonthsPerQuarter, 'M');
  }
  OZDate::DateBack(&candidate.date, 1, 'D');
  return candidate;
}

// Returns the day that the rule names in the period that begins at `start`.
Candidate CandidateIn(const Search& search, un_date_time start, int period_months) {
  const bool monthly = search.rule.cycKind == eCycMonthly;
  Candidate candidate = {start, false};
  int value = search.Value();
  if (search.Select() == 0) {
    if (monthly) {
      const int last = MonthLength(static_cast<int>(start.year), static_cast<int>(start.month));
      if (value > last) value = last;
    } else if (value == OZDate::kCycLast) {
      return LastDayOfQuarter(search, start);
    }
    candidate.clamped = OZDate::DateFwrd(&candidate.date, -value, 'D') != 0;
    return candidate;
  }
  const bool last = value == OZDate::kCycLast;
  if (last && monthly && !IsLastMonthOfCalendar(start)) {
    return {LastWeekdayOfMonth(start, search.Select()), false};
  }
  // A last weekday is counted back from the start of the next period. The last period of the
  // calendar has no next one: there the move ends at 31 December 2099, and the count goes back from
  // that day.
  if (last) OZDate::DateFwrd(&candidate.date, period_months, 'M');
  candidate.clamped = MoveToWeekday(&candidate.date, search.Select(), value, last) != 0;
  return candidate;
}

un_date_time NextInPeriod(const Search& search, int quarter_anchor) {
  const bool monthly = search.rule.cycKind == eCycMonthly;
  const bool last_of_quarter =
      !monthly && search.Select() == 0 && search.Value() == OZDate::kCycLast;
  if (search.Select() != 0 && !IsWeekday(search.Select())) return search.reference;

  const int period_months = monthly ? 1 : kMonthsPerQuarter;
  un_date_time first_possible = search.FirstPossible();
  un_date_time start = search.reference;
  if (monthly) {
    start.day = 1;
  } else {
    start = QuarterStart(search.reference, quarter_anchor);
  }
  for (;;) {
    if (last_of_quarter && !search.backward &&
        OZDate::DateCompare(&start, &OZDate::EndOfTime) == 0) {
      return start;
    }
    const Candidate candidate = CandidateIn(search, start, period_months);
    if (candidate.clamped) {
      // Go back to the last period whose candidate is in the calendar. In a forward search, an
      // earlier `first_possible` makes the loop accept this candidate.
      OZDate::DateBack(&start, period_months, 'M');
      if (!search.backward) first_possible.year = kLastYear - 1;
      continue;
    }
    if (search.HasReached(candidate.date, first_possible)) return candidate.date;
    if (search.Step(&start, period_months, 'M') != 0) return candidate.date;
  }
}

un_date_time CutToMonthEnd(un_date_time date) {
  const int year = static_cast<int>(date.year);
  const int month = static_cast<int>(date.month);
  date =
      WithDate(date, {year, month, std::min(static_cast<int>(date.day), MonthLength(year, month))});
  return date;
}

un_date_time NextInYear(const Search& search) {
  const bool fixed = search.Select() <= kMonthsPerYear;
  const int ordinal = search.Select() / 16;
  const int month = fixed ? search.Select() : search.Select() % 16;
  const bool names_a_day = fixed ? search.rule.cycValue % 32 != 0 : IsWeekday(search.Value());
  if (month < 1 || month > kMonthsPerYear || !names_a_day) return search.reference;

  const un_date_time first_possible = search.FirstPossible();
  un_date_time candidate = search.reference;
  candidate.month = static_cast<std::uint32_t>(month) & 0xF;
  if (fixed) candidate.day = search.rule.cycValue % 32;
  for (;;) {
    if (!fixed) {
      const bool last = ordinal >= kYearlyLastOrdinal;
      candidate.day = 1;
      if (last) OZDate::DateFwrd(&candidate, 1, 'M');
      MoveToWeekday(&candidate, search.Value(), ordinal, last);
    }
    if (search.HasReached(candidate, first_possible)) break;
    un_date_time next = candidate;
    if (search.Step(&next, 1, 'Y') != 0) break;
    candidate = next;
  }
  // Cut only now: the search also compares days that do not exist, such as 29 February 2023.
  return CutToMonthEnd(candidate);
}

}  // namespace
}  // namespace orzcore::calendar

namespace calendar = orzcore::calendar;

un_date_time OZDate::NextCycDate(eCyclicalsBumped direction, short weekday, int include,
                                 const st_cyc_time* rule, const un_date_time* reference,
                                 short quarter_anchor, eCalWeekStart /*week_start*/) {
  const calendar::Search search = {.backward = direction != eCyclicalsBumpedForward,
                                   .includes_reference = include != 0,
                                   .rule = *rule,
                                   .reference = *reference};
  const bool is_in_calendar = calendar::IsMonthInCalendar(*reference);
  switch (rule->cycKind) {
    case eCycWeekly:
    case eCycAltWeekly:
      return is_in_calendar ? calendar::NextInWeek(search, weekday) : *reference;
    case eCycMonthly:
    case eCycQuarterly:
      return is_in_calendar ? calendar::NextInPeriod(search, quarter_anchor) : *reference;
    case eCycYearly:
      return is_in_calendar ? calendar::NextInYear(search) : *reference;
    default:
      return EndOfTime;
  }
}
