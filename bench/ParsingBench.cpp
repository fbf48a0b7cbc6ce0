// Reading what a user typed, compared with the date parsers of other libraries.
#include <absl/time/time.h>
#include <time.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <memory>

#include "Bench.h"

namespace orzcore::bench {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr const char* kPlainDate = "parse Jan 5, 1999";
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kWeekdays[] = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};

// The date fields of all benchmarks hold this date before they are parsed.
constexpr un_date_time kFieldDate = un_date_time::Of(2024, 3, 15, 600);

std::string DateText(un_date_time date) {
  return Format("%s %d, %d", kMonths[date.month - 1], static_cast<int>(date.day),
                static_cast<int>(date.year));
}

un_date_time OurDate(const std::string& text) {
  un_date_time date = kFieldDate;
  OZParser::eParseResult result = OZParser::eParseUnset;
  OZParser::ParseDate(&result, 0, &date, text.c_str(), eCalWeekStartSunday, 1);
  return date;
}

std::tm StrptimeDate(const std::string& text) {
  std::tm fields = {};
  strptime(text.c_str(), "%b %d, %Y", &fields);
  return fields;
}

year_month_day TmDay(const std::tm& fields) {
  return {std::chrono::year(fields.tm_year + 1900),
          std::chrono::month(static_cast<unsigned>(fields.tm_mon + 1)),
          std::chrono::day(static_cast<unsigned>(fields.tm_mday))};
}

sys_days AbseilDay(absl::Time time) {
  return std::chrono::floor<std::chrono::days>(absl::ToChronoTime(time));
}

absl::Time AbseilDate(const std::string& text) {
  absl::Time time;
  std::string error;
  absl::ParseTime("%b %d, %Y", text, &time, &error);
  return time;
}

sys_days IcuDay(UDate milliseconds) {
  const std::chrono::milliseconds since_1970(static_cast<std::int64_t>(milliseconds));
  return sys_days(std::chrono::floor<std::chrono::days>(since_1970));
}

// Parses with a prepared format and calendar. The texts are in ICU's form already.
auto IcuParser() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::getUS();
  const auto format = std::make_shared<icu::SimpleDateFormat>("MMM d, y", locale, status);
  const auto calendar =
      std::make_shared<icu::GregorianCalendar>(*icu::TimeZone::getGMT(), locale, status);
  return [=](const icu::UnicodeString& text) {
    UErrorCode error = U_ZERO_ERROR;
    icu::ParsePosition position;
    calendar->clear();
    format->parse(text, *calendar, position);
    return calendar->getTime(error);
  };
}

// Dates as everybody writes them, the one form that the peers know.
void AddPlainDates() {
  Random random;
  const auto dates = Inputs([&] {
    un_date_time date = random.Date(1753, 2099);
    date.time = kFieldDate.time;
    return date;
  });
  const auto texts = Converted(dates, DateText);
  Add(kPlainDate, "ours", texts, OurDate, dates);
  Add(kPlainDate, "strptime", texts, StrptimeDate, dates, TmDay);
  Add(kPlainDate, "abseil", texts, AbseilDate, dates, AbseilDay);
  const auto icu_texts =
      Converted(texts, [](const std::string& text) { return icu::UnicodeString::fromUTF8(text); });
  Add(kPlainDate, "icu", icu_texts, IcuParser(), dates, IcuDay);
}

// "next fri", "+3 d": no peer knows them. A weekday counts from today, a signed interval from the
// date of the field.
void AddNearbyDates() {
  Random random;
  const auto weekdays = Inputs([&] { return random.Between(1, 7); });
  const auto weekday_texts =
      Converted(weekdays, [](int weekday) { return Format("next %s", kWeekdays[weekday - 1]); });
  // As days from the start of this week, since midnight may pass during a run.
  const auto from_this_week = [](un_date_time date) {
    const un_date_time now = OZDate::CurDateTime();
    std::int32_t today = 0;
    std::int32_t day = 0;
    const int weekday = OZDate::DayOfWeek(&now, &today, eCalWeekStartSunday, 1);
    OZDate::DayOfWeek(&date, &day, eCalWeekStartSunday, 1);
    return day - today + weekday;
  };
  const auto next_week = Converted(weekdays, [](int weekday) { return weekday + 7; });
  Add("parse next fri", "ours", weekday_texts, OurDate, next_week, from_this_week);

  const auto counts = Inputs([&] { return random.Between(1, 99); });
  const auto count_texts = Converted(counts, [](int count) { return Format("+%d d", count); });
  const auto count_dates = Converted(counts, [](int count) {
    un_date_time date = kFieldDate;
    OZDate::DateFwrd(&date, count, 'D');
    return date;
  });
  Add("parse +3 d", "ours", count_texts, OurDate, count_dates);
}

// A kind of field that no peer knows. `read` must find the value that `write` wrote, a random
// multiple of `step` from `step` to `count` times `step`.
template <typename Value, typename Write, typename Read>
void AddField(const std::string& name, int count, int step, Write write, Read read) {
  Random random;
  const auto values = Inputs([&] { return random.Between(1, count) * step; });
  const auto read_value = [read](const std::string& text) {
    Value value = {};
    read(text.c_str(), &value);
    return value;
  };
  Add(name, "ours", Converted(values, write), read_value, values);
}

void AddNumbers() {
  AddField<std::int32_t>(
      "parse 12345", 99999, 1, [](int value) { return std::to_string(value); },
      [](const char* text, std::int32_t* value) { OZParser::ParseInt(text, value); });
  AddField<std::int32_t>(
      "parse 123.456", 999999, 1,
      [](int value) { return Format("%d.%03d", value / 1000, value % 1000); },
      [](const char* text, std::int32_t* value) { OZParser::ParseReal(text, 0, value); });
  AddField<short>(
      "parse priority c3", 9, 11,
      [](int value) { return Format("%c%d", 'a' + value / 10 - 1, value % 10); },
      [](const char* text, short* value) { OZParser::ParsePriority(value, text, 1); });
}

void AddTimes() {
  AddField<short>(
      "parse 1:05pm", 1439, 1,
      [](int minutes) {
        const int hour = minutes / 60;
        return Format("%d:%02d%s", (hour + 11) % 12 + 1, minutes % 60, hour < 12 ? "am" : "pm");
      },
      [](const char* text, short* time) {
        OZParser::eParseResult result = OZParser::eParseUnset;
        OZParser::ParseTime(&result, 0, time, OZDate::kNoTime, text, 0);
      });
  AddField<ST_TIME_RETURN_VAL>(
      "parse 1.5 h", 99, 60,
      [](int tenths) { return Format("%d.%d h", tenths / 600, tenths / 60 % 10); },
      [](const char* text, ST_TIME_RETURN_VAL* time) { OZParser::ParseRealTI(time, text); });
  AddField<ST_TIME_RETURN_VAL>(
      "parse 30 d", 999, 1, [](int days) { return Format("%d d", days); },
      [](const char* text, ST_TIME_RETURN_VAL* time) { OZParser::ParseIntTI(text, time); });
}

}  // namespace

void AddParsing() {
  AddPlainDates();
  AddNearbyDates();
  AddTimes();
  AddNumbers();
}

}  // namespace orzcore::bench
