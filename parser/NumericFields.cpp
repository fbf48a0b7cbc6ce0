// Whole numbers, real numbers and money.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "parser/Field.h"

namespace orzcore::parser {
namespace {

constexpr int kThousandths = 1000;

bool IsAllDigits(std::string_view text) { return std::ranges::all_of(text, IsDigit); }

// Removes the currency symbol before an amount or, if there is none, the one after it.
void StripSymbol(const stCurrencyFormat& format, char* amount) {
  const std::string_view symbol(format.symbol, strnlen(format.symbol, sizeof(format.symbol)));
  const std::string_view text(amount);
  if (text.starts_with(symbol)) {
    std::memmove(amount, amount + symbol.size(), text.size() - symbol.size() + 1);
  } else if (text.ends_with(symbol)) {
    amount[text.size() - symbol.size()] = '\0';
  }
}

// Returns the first three decimals as thousandths, and ignores the others.
std::int64_t Thousandths(std::string_view decimals) {
  std::int64_t value = 0;
  int weight = kThousandths / 10;
  for (const char digit : decimals) {
    value += std::int64_t{digit - '0'} * weight;
    weight /= 10;
    if (weight == 0) break;
  }
  return value;
}

// Parses an `eEditInt` field. A text without a value leaves `out` as it was.
int ParseWholeNumber(const char* text, unsigned short flags, short last_value, std::int32_t* out) {
  OZParser::eParseResult result = OZParser::eParseUnset;
  return OZParser::ParseField(&result, flags, out, last_value, text, OZParser::eEditInt, nullptr,
                              eCalWeekStartSunday, 0, 1);
}

}  // namespace

StageResult IntegerStage(Field& field) {
  if (field.length == 0 || IsNoneWord(field.Text())) return field.Accept(OZParser::eParseNone);
  const bool last_allowed = (field.flags & OZParser::kLastAllowed) != 0;
  if (last_allowed && (field.text[0] == 'l' || field.text[0] == 'L')) {
    field.value = field.last_value;
    return field.Accept(OZParser::eParseInt);
  }
  if (!IsAllDigits(field.Text())) return StageResult::kPass;
  const std::int64_t value = LeadingNumber(field.Text());
  if (value > kMaxNumber) return StageResult::kPass;
  field.value = static_cast<std::int32_t>(value);
  return field.Accept(OZParser::eParseInt);
}

StageResult RealStage(Field& field) {
  if (field.IsNoneAllowed() && (field.length == 0 || IsNoneWord(field.Text()))) {
    return field.Accept(OZParser::eParseNone);
  }
  if (field.format != nullptr) StripSymbol(*field.format, field.text);
  const std::string_view text(field.text);
  const std::size_t point = text.find(field.format != nullptr ? field.format->decimalChar : '.');
  const std::string_view whole = text.substr(0, point);
  const std::string_view decimals =
      point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  if (!IsAllDigits(whole) || !IsAllDigits(decimals)) return StageResult::kPass;
  const std::int64_t value = LeadingNumber(whole) * kThousandths + Thousandths(decimals);
  if (value > kMaxNumber) return StageResult::kPass;
  field.value = static_cast<std::int32_t>(value);
  return field.Accept(OZParser::eParseReal);
}

}  // namespace orzcore::parser

namespace parser = orzcore::parser;

int OZParser::ParseInt(const char* text, std::int32_t* out) {
  return parser::ParseWholeNumber(text, kNoneAllowed, 0, out);
}

int OZParser::ParseIntPlusLast(const char* text, short last_value, std::int32_t* out) {
  return parser::ParseWholeNumber(text, kNoneAllowed | kLastAllowed, last_value, out);
}

int OZParser::ParseReal(const char* text, int flags, std::int32_t* out) {
  eParseResult result = eParseUnset;
  const int status = ParseField(&result, static_cast<unsigned short>(flags), out, 0, text,
                                eEditReal, nullptr, eCalWeekStartSunday, 0, 1);
  if (status == parser::kAccepted && result == eParseNone) *out = 0;
  return status;
}

int OZParser::ParseCurrency(const char* text, int none_allowed, std::int32_t* out,
                            const stCurrencyFormat* format, int hundredths) {
  eParseResult result = eParseUnset;
  const unsigned short flags = none_allowed != 0 ? kNoneAllowed : 0;
  const int status =
      ParseField(&result, flags, out, 0, text, eEditReal, format, eCalWeekStartSunday, 0, 1);
  if (status != parser::kAccepted) return status;
  if (result == eParseNone) return parser::kRejected;
  if (hundredths != 0) *out /= 10;
  return parser::kAccepted;
}
