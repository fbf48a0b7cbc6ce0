// Amounts with a unit: intervals, dates as a distance in days, weeks or months, and whole counts.
#include <string_view>

#include "parser/Field.h"

namespace orzcore::parser {
namespace {

constexpr std::int64_t kMaxWhole = 999;
constexpr std::int64_t kMaxShortCount = 99;
constexpr std::int64_t kMaxMinute = 59;
constexpr std::int64_t kTenthsPerMinute = 10;
constexpr char kMonthUnit = 'O';  // 'M' is minutes

struct Scale {
  char unit;
  std::int64_t tenths_of_minute;
};

constexpr Scale kScales[] = {
    {'M', 10}, {'H', 600}, {'D', 14400}, {'W', 100800}, {kMonthUnit, 432000},
};

struct Amount {
  std::int64_t whole = 0;
  bool has_minutes = false;  // true: `whole` is hours and `part` minutes; false: `part` is decimals
  std::int64_t part = 0;
  std::size_t part_digits = 0;
  std::string_view unit_word;
};

// Returns the text without its sign and the blanks after the sign.
const char* SkipSign(const char* text, Sign* sign) {
  *sign = *text == '+' ? kPlus : *text == '-' ? kMinus : kNoSign;
  if (*sign == kNoSign) return text;
  do ++text;
  while (*text == ' ');
  return text;
}

bool IsZero(const Tokens& tokens) {
  return !tokens[0].empty() && IsDigit(tokens[0][0]) && !tokens.IsCut(0) &&
         LeadingNumber(tokens[0]) == 0;
}

bool SaysNone(const Field& field, const Tokens& tokens) {
  if (tokens.LastIndex() != 0) return false;
  if (!field.IsDateField() && IsNoneWord(tokens[0])) return true;
  const bool zero_is_none =
      field.type == OZParser::eEditRealTI || field.type == OZParser::eEditDateTimeTI;
  if (zero_is_none && IsZero(tokens)) return true;
  return field.length == 0 && (!field.IsDateField() || field.IsNoneAllowed());
}

// Reads `2 h`, `1.5 h` or `1:30 h`. With `colon_means_minutes`, `1:30` needs no unit.
bool ReadAmount(const Tokens& tokens, bool colon_means_minutes, Amount* amount) {
  const bool is_number = IsDigitLed(tokens[0]);
  if (!is_number && !colon_means_minutes && tokens[0][0] != '.') return false;
  amount->whole = LeadingNumber(tokens[0]);
  if (tokens.LastIndex() == 1 && colon_means_minutes && tokens.Separator(0) == ':') {
    amount->part = LeadingNumber(tokens[1]);
    amount->has_minutes = true;
    amount->unit_word = "H";
    return IsDigitLed(tokens[1]);
  }
  if (tokens.LastIndex() == 1) {
    amount->unit_word = tokens[1];
    return is_number;
  }
  amount->part = LeadingNumber(tokens[1]);
  amount->part_digits = tokens[1].size();
  amount->has_minutes = tokens.Separator(0) != '.';
  amount->unit_word = tokens[2];
  return (is_number || tokens[0][0] == '.') && IsDigitLed(tokens[1]);
}

bool IsInRange(const Amount& amount) {
  if (amount.whole > kMaxWhole || amount.part > kMaxNumber) return false;
  return !amount.has_minutes || (CharAt(amount.unit_word, 0) == 'H' && amount.part <= kMaxMinute);
}

std::string_view UnitsOf(OZParser::eEditType type) {
  switch (type) {
    case OZParser::eEditTime:
      return "HM";
    case OZParser::eEditDate:
      return "MDW";
    default:
      return "HMDW";
  }
}

// Returns the unit that a word means, or NUL if this field has no such unit. A word that a later
// stage may read as a month or as midnight is not a unit.
char UnitOf(std::string_view word, OZParser::eEditType type, std::int64_t whole) {
  const char first = CharAt(word, 0);
  const char second = CharAt(word, 1);
  const char third = CharAt(word, 2);
  const bool has_months = type == OZParser::eEditDate || type == OZParser::eEditDateTimeTI;
  if (first == '\0' || UnitsOf(type).find(first) == std::string_view::npos) return '\0';

  const bool may_be_midnight = second == 'I' && third == 'D';
  if (may_be_midnight) {
    if (type != OZParser::eEditRealTI) return '\0';
    if (first == 'M' && whole == 12) return '\0';
  }
  const bool may_be_december = first == 'D' && second == 'E';
  const bool may_be_march_or_may = first == 'M' && second == 'A';
  if (has_months && (may_be_december || may_be_march_or_may)) return '\0';
  if (first == 'M' && (second == 'O' || second == 'T')) return has_months ? kMonthUnit : '\0';
  return first;
}

// Returns the amount in tenths of a minute, or `kTooLarge`.
std::int64_t TenthsOfMinute(const Amount& amount, char unit) {
  std::int64_t scale = 0;
  for (const Scale& row : kScales) {
    if (row.unit == unit) scale = row.tenths_of_minute;
  }
  if (amount.has_minutes) return amount.whole * scale + amount.part * kTenthsPerMinute;
  std::int64_t part = amount.part * scale;
  if (part > kMaxNumber) return kTooLarge;
  for (std::size_t i = 0; i < amount.part_digits && part != 0; ++i) part /= 10;
  return amount.whole * scale + part;
}

// The limits and units of a count field.
struct CountField {
  std::int64_t most;
  std::string_view units;
  char wrong_after_m;  // second letter after M: MI (minutes) is no unit of days, MO none of hours
};

constexpr CountField kDayCount = {kMaxWhole, "DWMY", 'I'};
constexpr CountField kHourCount = {kMaxShortCount, "MH", 'O'};

int ParseCount(const char* text, OZParser::eEditType type, ST_TIME_RETURN_VAL* out) {
  OZParser::eParseResult result = OZParser::eParseUnset;
  return OZParser::ParseField(&result, OZParser::kNoneAllowed, out, 0, text, type, nullptr,
                              eCalWeekStartSunday, 0, 1);
}

}  // namespace

StageResult QuantityStage(Field& field) {
  Sign sign = kNoSign;
  const Tokens tokens(SkipSign(field.text, &sign));
  if (SaysNone(field, tokens)) return field.Accept(OZParser::eParseNone);

  Amount amount;
  const bool colon_means_minutes = field.type == OZParser::eEditRealTI;
  if (!ReadAmount(tokens, colon_means_minutes, &amount)) return StageResult::kPass;
  if (!IsInRange(amount)) return StageResult::kPass;
  const char unit = UnitOf(amount.unit_word, field.type, amount.whole);
  if (unit == '\0') return StageResult::kPass;
  // Not `kPass`: a later stage might accept the text and ignore the word that was cut.
  if (tokens.IsCut(0) || tokens.IsCut(1) || tokens.IsCut(2)) return StageResult::kReject;

  if (field.IsDateField()) {
    field.sign = sign;
    field.date = sign == kNoSign ? field.now : field.reference;
    const auto count = static_cast<std::int32_t>(amount.whole);
    const char step = unit == kMonthUnit ? 'M' : unit;
    if (sign == kMinus) {
      OZDate::DateBack(&field.date, count, step);
    } else {
      OZDate::DateFwrd(&field.date, count, step);
    }
    return field.Accept(OZParser::eParseDate);
  }
  const std::int64_t tenths = TenthsOfMinute(amount, unit);
  if (tenths > kMaxNumber) return StageResult::kPass;
  const bool keeps_tenths = field.type == OZParser::eEditRealTI;
  field.sign = sign;
  field.unit = 'M';
  field.value = static_cast<std::int32_t>(keeps_tenths ? tenths : tenths / kTenthsPerMinute);
  return field.Accept(OZParser::eParseInterval);
}

StageResult CountStage(Field& field) {
  const Tokens tokens(field.text);
  if (tokens.LastIndex() == 0) {
    const bool none = field.length == 0 || IsNoneWord(tokens[0]) || IsZero(tokens);
    return none ? field.Accept(OZParser::eParseInterval) : StageResult::kPass;
  }
  if (tokens.LastIndex() != 1 || tokens.IsCut(0) || tokens.IsCut(1)) return StageResult::kPass;

  const CountField& limits = field.type == OZParser::eEditIntTI ? kDayCount : kHourCount;
  const std::int64_t count = LeadingNumber(tokens[0]);
  if (!IsDigitLed(tokens[0]) || count > limits.most) return StageResult::kPass;
  const char unit = CharAt(tokens[1], 0);
  if (unit == '\0' || limits.units.find(unit) == std::string_view::npos) return StageResult::kPass;
  if (unit == 'M' && CharAt(tokens[1], 1) == limits.wrong_after_m) return StageResult::kPass;
  field.value = static_cast<std::int32_t>(count);
  field.unit = unit;
  return field.Accept(OZParser::eParseInterval);
}

}  // namespace orzcore::parser

namespace parser = orzcore::parser;

int OZParser::ParseRealTI(ST_TIME_RETURN_VAL* out, const char* text) {
  eParseResult result = eParseUnset;
  const int status = ParseField(&result, kNoneAllowed, out, 0, text, eEditRealTI, nullptr,
                                eCalWeekStartSunday, 0, 1);
  if (status == parser::kAccepted && result == eParseNone) out->value = 0;
  return status;
}

int OZParser::ParseIntTI(const char* text, ST_TIME_RETURN_VAL* out) {
  return parser::ParseCount(text, eEditIntTI, out);
}

int OZParser::ParseHoursMinTI(const char* text, ST_TIME_RETURN_VAL* out) {
  return parser::ParseCount(text, eEditHoursMinTI, out);
}
