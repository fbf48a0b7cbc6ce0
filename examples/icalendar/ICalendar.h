// Writing calendars as iCalendar (RFC 5545).
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "rules/Rule.h"

/// An event of a calendar.
struct Event {
  std::string id;  ///< no other event anywhere has it, and it never changes
  std::string text;
  std::vector<un_date_time> dates;  ///< all dates, in order, at least one; with the time
  std::optional<Rule> rule;         ///< that has these dates
  unsigned int minutes = 0;         ///< the length; 0 if it has none
  short priority = OZParser::kNoPriority;
  bool done = false;
};

/// At most so many dates of an event are written, if iCalendar cannot say its rule.
inline constexpr std::size_t kMostEventDates = 1000;

/// Begins a calendar. Its product is the name of the program.
void BeginCalendar(std::ostream& out, const std::string& product);

/// Writes an event. Returns false if some of its dates are left out.
bool WriteEvent(std::ostream& out, const Event& event);

void EndCalendar(std::ostream& out);
