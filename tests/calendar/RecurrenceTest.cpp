#include <gtest/gtest.h>

#include <random>
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

struct Case {
  unsigned kind, select, value;
  int year, month, day;  // the reference date
  int direction;
  bool include;
  int to_year, to_month, to_day;
  short anchor = kJanuaryFirst;
};

constexpr Case kCases[] = {
    // Weekly and alternating: 42 is Monday, Wednesday and Friday, 34 Monday and Friday.
    {0, 0, 42, 2024, 3, 12, kForward, false, 2024, 3, 13},
    {0, 0, 42, 2024, 3, 12, kBack, false, 2024, 3, 11},
    {0, 0, 42, 2024, 3, 13, kForward, true, 2024, 3, 13},
    {0, 0, 42, 2024, 3, 13, kBack, true, 2024, 3, 13},
    {0, 0, 42, 2024, 3, 13, kForward, false, 2024, 3, 15},
    {1, 0, 2, 2024, 3, 12, kForward, false, 2024, 3, 18},
    {1, 1, 2, 2024, 3, 12, kForward, false, 2024, 3, 25},
    {1, 1, 2, 2024, 3, 12, kBack, false, 2024, 3, 11},
    {1, 0, 2, 2024, 3, 12, kBack, false, 2024, 3, 4},
    {1, 1, 34, 2024, 3, 16, kForward, false, 2024, 3, 25},
    {1, 1, 2, 1983, 12, 26, kForward, false, 1984, 1, 9},  // the base week counts twice
    {1, 1, 65, 1984, 1, 7, kBack, false, 1983, 12, 24},
    {0, 0, 1, 2099, 12, 31, kForward, false, 2099, 12, 31},  // no such day is left
    {0, 0, 64, 1753, 1, 1, kBack, false, 1753, 1, 1},
    {1, 7, 127, 2024, 3, 12, kForward, false, 2024, 3, 24},  // a week that is never right
    // Monthly, by day and by weekday.
    {2, 0, 31, 2024, 2, 10, kForward, false, 2024, 2, 29},
    {2, 0, 99, 2024, 2, 29, kForward, false, 2024, 3, 31},
    {2, 0, 99, 2024, 2, 29, kForward, true, 2024, 2, 29},
    {2, 0, 99, 2024, 2, 29, kBack, false, 2024, 1, 31},
    {2, 0, 0, 2024, 2, 29, kForward, false, 2024, 3, 1},  // day 0 is the first
    {2, 3, 2, 2024, 3, 1, kForward, false, 2024, 3, 12},
    {2, 3, 2, 2024, 3, 12, kForward, false, 2024, 4, 9},
    {2, 6, 99, 2024, 3, 1, kForward, false, 2024, 3, 29},
    {2, 3, 5, 2024, 2, 1, kForward, false, 2024, 3, 5},  // runs into the next month
    {2, 0, 15, 2099, 12, 20, kForward, false, 2099, 12, 15},
    {2, 1, 5, 2099, 12, 20, kForward, false, 2099, 11, 29},
    {2, 0, 15, 1753, 1, 10, kBack, false, 1753, 1, 15},
    // Quarterly, with anchors.
    {3, 0, 1, 2024, 2, 10, kForward, false, 2024, 4, 1},
    {3, 0, 45, 2024, 2, 10, kForward, false, 2024, 2, 14},
    {3, 0, 45, 2024, 2, 20, kForward, false, 2024, 5, 15},
    {3, 0, 95, 2024, 2, 10, kForward, false, 2024, 4, 4},  // runs into the next quarter
    {3, 0, 99, 2024, 2, 10, kForward, false, 2024, 3, 31},
    {3, 0, 99, 2024, 2, 10, kBack, false, 2023, 12, 31},
    {3, 0, 1, 2024, 1, 15, kForward, false, 2024, 2, 1, 1101},
    {3, 0, 1, 2024, 1, 15, kBack, false, 2023, 11, 1, 1101},
    {3, 0, 1, 2024, 1, 10, kForward, false, 2024, 1, 15, 115},
    {3, 2, 1, 2024, 2, 10, kForward, false, 2024, 4, 1},
    {3, 6, 99, 2024, 2, 10, kForward, false, 2024, 3, 29},
    {3, 0, 1, 2099, 11, 10, kForward, false, 2099, 10, 1},
    {3, 0, 99, 2099, 11, 10, kForward, false, 2099, 6, 30},
    {3, 0, 99, 2099, 12, 31, kForward, false, 2099, 12, 31, 1231},
    {3, 0, 1, 2024, 2, 10, kForward, false, 2024, 4, 1, 9999},  // no such day: as 101
    {3, 0, 1, 2024, 2, 10, kForward, false, 2024, 4, 1, -5},
    // Yearly: 75 is the 4th in November, 85 the last in May.
    {4, 7, 4, 2024, 7, 4, kForward, false, 2025, 7, 4},
    {4, 7, 4, 2024, 7, 4, kForward, true, 2024, 7, 4},
    {4, 7, 4, 2024, 7, 4, kBack, false, 2023, 7, 4},
    {4, 75, 5, 2024, 1, 1, kForward, false, 2024, 11, 28},
    {4, 85, 2, 2024, 5, 27, kForward, false, 2025, 5, 26},
    {4, 85, 2, 2024, 5, 27, kBack, false, 2023, 5, 29},
    {4, 7, 4, 2099, 8, 1, kForward, false, 2099, 7, 4},
    {4, 7, 4, 1753, 3, 1, kBack, false, 1753, 7, 4},
    {4, 2, 29, 2023, 1, 1, kForward, false, 2023, 2, 28},  // a day that its year does not have
    {4, 2, 29, 2023, 3, 1, kForward, false, 2024, 2, 29},
    {4, 2, 29, 2024, 3, 1, kForward, false, 2025, 2, 28},
    {4, 4, 31, 2024, 4, 30, kForward, true, 2024, 4, 30},
    // Rules that name no day leave the reference date.
    {0, 0, 0, 2024, 3, 12, kForward, false, 2024, 3, 12},
    {2, 8, 1, 2024, 3, 12, kForward, false, 2024, 3, 12},
    {4, 0, 1, 2024, 3, 12, kForward, false, 2024, 3, 12},
    {4, 13, 1, 2024, 3, 12, kBack, false, 2024, 3, 12},
    {4, 5, 32, 2024, 3, 12, kForward, false, 2024, 3, 12},
    {4, 75, 9, 2024, 3, 12, kForward, false, 2024, 3, 12},
    {2, 0, 1, 0, 0, 0, kBack, false, 0, 0, 0},
    {2, 0, 1, 4095, 14, 1, kForward, false, 4095, 14, 1},
    {3, 0, 1, 1, 1, 15, kForward, false, 1, 1, 15, 1101},
};

TEST(NextCycDate, FindsTheNearestOccurrence) {
  for (const Case& c : kCases) {
    const un_date_time reference = un_date_time::Of(c.year, c.month, c.day, 777);
    EXPECT_EQ(Next(c.direction, c.include, Rule(c.kind, c.select, c.value), reference, c.anchor),
              un_date_time::Of(c.to_year, c.to_month, c.to_day, 777))
        << "kind " << c.kind << " select " << c.select << " value " << c.value << " from "
        << reference << " direction " << c.direction << " anchor " << c.anchor;
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

// Whether a rule names a day, told from the day alone.
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

// A rule whose occurrences all lie in their own periods, so that walking the days finds them too.
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

TEST(NextCycDate, AgreesWithWalkingTheDays) {
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

TEST(NextCycDate, EndsForEveryRuleAndAnyBits) {
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
