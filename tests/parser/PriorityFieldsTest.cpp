#include <gtest/gtest.h>

#include "orzcore/parser.h"

namespace {

TEST(ParsePriority, TakesWordsNumbersAndLetters) {
  constexpr short kReject = -1;
  constexpr struct {
    const char* text;
    short priority;
    short with_zero;  // with the zero digit allowed
  } kCases[] = {
      {"Hi", 0, 0},
      {"HIGH", 0, 0},
      {"hiya", 0, 0},
      {" \t high", 0, 0},
      {"lo", 100, 100},
      {"Low", 100, 100},
      {"no", 255, 255},
      {"None", 255, 255},
      {"normal", 255, 255},
      {"", 255, 255},
      {"   ", 255, 255},
      {"\t\t", 255, 255},
      {"--", 255, 255},
      {"\xC4", 255, 255},
      {"0", 0, 0},
      {"00", 0, 0},
      {"5", 5, 5},
      {"05", 5, 5},
      {"99", 99, 99},
      {"100", 100, 100},
      {"1 0 0", 100, 100},
      {"5 ", 5, 5},
      {"a", 10, 10},
      {"B", 20, 20},
      {"h", 80, 80},
      {"i", 90, 90},
      {"a1", 11, 11},
      {"A1", 11, 11},
      {"a 1", 11, 11},
      {"a-1", 11, 11},
      {"c5", 35, 35},
      {"i9", 99, 99},
      {"a0", kReject, 10},
      {"-hi", kReject, kReject},  // only blanks and tabs are skipped for words
      {"101", kReject, kReject},
      {"1000", kReject, kReject},
      {"a12", kReject, kReject},
      {"abc", kReject, kReject},
      {"j", kReject, kReject},
      {"l", kReject, kReject},
      {"n", kReject, kReject},
      {"z", kReject, kReject},
      {"ho", kReject, kReject},
      {"ax", kReject, kReject},
      {"5x", kReject, kReject},
      {"z5", kReject, kReject},
  };
  for (const auto& c : kCases) {
    for (const int zero : {0, 1}) {
      const short expected = zero != 0 ? c.with_zero : c.priority;
      short out = 4711;
      EXPECT_EQ(OZParser::ParsePriority(&out, c.text, zero), expected == kReject ? -1 : 0)
          << c.text;
      EXPECT_EQ(out, expected == kReject ? 4711 : expected) << c.text;
    }
  }
}

}  // namespace
