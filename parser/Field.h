// One parse of a field: what the caller asks for, what the stages find, and the stages.
#pragma once

#include <cstdint>
#include <string_view>

#include "orzcore/parser.h"
#include "parser/Tokens.h"

namespace orzcore::parser {

inline constexpr int kAccepted = 0;
inline constexpr int kRejected = -1;

/// The values of `ST_TIME_RETURN_VAL::sign`.
enum Sign : char { kNoSign = 0, kMinus = 1, kPlus = 2 };

/// What a stage decides about a text.
enum class StageResult {
  kPass,    ///< the next stage tries it; the text is rejected if there is none
  kAccept,  ///< it is accepted
  kReject,  ///< it is rejected, and no other stage tries it
};

struct Field {
  OZParser::eEditType type;
  unsigned short flags;
  short last_value;
  char* text;  // without the blanks around it; `RealStage` changes it
  int length;
  const stCurrencyFormat* format;
  eCalWeekStart week_start;
  bool twenty_four_hour;
  bool month_first;
  un_date_time now;        // read once for the whole parse
  un_date_time reference;  // the date of a date field: amounts with a sign count from it

  OZParser::eParseResult result = OZParser::eParseUnset;
  un_date_time date = {};
  std::int32_t value = 0;
  int time = OZDate::kNoTime;
  char unit = ' ';
  Sign sign = kNoSign;

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
