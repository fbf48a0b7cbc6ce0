// Values as texts.
#pragma once

#include <cstdint>
#include <string>

#include "orzcore/calendar.h"

/// "2026-11-18"
std::string IsoDate(const un_date_time& date);

/// "09:30"
std::string ClockTime(int minutes);

/// "12.500", from 12500 with 3 decimals
std::string Decimal(std::int32_t number, int decimals);

/// "2 h 30 min", from tenths of a minute; a negative length begins with a minus
std::string Duration(std::int64_t tenths);

/// "Fri-Nov 27", as the library shows dates
std::string DisplayDate(const un_date_time& date);

/// "Fri-Nov 27,2026"
std::string FullDate(const un_date_time& date);

/// "9:30am" or "09:30", as the library shows times
std::string DisplayTime(int minutes, bool twenty_four_hour);
