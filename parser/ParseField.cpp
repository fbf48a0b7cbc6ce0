// Parsing the text of a field: running its stages, and writing the result.
#include <cstring>
#include <memory>
#include <new>

#include "orzcore/frame.h"
#include "parser/Field.h"

namespace orzcore::parser {
namespace {

constexpr std::size_t kMaxTextLength = 32767;
constexpr std::size_t kMaxStages = 3;

// The stages of each edit type, in the order in which they are tried.
constexpr Stage kStages[][kMaxStages] = {
    {IntegerStage},                         // eEditInt
    {},                                     // no field has the number 1
    {QuantityStage},                        // eEditRealTI
    {QuantityStage, TimeStage},             // eEditTime
    {QuantityStage, DateStage},             // eEditDate
    {CountStage},                           // eEditIntTI
    {},                                     // no field has the number 6
    {QuantityStage, TimeStage, DateStage},  // eEditDateTimeTI
    {RealStage},                            // eEditReal
    {CountStage},                           // eEditHoursMinTI
};

// Removes the blanks before and after a text, but not tabs. Returns the new length.
std::size_t Trim(char* text, std::size_t length) {
  while (length > 0 && text[length - 1] == ' ') --length;
  text[length] = '\0';
  std::size_t blanks = 0;
  while (text[blanks] == ' ') ++blanks;
  length -= blanks;
  if (blanks > 0) std::memmove(text, text + blanks, length + 1);
  return length;
}

bool RunStages(Field& field) {
  const auto type = static_cast<std::uint32_t>(field.type);
  if (type >= std::size(kStages) || kStages[type][0] == nullptr) return true;
  for (const Stage stage : kStages[type]) {
    if (stage == nullptr) break;
    const StageResult result = stage(field);
    if (result != StageResult::kPass) return result == StageResult::kAccept;
  }
  return false;
}

// Copies the result byte by byte, because the destination may have any alignment.
void WriteDestination(const Field& field, void* destination) {
  switch (field.result) {
    case OZParser::eParseDate:
      std::memcpy(destination, &field.date, sizeof(field.date));
      break;
    case OZParser::eParseReal:
    case OZParser::eParseInt:
      std::memcpy(destination, &field.value, sizeof(field.value));
      break;
    case OZParser::eParseInterval: {
      const std::int32_t value = field.sign == kMinus ? -field.value : field.value;
      const ST_TIME_RETURN_VAL interval = {field.unit, field.sign, value};
      std::memcpy(destination, &interval, sizeof(interval));
      break;
    }
    case OZParser::eParseTime: {
      const auto time = static_cast<short>(field.time);
      std::memcpy(destination, &time, sizeof(time));
      break;
    }
    case OZParser::eParseUnset:
    case OZParser::eParseNone:
      break;
  }
}

}  // namespace
}  // namespace orzcore::parser

namespace parser = orzcore::parser;

int OZParser::ParseField(eParseResult* result, unsigned short flags, void* destination,
                         short last_value, const char* text, eEditType type,
                         const stCurrencyFormat* format, eCalWeekStart week_start,
                         int twenty_four_hour, int day_position) {
  const std::size_t length = std::strlen(text);
  if (length > parser::kMaxTextLength) return parser::kRejected;
  const std::unique_ptr<char[]> copy(new (std::nothrow) char[length + 1]);
  if (copy == nullptr) return eErrOutOfMemory;
  std::memcpy(copy.get(), text, length + 1);
  return parseBuffer(result, flags, destination, last_value, copy.get(), type, format, week_start,
                     twenty_four_hour, day_position);
}

int OZParser::parseBuffer(eParseResult* result, unsigned short flags, void* destination,
                          short last_value, char* text, eEditType type,
                          const stCurrencyFormat* format, eCalWeekStart week_start,
                          int twenty_four_hour, int day_position) {
  const un_date_time now = OZDate::CurDateTime();
  const std::size_t length = std::strlen(text);
  if (length > parser::kMaxTextLength) return parser::kRejected;
  parser::Field field = {.type = type,
                         .flags = flags,
                         .last_value = last_value,
                         .text = text,
                         .length = static_cast<int>(parser::Trim(text, length)),
                         .format = format,
                         .week_start = week_start,
                         .twenty_four_hour = twenty_four_hour != 0,
                         .month_first = day_position != 0,
                         .now = now,
                         .reference = now};
  if (field.IsDateField() && destination != nullptr) {
    std::memcpy(&field.reference, destination, sizeof(field.reference));
  }
  if (!parser::RunStages(field)) return parser::kRejected;
  if (destination == nullptr) return parser::kAccepted;
  parser::WriteDestination(field, destination);
  const bool signed_date = field.result == eParseDate && field.sign != parser::kNoSign;
  *result = signed_date ? eParseInterval : field.result;
  return parser::kAccepted;
}
