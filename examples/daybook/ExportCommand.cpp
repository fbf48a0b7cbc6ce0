// Writes a daybook as iCalendar (RFC 5545).
#include <algorithm>
#include <array>
#include <iostream>

#include "Commands.h"
#include "Store.h"
#include "terminal/Print.h"
#include "terminal/Text.h"

namespace {

constexpr std::size_t kMostDates = 1000;  // of an entry whose rule must be written as dates

// Writes a line. A long one is continued in the next line after a blank, between characters.
void PutLine(const std::string& line) {
  constexpr std::size_t kMost = 75;  // bytes
  std::string_view rest = line;
  for (std::size_t most = kMost; rest.size() > most; most = kMost - 1) {
    std::size_t length = most;
    while ((static_cast<unsigned char>(rest[length]) & 0xC0) == 0x80) --length;
    std::cout << rest.substr(0, length) << "\r\n ";
    rest.remove_prefix(length);
  }
  std::cout << rest << "\r\n";
}

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char character : Shown(text)) {
    if (character == '\\' || character == ';' || character == ',') escaped += '\\';
    escaped += character;
  }
  return escaped;
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

// Writes the dates after the first one. Returns false if it did not write them all.
bool PutDates(const std::vector<un_date_time>& dates) {
  constexpr std::size_t kMostInProperty = 100;  // some readers drop the end of a long property
  const std::size_t count = std::min(dates.size(), kMostDates);
  std::string text;
  for (std::size_t i = 1; i < count; ++i) {
    text += Moment(dates[i]);
    const bool ends = i % kMostInProperty == 0 || i + 1 == count;
    if (ends) PutLine(std::string("RDATE") + ValueType(dates.front()) + text);
    ends ? text.clear() : text.push_back(',');
  }
  return count == dates.size();
}

// The numbers of iCalendar are 1, the highest, to 9.
int Priority(short priority) { return 1 + std::clamp<int>(priority, 0, 100) * 8 / 100; }

void PutEntry(int id, const Entry& entry, const std::string& path) {
  const auto dates = DatesOf(entry, OZDate::BegOfTime, OZDate::EndOfTime);
  if (dates.empty()) {
    std::cerr << "daybook: entry " << id << " has no date, and is not exported\n";
    return;
  }
  const un_date_time& first = dates.front();
  un_date_time now = OZDate::CurDateTime();
  PutLine("BEGIN:VEVENT");
  PutLine("UID:" + std::to_string(id) + '@' + Escaped(path.substr(path.find_last_of("/\\") + 1)));
  PutLine("DTSTAMP:" + Moment(now) + 'Z');
  PutLine(std::string("DTSTART") + ValueType(first) + Moment(first));
  if (entry.minutes != 0 && first.time != OZDate::kNoTime) {
    PutLine("DURATION:PT" + std::to_string(entry.minutes) + 'M');
  }
  if (entry.priority != OZParser::kNoPriority) {
    PutLine("PRIORITY:" + std::to_string(Priority(entry.priority)));
  }
  if (entry.done) PutLine("CATEGORIES:done");
  PutLine("SUMMARY:" + Escaped(entry.text));
  if (entry.rule) {
    const std::string rule = RecurrenceRule(*entry.rule, first);
    if (!rule.empty()) PutLine("RRULE:" + rule + ";UNTIL=" + Moment(dates.back()));
    if (rule.empty() && !PutDates(dates)) {
      std::cerr << "daybook: entry " << id << " has only its first " << kMostDates << " dates, to "
                << IsoDate(dates[kMostDates - 1]) << ", since iCalendar cannot say its rule\n";
    }
  }
  PutLine("END:VEVENT");
}

}  // namespace

std::string ExplainExport() {
  return "Write FILE as iCalendar to standard output, for other calendar programs. A rule that\n"
         "iCalendar cannot say is written as its first " +
         std::to_string(kMostDates) + " dates.\n";
}

ExitStatus RunExport(const Options& options) {
  const std::string& path = options.Words().front();
  const Store::Contents contents = Store(options, Store::kReading).ReadAll();
  for (const char* const line : {"BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//daybook//EN"})
    PutLine(line);
  for (const auto& [id, entry] : contents.entries) PutEntry(id, entry, path);
  PutLine("END:VCALENDAR");
  return ReportDamage(path, contents);
}
