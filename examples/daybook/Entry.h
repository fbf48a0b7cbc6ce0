// An entry of the daybook.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "rules/Rule.h"
#include "terminal/Settings.h"

/// What a user wants to remember.
struct Entry {
  un_date_time moment{};      ///< the date, or the first one of a rule; the time, or `kNoTime`
  std::uint16_t minutes = 0;  ///< the length, at most a day
  short priority = OZParser::kNoPriority;
  bool done = false;
  std::optional<Rule> rule;  ///< nothing for an entry that does not recur
  std::string text;
};

/// Returns the dates of an entry from one date to another, and not more than `most`.
std::vector<un_date_time> DatesOf(const Entry& entry, const un_date_time& from,
                                  const un_date_time& to, std::size_t most = SIZE_MAX);

/// "9:30am-11:00am", or the length alone, or nothing
std::string Times(const Entry& entry, const Settings& settings);

/// The date and the times of an entry. For a rule, the date is the next one.
std::string Summary(const Entry& entry, const Settings& settings);
