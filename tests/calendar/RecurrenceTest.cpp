// Checks every row in the tables of docs/recurrence.md, and what no page needs to tell.
#include <gtest/gtest.h>

#include <random>

#include "support/Dates.h"
#include "support/PageTables.h"

namespace {

// A search for the next date of a rule.
struct Search {
  st_cyc_time rule;
  short anchor = 101;
  std::string place;  // for messages

  un_date_time Next(eCyclicalsBumped direction, bool include, un_date_time reference) const {
    std::int32_t ignored = 0;
    const short weekday = OZDate::DayOfWeek(&reference, &ignored, eCalWeekStartSunday, 1);
    return OZDate::NextCycDate(direction, include ? weekday : short{0}, include ? 1 : 0, &rule,
                               &reference, anchor, eCalWeekStartMonday);
  }
  void Expect(un_date_time expected, eCyclicalsBumped direction, bool include,
              un_date_time reference) const {
    EXPECT_EQ(Next(direction, include, reference), expected)
        << place << (direction == eCyclicalsBumpedForward ? " forward" : " back")
        << (include ? " or the same" : "") << " from " << reference;
  }
};

st_cyc_time Rule(unsigned kind, unsigned select, unsigned value) {
  return {.reserved1 = 0x7FF,  // the application's bits must not matter
          .cycKind = kind & 0x1F,
          .reserved2 = 3,
          .cycSelect = select & 0x7F,
          .cycValue = value & 0x7F};
}

// Searches from every day between two dates of a rule that follow each other.
void CheckDaysBetween(const Search& search, un_date_time first, un_date_time last) {
  for (un_date_time day = first; !testing::Test::HasFailure(); OZDate::DateFwrd(&day, 1, 'D')) {
    search.Expect(day == first ? first : last, eCyclicalsBumpedForward, true, day);
    search.Expect(day == last ? last : first, eCyclicalsBumpedBackward, true, day);
    if (day != last) search.Expect(last, eCyclicalsBumpedForward, false, day);
    if (day != first) search.Expect(first, eCyclicalsBumpedBackward, false, day);
    if (day == last) break;
  }
}

constexpr int kTime = 777;  // any time, which must stay

// The first cell of a header is the kind of the rules. The columns of the numbers of a rule follow,
// and then either the column `Dates` or `From` and some of the four ways to search.
void CheckRow(const PageTable& table, const PageRow& row, unsigned kind) {
  const auto number = [&](std::size_t column) { return std::stoi(row.cells[column]); };
  Search search = {.rule = Rule(kind, unsigned(number(1)), unsigned(number(2))),
                   .place = row.place};
  if (table.header[3] == "Anchor") search.anchor = static_cast<short>(number(3));
  if (table.header.back() == "Dates") {
    const std::vector<un_date_time> dates = DatesFrom(row.cells.back(), kTime);
    ASSERT_GT(dates.size(), 1U) << row.place;
    for (std::size_t i = 1; i < dates.size(); ++i) CheckDaysBetween(search, dates[i - 1], dates[i]);
    return;
  }
  un_date_time from;
  for (std::size_t i = 3; i < row.cells.size(); ++i) {
    const std::string& column = table.header[i];
    if (column == "Anchor") continue;
    const un_date_time date = DatesFrom(row.cells[i], kTime).at(0);
    if (column == "From")
      from = date;
    else
      search.Expect(
          date, column.starts_with("Forward") ? eCyclicalsBumpedForward : eCyclicalsBumpedBackward,
          column.ends_with("same"), from);
  }
}

TEST(NextCycDate, FindsTheDatesOfThePage) {
  for (const PageTable& table : TablesOf("recurrence.md")) {
    constexpr const char* kKinds[] = {"Weekly", "Every other week", "Monthly", "Quarterly",
                                      "Yearly"};
    const auto* const kind = std::find(std::begin(kKinds), std::end(kKinds), table.header[0]);
    ASSERT_NE(kind, std::end(kKinds)) << table.header[0];
    for (const PageRow& row : table.rows) CheckRow(table, row, unsigned(kind - kKinds));
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
