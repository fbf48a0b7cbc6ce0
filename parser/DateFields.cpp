// Dates: in numbers, with the name of a month, as a word such as TODAY, or as a weekday.
#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "calendar/DayCount.h"
#include "parser/Field.h"

namespace orzcore::parser {
namespace {

constexpr int kCentury = 100;
constexpr int kThisCentury = 2000;
constexpr std::size_t kMaxYearLength = 4;
constexpr std::size_t kShortYearLength = 2;

enum class DateWord { kLast, kNext, kThis, kToday, kTomorrow, kYesterday, kNone };

struct DateWordRow {
  DateWord word;
  std::string_view name;
  std::size_t min_letters;
};

// In the order in which they are tried.
constexpr DateWordRow kDateWords[] = {
    {DateWord::kLast, "LAST", 1},         {DateWord::kNext, "NEXT", 1},
    {DateWord::kThis, "THIS", 1},         {DateWord::kToday, "TODAY", 3},
    {DateWord::kTomorrow, "TOMORROW", 3}, {DateWord::kYesterday, "YESTERDAY", 3},
};

DateWord FindDateWord(std::string_view token) {
  for (const DateWordRow& row : kDateWords) {
    if (row.name[0] != CharAt(token, 0)) continue;
    if (token.size() >= row.min_letters && row.name.starts_with(token)) return row.word;
  }
  return DateWord::kNone;
}

bool TakesWeekday(DateWord word) {
  return word == DateWord::kLast || word == DateWord::kNext || word == DateWord::kThis;
}

// Not `OZDate::Dow90`, which would read the clock again: the whole parse uses one time.
bool IsNearToday(un_date_time date, un_date_time now) {
  return std::abs(calendar::DayNumber(date) - calendar::DayNumber(now)) <= OZDate::kNearDays;
}

// Returns false if the result is outside the calendar, which happens if the clock is.
bool MoveByDays(un_date_time* date, int days) {
  if (days >= 0) {
    OZDate::DateFwrd(date, days, 'D');
  } else {
    OZDate::DateBack(date, -days, 'D');
  }
  return calendar::IsYearInCalendar(date->year);
}

struct MonthAndDay {
  std::int64_t month = 0;
  std::int64_t day = 0;
};

bool ReadMonthAndDay(const Field& field, const Tokens& tokens, MonthAndDay* typed) {
  const short first_month = FindMonth(tokens[0]);
  const short second_month = first_month == kNoMonth ? FindMonth(tokens[1]) : kNoMonth;
  if (first_month != kNoMonth) {
    *typed = {first_month, LeadingNumber(tokens[1])};
    return IsDigitLed(tokens[1]);
  }
  if (second_month != kNoMonth) {
    *typed = {second_month, LeadingNumber(tokens[0])};
    return IsDigitLed(tokens[0]);
  }
  const std::int64_t first = LeadingNumber(tokens[0]);
  const std::int64_t second = LeadingNumber(tokens[1]);
  *typed = field.month_first ? MonthAndDay{first, second} : MonthAndDay{second, first};
  return IsDigitLed(tokens[0]) && IsDigitLed(tokens[1]);
}

// Returns the year from 1900 to 2099 that one or two digits mean: the one closer to now, or the
// later one if both are equally close.
std::int64_t FullYear(std::int64_t year, std::int64_t now) {
  const std::int64_t later = year + kThisCentury;
  const std::int64_t earlier = later - kCentury;
  return std::abs(later - now) > std::abs(earlier - now) ? earlier : later;
}

bool ReadYear(const Field& field, std::string_view token, std::int64_t* year) {
  if (!IsDigitLed(token) || token.size() > kMaxYearLength) return false;
  const std::int64_t value = LeadingNumber(token);
  *year = token.size() <= kShortYearLength ? FullYear(value, field.now.year) : value;
  return true;
}

// Returns the year of a date that was typed without a year: this year if the date is then within 90
// days of today; else last year if it is then; else the year of the next such date.
int NearestYear(int month, int day, un_date_time now) {
  const int year = static_cast<int>(now.year);
  const un_date_time date = un_date_time::Of(year, month, day);
  if (IsNearToday(date, now)) return year;
  if (IsNearToday(un_date_time::Of(year - 1, month, day), now)) return year - 1;
  return OZDate::DateCompare(&date, &now) >= 0 ? year : year + 1;
}

// Reads a date in numbers or with the name of a month.
bool ReadDate(const Field& field, const Tokens& tokens, un_date_time* date) {
  const short last = tokens.LastIndex();
  if (last != 1 && last != 2) return false;
  for (int i = 0; i <= last; ++i) {
    if (tokens.IsCut(i)) return false;
  }
  MonthAndDay typed;
  if (!ReadMonthAndDay(field, tokens, &typed)) return false;
  if (typed.month < 1 || typed.month > calendar::kMonthsPerYear) return false;
  if (typed.day < 1 || typed.day > calendar::kLongestMonth) return false;
  const int month = static_cast<int>(typed.month);
  const int day = static_cast<int>(typed.day);
  const bool has_year = last == 2 && !tokens[2].empty();
  std::int64_t year = 0;
  if (!has_year) {
    year = NearestYear(month, day, field.now);
  } else if (!ReadYear(field, tokens[2], &year)) {
    return false;
  }
  if (!calendar::IsYearInCalendar(year)) return false;
  if (day > calendar::MonthLength(static_cast<int>(year), month)) return false;
  *date = un_date_time::Of(static_cast<int>(year), month, day, static_cast<int>(field.now.time));
  return true;
}

bool HasDigit(const Field& field) { return std::ranges::any_of(field.Text(), IsDigit); }

// The word, the weekday, or both, with which a text begins.
struct Opening {
  DateWord word = DateWord::kNone;
  short weekday = kNoWeekday;

  bool NamesDay() const {
    return weekday != kNoWeekday || word == DateWord::kTomorrow || word == DateWord::kYesterday;
  }
};

Opening ReadOpening(const Field& field, const Tokens& tokens) {
  Opening opening;
  if (IsDigitLed(tokens[0])) return opening;
  opening.word = FindDateWord(tokens[0]);
  if (opening.word == DateWord::kThis && tokens.LastIndex() == 0) {
    opening.word = DateWord::kNone;  // "th" alone is Thursday
  }
  const int weekday_index = TakesWeekday(opening.word) ? 1 : 0;
  if (!tokens.IsCut(weekday_index)) {
    opening.weekday = FindWeekday(tokens[weekday_index], field.week_start);
  }
  return opening;
}

// Returns the days from today to the day that an opening names.
int DaysToNamedDay(const Field& field, const Opening& opening) {
  if (opening.weekday == kNoWeekday) return opening.word == DateWord::kTomorrow ? 1 : -1;
  std::int32_t ignored = 0;
  const int today = OZDate::DayOfWeek(&field.now, &ignored, field.week_start, 0);
  const int distance = opening.weekday - today;
  switch (opening.word) {
    case DateWord::kNext:
      return distance + calendar::kDaysPerWeek;
    case DateWord::kLast:
      return distance - calendar::kDaysPerWeek;
    case DateWord::kThis:
      return distance;
    default:
      return distance > 0 ? distance : distance + calendar::kDaysPerWeek;
  }
}

}  // namespace

StageResult DateStage(Field& field) {
  if (field.IsNoneAllowed() && (field.length == 0 || IsNoneWord(field.Text()))) {
    return field.Accept(OZParser::eParseNone);
  }
  Tokens tokens(field.text);
  if (!tokens.HaveOnly(SeparatorSet::kDate) || tokens.IsCut(0)) return StageResult::kPass;
  const Opening opening = ReadOpening(field, tokens);
  un_date_time date = field.now;
  if (opening.word == DateWord::kToday) {
    // The text after the word is ignored.
  } else if (opening.NamesDay() && !HasDigit(field)) {
    if (!MoveByDays(&date, DaysToNamedDay(field, opening))) return StageResult::kPass;
  } else {
    if (opening.weekday != kNoWeekday) tokens.DropFirst();  // a weekday before a date
    if (!ReadDate(field, tokens, &date)) return StageResult::kPass;
  }
  field.date = date;
  return field.Accept(OZParser::eParseDate);
}

}  // namespace orzcore::parser

namespace parser = orzcore::parser;

int OZParser::ParseDate(eParseResult* result, int none_clears, un_date_time* date, const char* text,
                        eCalWeekStart week_start, int day_position) {
  un_date_time value = date->year != 0 ? *date : OZDate::CurDateTime();
  eParseResult found = eParseUnset;
  const int status = ParseField(&found, kNoneAllowed, &value, 0, text, eEditDate, nullptr,
                                week_start, 0, day_position);
  if (status != parser::kAccepted) return status;
  if (found == eParseNone) {
    value = none_clears != 0 ? un_date_time{} : OZDate::CurDateTime();
  }
  value.time = date->time;
  *date = value;
  *result = found;
  return parser::kAccepted;
}
