#include "FixedClock.h"

#include <cstdio>

#include "Print.h"
#include "Text.h"
#include "orzcore/calendar.h"

// Tells whether a month has such a day, within the calendar.
static bool IsDate(int year, int month, int day) {
  const un_date_time date = un_date_time::Of(year, month, day, OZDate::kEndOfDay);
  return month >= 1 && month <= 12 && day >= 1 &&
         day <= OZDate::DaysInMonth(static_cast<unsigned short>(month - 1),
                                    static_cast<unsigned short>(year)) &&
         OZDate::DateCompare(&date, &OZDate::BegOfTime) >= 0 &&
         OZDate::DateCompare(&date, &OZDate::EndOfTime) <= 0;
}

FixedClock::FixedClock(const std::string& now) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0;
  std::sscanf(now.c_str(), "%4d-%2d-%2d %2d:%2d", &year, &month, &day, &hour, &minute);
  // Writing the numbers again shows whether they were written in full and nothing else was there.
  const std::string again =
      IsoDate(un_date_time::Of(year, month, day)) + ' ' + ClockTime(hour, minute);
  const bool is_time = hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59;
  if (again != now || !IsDate(year, month, day) || !is_time) {
    throw UsageError("DAYBOOK_NOW is '" + now +
                     "': it must be a date and a time such as '2026-11-18 09:30'");
  }
  now_.tm_year = year - 1900;
  now_.tm_mon = month - 1;
  now_.tm_mday = day;
  now_.tm_hour = hour;
  now_.tm_min = minute;
  now_.tm_isdst = -1;
  previous_ = Install(this);
}

FixedClock::~FixedClock() { Install(previous_); }
