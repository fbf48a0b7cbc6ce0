// Comparing, printing and reading packed dates in tests.
#pragma once

#include <chrono>
#include <istream>
#include <ostream>

#include "orzcore/calendar.h"

inline bool operator==(un_date_time a, un_date_time b) { return a.Number() == b.Number(); }

inline std::ostream& operator<<(std::ostream& out, un_date_time date) {
  return out << date.year << '-' << date.month << '-' << date.day << " at " << date.time;
}

/// Reads a date like 2024-03-15, without a time.
inline std::istream& operator>>(std::istream& in, un_date_time& date) {
  int year = 0, month = 0, day = 0;
  char dash = '\0';
  in >> year >> dash >> month >> dash >> day;
  date = un_date_time::Of(year, month, day);
  return in;
}

inline un_date_time DateOf(std::chrono::sys_days day, int time = 0) {
  const std::chrono::year_month_day ymd(day);
  return un_date_time::Of(static_cast<int>(ymd.year()), static_cast<int>(unsigned(ymd.month())),
                          static_cast<int>(unsigned(ymd.day())), time);
}

inline constexpr std::chrono::sys_days kFirstDay = std::chrono::year(1753) / 1 / 1;
inline constexpr std::chrono::sys_days kLastDay = std::chrono::year(2099) / 12 / 31;
