// Comparing, printing and making packed dates in tests.
#pragma once

#include <chrono>
#include <ostream>

#include "orzcore/calendar.h"

inline bool operator==(un_date_time a, un_date_time b) { return a.Number() == b.Number(); }

inline std::ostream& operator<<(std::ostream& out, un_date_time date) {
  return out << date.year << '-' << date.month << '-' << date.day << " at " << date.time;
}

/// Returns the packed form of a date, also of one that does not exist, such as 31 February.
inline un_date_time DateOf(std::chrono::year_month_day date, int time = 0) {
  return un_date_time::Of(static_cast<int>(date.year()), static_cast<int>(unsigned(date.month())),
                          static_cast<int>(unsigned(date.day())), time);
}

inline constexpr std::chrono::sys_days kFirstDay = std::chrono::year(1753) / 1 / 1;
inline constexpr std::chrono::sys_days kLastDay = std::chrono::year(2099) / 12 / 31;
