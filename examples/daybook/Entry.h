// An entry of the daybook.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orzcore/parser.h"
#include "terminal/Rule.h"

/// What a user has noted.
struct Entry {
  un_date_time moment{};      ///< the date, the first one if it recurs; the time, or `kNoTime`
  std::uint16_t minutes = 0;  ///< its length, at most a day
  short priority = OZParser::kNoPriority;
  bool done = false;
  std::optional<Rule> rule;  ///< when it recurs
  std::string text;
};
