// Checks every row in the tables of docs/recurrence.md, and what no page needs to tell.
#include <gtest/gtest.h>

#include <random>

#include "support/Dates.h"
#include "support/PageTables.h"

namespace {

constexpr int kTime = 777;  // any time, which must stay

// The rule of a row.
struct Rule {
  st_cyc_time rule;
  short anchor;
  std::string place;  // for messages

  void Expect(un_date_time expected, eCyclicalsBumped direction, bool include,
              un_date_time from) const {
    std::int32_t ignored = 0;
    const short weekday = OZDate::DayOfWeek(&from, &ignored, eCalWeekStartSunday, 1);
    EXPECT_EQ(OZDate::NextCycDate(direction, include ? weekday : short{0}, include ? 1 : 0, &rule,
                                  &from, anchor, eCalWeekStartMonday),
              expected)
        << place << (direction == eCyclicalsBumpedForward ? ", forward" : ", back")
        << (include ? " or same" : "") << " from " << from;
  }
};

// Searches from every day between two dates of a rule that follow each other.
void CheckDaysBetween(const Rule& rule, un_date_time first, un_date_time last) {
  for (un_date_time day = first; !testing::Test::HasFailure(); OZDate::DateFwrd(&day, 1, 'D')) {
    rule.Expect(day == first ? first : last, eCyclicalsBumpedForward, true, day);
    rule.Expect(day == last ? last : first, eCyclicalsBumpedBackward, true, day);
    if (day != last) rule.Expect(last, eCyclicalsBumpedForward, false, day);
    if (day != first) rule.Expect(first, eCyclicalsBumpedBackward, false, day);
    if (day == last) break;
  }
}

// The first cell of a header is the kind of the rules. The columns of the numbers of a rule follow,
// and then either the column `Dates`, or `From` and some of the four ways to search.
void CheckRow(const PageTable& table, const PageRow& row, eCycKind kind) {
  const auto number = [&](std::size_t column) { return std::stoi(row.cells[column]); };
  const int anchor = kind == eCycQuarterly ? number(3) : 101;
  Rule rule = {st_cyc_time::Of(kind, number(1), number(2)), static_cast<short>(anchor), row.place};
  rule.rule.reserved1 = 0x7FF;  // the application's bits must not matter
  rule.rule.reserved2 = 3;
  un_date_time from;
  for (std::size_t i = kind == eCycQuarterly ? 4 : 3; i < row.cells.size(); ++i) {
    const std::string& column = table.header[i];
    const std::vector<un_date_time> dates = DatesFrom(row.cells[i], kTime);
    ASSERT_EQ(dates.size() > 1, column == "Dates") << row.place;
    for (std::size_t next = 1; next < dates.size(); ++next) {
      CheckDaysBetween(rule, dates[next - 1], dates[next]);
    }
    if (column == "From") {
      from = dates.at(0);
    } else if (column != "Dates") {
      rule.Expect(dates.at(0),
                  column.starts_with("Back") ? eCyclicalsBumpedBackward : eCyclicalsBumpedForward,
                  column.ends_with("same"), from);
    }
  }
}

TEST(NextCycDate, FindsTheDatesOfThePage) {
  for (const PageTable& table : TablesOf("recurrence.md")) {
    constexpr const char* kKinds[] = {"Weekly", "Every other week", "Monthly", "Quarterly",
                                      "Yearly"};
    const auto* const kind = std::find(std::begin(kKinds), std::end(kKinds), table.header[0]);
    ASSERT_NE(kind, std::end(kKinds)) << table.header[0];
    for (const PageRow& row : table.rows) CheckRow(table, row, eCycKind(kind - kKinds));
  }
}

TEST(NextCycDate, ReturnsForAnyBitsOfRuleAndDate) {
  std::minstd_rand random(4711);
  for (std::uint32_t i = 0; i < 200000; ++i) {
    const st_cyc_time rule = st_cyc_time::FromNumber(static_cast<std::uint32_t>(random() * 2U));
    const auto reference = un_date_time::FromNumber(static_cast<std::uint32_t>(random() * 2U + i));
    const auto weekday = static_cast<short>(random() % 9);
    const bool include = random() % 2 != 0;
    const un_date_time found =
        OZDate::NextCycDate(static_cast<eCyclicalsBumped>(random() % 2), weekday, include ? 1 : 0,
                            &rule, &reference, static_cast<short>(random()), eCalWeekStartSunday);
    const bool is_outside = reference.year < 1753 || reference.year > 2099 || reference.month < 1 ||
                            reference.month > 12;
    const bool is_weekly = rule.cycKind == eCycWeekly || rule.cycKind == eCycAltWeekly;
    const bool has_no_weekday = is_weekly && include && (weekday < 1 || weekday > 7);
    if (rule.cycKind > eCycYearly) {
      ASSERT_EQ(found, OZDate::EndOfTime);
    } else if (is_outside || has_no_weekday) {
      ASSERT_EQ(found, reference);
    } else {
      ASSERT_EQ(found.time, reference.time);
    }
  }
}

}  // namespace
