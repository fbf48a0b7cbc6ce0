// Runs daybook from a shell, as a user does. It is Wednesday, 18 November 2026, 9:30.
#pragma once

#include <string>

inline constexpr const char* kOutput = "2>/dev/null";
inline constexpr const char* kError = "2>&1 >/dev/null";
inline constexpr const char* kNow = "2026-11-18 09:30";

struct Outcome {
  int status;
  std::string text;
};

/// Runs a shell command, in which `daybook` is the program under test.
Outcome RunShell(const std::string& command);

/// Runs daybook.
///
/// @param stream  `kOutput` or `kError`: the output that is returned
Outcome RunDaybook(const std::string& arguments, const std::string& stream,
                   const std::string& input = "", const std::string& now = kNow);
