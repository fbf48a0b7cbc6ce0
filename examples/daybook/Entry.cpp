#include "Entry.h"

#include "terminal/Print.h"

std::vector<un_date_time> DatesOf(const Entry& entry, const un_date_time& from,
                                  const un_date_time& to, std::size_t most) {
  std::vector<un_date_time> dates;
  un_date_time date = entry.moment;
  // Without a rule, the entry has only its first date.
  const auto on_date = [&](bool include) {
    if (entry.rule) return entry.rule->Advance(eCyclicalsBumpedForward, include, &date);
    return include;
  };
  for (bool more = on_date(true);
       more && dates.size() < most && OZDate::DateCompare(&date, &to) <= 0; more = on_date(false)) {
    if (OZDate::DateCompare(&date, &from) >= 0) dates.push_back(date);
  }
  return dates;
}

std::string Times(const Entry& entry, const Settings& settings) {
  const int start = static_cast<int>(entry.moment.time);
  const bool no_time = start == OZDate::kNoTime;
  if (no_time) return entry.minutes == 0 ? "" : Duration(std::int64_t{entry.minutes} * 10);
  if (entry.minutes == 0) return DisplayTime(start, settings.Hours24());
  const stEventLen length = {0, static_cast<std::uint16_t>(entry.minutes & 0x7FFF)};
  const short end = OZDate::GetEndTime(static_cast<short>(start), length);
  return DisplayTime(start, settings.Hours24()) + '-' + DisplayTime(end, settings.Hours24()) +
         (start + entry.minutes > OZDate::kEndOfDay ? " +1" : "");
}

std::string Summary(const Entry& entry, const Settings& settings) {
  const std::string times = Times(entry, settings);
  const std::string at = times.empty() ? "" : ' ' + times;
  if (!entry.rule) return FullDate(entry.moment) + at;
  un_date_time today = OZDate::CurDateTime();
  const un_date_time& from = OZDate::DateCompare(&entry.moment, &today) > 0 ? entry.moment : today;
  un_date_time next = from;
  if (!entry.rule->Advance(eCyclicalsBumpedForward, true, &next)) return "recurs, but never again";
  return "recurs, next " + FullDate(next) + at;
}
