// Runs daybook as a user would, from a shell, on Wednesday 18 November 2026 at 9:30.
#pragma once

#include <string>

inline constexpr const char* kOutput = "2>/dev/null";
inline constexpr const char* kError = "2>&1 >/dev/null";
inline constexpr const char* kNow = "2026-11-18 09:30";

struct Outcome {
  int status;
  std::string text;
};

/// Runs a shell command with a program "daybook".
Outcome RunShell(const std::string& command);

/// Runs daybook; `stream` says which of its outputs comes back.
Outcome RunDaybook(const std::string& arguments, const std::string& stream,
                   const std::string& input = "", const std::string& now = kNow);
