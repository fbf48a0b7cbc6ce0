#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "orzcore/parser.h"
#include "support/Fields.h"

namespace {

constexpr std::int32_t kOld = -4711;
constexpr int kNone = -1;    // stands for `eParseNone` in a table
constexpr int kReject = -2;  // and this for a rejection

// Parses the text, and gives its number or one of the marks above.
int Number(const std::string& text, OZParser::eEditType type, const FieldOptions& options) {
  const Parsed parsed = Parse(text, type, options);
  if (parsed.status != 0) {
    EXPECT_EQ(parsed.status, -1);
    EXPECT_EQ(parsed.result, kOldResult);
    EXPECT_TRUE(parsed.Untouched());
    return kReject;
  }
  if (parsed.result == OZParser::eParseNone) {
    EXPECT_TRUE(parsed.Untouched());
    return kNone;
  }
  EXPECT_EQ(parsed.result, type == OZParser::eEditInt ? OZParser::eParseInt : OZParser::eParseReal);
  return parsed.As<std::int32_t>();
}

// docs/field-forms.md, which a test holds against the parser, has the forms. It has no tabs.
TEST(IntegerField, TakesNoTab) {
  for (const char* text : {"\t12", "12\t"}) {
    EXPECT_EQ(Number(text, OZParser::eEditInt, {}), kReject) << text;
  }
}

TEST(RealField, StripsACurrencySymbolOnce) {
  const struct {
    const char* symbol;
    const char* text;
    int value;
  } kCases[] = {
      {"$", "$12,50", 12500}, {"$", "12,50$", 12500},  {"$", "12.50", kReject},
      {"$", "$12$", kReject}, {"$", "$", 0},           {"$", "$ 12", kReject},
      {"$", "12 $", kReject}, {"$", " $12 ", 12000},   {"DM", "12dm", kReject},
      {"EURO", "12", 12000},  {"EURO", "EURO5", 5000}, {"", "12,5", 12500},
      {"$", "1$2", kReject},  {"$", "no", kReject},
  };
  for (const auto& c : kCases) {
    stCurrencyFormat format = {"", ','};
    std::string(c.symbol).copy(format.symbol, 4);
    EXPECT_EQ(Number(c.text, OZParser::eEditReal, {.format = &format}), c.value)
        << c.symbol << " in " << c.text;
  }
}

TEST(NumericOperations, TellWhatNoValueMeans) {
  const stCurrencyFormat format = {"$", '.'};
  const struct {
    const char* name;
    int (*parse)(const char*, std::int32_t*);
    const char* text;
    int status;
    std::int32_t out;
  } kCases[] = {
      {"int", OZParser::ParseInt, "12", 0, 12},
      {"int", OZParser::ParseInt, "", 0, kOld},
      {"int", OZParser::ParseInt, "L", -1, kOld},
      {"last",
       [](const char* text, std::int32_t* out) {
         return OZParser::ParseIntPlusLast(text, 31, out);
       },
       "L", 0, 31},
      {"real",
       [](const char* text, std::int32_t* out) { return OZParser::ParseReal(text, 1, out); }, "", 0,
       0},
      {"real",
       [](const char* text, std::int32_t* out) { return OZParser::ParseReal(text, 0x10000, out); },
       "no", -1, kOld},
  };
  for (const auto& c : kCases) {
    std::int32_t out = kOld;
    EXPECT_EQ(c.parse(c.text, &out), c.status) << c.name << ' ' << c.text;
    EXPECT_EQ(out, c.out) << c.name << ' ' << c.text;
  }
  const struct {
    const char* text;
    int none_allowed;
    int hundredths;
    int status;
    std::int32_t out;
  } kMoney[] = {
      {"$12.345", 0, 0, 0, 12345}, {"12.345", 0, 1, 0, 1234}, {"12.5", 1, 1, 0, 1250},
      {"", 1, 0, -1, kOld},        {"", 0, 0, 0, 0},          {"none", 1, 0, -1, kOld},
      {"x", 0, 1, -1, kOld},
  };
  for (const auto& c : kMoney) {
    std::int32_t out = kOld;
    EXPECT_EQ(OZParser::ParseCurrency(c.text, c.none_allowed, &out, &format, c.hundredths),
              c.status)
        << c.text;
    EXPECT_EQ(out, c.out) << c.text;
  }
}

}  // namespace
