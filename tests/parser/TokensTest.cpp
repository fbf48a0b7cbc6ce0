#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <sstream>
#include <string>

#include "orzcore/parser.h"

namespace {

TEST(seperateText, SplitsIntoRunsOfDigitsAndLetters) {
  // A row: the text, its tokens (_ is an empty one), and the results of `divchk` for a time and a
  // date.
  constexpr const char* kRows[] = {"|_|00",
                                   "12PM|12 PM|00",
                                   "9:30 pm|9 30 PM|01",
                                   "1 2 3 4 5 6|1 2 3 4 5|00",
                                   "12:|12 _|01",
                                   "3 / 5|3 5|00",
                                   "12+3|12+3|00",
                                   "12: - ,|12 _|01",
                                   "-5|- 5|10",
                                   "--5|-- 5|10",
                                   "+5|+ 5|00",
                                   ":30|: 30|01",
                                   "\t5|\t 5|00",
                                   "a\xE9 b|A\xE9 B|00",
                                   "1.2;3'4,5|1 2 3 4 5|11",
                                   "1-2|1 2|10",
                                   "1/2|1 2|10",
                                   "1,2|1 2|10",
                                   "1.2|1 2|00",
                                   "1'2|1 2|01",
                                   "1;2|1 2|01",
                                   "1 2 3 4 5:|1 2 3 4 5|01",
                                   "0123456789012345678901|0123456789012345678|00"};
  for (const std::string row : kRows) {
    const std::size_t end = row.find('|');
    const std::string text = row.substr(0, end);
    const std::string expected = row.substr(end + 1, row.size() - end - 4);
    const std::string divisions = row.substr(row.size() - 2);
    SCOPED_TRACE(text);
    char tokens[OZParser::kTokens][OZParser::kTokenSize];
    std::memset(tokens, 'x', sizeof(tokens));
    const short last = OZParser::seperateText(text.c_str(), tokens);
    EXPECT_EQ(OZParser::divchk(1, last), divisions[0] - '0');
    EXPECT_EQ(OZParser::divchk(9, last), divisions[0] - '0');  // any mode but 2
    EXPECT_EQ(OZParser::divchk(2, last), divisions[1] - '0');
    std::string found;
    for (int i = 0; i < OZParser::kTokens; ++i) {
      const std::string token = tokens[i];
      if (i <= last) found += (i > 0 ? " " : "") + (token.empty() ? "_" : token);
      EXPECT_TRUE(i <= last || token.empty()) << i;
    }
    EXPECT_EQ(found, expected);
  }
}

TEST(divchk, ChecksTheLastSplitTextUpToAnIndex) {
  char tokens[OZParser::kTokens][OZParser::kTokenSize];
  OZParser::seperateText("1.2/3", tokens);
  ST_TIME_RETURN_VAL interval;
  OZParser::ParseRealTI(&interval, "1:30");
  EXPECT_EQ(OZParser::divchk(1, 0), 0);
  EXPECT_EQ(OZParser::divchk(1, 1), 1);
  EXPECT_EQ(OZParser::divchk(2, 100), 0);
}

TEST(fndmth, FindsAnyThreeLettersOfAName) {
  constexpr const char* kMonths[] = {"JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
                                     "MAY",       "JUNE",     "JULY",     "AUGUST",
                                     "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};
  for (const std::string name : kMonths) {
    for (std::size_t first = 0; first < name.size(); ++first) {
      for (std::size_t length = 0; first + length <= name.size(); ++length) {
        const std::string part = name.substr(first, length);
        const auto month = std::find_if(std::begin(kMonths), std::end(kMonths), [&](std::string m) {
          return length >= 3 && m.find(part) != m.npos;
        });
        EXPECT_EQ(OZParser::fndmth(part.c_str()), month - kMonths + 1) << part;
      }
    }
  }
  for (const char* none : {"JANUARYS", "jan", "JAX", "MAYO", "MON"}) {
    EXPECT_EQ(OZParser::fndmth(none), 13) << none;
  }
}

TEST(fndwkdy, LooksAtTheFirstOneOrTwoLetters) {
  std::istringstream words(
      "SUN 1 SU 1 MON 2 MARK 2 M 2 TU 3 WED 4 TH 5 FOO 6 SA 7 S 8 T 8 SEP 8 MAR 8 5 8 TO 8");
  int day = 0;
  for (std::string word; words >> word >> day;) {
    char tokens[OZParser::kTokens][OZParser::kTokenSize] = {};
    std::strcpy(tokens[3], word.c_str());
    EXPECT_EQ(OZParser::fndwkdy(3, tokens, eCalWeekStartSunday), day) << word;
    const int monday_first = day == 8 ? 8 : day == 1 ? 7 : day - 1;
    EXPECT_EQ(OZParser::fndwkdy(3, tokens, eCalWeekStartMonday), monday_first) << word;
  }
}

}  // namespace
