// Recurring dates in words: "monthly last fri", "quarterly day 45 from 1 nov".
#pragma once

#include <string>

#include "orzcore/calendar.h"

/// How rules are written, for the help.
extern const char* const kRuleHelp;

/// A recurring date.
struct Rule {
  st_cyc_time cycle{};
  short quarter_anchor = 101;  ///< month * 100 + day of a day that opens a quarter

  /// Moves a date to the next one of the rule, or keeps it if `include` is set and the rule has it.
  /// Returns false, and leaves the date alone, at the end of the calendar.
  bool Advance(eCyclicalsBumped direction, bool include, un_date_time* date) const;
};

/// Turns the words of a rule into the rule, in any case. Throws `Rejection`, which names the word
/// that does not fit and what is possible instead.
Rule ReadRule(const std::string& text);
