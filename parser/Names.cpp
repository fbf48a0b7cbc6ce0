// The names of months and weekdays.
#include <algorithm>
#include <array>
#include <string_view>

#include "parser/Field.h"

namespace orzcore::parser {
namespace {

constexpr std::string_view kMonths[] = {
    "JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
    "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER",
};
constexpr std::size_t kMinMonthLength = 3;

// Three letters in a row of a month's name. A token that names a month begins with such a row of
// letters, and a table of them, sorted by letter, is faster than a search in twelve names.
struct Trigram {
  std::uint32_t letters;
  short month;
  short position;  // in the name

  constexpr bool operator<(const Trigram& other) const {
    if (letters != other.letters) return letters < other.letters;
    if (month != other.month) return month < other.month;
    return position < other.position;
  }
};

constexpr std::uint32_t Pack(std::string_view letters) {
  std::uint32_t packed = 0;
  for (std::size_t i = 0; i < kMinMonthLength; ++i) {
    packed = packed << 8 | static_cast<unsigned char>(letters[i]);
  }
  return packed;
}

constexpr std::size_t CountTrigrams() {
  std::size_t count = 0;
  for (const std::string_view name : kMonths) count += name.size() - kMinMonthLength + 1;
  return count;
}

constexpr auto MakeTrigrams() {
  std::array<Trigram, CountTrigrams()> trigrams = {};
  std::size_t filled = 0;
  short month = 0;
  for (const std::string_view name : kMonths) {
    ++month;
    for (std::size_t i = 0; i + kMinMonthLength <= name.size(); ++i) {
      trigrams[filled++] = {Pack(name.substr(i)), month, static_cast<short>(i)};
    }
  }
  std::sort(trigrams.begin(), trigrams.end());
  return trigrams;
}

constexpr auto kTrigrams = MakeTrigrams();

// The index of the first row of each letter, and at last the number of rows.
constexpr auto kRowsOfLetter = [] {
  std::array<std::uint8_t, 'Z' - 'A' + 2> rows = {};
  for (std::size_t letter = 0; letter < rows.size(); ++letter) {
    while (rows[letter] < kTrigrams.size() &&
           kTrigrams[rows[letter]].letters >> 16 < 'A' + letter) {
      ++rows[letter];
    }
  }
  return rows;
}();

// The letters that name a weekday, from Sunday on.
struct WeekdayLetters {
  char first;
  char second;  // NUL: any letter, or none
};
constexpr WeekdayLetters kWeekdays[] = {{'S', 'U'}, {'M', '\0'}, {'T', 'U'}, {'W', '\0'},
                                        {'T', 'H'}, {'F', '\0'}, {'S', 'A'}};

}  // namespace

short FindMonth(std::string_view token) {
  if (token.size() < kMinMonthLength || token[0] < 'A' || token[0] > 'Z') return kNoMonth;
  const std::uint32_t wanted = Pack(token);
  const auto letter = static_cast<std::size_t>(token[0] - 'A');
  for (std::size_t i = kRowsOfLetter[letter]; i < kRowsOfLetter[letter + 1]; ++i) {
    const Trigram& row = kTrigrams[i];
    if (row.letters != wanted) continue;
    if (token.size() == kMinMonthLength) return row.month;
    const std::string_view name = kMonths[row.month - 1];
    if (name.substr(static_cast<std::size_t>(row.position)).starts_with(token)) return row.month;
  }
  return kNoMonth;
}

short FindWeekday(std::string_view token, eCalWeekStart week_start) {
  for (std::size_t day = 0; day < std::size(kWeekdays); ++day) {
    const auto [first, second] = kWeekdays[day];
    if (CharAt(token, 0) != first || (second != '\0' && CharAt(token, 1) != second)) continue;
    if (FindMonth(token) != kNoMonth) break;
    if (week_start != eCalWeekStartMonday) return static_cast<short>(day + 1);
    return static_cast<short>(day == 0 ? std::size(kWeekdays) : day);
  }
  return kNoWeekday;
}

}  // namespace orzcore::parser

namespace parser = orzcore::parser;

short OZParser::fndmth(const char* token) { return parser::FindMonth(token); }

short OZParser::fndwkdy(short index, const char (*tokens)[kTokenSize], eCalWeekStart week_start) {
  return parser::FindWeekday(tokens[index], week_start);
}
