// The names of months and weekdays.
#include <algorithm>
#include <array>
#include <string_view>

#include "parser/Field.h"

namespace {

using parser::kNoMonth;
using parser::kNoWeekday;

constexpr std::string_view kMonths[] = {
    "JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
    "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER",
};
constexpr std::size_t kMinMonthLength = 3;

// Three letters in a row of a month's name. A token that names the month holds them at its start,
// so that one search in the sorted table takes the place of a search in every name.
struct Trigram {
  std::uint32_t letters;
  short month;     // from 1
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

// From Sunday; a weekday is told by its first letter, or by two where that is not enough.
struct WeekdayLetters {
  char first;
  char second;  // NUL: any will do
};
constexpr WeekdayLetters kWeekdays[] = {{'S', 'U'}, {'M', '\0'}, {'T', 'U'}, {'W', '\0'},
                                        {'T', 'H'}, {'F', '\0'}, {'S', 'A'}};

}  // namespace

short OZParser::fndmth(const char* token) {
  if (!(*token >= 'A' && *token <= 'Z')) return kNoMonth;
  const std::string_view letters(token);
  if (letters.size() < kMinMonthLength) return kNoMonth;
  const std::uint32_t wanted = Pack(letters);
  const auto* row = std::lower_bound(
      kTrigrams.begin(), kTrigrams.end(), wanted,
      [](const Trigram& trigram, std::uint32_t value) { return trigram.letters < value; });
  for (; row != kTrigrams.end() && row->letters == wanted; ++row) {
    if (letters.size() == kMinMonthLength) return row->month;
    const std::string_view name = kMonths[row->month - 1];
    if (name.substr(static_cast<std::size_t>(row->position)).starts_with(letters)) {
      return row->month;
    }
  }
  return kNoMonth;
}

short OZParser::fndwkdy(short index, const char (*tokens)[kTokenSize], eCalWeekStart week_start) {
  const char* const token = tokens[index];
  if (fndmth(token) != kNoMonth) return kNoWeekday;
  for (std::size_t day = 0; day < std::size(kWeekdays); ++day) {
    const auto [first, second] = kWeekdays[day];
    if (token[0] != first || (second != '\0' && token[1] != second)) continue;
    if (week_start != eCalWeekStartMonday) return static_cast<short>(day + 1);
    return static_cast<short>(day == 0 ? std::size(kWeekdays) : day);
  }
  return kNoWeekday;
}
