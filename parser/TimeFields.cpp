// Times of day, and intervals that move a time.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "calendar/DayCount.h"
#include "parser/Field.h"

namespace orzcore::parser {
namespace {

constexpr int kNoon = 12 * calendar::kMinutesPerHour;
constexpr int kMaxMinute = 59;
constexpr int kLastAfternoonHour = 6;  // in a 12-hour field, 1 to 6 without am or pm are afternoon
constexpr std::size_t kMinWordLength = 3;
constexpr std::size_t kWordLength = 7;  // only the first 7 letters of a word count
constexpr int kMaxNumberLength = 4;     // hhmm

struct HoursMinutes {
  std::int64_t hours;
  std::int64_t minutes;
};

enum class TimeEffect { kNone, kEndOfDay, kBeforeNoon, kAfterNoon };

struct TimeWord {
  std::string_view word;
  bool follows_only_12_00;
  TimeEffect effect;
};

// In the order in which they are tried.
constexpr TimeWord kTimeWords[] = {
    {"MIDNIGHT", true, TimeEffect::kEndOfDay},
    {"NOON", true, TimeEffect::kNone},
    {"AM", false, TimeEffect::kBeforeNoon},
    {"PM", false, TimeEffect::kAfterNoon},
};

void Apply(TimeEffect effect, HoursMinutes* typed) {
  switch (effect) {
    case TimeEffect::kNone:
      break;
    case TimeEffect::kEndOfDay:
      *typed = {24, 0};
      break;
    case TimeEffect::kBeforeNoon:
      if (typed->hours == 12) typed->hours = 0;
      break;
    case TimeEffect::kAfterNoon:
      if (typed->hours < 12) typed->hours += 12;
      break;
  }
}

// Applies the word after a time. It may be any beginning of a word in the table, so an empty word
// counts as MIDNIGHT.
bool ApplyWord(std::string_view word, HoursMinutes* typed) {
  for (const TimeWord& row : kTimeWords) {
    if (!row.word.starts_with(word)) continue;
    if (row.follows_only_12_00 && (typed->hours != 12 || typed->minutes != 0)) return false;
    Apply(row.effect, typed);
    return true;
  }
  return false;
}

// Reads NOW, NOON or MIDNIGHT. For the last two, three or more letters in a row are enough.
bool ReadWord(const Field& field, const Tokens& tokens, int* time) {
  if (tokens.IsCut(0)) return false;
  const std::string_view word = tokens[0];
  if (word == "NOW") {
    *time = static_cast<int>(field.now.time);
    return true;
  }
  if (word.size() < kMinWordLength) return false;
  if (std::string_view("NOON").find(word) != std::string_view::npos) {
    *time = kNoon;
    return true;
  }
  if (std::string_view("MIDNIGHT").find(word) != std::string_view::npos) {
    *time = OZDate::kEndOfDay;
    return true;
  }
  return false;
}

bool IsMonth(std::string_view word) { return FindMonth(word.substr(0, kWordLength)) != kNoMonth; }

// The first two parts of a time in numbers.
struct ClockParts {
  std::string_view hours;  // or hours with minutes: hmm, hhmm
  std::string_view minutes_or_word;
};

// Splits a time that was typed as one number into two parts, as if it had a separator.
bool SplitNumber(const Field& field, ClockParts* parts) {
  if (field.length > kMaxNumberLength) return false;
  const std::string_view number = parts->hours;
  const std::size_t hour_digits = number.size() > 2 ? number.size() - 2 : number.size();
  *parts = {number.substr(0, hour_digits), number.substr(hour_digits)};
  return true;
}

// Reads hours, such as `9`, or hours and minutes, such as `930`.
HoursMinutes ReadHours(std::string_view number) {
  if (number.size() <= 2) return {LeadingNumber(number), 0};
  const std::size_t hour_digits = number.size() - 2;
  return {LeadingNumber(number.substr(0, hour_digits)), LeadingNumber(number.substr(hour_digits))};
}

bool ToMinutes(const HoursMinutes& typed, int* time) {
  if (typed.minutes > kMaxMinute) return false;
  const std::int64_t minutes = typed.hours * calendar::kMinutesPerHour + typed.minutes;
  if (minutes > OZDate::kEndOfDay) return false;
  *time = static_cast<int>(minutes);
  return true;
}

// Reads a time in numbers, with or without a word after it.
bool ReadClock(const Field& field, const Tokens& tokens, int* time) {
  ClockParts parts = {tokens[0], tokens[1]};
  if (tokens.LastIndex() == 0 && !SplitNumber(field, &parts)) return false;
  if (tokens.IsCut(0) || tokens.IsCut(1) || !IsDigitLed(tokens[0])) return false;

  HoursMinutes typed = ReadHours(parts.hours);
  std::string_view word = parts.minutes_or_word;
  bool has_word = true;
  const bool has_minutes = parts.minutes_or_word.empty() || IsDigit(parts.minutes_or_word[0]);
  if (has_minutes) {
    if (tokens.Separator(0) == ' ') return false;  // "9 30" is a date
    typed.minutes = LeadingNumber(parts.minutes_or_word);
    word = tokens[2];
    has_word = tokens.LastIndex() == 2 || parts.hours.size() > 2;
    if (has_word && tokens.IsCut(2)) return false;
  }
  if (has_word) {
    word = word.substr(0, kWordLength);
    if (field.type == OZParser::eEditDateTimeTI && IsMonth(word)) return false;
    if (!ApplyWord(word, &typed)) return false;
  } else if (!field.twenty_four_hour && typed.hours >= 1 && typed.hours <= kLastAfternoonHour) {
    typed.hours += 12;
  }
  return ToMinutes(typed, time);
}

}  // namespace

StageResult TimeStage(Field& field) {
  const Tokens tokens(field.text);
  if (!tokens.HaveOnly(SeparatorSet::kTime)) return StageResult::kPass;
  const bool is_word = tokens.LastIndex() == 0 && !IsDigitLed(tokens[0]);
  int time = OZDate::kNoTime;
  const bool is_time = is_word ? ReadWord(field, tokens, &time) : ReadClock(field, tokens, &time);
  if (!is_time) return StageResult::kPass;
  field.time = time;
  return field.Accept(OZParser::eParseTime);
}

}  // namespace orzcore::parser

namespace parser = orzcore::parser;

int OZParser::ParseTime(eParseResult* result, int subtract, short* time, short reference,
                        const char* text, int twenty_four_hour) {
  const int base = *time != OZDate::kNoTime ? *time : static_cast<int>(OZDate::CurDateTime().time);
  const int start = reference != OZDate::kNoTime ? reference : base;

  eParseResult found = eParseUnset;
  ST_TIME_RETURN_VAL destination = {};
  const int status = ParseField(&found, kNoneAllowed, &destination, 0, text, eEditTime, nullptr,
                                eCalWeekStartSunday, twenty_four_hour, 1);
  if (status != parser::kAccepted) return status;
  if (found == eParseNone) {
    *time = OZDate::kNoTime;
  } else if (found == eParseTime) {
    std::memcpy(time, &destination, sizeof(*time));
  } else {
    const std::int32_t amount = destination.value;
    const int moved = destination.sign != parser::kNoSign ? base + amount
                      : subtract != 0                     ? start - amount
                                                          : start + amount;
    *time = static_cast<short>(std::clamp(moved, 0, OZDate::kEndOfDay));
  }
  *result = found;
  return parser::kAccepted;
}
