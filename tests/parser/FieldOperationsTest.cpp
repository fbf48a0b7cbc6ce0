// What the functions for single fields add to the forms in docs/field-forms.md: the results of a
// text without a value, and more currency symbols.
#include <gtest/gtest.h>

#include <string>

#include "orzcore/parser.h"

namespace {

using P = OZParser;

constexpr std::int32_t kOld = -4711;

std::string Money(const char* symbol, const char* text, bool none_allowed, bool hundredths) {
  stCurrencyFormat format = {"", '.'};
  std::string(symbol).copy(format.symbol, 4);
  std::int32_t out = kOld;
  const int status = P::ParseCurrency(text, none_allowed, &out, &format, hundredths);
  if (status != 0) return out == kOld ? "rejected" : "rejected, but written to";
  return std::to_string(out);
}

TEST(FieldOperations, ReadMoney) {
  EXPECT_EQ(Money("$", "$12.345", false, false), "12345");
  EXPECT_EQ(Money("$", "12.345", false, true), "1234");
  EXPECT_EQ(Money("$", "12.5", true, true), "1250");
  EXPECT_EQ(Money("$", "", false, false), "0");
  EXPECT_EQ(Money("", "12.5", false, false), "12500");
  EXPECT_EQ(Money("EURO", "EURO5", false, false), "5000");
  EXPECT_EQ(Money("EURO", "12", false, false), "12000");
  for (const char* text : {"", "none"}) EXPECT_EQ(Money("$", text, true, false), "rejected");
  for (const char* text : {"x", "no", "DM5"}) EXPECT_EQ(Money("$", text, false, true), "rejected");
}

// Returns the result of a parse as a text: the number, or the interval's unit, sign and value.
std::string Read(const std::string& operation, const char* text) {
  constexpr ST_TIME_RETURN_VAL kOldInterval = {'x', 9, kOld};
  ST_TIME_RETURN_VAL interval = kOldInterval;
  std::int32_t number = kOld;
  const int status = operation == "int"     ? P::ParseInt(text, &number)
                     : operation == "last"  ? P::ParseIntPlusLast(text, 31, &number)
                     : operation == "real"  ? P::ParseReal(text, 1, &number)
                     : operation == "real!" ? P::ParseReal(text, 0x10000, &number)
                     : operation == "time"  ? P::ParseRealTI(&interval, text)
                     : operation == "days"  ? P::ParseIntTI(text, &interval)
                                            : P::ParseHoursMinTI(text, &interval);
  std::string result = status == 0 ? "" : status == -1 ? "rejected" : "wrong";
  if (number != kOld) result += std::to_string(number);
  if (interval.unit != kOldInterval.unit) result += interval.unit + std::string(" ");
  if (interval.sign != kOldInterval.sign) result += std::to_string(interval.sign) + " ";
  if (interval.value != kOldInterval.value) result += std::to_string(interval.value);
  return result;
}

// Rows of operation, text and result.
TEST(FieldOperations, HandleTextsWithAndWithoutAValue) {
  constexpr const char* kRows[] = {"int|12|12",
                                   "int||",
                                   "int|L|rejected",
                                   "last|L|31",
                                   "real||0",
                                   "real!|no|rejected",
                                   "time|- 1.5 h|M 1 -900",
                                   "time|0|0",
                                   "time||0",
                                   "days|5 weeks|W 0 5",
                                   "days|None|  0 0",
                                   "hours|5 min|M 0 5",
                                   "hours||  0 0"};
  for (const std::string row : kRows) {
    const std::size_t text = row.find('|') + 1;
    const std::size_t result = row.find('|', text) + 1;
    const std::string operation = row.substr(0, text - 1);
    const std::string input = row.substr(text, result - 1 - text);
    EXPECT_EQ(Read(operation, input.c_str()), row.substr(result)) << row;
  }
}

}  // namespace
