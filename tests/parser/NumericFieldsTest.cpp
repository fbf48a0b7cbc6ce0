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

TEST(IntegerField, TakesDigitsAlone) {
  const struct {
    const char* text;
    int value;
    int with_last;  // with the last value allowed, being 31
  } kCases[] = {
      {"12", 12, 12},
      {"  12  ", 12, 12},
      {"012", 12, 12},
      {"0", 0, 0},
      {"1 2", kReject, kReject},
      {"-5", kReject, kReject},
      {"+5", kReject, kReject},
      {"12a", kReject, kReject},
      {"\t12", kReject, kReject},
      {"12\t", kReject, kReject},
      {"", kNone, kNone},
      {"   ", kNone, kNone},
      {"no", kNone, kNone},
      {"NONE", kNone, kNone},
      {"L", kReject, 31},
      {"l5", kReject, 31},
      {"Last", kReject, 31},
      {"5l", kReject, kReject},
      {"2147483647", 2147483647, 2147483647},
      {"2147483648", kReject, kReject},
      {"00000000000000000000000000000000007", 7, 7},
      {"99999999999999999999999999", kReject, kReject},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    for (const unsigned short none : {std::uint16_t{0}, std::uint16_t{1}}) {
      EXPECT_EQ(Number(c.text, OZParser::eEditInt, {.flags = none, .last_value = 31}), c.value);
      EXPECT_EQ(Number(c.text, OZParser::eEditInt,
                       {.flags = static_cast<unsigned short>(none | 2), .last_value = 31}),
                c.with_last);
    }
  }
}

TEST(RealField, CountsThousandths) {
  const struct {
    const char* text;
    int value;
    int with_none;
  } kCases[] = {
      {"12", 12000, 12000},
      {"12.5", 12500, 12500},
      {"12.34", 12340, 12340},
      {"12.345", 12345, 12345},
      {"12.3456", 12345, 12345},
      {".5", 500, 500},
      {"5.", 5000, 5000},
      {".", 0, 0},
      {"0", 0, 0},
      {"", 0, kNone},
      {"No", kReject, kNone},
      {"none", kReject, kNone},
      {"1.2.3", kReject, kReject},
      {"1,000", kReject, kReject},
      {"-1", kReject, kReject},
      {"+1", kReject, kReject},
      {"1 000", kReject, kReject},
      {"1.5x", kReject, kReject},
      {"2147483.647", 2147483647, 2147483647},
      {"2147483.648", kReject, kReject},
      {"2147484", kReject, kReject},
      {"1.00000000000000000000000001", 1000, 1000},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Number(c.text, OZParser::eEditReal, {}), c.value);
    EXPECT_EQ(Number(c.text, OZParser::eEditReal, {.flags = 1}), c.with_none);
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
