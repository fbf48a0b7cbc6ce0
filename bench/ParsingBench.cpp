// Reading what a user typed, compared with the date parsers of other libraries.
#include <time.h>

#include "Bench.h"
#include "orzcore/parser.h"

#ifdef ORZCORE_BENCH_ABSEIL
#include <absl/time/time.h>
#endif
#ifdef ORZCORE_BENCH_ICU
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <memory>
#endif

namespace bench {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kWeekdays[] = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};

using Dates = std::vector<un_date_time>;
using Texts = std::vector<std::string>;

// The date fields of all benchmarks hold this date before they are parsed.
constexpr un_date_time kFieldDate = un_date_time::Of(2024, 3, 15, 600);

std::string Text(int number) { return std::to_string(number); }
const char* Text(const char* text) { return text; }
char Text(char letter) { return letter; }

// A text made of numbers, texts and letters.
template <typename... Parts>
std::string Join(Parts... parts) {
  std::string text;
  ((text += Text(parts)), ...);
  return text;
}

std::string DateText(un_date_time date) {
  return Join(kMonths[date.month - 1], ' ', static_cast<int>(date.day), ", ",
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

#ifdef ORZCORE_BENCH_ABSEIL

sys_days AbseilDay(absl::Time time) {
  return std::chrono::floor<std::chrono::days>(absl::ToChronoTime(time));
}

absl::Time AbseilDate(const std::string& text) {
  absl::Time time;
  std::string error;
  absl::ParseTime("%b %d, %Y", text, &time, &error);
  return time;
}

#endif
#ifdef ORZCORE_BENCH_ICU

sys_days IcuDay(UDate milliseconds) {
  const std::chrono::milliseconds since_1970(static_cast<std::int64_t>(milliseconds));
  return sys_days(std::chrono::floor<std::chrono::days>(since_1970));
}

// Parses with a prepared format and calendar, texts that are in ICU's form already.
class IcuParser {
 public:
  IcuParser() {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale = icu::Locale::getUS();
    format_ = std::make_shared<icu::SimpleDateFormat>("MMM d, y", locale, status);
    calendar_ = std::make_shared<icu::GregorianCalendar>(*icu::TimeZone::getGMT(), locale, status);
  }

  UDate operator()(const icu::UnicodeString& text) const {
    UErrorCode status = U_ZERO_ERROR;
    icu::ParsePosition position;
    calendar_->clear();
    format_->parse(text, *calendar_, position);
    return calendar_->getTime(status);
  }

 private:
  std::shared_ptr<icu::SimpleDateFormat> format_;
  std::shared_ptr<icu::GregorianCalendar> calendar_;
};

#endif

// Dates as everybody writes them, the one form that the peers know.
void AddPlainDates() {
  Random random;
  const Dates dates = Inputs([&] {
    un_date_time date = random.Date(1753, 2099);
    date.time = kFieldDate.time;
    return date;
  });
  const Texts texts = Converted(dates, DateText);
  Add(kPlainDate, "ours", texts, OurDate, dates);
  Add(kPlainDate, "strptime", texts, StrptimeDate, dates, TmDay);
#ifdef ORZCORE_BENCH_ABSEIL
  Add(kPlainDate, "abseil", texts, AbseilDate, dates, AbseilDay);
#endif
#ifdef ORZCORE_BENCH_ICU
  const auto icu_texts =
      Converted(texts, [](const std::string& text) { return icu::UnicodeString::fromUTF8(text); });
  Add(kPlainDate, "icu", icu_texts, IcuParser(), dates, IcuDay);
#endif
}

// "next fri", "+3 d": only ours know them. A weekday counts from today, a signed interval from the
// date of the field.
void AddNearbyDates() {
  Random random;
  const auto weekdays = Inputs([&] { return random.Between(1, 7); });
  const Texts weekday_texts =
      Converted(weekdays, [](int weekday) { return Join("next ", kWeekdays[weekday - 1]); });
  // As days from the start of this week, so that a run may see midnight pass.
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
  const Texts count_texts = Converted(counts, [](int count) { return Join('+', count, " d"); });
  const Dates count_dates = Converted(counts, [](int count) {
    un_date_time date = kFieldDate;
    OZDate::DateFwrd(&date, count, 'D');
    return date;
  });
  Add("parse +3 d", "ours", count_texts, OurDate, count_dates);
}

int ReadTime(const char* text) {
  OZParser::eParseResult result = OZParser::eParseUnset;
  short time = OZDate::kNoTime;
  OZParser::ParseTime(&result, 0, &time, OZDate::kNoTime, text, 0);
  return time;
}

int ReadInt(const char* text) {
  std::int32_t value = -1;
  OZParser::ParseInt(text, &value);
  return value;
}

int ReadReal(const char* text) {
  std::int32_t thousandths = -1;
  OZParser::ParseReal(text, 0, &thousandths);
  return thousandths;
}

int ReadTenthsOfMinute(const char* text) {
  ST_TIME_RETURN_VAL interval = {};
  OZParser::ParseRealTI(&interval, text);
  return interval.value;
}

int ReadDays(const char* text) {
  ST_TIME_RETURN_VAL interval = {};
  OZParser::ParseIntTI(text, &interval);
  return interval.value;
}

int ReadPriority(const char* text) {
  short priority = -1;
  OZParser::ParsePriority(&priority, text, 1);
  return priority;
}

// Texts as users type them.
std::string TimeText(int minutes) {
  const int hour = minutes / 60;
  const int minute = minutes % 60;
  return Join((hour + 11) % 12 + 1, ':', minute / 10, minute % 10, hour < 12 ? "am" : "pm");
}
std::string IntText(int value) { return Join(value); }
std::string RealText(int thousandths) {
  return Join(thousandths / 1000, '.', thousandths / 100 % 10, thousandths / 10 % 10,
              thousandths % 10);
}
std::string HoursText(int tenths_of_minute) {
  return Join(tenths_of_minute / 600, '.', tenths_of_minute / 60 % 10, " h");
}
std::string DaysText(int days) { return Join(days, " d"); }
std::string PriorityText(int priority) {
  return Join(static_cast<char>('a' + priority / 10 - 1), priority % 10);
}

// A kind of field that only ours read. What is read must be the value that was written, a random
// multiple of `step` from `step` to `count` times `step`.
template <typename Read, typename Write>
void AddField(const std::string& name, int count, int step, Read read, Write write) {
  Random random;
  const auto values = Inputs([&] { return random.Between(1, count) * step; });
  const auto read_string = [read](const std::string& text) { return read(text.c_str()); };
  Add(name, "ours", Converted(values, write), read_string, values);
}

}  // namespace

void AddParsing() {
  AddPlainDates();
  AddNearbyDates();
  AddField("parse 1:05pm", 1439, 1, ReadTime, TimeText);
  AddField("parse 12345", 99999, 1, ReadInt, IntText);
  AddField("parse 123.456", 999999, 1, ReadReal, RealText);
  AddField("parse 1.5 h", 99, 60, ReadTenthsOfMinute, HoursText);
  AddField("parse 30 d", 999, 1, ReadDays, DaysText);
  AddField("parse priority c3", 9, 11, ReadPriority, PriorityText);
}

}  // namespace bench
