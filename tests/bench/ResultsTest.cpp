#include "bench/Results.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace {

TEST(BenchResults, AreTablesOfMediansAndAims) {
  const struct {
    const char* benchmark;
    double nanoseconds;
  } kMeasured[] = {
      {"weekday and day number/chrono", 4},
      {"weekday and day number/ours", 600},
      {"weekday and day number/ours", 5},
      {"weekday and day number/ours", 6},
      {"move forward by days/ours", 16},
      {"move forward by days/chrono", 10},
      {"read the clock/ours", 10},
      {"parse Jan 5, 1999/strptime", 600},
      {"parse Jan 5, 1999/ours", 200},
      {"parse Jan 5, 1999/icu", 500},
      {"parse next fri/ours", 80},
      {"list of 1000, add and remove at the head/boost, normal_link", 900},
      {"list of 1000, add and remove at the head/ours", 1800},
      {"list of 1000, add and remove at the head/boost", 2000},
      {"parse a date, every form/\"3/5\"", 30},
      {"parse a date, every form/\"\"", 10},
      {"parse a date, every form/\"fri\"", 20},
      {"RemoveItem of the first of n nodes/10", 3.3},
      {"RemoveItem of the first of n nodes/1000", 3.1},
      {"RemoveItem of the last of n nodes/1000", 1000},
      {"RemoveItem of the last of n nodes/10", 10},
      {"RemoveItem of the last of n nodes/100000", 200000},
      {"lock and unlock a byte beside n users/10", 1},
      {"lock and unlock a byte beside n users/100", 100},
  };
  bench::Results results;
  for (const auto& row : kMeasured) results.Add(row.benchmark, row.nanoseconds);
  results.AddFailure("write 64 B/ours", "no space");
  EXPECT_EQ(results.CountAims(), 5);
  EXPECT_EQ(results.CountMissed(), 2);

  std::ostringstream text;
  for (const bench::Table& table : results.Tables()) table.Print(text, bench::Style::kText);
  constexpr const char* kRows[] = {
      "weekday and day number 6.00 ns chrono 4.00 ns 1.50 x at most 1.5 x met\n",
      "move forward by days 16.0 ns chrono 10.0 ns 1.60 x at most 1.5 x missed\n",
      "read the clock 10.0 ns - - - -\n",
      "parse Jan 5, 1999 200 ns icu 500 ns, strptime 600 ns 2.50 x faster 5 x faster missed\n",
      ("parse next fri 80.0 ns none; the fastest of *parse Jan 5, 1999* 6.25 x faster 5 x faster "
       "met\n"),
      "at the head 1.80 us boost, normal_link 900 ns, boost 2.00 us 0.90 x at most 1 x met\n",
      "write 64 B - ours failed: no space - - -\n",
      "parse a date, every form 3 10.0 ns: \"\" 20.0 ns: \"fri\" 30.0 ns: \"3/5\"\n",
      "lock and unlock a byte beside n users 10: 1.00 ns, 100: 100 ns n^2.0\n",
      "first of n nodes 10: 3.30 ns, 1000: 3.10 ns constant\n",
      "last of n nodes 10: 10.0 ns, 1000: 1.00 us, 100000: 200 us linear, 2.01 ns each\n",
  };
  const std::string rows = std::regex_replace(text.str(), std::regex(" +"), " ");
  for (const char* row : kRows) EXPECT_NE(rows.find(row), std::string::npos) << row << rows;
}

}  // namespace
