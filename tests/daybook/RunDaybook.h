// Runs daybook from a shell, as a user does. It is Wednesday, 18 November 2026, 9:30.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/TestFiles.h"

struct Outcome {
  int status;
  std::string text;  ///< of its standard output
};

/// Tests with a directory.
class Daybook : public testing::Test {
 protected:
  /// Runs a shell command in the directory. There, `daybook` is the program under test.
  Outcome Shell(const std::string& command) const;

  /// Runs a shell command on a terminal, in which somebody types a line.
  Outcome OnTerminal(const std::string& command, const std::string& typed = "") const;

  /// Returns the bytes of the file f.
  std::string File() const { return directory.Read("f"); }

  const TestDirectory directory;
};
