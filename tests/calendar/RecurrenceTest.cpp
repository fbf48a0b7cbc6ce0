#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <sstream>
#include <string>

#include "support/Dates.h"

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int kForward = eCyclicalsBumpedForward;
constexpr int kBack = eCyclicalsBumpedBackward;
constexpr short kJanuaryFirst = 101;

st_cyc_time Rule(unsigned kind, unsigned select, unsigned value) {
  return {.reserved1 = 0x7FF,  // the application's bits must not matter
          .cycKind = kind & 0x1F,
          .reserved2 = 3,
          .cycSelect = select & 0x7F,
          .cycValue = value & 0x7F};
}

un_date_time Next(int direction, bool include, st_cyc_time rule, un_date_time reference,
                  short anchor = kJanuaryFirst) {
  std::int32_t ignored = 0;
  const short weekday = OZDate::DayOfWeek(&reference, &ignored, eCalWeekStartSunday, 1);
  return OZDate::NextCycDate(static_cast<eCyclicalsBumped>(direction), include ? weekday : short{0},
                             include ? 1 : 0, &rule, &reference, anchor, eCalWeekStartMonday);
}

// The special cases, which a search day by day does not show. A row: kind, select and value of the
// rule; the date where the search starts; f for forward or b for back, in upper case if that date
// is included; the result; the anchor if it is not 101.
constexpr char kRows[] = R"(
  every other week; 34 is Monday and Friday; around 1984 two weeks are even:
    1 0 2 2024-03-12 f 2024-03-18    1 1 2 2024-03-12 f 2024-03-25    1 1 2 2024-03-12 b 2024-03-11
    1 0 2 2024-03-12 b 2024-03-04    1 1 34 2024-03-16 f 2024-03-25    1 1 2 1983-12-26 f 1984-01-09
    1 1 65 1984-01-07 b 1983-12-24
  no such day up to the end of the calendar, and a wanted week that is neither odd nor even:
    0 0 1 2099-12-31 f 2099-12-31    0 0 64 1753-01-01 b 1753-01-01
    1 7 127 2024-03-12 f 2024-03-24
  days that a month does not have; day 0 is the first; the end of the calendar:
    2 0 31 2024-02-10 f 2024-02-29    2 0 99 2024-02-29 F 2024-02-29
    2 0 0 2024-02-29 f 2024-03-01    2 3 5 2024-02-01 f 2024-03-05    2 0 15 2099-12-20 f 2099-12-15
    2 1 5 2099-12-20 f 2099-11-29    2 0 15 1753-01-10 b 1753-01-15
  quarters: a day in the next one, anchors, the end of the calendar, anchors that are no day:
    3 0 95 2024-02-10 f 2024-04-04    3 0 1 2024-01-15 f 2024-02-01 a1101
    3 0 1 2024-01-15 b 2023-11-01 a1101    3 0 1 2024-01-10 f 2024-01-15 a115
    3 0 1 2099-11-10 f 2099-10-01    3 0 99 2099-11-10 f 2099-06-30
    3 0 99 2099-12-31 f 2099-12-31 a1231    3 0 1 2024-02-10 f 2024-04-01 a9999
    3 0 1 2024-02-10 f 2024-04-01 a-5
  years: both ends of the calendar, and days that the month does not have:
    4 7 4 2099-08-01 f 2099-07-04    4 7 4 1753-03-01 b 1753-07-04    4 2 29 2023-01-01 f 2023-02-28
    4 2 29 2023-03-01 f 2024-02-29    4 2 29 2024-03-01 f 2025-02-28
    4 2 29 2025-03-01 b 2024-02-29    4 2 29 2025-03-01 B 2025-02-28
    4 4 31 2024-04-30 F 2024-04-30    4 4 31 2025-05-01 b 2024-04-30
  rules that name no day, and reference dates outside the calendar:
    0 0 0 2024-03-12 f 2024-03-12    2 8 1 2024-03-12 f 2024-03-12    4 0 1 2024-03-12 f 2024-03-12
    4 13 1 2024-03-12 b 2024-03-12    4 5 32 2024-03-12 f 2024-03-12
    4 75 9 2024-03-12 f 2024-03-12
    2 0 1 0-0-0 b 0-0-0    2 0 1 4095-14-1 f 4095-14-1    3 0 1 1-1-15 f 1-1-15 a1101 )";

TEST(NextCycDate, FindsTheNearestOccurrence) {
  std::istringstream lines(kRows);
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with(':')) continue;
    std::istringstream row(line);
    unsigned kind = 0, select = 0, value = 0;
    un_date_time from = {}, to = {};
    char direction = '\0';
    while (row >> kind >> select >> value >> from >> direction >> to) {
      short anchor = kJanuaryFirst;
      if ((row >> std::ws).peek() == 'a') row.ignore() >> anchor;
      from.time = to.time = 777;
      EXPECT_EQ(Next(std::tolower(direction) == 'b' ? kBack : kForward,
                     std::isupper(direction) != 0, Rule(kind, select, value), from, anchor),
                to)
          << "kind " << kind << " select " << select << " value " << value << " from " << from
          << direction << " anchor " << anchor;
    }
    EXPECT_TRUE(row.eof()) << line;
  }
  const un_date_time reference = un_date_time::Of(2024, 3, 12, 777);
  for (unsigned kind = 5; kind < 32; ++kind) {
    EXPECT_EQ(Next(kBack, true, Rule(kind, 1, 1), reference), OZDate::EndOfTime) << kind;
  }
  const st_cyc_time weekly = Rule(0, 0, 1);
  EXPECT_EQ(OZDate::NextCycDate(eCyclicalsBumpedForward, 8, 1, &weekly, &reference, 101,
                                eCalWeekStartSunday),
            reference);
}

// Returns true if a rule names a day. It looks only at this day.
bool Occurs(st_cyc_time rule, sys_days day) {
  const year_month_day ymd(day);
  const int weekday = static_cast<int>(std::chrono::weekday(day).c_encoding()) + 1;
  const int select = static_cast<int>(rule.cycSelect);
  const int value = static_cast<int>(rule.cycValue);
  const auto day_of = [&](std::chrono::month first_month) {
    return static_cast<int>((day - sys_days(ymd.year() / first_month / 1)).count()) + 1;
  };
  const auto days_left = [&](std::chrono::month last_month) {
    return static_cast<int>((sys_days(ymd.year() / last_month / std::chrono::last) - day).count());
  };
  const unsigned month = unsigned(ymd.month());
  const std::chrono::month quarter((month - 1) / 3 * 3 + 1);
  const bool monthly = rule.cycKind == eCycMonthly;
  const std::chrono::month first = monthly ? ymd.month() : quarter;
  const std::chrono::month last = monthly ? ymd.month() : quarter + std::chrono::months(2);
  switch (rule.cycKind) {
    case eCycWeekly:
      return (value >> (weekday - 1) & 1) != 0;
    case eCycMonthly:
    case eCycQuarterly:
      if (select != 0 && weekday != select) return false;
      if (value == 99) return days_left(last) < (select == 0 ? 1 : 7);
      return select == 0 ? day_of(first) == value : (day_of(first) - 1) / 7 + 1 == value;
    default:
      if (static_cast<int>(month) != (select <= 12 ? select : select % 16)) return false;
      if (select <= 12) return static_cast<int>(unsigned(ymd.day())) == value;
      if (weekday != value) return false;
      return select / 16 >= 5 ? days_left(ymd.month()) < 7
                              : (day_of(ymd.month()) - 1) / 7 + 1 == select / 16;
  }
}

// Returns a rule without special cases, so that a search day by day finds the same dates.
st_cyc_time AnyPlainRule(std::minstd_rand& random) {
  const auto draw = [&](unsigned first, unsigned last) {
    return first + static_cast<unsigned>(random() % (last - first + 1));
  };
  const bool last = draw(0, 4) == 0;
  const bool by_day = draw(0, 1) == 0;
  const unsigned weekday = by_day ? 0 : draw(1, 7);
  switch (draw(0, 3)) {
    case 0:
      return Rule(eCycWeekly, 0, draw(1, 127));
    case 1:
      return Rule(eCycMonthly, weekday, last ? 99 : by_day ? draw(1, 28) : draw(1, 4));
    case 2:
      return Rule(eCycQuarterly, weekday, last ? 99 : by_day ? draw(1, 90) : draw(1, 12));
    default:
      return by_day ? Rule(eCycYearly, draw(1, 12), draw(1, 28))
                    : Rule(eCycYearly, draw(1, 5) * 16 + draw(1, 12), draw(1, 7));
  }
}

TEST(NextCycDate, AgreesWithASearchDayByDay) {
  std::minstd_rand random(19840101);
  const auto span = static_cast<unsigned>((kLastDay - kFirstDay).count()) - 2000;
  for (int i = 0; i < 20000; ++i) {
    const st_cyc_time rule = AnyPlainRule(random);
    const sys_days reference = kFirstDay + days(1000 + static_cast<int>(random() % span));
    const int direction = static_cast<int>(random() % 2);
    const bool include = random() % 2 != 0;
    const days step(direction == kBack ? -1 : 1);
    sys_days expected = include ? reference : reference + step;
    while (!Occurs(rule, expected)) expected += step;
    ASSERT_EQ(Next(direction, include, rule, DateOf(reference, 5)), DateOf(expected, 5))
        << "kind " << rule.cycKind << " select " << rule.cycSelect << " value " << rule.cycValue
        << " from " << DateOf(reference) << " direction " << direction << " include " << include;
  }
}

TEST(NextCycDate, ReturnsForAnyBitsOfRuleAndDate) {
  std::minstd_rand random(4711);
  for (std::uint32_t i = 0; i < 200000; ++i) {
    const st_cyc_time rule = st_cyc_time::FromNumber(static_cast<std::uint32_t>(random() * 2U));
    const auto reference = un_date_time::FromNumber(static_cast<std::uint32_t>(random() * 2U + i));
    const auto anchor = static_cast<short>(random());
    const un_date_time found = OZDate::NextCycDate(
        static_cast<eCyclicalsBumped>(random() % 2), static_cast<short>(random() % 9),
        static_cast<int>(random() % 2), &rule, &reference, anchor, eCalWeekStartSunday);
    const un_date_time expected_time = rule.cycKind > 4 ? OZDate::EndOfTime : reference;
    ASSERT_EQ(found.time, expected_time.time);
  }
}

}  // namespace
