// Comparing, printing and making packed dates in tests.
#pragma once

#include <algorithm>
#include <chrono>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "orzcore/calendar.h"

/// By number. The numbers that no month has are there, too, since a packed date may have them.
inline constexpr const char* kMonthNames[] = {"?",   "Jan", "Feb", "Mar", "Apr", "May",
                                              "Jun", "Jul", "Aug", "Sep", "Oct", "Nov",
                                              "Dec", "?",   "?",   "?"};

inline bool operator==(un_date_time a, un_date_time b) { return a.Number() == b.Number(); }

/// Returns a date as the pages show it, such as "5 Mar 2026".
inline std::string TextOf(un_date_time date) {
  if (date.year == 0) return "none";
  return std::to_string(date.day) + ' ' + kMonthNames[date.month] + ' ' + std::to_string(date.year);
}

inline std::ostream& operator<<(std::ostream& out, un_date_time date) {
  return out << TextOf(date) << " at " << date.time;
}

/// Returns the packed form of a date, also of one that does not exist, such as 31 February.
inline un_date_time DateOf(std::chrono::year_month_day date, int time = 0) {
  return un_date_time::Of(static_cast<int>(date.year()), static_cast<int>(unsigned(date.month())),
                          static_cast<int>(unsigned(date.day())), time);
}

/// Reads the dates in a cell of a page, such as "5 Mar 2026, 31 Feb 2027".
inline std::vector<un_date_time> DatesFrom(const std::string& cell, int time = 0) {
  std::vector<un_date_time> dates;
  std::istringstream in(cell);
  int day = 0, year = 0;
  std::string month;
  for (char comma; in >> day >> month >> year; in >> comma) {
    const auto* const name = std::find(std::begin(kMonthNames), std::end(kMonthNames), month);
    dates.push_back(un_date_time::Of(year, static_cast<int>(name - kMonthNames), day, time));
  }
  return dates;
}

inline constexpr std::chrono::sys_days kFirstDay = std::chrono::year(1753) / 1 / 1;
inline constexpr std::chrono::sys_days kLastDay = std::chrono::year(2099) / 12 / 31;
