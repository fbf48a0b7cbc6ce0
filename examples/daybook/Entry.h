// An entry of the daybook.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

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
