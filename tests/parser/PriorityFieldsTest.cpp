#include <gtest/gtest.h>

#include "orzcore/parser.h"

namespace {

// docs/field-forms.md, which a test holds against the parser, has the forms. It has no tabs and no
// bytes of code page 1252.
TEST(ParsePriority, PassesOverTabsAndForeignLetters) {
  constexpr struct {
    const char* text;
    short priority;
  } kCases[] = {{" \t high", 0}, {"\t\t", 255}, {"\xC4", 255}};
  for (const auto& c : kCases) {
    short out = 4711;
    EXPECT_EQ(OZParser::ParsePriority(&out, c.text, 0), 0) << c.text;
    EXPECT_EQ(out, c.priority) << c.text;
  }
}

}  // namespace
