// Runs daybook from a shell, as a user does. It is Wednesday, 18 November 2026, 9:30.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
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
  Outcome Shell(const std::string& command) const {
    const std::string script =
        "cd '" + directory.Path("") +
        "'; PATH=$(dirname '" DAYBOOK_PATH
        "'):$PATH; export DAYBOOK_NOW='2026-11-18 09:30' TERM=vt100 LC_ALL=C "
        "NO_COLOR= LOCPATH='" LOCALE_DIRECTORY "'; " +
        command;
    Outcome outcome{-1, ""};
    FILE* const pipe = popen(script.c_str(), "r");
    if (pipe == nullptr) return outcome;
    char block[4096];
    while (const std::size_t length = std::fread(block, 1, sizeof block, pipe)) {
      outcome.text.append(block, length);
    }
    const int status = pclose(pipe);
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    return outcome;
  }

  /// Runs a shell command on a terminal, in which somebody types a line.
  Outcome OnTerminal(const std::string& command, const std::string& typed = "") const {
    return Shell("echo " + typed + " | script -qec '" + command + "' /dev/null | tr -d '\\r'");
  }

  /// Returns the bytes of the file f.
  std::string File() const { return directory.Read("f"); }

  const TestDirectory directory;
};
