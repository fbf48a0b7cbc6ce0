// Values as texts.
#pragma once

#include <cstdint>
#include <string>

#include "orzcore/calendar.h"

/// "2026-11-18"
std::string IsoDate(const un_date_time& date);

/// "09:30"
std::string ClockTime(int minutes);

/// A number of `decimals` decimals that is held as a whole number: 12500 with 3 is "12.500".
std::string Decimal(std::int32_t number, int decimals);

/// "2 h 30 min", from tenths of a minute; negative amounts have a minus in front.
std::string Duration(std::int64_t tenths);

/// The short text of a date as the organizer shows it.
std::string DisplayDate(const un_date_time& date);

/// The short text of a time as the organizer shows it.
std::string DisplayTime(int minutes, bool twenty_four_hour);
