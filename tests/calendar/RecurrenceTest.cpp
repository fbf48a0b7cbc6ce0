#include <gtest/gtest.h>

#include <random>

#include "support/Dates.h"

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using std::literals::chrono_literals::operator""y;

constexpr short kJanuaryFirst = 101;

st_cyc_time Rule(unsigned kind, unsigned select, unsigned value) {
  return {.reserved1 = 0x7FF,  // the application's bits must not matter
          .cycKind = kind & 0x1F,
          .reserved2 = 3,
          .cycSelect = select & 0x7F,
          .cycValue = value & 0x7F};
}

un_date_time Next(eCyclicalsBumped direction, bool include, st_cyc_time rule,
                  un_date_time reference, short anchor = kJanuaryFirst) {
  std::int32_t ignored = 0;
  const short weekday = OZDate::DayOfWeek(&reference, &ignored, eCalWeekStartSunday, 1);
  return OZDate::NextCycDate(direction, include ? weekday : short{0}, include ? 1 : 0, &rule,
                             &reference, anchor, eCalWeekStartMonday);
}

struct Occurrence {
  unsigned kind, select, value;
  year_month_day from, to;
};

// The special cases, which a search day by day does not show. First every other week: 34 is Monday
// and Friday, two weeks around 1984 are even, and 7 is neither odd nor even. Then days that a month
// does not have (day 0 is the first), the ends of the calendar, rules that name no day, and
// reference dates outside the calendar.
constexpr Occurrence kForward[] = {
    {1, 0, 2, 2024y / 3 / 12, 2024y / 3 / 18},     {1, 1, 2, 2024y / 3 / 12, 2024y / 3 / 25},
    {1, 1, 34, 2024y / 3 / 16, 2024y / 3 / 25},    {1, 1, 2, 1983y / 12 / 26, 1984y / 1 / 9},
    {0, 0, 1, 2099y / 12 / 31, 2099y / 12 / 31},   {1, 7, 127, 2024y / 3 / 12, 2024y / 3 / 24},
    {1, 7, 127, 2099y / 12 / 20, 2099y / 12 / 20}, {2, 0, 31, 2024y / 2 / 10, 2024y / 2 / 29},
    {2, 0, 0, 2024y / 2 / 29, 2024y / 3 / 1},      {2, 3, 5, 2024y / 2 / 1, 2024y / 3 / 5},
    {2, 0, 15, 2099y / 12 / 20, 2099y / 12 / 15},  {2, 1, 5, 2099y / 12 / 20, 2099y / 11 / 29},
    {3, 0, 95, 2024y / 2 / 10, 2024y / 4 / 4},     {3, 0, 1, 2099y / 11 / 10, 2099y / 10 / 1},
    {3, 0, 99, 2099y / 11 / 10, 2099y / 6 / 30},   {4, 7, 4, 2099y / 8 / 1, 2099y / 7 / 4},
    {4, 2, 29, 2023y / 1 / 1, 2023y / 2 / 28},     {4, 2, 29, 2023y / 3 / 1, 2024y / 2 / 29},
    {4, 2, 29, 2024y / 3 / 1, 2025y / 2 / 28},     {0, 0, 0, 2024y / 3 / 12, 2024y / 3 / 12},
    {2, 8, 1, 2024y / 3 / 12, 2024y / 3 / 12},     {4, 0, 1, 2024y / 3 / 12, 2024y / 3 / 12},
    {4, 5, 32, 2024y / 3 / 12, 2024y / 3 / 12},    {4, 75, 9, 2024y / 3 / 12, 2024y / 3 / 12},
    {2, 0, 1, 4095y / 14 / 1, 4095y / 14 / 1},
};

constexpr Occurrence kBack[] = {
    {1, 1, 2, 2024y / 3 / 12, 2024y / 3 / 11},  {1, 0, 2, 2024y / 3 / 12, 2024y / 3 / 4},
    {1, 1, 65, 1984y / 1 / 7, 1983y / 12 / 24}, {0, 0, 64, 1753y / 1 / 1, 1753y / 1 / 1},
    {1, 1, 127, 1753y / 1 / 4, 1753y / 1 / 4},  {1, 7, 127, 1753y / 1 / 12, 1753y / 1 / 12},
    {2, 0, 15, 1753y / 1 / 10, 1753y / 1 / 15}, {4, 7, 4, 1753y / 3 / 1, 1753y / 7 / 4},
    {4, 2, 29, 2025y / 3 / 1, 2024y / 2 / 29},  {4, 4, 31, 2025y / 5 / 1, 2024y / 4 / 30},
    {4, 13, 1, 2024y / 3 / 12, 2024y / 3 / 12}, {2, 0, 1, 0000y / 0 / 0, 0000y / 0 / 0},
};

// Forward from a date to a day of the quarter. The last anchors are no day, so that the quarters
// begin on 1 January.
constexpr struct {
  unsigned value;
  year_month_day from, to;
  short anchor;
} kQuarters[] = {
    {1, 2024y / 1 / 15, 2024y / 2 / 1, 1101},  {1, 2024y / 1 / 10, 2024y / 1 / 15, 115},
    {1, 2024y / 2 / 10, 2024y / 3 / 31, 1231}, {99, 2099y / 12 / 31, 2099y / 12 / 31, 1231},
    {1, 2024y / 2 / 10, 2024y / 4 / 1, 100},   {1, 2024y / 2 / 10, 2024y / 4 / 1, 132},
    {1, 2024y / 2 / 10, 2024y / 4 / 1, 1302},  {1, 2024y / 2 / 10, 2024y / 4 / 1, 9999},
    {1, 2024y / 2 / 10, 2024y / 4 / 1, -5},    {1, 0001y / 1 / 15, 0001y / 1 / 15, 1101},
};

void Check(const Occurrence& row, eCyclicalsBumped direction, short anchor = kJanuaryFirst,
           bool include = false) {
  EXPECT_EQ(Next(direction, include, Rule(row.kind, row.select, row.value), DateOf(row.from, 777),
                 anchor),
            DateOf(row.to, 777))
      << "kind " << row.kind << " select " << row.select << " value " << row.value << " from "
      << DateOf(row.from) << " direction " << direction << " anchor " << anchor;
}

TEST(NextCycDate, FindsTheNearestOccurrence) {
  for (const Occurrence& row : kForward) Check(row, eCyclicalsBumpedForward);
  for (const Occurrence& row : kBack) Check(row, eCyclicalsBumpedBackward);
  for (const auto& row : kQuarters) {
    Check({3, 0, row.value, row.from, row.to}, eCyclicalsBumpedForward, row.anchor);
  }
  Check({3, 0, 1, 2024y / 1 / 15, 2023y / 11 / 1}, eCyclicalsBumpedBackward, 1101);
  Check({2, 0, 99, 2024y / 2 / 29, 2024y / 2 / 29}, eCyclicalsBumpedForward, 101, true);
  Check({4, 4, 31, 2024y / 4 / 30, 2024y / 4 / 30}, eCyclicalsBumpedForward, 101, true);
  Check({4, 2, 29, 2025y / 3 / 1, 2025y / 2 / 28}, eCyclicalsBumpedBackward, 101, true);
  const un_date_time reference = un_date_time::Of(2024, 3, 12, 777);
  for (unsigned kind = 5; kind < 32; ++kind) {
    EXPECT_EQ(Next(eCyclicalsBumpedBackward, true, Rule(kind, 1, 1), reference), OZDate::EndOfTime);
  }
  const st_cyc_time weekly = Rule(0, 0, 1);  // 8 is no weekday
  EXPECT_EQ(OZDate::NextCycDate(eCyclicalsBumpedForward, 8, 1, &weekly, &reference, 101,
                                eCalWeekStartSunday),
            reference);
}

// Returns true if a rule names a day. It looks only at this day.
bool Occurs(st_cyc_time rule, sys_days day) {
  const year_month_day ymd(day);
  const unsigned weekday = std::chrono::weekday(day).c_encoding() + 1;
  const unsigned month = unsigned(ymd.month());
  const unsigned select = rule.cycSelect;
  const unsigned value = rule.cycValue;
  // The day's number in the month or the quarter, and the number of days after it.
  const bool quarterly = rule.cycKind == eCycQuarterly;
  const std::chrono::month first(quarterly ? (month - 1) / 3 * 3 + 1 : month);
  const auto last =
      ymd.year() / (first + std::chrono::months(quarterly ? 2 : 0)) / std::chrono::last;
  const auto number = unsigned((day - sys_days(ymd.year() / first / 1)).count()) + 1;
  const auto days_left = (sys_days(last) - day).count();
  switch (rule.cycKind) {
    case eCycWeekly:
      return (value >> (weekday - 1) & 1) != 0;
    case eCycMonthly:
    case eCycQuarterly:
      if (select != 0 && weekday != select) return false;
      if (value == 99) return days_left < (select == 0 ? 1 : 7);
      return (select == 0 ? number : (number - 1) / 7 + 1) == value;
    default:
      if (select <= 12) return month == select && number == value;
      if (month != select % 16 || weekday != value) return false;
      return select / 16 >= 5 ? days_left < 7 : (number - 1) / 7 + 1 == select / 16;
  }
}

// Returns a rule without special cases, so that a search day by day finds the same dates.
st_cyc_time AnyPlainRule(std::minstd_rand& random) {
  const auto draw = [&](unsigned first, unsigned last) {
    return first + static_cast<unsigned>(random() % (last - first + 1));
  };
  const bool by_day = draw(0, 1) == 0;
  const unsigned weekday = by_day ? 0 : draw(1, 7);
  const unsigned kind = draw(eCycMonthly - 1, eCycYearly);
  if (kind == eCycMonthly - 1) return Rule(eCycWeekly, 0, draw(1, 127));
  if (kind == eCycYearly) {
    return by_day ? Rule(kind, draw(1, 12), draw(1, 28))
                  : Rule(kind, draw(1, 5) * 16 + draw(1, 12), weekday);
  }
  const unsigned months = kind == eCycMonthly ? 1 : 3;
  const bool last = draw(0, 4) == 0;
  return Rule(kind, weekday, last ? 99 : by_day ? draw(1, 28 * months) : draw(1, 4 * months));
}

TEST(NextCycDate, AgreesWithASearchDayByDay) {
  std::minstd_rand random(19840101);
  const auto span = static_cast<unsigned>((kLastDay - kFirstDay).count()) - 2000;
  for (int i = 0; i < 20000; ++i) {
    const st_cyc_time rule = AnyPlainRule(random);
    const sys_days from = kFirstDay + days(1000 + static_cast<int>(random() % span));
    const bool back = random() % 2 != 0;
    const bool include = random() % 2 != 0;
    const days step(back ? -1 : 1);
    sys_days to = include ? from : from + step;
    while (!Occurs(rule, to)) to += step;
    Check({rule.cycKind, rule.cycSelect, rule.cycValue, from, to},
          back ? eCyclicalsBumpedBackward : eCyclicalsBumpedForward, kJanuaryFirst, include);
    if (HasFailure()) return;
  }
}

TEST(NextCycDate, ReturnsForAnyBitsOfRuleAndDate) {
  std::minstd_rand random(4711);
  for (std::uint32_t i = 0; i < 200000; ++i) {
    const st_cyc_time rule = st_cyc_time::FromNumber(static_cast<std::uint32_t>(random() * 2U));
    const auto reference = un_date_time::FromNumber(static_cast<std::uint32_t>(random() * 2U + i));
    const un_date_time found =
        OZDate::NextCycDate(static_cast<eCyclicalsBumped>(random() % 2),
                            static_cast<short>(random() % 9), static_cast<int>(random() % 2), &rule,
                            &reference, static_cast<short>(random()), eCalWeekStartSunday);
    ASSERT_EQ(found.time, rule.cycKind > 4 ? OZDate::EndOfTime.time : reference.time);
  }
}

}  // namespace
