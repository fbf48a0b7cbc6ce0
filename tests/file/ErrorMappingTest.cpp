#include <gtest/gtest.h>

#include <map>

#include "orzcore/file.h"

namespace {

using Table = std::map<std::int64_t, int>;

const Table kWinErrors = {
    {0, 0},    {1, 218},  {2, 103},  {3, 103},  {4, 219},  {5, 102},   {6, 208},
    {8, 111},  {12, 102}, {13, 208}, {14, 111}, {15, 103}, {18, 103},  {19, 220},
    {25, 109}, {26, 208}, {27, 208}, {29, 108}, {30, 107}, {32, 200},  {33, 203},
    {36, 200}, {50, 218}, {80, 106}, {87, 215}, {88, 108}, {112, 101}, {131, 109},
};
const Table kErrnos = {
    {0, 0},   {1, 218},  {2, 103},  {3, 103},  {4, 219},  {5, 102},  {7, 111},  {8, 111},
    {9, 111}, {19, 218}, {23, 219}, {28, 101}, {34, 217}, {35, 106}, {36, 203}, {37, 113},
};
const Table kFinfos = {{19, 220}, {25, 109}, {29, 108}, {30, 107}, {32, 202},
                       {33, 203}, {36, 202}, {80, 221}, {86, 227}, {88, 108}};

int Expected(const Table& table, std::int64_t number) {
  const auto row = table.find(number);
  return row != table.end() ? row->second : 231;
}

TEST(ErrorMapping, MapsOnlyTheNumbersInTheTables) {
  for (std::int64_t number = -300; number <= 70000; ++number) {
    EXPECT_EQ(OZFile::MapWinErrorToOZErr(static_cast<std::uint32_t>(number)),
              Expected(kWinErrors, number))
        << number;
    EXPECT_EQ(OZFile::MapErrnoToOZErr(static_cast<std::int32_t>(number)), Expected(kErrnos, number))
        << number;
    if (number < 0 || number > 0xFFFF) continue;
    EXPECT_EQ(OZFile::MapFinfoToOZErr(static_cast<unsigned short>(number)),
              Expected(number < 19 ? kErrnos : kFinfos, number))
        << number;
  }
}

}  // namespace
