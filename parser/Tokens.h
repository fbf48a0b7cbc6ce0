// The tokens of a text, and what the stages of the parser ask about them.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include "orzcore/parser.h"

namespace orzcore::parser {

inline constexpr short kNoMonth = 13;   // of `fndmth`
inline constexpr short kNoWeekday = 8;  // of `fndwkdy`

/// Stands for every number that no field has room for: all range checks reject it.
inline constexpr std::int64_t kTooLarge =
    std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;

/// The separators that a kind of text may contain.
enum class SeparatorSet { kTime, kDate };

/// For each token of a text the separator behind it, or NUL if there is none.
using Separators = std::array<char, OZParser::kTokens>;

/// A text split into tokens.
class Tokens {
 public:
  explicit Tokens(const char* text);

  /// Returns a token, in upper case. It is empty if the text has no such token.
  std::string_view operator[](int index) const { return {table_[index], length_[index]}; }

  short LastIndex() const { return last_index_; }

  /// Returns the separator behind a token, or NUL if there is none.
  char Separator(int index) const { return separators_[static_cast<std::size_t>(index)]; }

  const Separators& AllSeparators() const { return separators_; }

  /// Returns true if all the separators of the tokens belong to a set.
  bool HaveOnly(SeparatorSet set) const;

  /// Returns true if a token was longer than an entry of the table. A text is rejected wherever
  /// such a token counts, because the rest of the token is lost.
  bool IsCut(int index) const { return (cut_ >> index & 1U) != 0; }

  void DropFirst();

 private:
  const char* Store(const char* position);

  // Not cleared: that would cost as much as splitting a text does.
  char table_[OZParser::kTokens][OZParser::kTokenSize];
  unsigned char length_[OZParser::kTokens] = {};
  Separators separators_ = {};
  unsigned cut_ = 0;  // bit k: token k was cut
  short last_index_ = 0;
};

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Returns true if a token begins with a digit, or is empty.
inline bool IsDigitLed(std::string_view token) { return token.empty() || IsDigit(token[0]); }

/// Returns a character of a token, or NUL behind its end.
inline char CharAt(std::string_view token, std::size_t index) {
  return index < token.size() ? token[index] : '\0';
}

/// Returns a text without the white space of the C locale and without the plus in front of it. (A
/// minus is a separator, so that it stands in front of no digit of a token.)
std::string_view SkipSpaceAndPlus(std::string_view text);

/// Returns the number that a text begins with, as `atol` reads it, but `kTooLarge` if the number
/// does not fit 32 bits.
inline std::int64_t LeadingNumber(std::string_view text) {
  if (!IsDigitLed(text)) text = SkipSpaceAndPlus(text);
  std::int64_t number = 0;
  for (const char c : text) {
    if (!IsDigit(c)) break;
    number = number * 10 + (c - '0');
    if (number >= kTooLarge) return kTooLarge;
  }
  return number;
}

/// Returns true if a text is No or None, in any case.
bool IsNoneWord(std::string_view text);

/// `OZParser::fndmth` of a token.
short FindMonth(std::string_view token);

/// `OZParser::fndwkdy` of a token.
short FindWeekday(std::string_view token, eCalWeekStart week_start);

}  // namespace orzcore::parser
