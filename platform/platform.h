// The calls that the library makes of its system, and nothing else, under the system's own names.
//
// Clocks, regional settings and message boxes are answered by the `OZHost` in force; everything
// else by the system itself. There is one folder beside this file for each kind of system.
#pragma once

#include <ctime>

namespace platform {

/// Returns the current time in the user's time zone: `time` and `localtime` in one call.
std::tm LocalTime();

/// Reads a text from the user's regional settings, as `OZHost::GetProfileStringA` tells.
int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                      int size);

/// Reads a number from the user's regional settings, as `OZHost::GetProfileIntA` tells.
int GetProfileIntA(const char* section, const char* key, int fallback);

/// Returns a character of code page 1252 in lower case, accented letters included.
char CharLowerA(char character);

/// Lower-cases a text in place, and returns it.
char* CharLowerA(char* text);

}  // namespace platform
