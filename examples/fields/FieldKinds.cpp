#include "fields/FieldKinds.h"

#include <algorithm>
#include <cstring>

#include "terminal/Command.h"
#include "terminal/Print.h"

static constexpr stCurrencyFormat kDollars = {"$", '.'};

const std::vector<FieldKind> kFieldKinds = {
    {"date", "tomorrow, next fri, 3/5, 5 jan 99, 2 w, +3 d", OZParser::eEditDate},
    {"time", "9:30, 930p, noon, now, +30 m", OZParser::eEditTime},
    {"datetime", "a date, a time or an interval", OZParser::eEditDateTimeTI},
    {"interval", "2:30, 1.5 h, 20 m, 3 d (stored in tenths of a minute)", OZParser::eEditRealTI},
    {"count", "5 d, 2 weeks, 6 mo, 1 y", OZParser::eEditIntTI},
    {"hours", "5 h, 45 min", OZParser::eEditHoursMinTI},
    {"int", "42", OZParser::eEditInt},
    {"real", "12.345", OZParser::eEditReal},
    {"money", "$12.50, 12.5$", OZParser::eEditReal, &kDollars},
    {"priority", "hi, lo, c5, 35", std::nullopt},
};

static const Reading kNone = {"none", "none", ""};

static std::optional<Reading> ReadPriority(const std::string& text) {
  short priority = OZParser::kNoPriority;
  if (OZParser::ParsePriority(&priority, text.c_str(), 1) != 0) return std::nullopt;
  const bool none = priority == OZParser::kNoPriority;
  return Reading{"priority", std::to_string(priority), none ? "none" : ""};
}

static Reading IntervalReading(const ST_TIME_RETURN_VAL& interval, OZParser::eEditType type) {
  const std::string value = std::to_string(interval.value);
  if (type == OZParser::eEditIntTI) return {"interval", value + ' ' + interval.unit, ""};
  if (type == OZParser::eEditRealTI) {
    return {"interval", value + "/10 min", Duration(interval.value)};
  }
  const std::int64_t tenths = interval.unit == 'H' ? 600 : 10;
  return {"interval", value + ' ' + interval.unit, Duration(interval.value * tenths)};
}

template <typename Value>
static Value ValueAt(const char* place) {
  Value value;
  std::memcpy(&value, place, sizeof value);
  return value;
}

// The text decides the type of the result, so the place has room for the largest one.
std::optional<Reading> FieldKind::Read(const std::string& text, const Settings& settings) const {
  if (!type) return ReadPriority(text);
  OZParser::eParseResult result = OZParser::eParseNone;
  const un_date_time now = OZDate::CurDateTime();
  char place[sizeof(ST_TIME_RETURN_VAL)] = {};
  std::memcpy(place, &now, sizeof now);  // a signed interval in a date field counts from it
  const bool hours24 = settings.Hours24();
  if (OZParser::ParseField(&result, OZParser::kNoneAllowed, place, 0, text.c_str(), *type, currency,
                           settings.WeekStart(), hours24 ? 1 : 0,
                           settings.DayFirst() ? 0 : 1) != 0) {
    return std::nullopt;
  }
  const bool moved_date = result == OZParser::eParseInterval && type == OZParser::eEditDate;
  if (result == OZParser::eParseDate || moved_date) {
    const auto date = ValueAt<un_date_time>(place);
    return Reading{moved_date ? "interval" : "date", IsoDate(date), DisplayDate(date)};
  }
  switch (result) {
    case OZParser::eParseTime: {
      const auto time = ValueAt<short>(place);
      return Reading{"time", ClockTime(time), DisplayTime(time, hours24)};
    }
    case OZParser::eParseInterval:
      return IntervalReading(ValueAt<ST_TIME_RETURN_VAL>(place), *type);
    case OZParser::eParseInt:
      return Reading{"int", std::to_string(ValueAt<std::int32_t>(place)), ""};
    case OZParser::eParseReal: {
      const std::string number = Decimal(ValueAt<std::int32_t>(place), 3);
      return Reading{"real", number, currency != nullptr ? currency->symbol + number : ""};
    }
    default:
      return kNone;
  }
}

const FieldKind& FindFieldKind(const std::string& name) {
  const auto kind = std::find_if(kFieldKinds.begin(), kFieldKinds.end(),
                                 [&](const FieldKind& each) { return each.name == name; });
  if (kind != kFieldKinds.end()) return *kind;
  std::vector<std::string> names;
  names.reserve(kFieldKinds.size());
  for (const FieldKind& each : kFieldKinds) names.push_back(each.name);
  throw UsageError("unknown KIND '" + name + "'" + DidYouMean(name, names));
}

un_date_time ReadDate(const std::string& text, const un_date_time& reference,
                      const Settings& settings) {
  constexpr int kNoneClears = 1;
  OZParser::eParseResult result = OZParser::eParseNone;
  un_date_time date = reference;
  if (OZParser::ParseDate(&result, kNoneClears, &date, text.c_str(), settings.WeekStart(),
                          settings.DayFirst() ? 0 : 1) == 0 &&
      result != OZParser::eParseNone) {
    return date;
  }
  throw Rejection("the date field rejects '" + text +
                  "'; it accepts: " + FindFieldKind("date").accepts);
}
