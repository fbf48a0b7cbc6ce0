// Runs daybook from a shell, as a user does. It is Wednesday, 18 November 2026, 9:30.
#pragma once

#include <string>

struct Outcome {
  int status;
  std::string text;  ///< of its standard output
};

/// Runs a shell command, in which `daybook` is the program under test.
Outcome RunShell(const std::string& command);
