// Parsing one field in a test, and looking at the result.
#pragma once

#include <cstring>
#include <string>

#include "orzcore/parser.h"

/// The result of a parse, with the bytes of its destination.
struct Parsed {
  int status;
  OZParser::eParseResult result;
  unsigned char bytes[8];
  unsigned char bytes_before[8];

  template <typename T>
  T As() const {
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
  }
  bool Untouched() const { return std::memcmp(bytes, bytes_before, sizeof(bytes)) == 0; }
};

/// Arguments of a parse that most tests do not change.
struct FieldOptions {
  unsigned short flags = 0;
  short last_value = 0;
  const stCurrencyFormat* format = nullptr;
  eCalWeekStart week_start = eCalWeekStartSunday;
  int twenty_four_hour = 0;
  int day_position = 1;
};

/// What `result` holds before each parse.
inline constexpr auto kOldResult = static_cast<OZParser::eParseResult>(77);

/// Parses a text. Before the parse, each byte of the destination is 0xEE, or it holds the reference
/// date of a date field.
inline Parsed Parse(const std::string& text, OZParser::eEditType type,
                    const FieldOptions& options = {}, const un_date_time* reference = nullptr) {
  Parsed parsed = {0, kOldResult, {}, {}};
  std::memset(parsed.bytes, 0xEE, sizeof(parsed.bytes));
  if (reference != nullptr) std::memcpy(parsed.bytes, reference, sizeof(*reference));
  std::memcpy(parsed.bytes_before, parsed.bytes, sizeof(parsed.bytes));
  parsed.status = OZParser::ParseField(
      &parsed.result, options.flags, parsed.bytes, options.last_value, text.c_str(), type,
      options.format, options.week_start, options.twenty_four_hour, options.day_position);
  return parsed;
}
