#include "icalendar/ICalendar.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include "terminal/Print.h"
#include "terminal/Text.h"

namespace {

constexpr const char* kSpecial = "\\;,";  // in texts

// Writes a line. A long one is continued in the next line after a blank, between characters.
void PutLine(std::ostream& out, const std::string& line) {
  constexpr std::size_t kMost = 75;  // bytes
  std::string_view rest = line;
  for (std::size_t most = kMost; rest.size() > most; most = kMost - 1) {
    std::size_t length = most;
    while ((static_cast<unsigned char>(rest[length]) & 0xC0) == 0x80) --length;
    out << rest.substr(0, length) << "\r\n ";
    rest.remove_prefix(length);
  }
  out << rest << "\r\n";
}

// "20261128" or "20261128T150000". iCalendar has no 24:00.
std::string Moment(const un_date_time& moment) {
  constexpr unsigned int kLastMinute = OZDate::kEndOfDay - 1;
  std::string text = IsoDate(moment);
  if (moment.time != OZDate::kNoTime) {
    text +=
        'T' + ClockTime(static_cast<int>(std::min<unsigned int>(moment.time, kLastMinute))) + "00";
  }
  text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == '-' || c == ':'; }),
             text.end());
  return text;
}

// The current time in UTC: "20261128T150000Z".
std::string Now() {
  const un_date_time now = OZDate::CurDateTime();
  std::tm local{};
  local.tm_year = now.year - 1900;
  local.tm_mon = now.month - 1;
  local.tm_mday = now.day;
  local.tm_min = static_cast<int>(now.time);
  local.tm_isdst = -1;  // unknown
  const auto utc = std::chrono::system_clock::from_time_t(std::mktime(&local));
  const auto midnight = std::chrono::floor<std::chrono::days>(utc);
  const std::chrono::year_month_day date(midnight);
  const auto minutes = std::chrono::floor<std::chrono::minutes>(utc - midnight).count();
  return Moment(un_date_time::Of(int{date.year()}, static_cast<int>(unsigned{date.month()}),
                                 static_cast<int>(unsigned{date.day()}),
                                 static_cast<int>(minutes))) +
         'Z';
}

const char* ValueType(const un_date_time& moment) {
  return moment.time == OZDate::kNoTime ? ";VALUE=DATE:" : ":";
}

constexpr const char* kWeekdays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

std::string Weekdays(unsigned int mask) {
  std::string text;
  for (unsigned int day = 0; day < 7; ++day) {
    if ((mask >> day & 1) == 0) continue;
    if (!text.empty()) text += ',';
    text += kWeekdays[day];
  }
  return text;
}

// The nth such weekday of a month. The fifth one may be in the next month, so there is no rule.
std::string NthWeekday(unsigned int weekday, unsigned int nth) {
  constexpr unsigned int kInEveryMonth = 4;
  if (nth != OZDate::kCycLast && nth > kInEveryMonth) return "";
  const std::string number = nth == OZDate::kCycLast ? "-1" : std::to_string(nth);
  return ";BYDAY=" + number + kWeekdays[weekday - 1];
}

// A day of a month, or the last one of a month that does not have it.
std::string DayOfMonth(unsigned int day) {
  constexpr unsigned int kInEveryMonth = 28;
  if (day == OZDate::kCycLast) return ";BYMONTHDAY=-1";
  if (day <= kInEveryMonth) return ";BYMONTHDAY=" + std::to_string(day);
  std::string days = ";BYMONTHDAY=28";
  for (unsigned int each = kInEveryMonth + 1; each <= day; ++each)
    days += ',' + std::to_string(each);
  return days + ";BYSETPOS=-1";
}

// The rule of the first month of each quarter, or of the last month for the last day or weekday.
// Other days, and quarters that begin within a month, have no rule.
std::string Quarterly(const Rule& rule) {
  constexpr unsigned int kInEveryMonth = 28;
  const unsigned int value = rule.cycle.cycValue;
  const unsigned int weekday = rule.cycle.cycSelect;
  const bool last = value == OZDate::kCycLast;
  if (rule.quarter_anchor % 100 != 1 || (weekday == 0 && !last && value > kInEveryMonth)) return "";
  const std::string day = weekday == 0 ? DayOfMonth(value) : NthWeekday(weekday, value);
  if (day.empty()) return "";
  std::string months;
  for (int month = rule.quarter_anchor / 100 - 1 + (last ? 2 : 0), i = 0; i < 4; ++i, month += 3) {
    if (i > 0) months += ',';
    months += std::to_string(month % 12 + 1);
  }
  return "FREQ=MONTHLY;BYMONTH=" + months + day;
}

std::string Yearly(const st_cyc_time& cycle) {
  constexpr unsigned int kLast = 5;
  const unsigned int month = cycle.cycSelect % 16;
  const unsigned int nth = cycle.cycSelect / 16;
  // In a yearly rule, the number of a day has 5 bits.
  const std::string day = nth == 0
                              ? DayOfMonth(cycle.cycValue % 32)
                              : NthWeekday(cycle.cycValue, nth >= kLast ? OZDate::kCycLast : nth);
  return "FREQ=YEARLY;BYMONTH=" + std::to_string(month) + day;
}

// Returns nothing for a rule that RRULE cannot say.
std::string RecurrenceRule(const Rule& rule, const un_date_time& first) {
  constexpr unsigned int kSundayWeeks = 1984;  // from this year on, weeks begin on Sundays
  const st_cyc_time& cycle = rule.cycle;
  switch (cycle.cycKind) {
    case eCycWeekly:
      return "FREQ=WEEKLY;BYDAY=" + Weekdays(cycle.cycValue);
    case eCycAltWeekly:
      if (first.year < kSundayWeeks) return "";
      return "FREQ=WEEKLY;INTERVAL=2;WKST=SU;BYDAY=" + Weekdays(cycle.cycValue);
    case eCycMonthly: {
      const std::string day = cycle.cycSelect == 0 ? DayOfMonth(cycle.cycValue)
                                                   : NthWeekday(cycle.cycSelect, cycle.cycValue);
      return day.empty() ? "" : "FREQ=MONTHLY" + day;
    }
    case eCycQuarterly:
      return Quarterly(rule);
    default:
      return Yearly(cycle);
  }
}

// Writes the dates after the first one.
void PutDates(std::ostream& out, const std::vector<un_date_time>& dates) {
  constexpr std::size_t kMostInProperty = 100;  // some readers drop the end of a long property
  const std::size_t count = std::min(dates.size(), kMostEventDates);
  std::string text;
  for (std::size_t i = 1; i < count; ++i) {
    text += Moment(dates[i]);
    const bool ends = i % kMostInProperty == 0 || i + 1 == count;
    if (ends) PutLine(out, std::string("RDATE") + ValueType(dates.front()) + text);
    ends ? text.clear() : text.push_back(',');
  }
}

// The numbers of iCalendar are 1, the highest, to 9.
int Priority(short priority) { return 1 + std::clamp<int>(priority, 0, 100) * 8 / 100; }

}  // namespace

void BeginCalendar(std::ostream& out, const std::string& product) {
  PutLine(out, "BEGIN:VCALENDAR");
  PutLine(out, "VERSION:2.0");
  PutLine(out, "PRODID:-//" + product + "//EN");
}

bool WriteEvent(std::ostream& out, const Event& event) {
  const un_date_time& first = event.dates.front();
  PutLine(out, "BEGIN:VEVENT");
  PutLine(out, "UID:" + Escaped(event.id, kSpecial));
  PutLine(out, "DTSTAMP:" + Now());
  PutLine(out, std::string("DTSTART") + ValueType(first) + Moment(first));
  if (event.minutes != 0 && first.time != OZDate::kNoTime) {
    PutLine(out, "DURATION:PT" + std::to_string(event.minutes) + 'M');
  }
  if (event.priority != OZParser::kNoPriority) {
    PutLine(out, "PRIORITY:" + std::to_string(Priority(event.priority)));
  }
  if (event.done) PutLine(out, "CATEGORIES:done");
  PutLine(out, "SUMMARY:" + Escaped(event.text, kSpecial));
  const std::string rule = event.rule ? RecurrenceRule(*event.rule, first) : "";
  if (!rule.empty()) PutLine(out, "RRULE:" + rule + ";UNTIL=" + Moment(event.dates.back()));
  if (rule.empty()) PutDates(out, event.dates);
  PutLine(out, "END:VEVENT");
  return !rule.empty() || event.dates.size() <= kMostEventDates;
}

void EndCalendar(std::ostream& out) { PutLine(out, "END:VCALENDAR"); }
