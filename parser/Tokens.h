// The tokens of a text, and what the stages of the parser ask about them.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include "orzcore/parser.h"

namespace orzcore::parser {

inline constexpr short kNoMonth = 13;
inline constexpr short kNoWeekday = 8;

inline constexpr std::int64_t kMaxNumber = std::numeric_limits<std::int32_t>::max();

/// Stands for every number above `kMaxNumber`. All range checks reject it.
inline constexpr std::int64_t kTooLarge = kMaxNumber + 1;

/// The separators that a kind of text may contain.
enum class SeparatorSet { kTime, kDate };

/// For each token of a text, the separator after it, or NUL if there is none.
using Separators = std::array<char, OZParser::kTokens>;

/// A text split into tokens.
class Tokens {
 public:
  explicit Tokens(const char* text);

  /// Returns a token, in upper case. It is empty if the text has no such token.
  std::string_view operator[](int index) const { return {table_[index], length_[index]}; }

  short LastIndex() const { return last_index_; }

  /// Returns the separator after a token, or NUL if there is none.
  char Separator(int index) const { return separators_[static_cast<std::size_t>(index)]; }

  const Separators& AllSeparators() const { return separators_; }

  /// Returns true if all the separators of the tokens belong to a set.
  bool HaveOnly(SeparatorSet set) const;

  /// Returns true if a token was longer than the 19 characters that are kept. A
  /// stage that needs such a token does not accept the text.
  bool IsCut(int index) const { return (cut_ >> index & 1U) != 0; }

  void DropFirst();

 private:
  const char* Store(const char* position);

  // Left uninitialized: clearing it would cost as much as splitting a text.
  char table_[OZParser::kTokens][OZParser::kTokenSize];
  unsigned char length_[OZParser::kTokens] = {};
  Separators separators_ = {};
  unsigned cut_ = 0;  // a bit for each token
  short last_index_ = 0;
};

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Returns true if a token begins with a digit, or is empty.
inline bool IsDigitLed(std::string_view token) { return token.empty() || IsDigit(token[0]); }

/// Returns a character of a token, or NUL if the token is shorter.
inline char CharAt(std::string_view token, std::size_t index) {
  return index < token.size() ? token[index] : '\0';
}

/// Returns a text without the white space and the plus sign at its start. There is no case for a
/// minus sign: it is a separator, so no digit follows it in a token.
std::string_view SkipSpaceAndPlus(std::string_view text);

/// Returns the number that `atol` finds in a text, or `kTooLarge` if it does not fit 32 bits.
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

/// Does the work of `OZParser::fndmth`. Returns `kNoMonth` if there is no month.
short FindMonth(std::string_view token);

/// Does the work of `OZParser::fndwkdy`. Returns `kNoWeekday` if there is no weekday.
short FindWeekday(std::string_view token, eCalWeekStart week_start);

}  // namespace orzcore::parser
