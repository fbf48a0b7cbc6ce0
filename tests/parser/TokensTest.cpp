#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "orzcore/parser.h"

namespace {

using P = OZParser;

struct Split {
  const char* text;
  std::vector<std::string> tokens;
  bool is_time = true, is_date = true;  // what `divchk` says of the separators
};

const Split kSplits[] = {
    {"", {""}},
    {"12PM", {"12", "PM"}},
    {"1 2 3 4 5 6", {"1", "2", "3", "4", "5"}},
    {"12:", {"12", ""}, true, false},
    {"3 / 5", {"3", "5"}},
    {"12+3", {"12+3"}},
    {"12: - ,", {"12", ""}, true, false},
    {"--5", {"--", "5"}, false, true},
    {"+5", {"+", "5"}},
    {":30", {":", "30"}, true, false},
    {"\t5", {"\t", "5"}},
    {"a\xE9 z", {"A\xE9", "Z"}},
    {"1.2;3'4,5", {"1", "2", "3", "4", "5"}, false, false},
    {"1-2", {"1", "2"}, false, true},
    {"1/2", {"1", "2"}, false, true},
    {"1,2", {"1", "2"}, false, true},
    {"1.2", {"1", "2"}},
    {"1'2", {"1", "2"}, true, false},
    {"1;2", {"1", "2"}, true, false},
    {"1 2 3 4 5:", {"1", "2", "3", "4", "5"}, true, false},
    {"0123456789012345678901", {"0123456789012345678"}},
};

TEST(seperateText, SplitsIntoRunsOfDigitsAndLetters) {
  for (const Split& row : kSplits) {
    SCOPED_TRACE(row.text);
    char tokens[P::kTokens][P::kTokenSize];
    std::memset(tokens, 'x', sizeof(tokens));
    const short last = P::seperateText(row.text, tokens);
    EXPECT_EQ(last + 1, static_cast<int>(row.tokens.size()));
    for (std::size_t i = 0; i < P::kTokens; ++i) {
      EXPECT_EQ(tokens[i], i < row.tokens.size() ? row.tokens[i] : "") << i;
    }
    EXPECT_EQ(P::divchk(1, last), row.is_time ? 0 : 1);
    EXPECT_EQ(P::divchk(9, last), row.is_time ? 0 : 1);  // any mode but 2
    EXPECT_EQ(P::divchk(2, last), row.is_date ? 0 : 1);
  }
}

TEST(divchk, ChecksTheLastSplitTextUpToAnIndex) {
  char tokens[P::kTokens][P::kTokenSize];
  P::seperateText("1.2/3", tokens);
  ST_TIME_RETURN_VAL interval;
  P::ParseRealTI(&interval, "1:30");  // splits a text, too, but for itself
  EXPECT_EQ(P::divchk(1, 0), 0);
  EXPECT_EQ(P::divchk(1, 1), 1);
  EXPECT_EQ(P::divchk(2, 100), 0);
}

constexpr struct {
  const char* word;
  short month, sunday_first, monday_first;
} kNames[] = {
    {"SUN", 13, 1, 7},   {"SU", 13, 1, 7},      {"MON", 13, 2, 1},      {"M", 13, 2, 1},
    {"MARK", 13, 2, 1},  {"MAYO", 13, 2, 1},    {"TU", 13, 3, 2},       {"WED", 13, 4, 3},
    {"TH", 13, 5, 4},    {"FOO", 13, 6, 5},     {"SA", 13, 7, 6},       {"S", 13, 8, 8},
    {"T", 13, 8, 8},     {"TO", 13, 8, 8},      {"5", 13, 8, 8},        {"", 13, 8, 8},
    {"JAN", 1, 8, 8},    {"UARY", 1, 8, 8},     {"JANUARYS", 13, 8, 8}, {"jan", 13, 8, 8},
    {"BRU", 2, 8, 8},    {"MARCH", 3, 8, 8},    {"PRI", 4, 8, 8},       {"MAY", 5, 8, 8},
    {"UNE", 6, 8, 8},    {"JUL", 7, 8, 8},      {"AUGUST", 8, 8, 8},    {"SEP", 9, 8, 8},
    {"BER", 9, 8, 8},    {"OCTOBER", 10, 8, 8}, {"OBER", 10, 8, 8},     {"NOV", 11, 8, 8},
    {"DECEM", 12, 8, 8}, {"JA", 13, 8, 8},
};

TEST(fndmthAndFndwkdy, FindPartsOfNames) {
  for (const auto& row : kNames) {
    char tokens[P::kTokens][P::kTokenSize] = {};
    std::strcpy(tokens[3], row.word);
    EXPECT_EQ(P::fndmth(row.word), row.month) << row.word;
    EXPECT_EQ(P::fndwkdy(3, tokens, eCalWeekStartSunday), row.sunday_first) << row.word;
    EXPECT_EQ(P::fndwkdy(3, tokens, eCalWeekStartMonday), row.monday_first) << row.word;
  }
}

}  // namespace
