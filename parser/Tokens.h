// The tokens of a text, and what the stages of the parser ask of them.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "orzcore/parser.h"

namespace orzcore::parser {

inline constexpr short kTimeSeparators = 1;  // modes of `divchk`
inline constexpr short kDateSeparators = 2;
inline constexpr short kNoMonth = 13;   // of `fndmth`
inline constexpr short kNoWeekday = 8;  // of `fndwkdy`

/// A number that no field has room for. Every range test turns it away.
inline constexpr std::int64_t kTooLarge =
    std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;

/// A text split into tokens.
class Tokens {
 public:
  /// No tokens yet. They are not cleared either, which would cost as much as splitting a text does.
  Tokens() {}  // NOLINT(modernize-use-equals-default): that would clear them in a larger object

  /// Splits a text, and records its separators for `divchk`.
  void Split(const char* text);

  /// A token, in upper case; empty if the text has no such token.
  std::string_view operator[](int index) const { return {table_[index], length_[index]}; }

  /// Index of the last token.
  short last() const { return last_; }

  /// Whether a token was longer than an entry of the table. Such a text is rejected wherever the
  /// token counts, since the rest of the token is gone.
  bool IsCut(int index) const { return (cut_ >> index & 1U) != 0; }

  /// Drops the first token.
  void DropFirst();

 private:
  const char* Store(const char* position);

  char table_[OZParser::kTokens][OZParser::kTokenSize];
  unsigned char length_[OZParser::kTokens];
  unsigned cut_ = 0;  // bit k: token k was cut
  short last_ = 0;
};

/// The separator that followed the first token of the text that was split last; NUL if none did.
char FirstSeparator();

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether a token begins with a digit. An empty one counts as such.
inline bool IsDigitLed(std::string_view token) { return token.empty() || IsDigit(token[0]); }

/// A character of a token; NUL behind its end.
inline char CharAt(std::string_view token, std::size_t index) {
  return index < token.size() ? token[index] : '\0';
}

/// The value of a token: its leading digits, 0 if there are none, `kTooLarge` if they make a number
/// above 32 bits.
inline std::int64_t Value(std::string_view token) {
  std::int64_t value = 0;
  for (const char c : token) {
    if (!IsDigit(c)) break;
    value = value * 10 + (c - '0');
    if (value >= kTooLarge) return kTooLarge;
  }
  return value;
}

/// Whether a text says that there is no value: No or None, in any case.
bool IsNoneWord(std::string_view text);

/// `OZParser::fndmth` of a token.
short FindMonth(std::string_view token);

/// `OZParser::fndwkdy` of a token.
short FindWeekday(std::string_view token, eCalWeekStart week_start);

}  // namespace orzcore::parser
