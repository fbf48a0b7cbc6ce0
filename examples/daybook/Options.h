// The options of the command line.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "orzcore/calendar.h"
#include "orzcore/parser.h"

/// Groups of options; a command takes one or several.
enum OptionGroup : unsigned {
  kEveryCommand = 1,      ///< what every command takes
  kDateOptions = 2,       ///< how dates are read
  kFieldOptions = 4,      ///< how times and money are read
  kReferenceOptions = 8,  ///< what stands in an entry field before the user types
  kSearchOptions = 16,    ///< a search for recurring dates
};

/// What the user asked for.
struct Options {
  bool help = false;
  eCalWeekStart week_start = eCalWeekStartSunday;
  bool day_first = false;
  bool twenty_four_hour = false;
  un_date_time date{};           ///< the reference date of a field; without a date, today
  short time = OZDate::kNoTime;  ///< the reference time of a field; without a time, now
  stCurrencyFormat money{"$", '.'};
  int count = 5;
  bool back = false;
  bool include = false;
  std::vector<std::string> words;  ///< the arguments that are no options
};

/// Reads the arguments of a command. Only what begins with two hyphens is an option, so a text may
/// begin with a minus; "--" alone ends the options. Throws `UsageError`.
///
/// @param groups  the options that the command takes
Options ReadOptions(const std::vector<std::string>& arguments, unsigned groups);

/// Lists the options of some groups, a line each.
void PrintOptions(std::ostream& out, unsigned groups);

/// Returns the date that a text names, or nothing if the text names none.
std::optional<un_date_time> ReadDate(const std::string& text, const Options& options);
