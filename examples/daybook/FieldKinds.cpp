#include "FieldKinds.h"

#include <cstring>

#include "Print.h"

namespace {

using Result = std::optional<Reading>;

const Reading kNone = {"none", "none", ""};

Reading DateReading(const un_date_time& date) { return {"date", IsoDate(date), DisplayDate(date)}; }

Reading TimeReading(short time, const Options& options) {
  return {"time", ClockTime(time / 60, time % 60), DisplayTime(time, options.twenty_four_hour)};
}

// What stands in a date or time field, which an interval may have moved.
Reading Moved(OZParser::eParseResult result, Reading reading) {
  if (result == OZParser::eParseInterval) reading.result = "interval";
  return result == OZParser::eParseNone ? kNone : reading;
}

Result ReadDateField(const char* text, const Options& options) {
  OZParser::eParseResult result = OZParser::eParseNone;
  un_date_time date = options.date;
  const int status =
      OZParser::ParseDate(&result, 1, &date, text, options.week_start, options.day_first ? 0 : 1);
  return status == 0 ? Result(Moved(result, DateReading(date))) : std::nullopt;
}

Result ReadTimeField(const char* text, const Options& options) {
  OZParser::eParseResult result = OZParser::eParseNone;
  short time = options.time;
  const int status = OZParser::ParseTime(&result, 0, &time, OZDate::kNoTime, text,
                                         options.twenty_four_hour ? 1 : 0);
  return status == 0 ? Result(Moved(result, TimeReading(time, options))) : std::nullopt;
}

template <typename Value>
Value ValueAt(const char* place) {
  Value value;
  std::memcpy(&value, place, sizeof value);
  return value;
}

// The text decides what the field holds, so the place for it has room for the largest result.
Result ReadDateTimeField(const char* text, const Options& options) {
  OZParser::eParseResult result = OZParser::eParseNone;
  char place[sizeof(ST_TIME_RETURN_VAL)];
  const int status = OZParser::ParseField(
      &result, OZParser::kNoneAllowed, place, 0, text, OZParser::eEditDateTimeTI, nullptr,
      options.week_start, options.twenty_four_hour ? 1 : 0, options.day_first ? 0 : 1);
  if (status != 0) return std::nullopt;
  if (result == OZParser::eParseDate) return DateReading(ValueAt<un_date_time>(place));
  if (result == OZParser::eParseTime) return TimeReading(ValueAt<short>(place), options);
  if (result != OZParser::eParseInterval) return kNone;
  const std::int64_t minutes = ValueAt<ST_TIME_RETURN_VAL>(place).value;
  return Reading{"interval", std::to_string(minutes) + " min", Duration(minutes * 10)};
}

Result ReadIntervalField(const char* text, const Options& /*options*/) {
  ST_TIME_RETURN_VAL interval{};
  if (OZParser::ParseRealTI(&interval, text) != 0) return std::nullopt;
  if (interval.unit == 0) return kNone;  // a text without a value leaves the unit alone
  return Reading{"interval", std::to_string(interval.value) + "/10 min", Duration(interval.value)};
}

Result ReadCountField(const char* text, const Options& /*options*/) {
  ST_TIME_RETURN_VAL count{};
  if (OZParser::ParseIntTI(text, &count) != 0) return std::nullopt;
  const std::string value = std::to_string(count.value);
  if (count.unit == ' ') return Reading{"interval", value, "none"};
  return Reading{"interval", value + ' ' + count.unit, ""};
}

Result ReadHoursField(const char* text, const Options& /*options*/) {
  ST_TIME_RETURN_VAL count{};
  if (OZParser::ParseHoursMinTI(text, &count) != 0) return std::nullopt;
  const std::string value = std::to_string(count.value);
  if (count.unit == ' ') return Reading{"interval", value, "none"};
  return Reading{"interval", value + ' ' + count.unit,
                 Duration(std::int64_t{count.value} * (count.unit == 'H' ? 600 : 10))};
}

Result ReadIntField(const char* text, const Options& /*options*/) {
  constexpr std::int32_t kUntouched = -1;  // the field takes no negative number
  std::int32_t number = kUntouched;
  if (OZParser::ParseInt(text, &number) != 0) return std::nullopt;
  return number == kUntouched ? kNone : Reading{"int", std::to_string(number), ""};
}

Result ReadRealField(const char* text, const Options& /*options*/) {
  std::int32_t thousandths = 0;
  if (OZParser::ParseReal(text, 0, &thousandths) != 0) return std::nullopt;
  return Reading{"real", Decimal(thousandths, 3, '.'), ""};
}

Result ReadMoneyField(const char* text, const Options& options) {
  std::int32_t cents = 0;
  if (OZParser::ParseCurrency(text, 0, &cents, &options.money, 1) != 0) return std::nullopt;
  return Reading{"real", Decimal(cents, 2, '.'),
                 options.money.symbol + Decimal(cents, 2, options.money.decimalChar)};
}

Result ReadPriorityField(const char* text, const Options& /*options*/) {
  short priority = OZParser::kNoPriority;
  if (OZParser::ParsePriority(&priority, text, 1) != 0) return std::nullopt;
  const bool none = priority == OZParser::kNoPriority;
  return Reading{"priority", std::to_string(priority), none ? "none" : ""};
}

}  // namespace

const std::vector<FieldKind> kFieldKinds = {
    {"date", "tomorrow, next fri, 3/5, 5 jan 99, 2 w, +3 d", ReadDateField},
    {"time", "9:30, 930p, noon, now, +30 m", ReadTimeField},
    {"datetime", "a date, a time or an interval", ReadDateTimeField},
    {"interval", "2:30, 1.5 h, 20 m, 3 d (held in tenths of a minute)", ReadIntervalField},
    {"count", "5 d, 2 weeks, 6 mo, 1 y", ReadCountField},
    {"hours", "5 h, 45 min", ReadHoursField},
    {"int", "42", ReadIntField},
    {"real", "12.345", ReadRealField},
    {"money", "$12.50, 12.5$", ReadMoneyField},
    {"priority", "hi, lo, c5, 35", ReadPriorityField},
};
