// One parse in progress: what the caller asked for, and what the stages found.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "orzcore/parser.h"
#include "parser/Tokens.h"

namespace orzcore::parser {

inline constexpr int kAccepted = 0;
inline constexpr int kRejected = -1;

/// What an interval's text began with, as `ST_TIME_RETURN_VAL::sign` holds it.
enum Sign : char { kNoSign = 0, kMinus = 1, kPlus = 2 };

/// What a stage decides about a text.
enum class StageResult {
  kPass,    ///< the next stage tries; a text that all stages pass is rejected
  kAccept,  ///< the text has a result
  kReject,  ///< the text is rejected without asking the next stage
};

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
  std::optional<Tokens> tokens = std::nullopt;  // of the text, once a stage has asked for them

  /// Returns the tokens of the whole text. All stages share them, and the first one that asks for
  /// them splits the text.
  Tokens& SharedTokens() { return tokens ? *tokens : tokens.emplace(text); }

  std::string_view Text() const { return {text, static_cast<std::size_t>(length)}; }
  bool IsNoneAllowed() const { return (flags & OZParser::kNoneAllowed) != 0; }
  bool IsDateField() const { return type == OZParser::eEditDate; }

  /// Accepts the text with a result.
  StageResult Accept(OZParser::eParseResult found) {
    result = found;
    return StageResult::kAccept;
  }
};

/// A stage changes the results in the field only if it accepts the text.
using Stage = StageResult (*)(Field& field);

StageResult IntegerStage(Field& field);   // a whole number
StageResult RealStage(Field& field);      // a real number or an amount of money
StageResult QuantityStage(Field& field);  // an amount with a unit, converted to one scale
StageResult CountStage(Field& field);     // a whole count with its unit, both as typed
StageResult TimeStage(Field& field);      // a time of day
StageResult DateStage(Field& field);      // a date

}  // namespace orzcore::parser
