#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "orzcore/parser.h"

namespace {

TEST(seperateText, SplitsIntoRunsOfDigitsAndLetters) {
  const struct {
    const char* text;
    std::vector<std::string> tokens;
    int time;  // what `divchk` says of a time, and of a date
    int date;
  } kCases[] = {
      {"", {""}, 0, 0},
      {"12PM", {"12", "PM"}, 0, 0},
      {"9:30 pm", {"9", "30", "PM"}, 0, 1},
      {"1 2 3 4 5 6", {"1", "2", "3", "4", "5"}, 0, 0},
      {"12+3", {"12+3"}, 0, 0},  // other characters join the run
      {"12:", {"12", ""}, 0, 1},
      {"12: - ,", {"12", ""}, 0, 1},  // of a run, only the first separator is recorded
      {"3 / 5", {"3", "5"}, 0, 0},
      {"-5", {"-", "5"}, 1, 0},
      {"--5", {"--", "5"}, 1, 0},
      {"+5", {"+", "5"}, 0, 0},
      {":30", {":", "30"}, 0, 1},
      {"\t5", {"\t", "5"}, 0, 0},
      {"a\xE9 b", {"A\xE9", "B"}, 0, 0},
      {"1.2;3'4,5", {"1", "2", "3", "4", "5"}, 1, 1},
      {"1-2", {"1", "2"}, 1, 0},
      {"1/2", {"1", "2"}, 1, 0},
      {"1,2", {"1", "2"}, 1, 0},
      {"1.2", {"1", "2"}, 0, 0},
      {"1'2", {"1", "2"}, 0, 1},
      {"1;2", {"1", "2"}, 0, 1},
      {"1 2 3 4 5:", {"1", "2", "3", "4", "5"}, 0, 1},
      {"0123456789012345678901", {"0123456789012345678"}, 0, 0},  // cut at 19
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    char tokens[OZParser::kTokens][OZParser::kTokenSize];
    std::memset(tokens, 'x', sizeof(tokens));
    const short last = OZParser::seperateText(c.text, tokens);
    EXPECT_EQ(last, static_cast<int>(c.tokens.size()) - 1);
    EXPECT_EQ(OZParser::divchk(1, last), c.time);
    EXPECT_EQ(OZParser::divchk(9, last), c.time);  // any mode but 2
    EXPECT_EQ(OZParser::divchk(2, last), c.date);
    for (std::size_t i = 0; i < OZParser::kTokens; ++i) {
      EXPECT_EQ(std::string(tokens[i]), i < c.tokens.size() ? c.tokens[i] : "") << i;
    }
  }
}

TEST(divchk, LooksAtNoMoreThanTheSlotsItIsGiven) {
  char tokens[OZParser::kTokens][OZParser::kTokenSize];
  OZParser::seperateText("1.2/3", tokens);
  EXPECT_EQ(OZParser::divchk(1, 0), 0);
  EXPECT_EQ(OZParser::divchk(1, 1), 1);
  EXPECT_EQ(OZParser::divchk(2, 100), 0);
}

TEST(fndmth, FindsAnyThreeLettersOfAName) {
  constexpr struct {
    const char* token;
    short month;
  } kCases[] = {
      {"JAN", 1},    {"JANU", 1},      {"UAR", 1},     {"ARY", 1},       {"BRUARY", 2}, {"MAR", 3},
      {"APR", 4},    {"MAY", 5},       {"JUN", 6},     {"JUL", 7},       {"AUGUST", 8}, {"BER", 9},
      {"TOBER", 10}, {"OBER", 10},     {"VEMBER", 11}, {"CEMBE", 12},    {"EMBER", 9},  {"OCT", 10},
      {"JA", 13},    {"", 13},         {"MA", 13},     {"JANUARYS", 13}, {"jan", 13},   {"JAX", 13},
      {"MAYO", 13},  {"NOVEMBER", 11}, {"ARC", 3},     {"MON", 13},
  };
  for (const auto& c : kCases) EXPECT_EQ(OZParser::fndmth(c.token), c.month) << c.token;
}

TEST(fndwkdy, DecidesByOneLetterOrTwo) {
  constexpr struct {
    const char* token;
    short sunday_first;
    short monday_first;
  } kCases[] = {
      {"SUN", 1, 7}, {"SU", 1, 7},  {"MON", 2, 1}, {"MARK", 2, 1}, {"M", 2, 1},  {"TU", 3, 2},
      {"WED", 4, 3}, {"TH", 5, 4},  {"FOO", 6, 5}, {"SA", 7, 6},   {"S", 8, 8},  {"T", 8, 8},
      {"SEP", 8, 8}, {"MAR", 8, 8}, {"", 8, 8},    {"5", 8, 8},    {"TO", 8, 8},
  };
  for (const auto& c : kCases) {
    char tokens[OZParser::kTokens][OZParser::kTokenSize] = {};
    std::strcpy(tokens[3], c.token);
    EXPECT_EQ(OZParser::fndwkdy(3, tokens, eCalWeekStartSunday), c.sunday_first) << c.token;
    EXPECT_EQ(OZParser::fndwkdy(3, tokens, eCalWeekStartMonday), c.monday_first) << c.token;
  }
}

}  // namespace
