#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "orzcore/file.h"
#include "support/PageTables.h"

namespace {

TEST(ErrorMapping, MapsOnlyTheNumbersOfThePage) {
  const std::vector<std::string> header = {"Error", "`MapWinErrorToOZErr`", "`MapErrnoToOZErr`",
                                           "`MapFinfoToOZErr`"};
  std::map<std::int64_t, int> tables[3];
  for (const PageRow& row : RowsUnder("guide/file.md", header)) {
    const int error = std::stoi(row.cells[0].substr(row.cells[0].find('(') + 1));
    for (std::size_t i = 0; i < 3; ++i) {
      std::istringstream numbers(row.cells[i + 1]);
      for (int number = 0; numbers >> number; numbers.ignore()) tables[i][number] = error;
    }
  }
  const auto expected = [&](std::size_t table, std::int64_t number) {
    const auto row = tables[table].find(number);
    return row != tables[table].end() ? row->second : eErrUnknown;
  };
  for (std::int32_t number = -300; number <= 70000; ++number) {
    const auto system = static_cast<std::uint32_t>(number);
    EXPECT_EQ(OZFile::MapWinErrorToOZErr(system), expected(0, system)) << number;
    EXPECT_EQ(OZFile::MapErrnoToOZErr(number), expected(1, number)) << number;
    const auto status = static_cast<unsigned short>(number);
    EXPECT_EQ(OZFile::MapFinfoToOZErr(status), expected(2, status)) << number;
  }
}

}  // namespace
