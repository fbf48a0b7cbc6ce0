// Rules of recurring dates, written as "monthly last fri" or "quarterly day 45 from 1 nov".
#pragma once

#include <string>

#include "orzcore/calendar.h"

/// The part of the help that explains how to write rules.
extern const char* const kRuleHelp;

/// The rule of a recurring date.
struct Rule {
  st_cyc_time cycle{};
  short quarter_anchor = 101;  ///< month * 100 + day of a day that opens a quarter

  /// Moves a date to the next date of the rule. If `include` is set and the date itself is one, it
  /// stays. Returns false at the end of the calendar, and then the date stays, too.
  bool Advance(eCyclicalsBumped direction, bool include, un_date_time* date) const;
};

/// Reads a rule, in upper or lower case. Throws `Rejection`, which names the wrong word and what is
/// expected there.
Rule ReadRule(const std::string& text);
