// A month as a grid.
#pragma once

#include <set>
#include <string>

#include "orzcore/calendar.h"

/// Draws the month of a date, with its name and a line for each week. A day is in brackets if it is
/// today, and has a '*' if it is marked.
///
/// @param marked   the marked days
/// @param colored  whether these days also have colors
std::string DrawMonth(const un_date_time& date, const std::set<unsigned int>& marked,
                      eCalWeekStart week_start, bool colored);
