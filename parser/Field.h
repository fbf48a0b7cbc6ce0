// One parse in progress: what the caller asked for, and what the stages found.
#pragma once

#include <cstdint>
#include <string_view>

#include "orzcore/parser.h"
#include "parser/Tokens.h"

namespace orzcore::parser {

inline constexpr int kAccepted = 0;
inline constexpr int kRejected = -1;

/// What an interval's text began with, as `ST_TIME_RETURN_VAL::sign` holds it.
enum Sign : char { kNoSign = 0, kMinus = 1, kPlus = 2 };

struct Field {
  OZParser::eEditType type;
  unsigned short flags;
  short last_value;
  char* text;  // without the blanks around it; a stage may change it
  int length;
  const stCurrencyFormat* format;
  eCalWeekStart week_start;
  bool twenty_four_hour;
  bool month_first;
  un_date_time now;        // the one reading of the clock
  un_date_time reference;  // of signed amounts in a date field

  OZParser::eParseResult result = OZParser::eParseUnset;
  un_date_time date = {};
  std::int32_t value = 0;
  int time = OZDate::kNoTime;
  char unit = ' ';
  Sign sign = kNoSign;
  bool refused = false;  // rejected for good

  Tokens tokens = Tokens();  // of the text, once a stage has asked for them
  bool is_split = false;

  /// The tokens of the whole text. Stages that see the same text share them.
  Tokens& Split() {
    if (!is_split) tokens.Split(text);
    is_split = true;
    return tokens;
  }

  std::string_view View() const { return {text, static_cast<std::size_t>(length)}; }
  bool IsNoneAllowed() const { return (flags & OZParser::kNoneAllowed) != 0; }
  bool IsDateField() const { return type == OZParser::eEditDate; }

  /// Accepts the text with a result.
  bool Accept(OZParser::eParseResult found) {
    result = found;
    return true;
  }

  /// Rejects the text for good: no later stage sees it.
  bool Refuse() {
    refused = true;
    return true;
  }
};

/// A stage settles a text and returns true, or leaves it to the next one and all results as they
/// were.
using Stage = bool (*)(Field& field);

bool IntegerStage(Field& field);   // a whole number
bool RealStage(Field& field);      // a real number or an amount of money
bool QuantityStage(Field& field);  // an amount with a unit, on one scale
bool CountStage(Field& field);     // a whole count and its unit, as they are
bool TimeStage(Field& field);      // a time of day
bool DateStage(Field& field);      // a date

}  // namespace orzcore::parser
