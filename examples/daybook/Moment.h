// A moment in time as a text, so that a demonstration or a test can say the same on every day.
#pragma once

#include <ctime>
#include <string>

/// Reads a date of the calendar and a time, such as "2026-11-18 09:30". Throws `UsageError` for any
/// other text.
std::tm ReadMoment(const std::string& text);
