// What the functions for single fields add to the forms in docs/field-forms.md: the results of a
// text without a value, and more currency symbols.
#include <gtest/gtest.h>

#include "orzcore/parser.h"

namespace {

using P = OZParser;

constexpr std::int32_t kOld = -4711;  // what a result holds before

TEST(FieldOperations, ReadMoney) {
  const struct {
    stCurrencyFormat format;
    const char* text;
    bool none_allowed, hundredths;
    std::int32_t value;  // kOld if the text is rejected
  } kRows[] = {
      {{"$", '.'}, "$12.345", false, false, 12345}, {{"$", '.'}, "12.345", false, true, 1234},
      {{"$", '.'}, "12.5", true, true, 1250},       {{"$", '.'}, "", false, false, 0},
      {{"", '.'}, "12.5", false, false, 12500},     {{"EURO", '.'}, "EURO5", false, false, 5000},
      {{"EURO", '.'}, "12", false, false, 12000},   {{"$", '.'}, "", true, false, kOld},
      {{"$", '.'}, "none", true, false, kOld},      {{"$", '.'}, "x", false, true, kOld},
      {{"$", '.'}, "no", false, true, kOld},        {{"$", '.'}, "DM5", false, true, kOld},
  };
  for (const auto& row : kRows) {
    std::int32_t value = kOld;
    stCurrencyFormat format = row.format;
    EXPECT_EQ(P::ParseCurrency(row.text, row.none_allowed, &value, &format, row.hundredths),
              row.value == kOld ? -1 : 0)
        << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(FieldOperations, ReadNumbers) {
  const struct {
    int (*read)(const char* text, std::int32_t* value);
    const char* text;
    int status;
    std::int32_t value;
  } kRows[] = {
      {P::ParseInt, "12", 0, 12},
      {P::ParseInt, "", 0, kOld},
      {P::ParseInt, "L", -1, kOld},
      {[](auto text, auto value) { return P::ParseIntPlusLast(text, 31, value); }, "L", 0, 31},
      {[](auto text, auto value) { return P::ParseReal(text, 1, value); }, "", 0, 0},
      {[](auto text, auto value) { return P::ParseReal(text, 0x10000, value); }, "no", -1, kOld},
  };
  for (const auto& row : kRows) {
    std::int32_t value = kOld;
    EXPECT_EQ(row.read(row.text, &value), row.status) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(FieldOperations, ReadIntervals) {
  constexpr auto kReal = [](const char* text, ST_TIME_RETURN_VAL* interval) {
    return P::ParseRealTI(interval, text);
  };
  const struct {
    int (*read)(const char* text, ST_TIME_RETURN_VAL* interval);
    const char* text;
    ST_TIME_RETURN_VAL interval;
  } kRows[] = {
      {kReal, "- 1.5 h", {'M', 1, -900}},
      {kReal, "0", {'x', 9, 0}},
      {kReal, "", {'x', 9, 0}},
      {P::ParseIntTI, "5 weeks", {'W', 0, 5}},
      {P::ParseIntTI, "None", {' ', 0, 0}},
      {P::ParseHoursMinTI, "5 min", {'M', 0, 5}},
      {P::ParseHoursMinTI, "", {' ', 0, 0}},
  };
  for (const auto& row : kRows) {
    ST_TIME_RETURN_VAL interval = {'x', 9, kOld};
    EXPECT_EQ(row.read(row.text, &interval), 0) << row.text;
    EXPECT_EQ(interval.unit, row.interval.unit) << row.text;
    EXPECT_EQ(interval.sign, row.interval.sign) << row.text;
    EXPECT_EQ(+interval.value, +row.interval.value) << row.text;  // a packed field has no reference
  }
}

}  // namespace
