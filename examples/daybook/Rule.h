// Recurring dates in words: "monthly last fri", "quarterly day 45 from 1 nov".
#pragma once

#include <string>
#include <vector>

#include "orzcore/calendar.h"

/// How rules are written, for the help.
extern const char* const kRuleHelp;

/// A recurring date.
struct Rule {
  st_cyc_time cycle{};
  short quarter_anchor = 101;  ///< month * 100 + day of a day that opens a quarter
};

/// Turns the words of a rule into the rule, in any case. Throws `UsageError`, which names the word
/// that does not fit and what is possible instead.
Rule ReadRule(const std::vector<std::string>& words);
