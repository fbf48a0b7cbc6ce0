#include <gtest/gtest.h>

#include "orzcore/parser.h"

static bool operator==(const ST_TIME_RETURN_VAL& a, const ST_TIME_RETURN_VAL& b) {
  return a.unit == b.unit && a.sign == b.sign && a.value == b.value;
}

namespace {

using P = OZParser;

constexpr ST_TIME_RETURN_VAL kOld = {'x', 9, 4711};

// docs/field-forms.md, which a test holds against the parser, has the forms.
TEST(IntervalOperations, TellWhatNoValueMeans) {
  const auto real = [](const char* text, ST_TIME_RETURN_VAL* out) {
    return P::ParseRealTI(out, text);
  };
  const struct {
    int (*parse)(const char*, ST_TIME_RETURN_VAL*);
    const char* text;
    int status;
    ST_TIME_RETURN_VAL out;
  } kCases[] = {
      {real, "- 1.5 h", 0, {'M', 1, -900}},
      {real, "+1 h", 0, {'M', 2, 600}},
      {real, "0 h", 0, {'M', 0, 0}},
      {real, "0", 0, {kOld.unit, kOld.sign, 0}},
      {real, "", 0, {kOld.unit, kOld.sign, 0}},
      {real, "+No", 0, {kOld.unit, kOld.sign, 0}},
      {real, "5", -1, kOld},
      {P::ParseIntTI, "5 weeks", 0, {'W', 0, 5}},
      {P::ParseIntTI, "None", 0, {' ', 0, 0}},
      {P::ParseIntTI, "5 h", -1, kOld},
      {P::ParseHoursMinTI, "5 min", 0, {'M', 0, 5}},
      {P::ParseHoursMinTI, "", 0, {' ', 0, 0}},
      {P::ParseHoursMinTI, "5 d", -1, kOld},
  };
  for (const auto& c : kCases) {
    ST_TIME_RETURN_VAL out = kOld;
    EXPECT_EQ(c.parse(c.text, &out), c.status) << c.text;
    EXPECT_EQ(out, c.out) << c.text;
  }
}

}  // namespace
