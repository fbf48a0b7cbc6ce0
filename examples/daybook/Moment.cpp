#include "Moment.h"

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

std::tm ReadMoment(const std::string& text) {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d", &year, &month, &day, &hour, &minute);
  // Writing the numbers again shows whether they were written in full and nothing else was there.
  const std::string again =
      IsoDate(un_date_time::Of(year, month, day)) + ' ' + ClockTime(hour, minute);
  const bool is_time = hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59;
  if (again != text || !IsDate(year, month, day) || !is_time) {
    throw UsageError("DAYBOOK_NOW is '" + text +
                     "': it must be a date and a time such as '2026-11-18 09:30'");
  }
  std::tm moment{};
  moment.tm_year = year - 1900;
  moment.tm_mon = month - 1;
  moment.tm_mday = day;
  moment.tm_hour = hour;
  moment.tm_min = minute;
  moment.tm_isdst = -1;
  return moment;
}
