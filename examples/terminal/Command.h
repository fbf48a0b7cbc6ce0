// A program that consists of commands, with its help and its exit status.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "terminal/Options.h"

/// The exit status of a program.
enum ExitStatus : int {
  kSuccess = 0,
  kNegative = 1,   ///< a rejected text, nothing found, damage, or a failure
  kUsage = 2,      ///< a wrong command line
  kStopped = 130,  ///< stopped with Ctrl-C, in the number that shells use
};

/// Thrown if the user asked for something impossible. Its text is the reason.
struct Rejection : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// One command.
struct Command {
  std::string name;
  std::string arguments;  ///< as the help shows them, after the options
  std::size_t least;      ///< number of words that it needs
  std::size_t most;       ///< number of words that it accepts
  std::string summary;    ///< in one line; empty for a command that users do not need
  std::string options;    ///< the names of its options, with blanks between them

  /// Does the work, or throws `UsageError`, `Rejection`, `Failure` or `Stopped`.
  ExitStatus (*run)(const Options& options);

  std::string (*explain)() = nullptr;  ///< what its help shows after the summary
};

/// A program. Besides its commands, it has "help", "--help", "-h" and "--version".
struct Program {
  std::string name;
  std::string notes;            ///< the end of its help
  std::string clock;            ///< the environment variable that sets the time
  std::vector<Option> options;  ///< the options of all commands
  std::vector<Command> commands;
  std::string version = {};

  /// Runs the command of a command line, and shows the user any error.
  ExitStatus Run(const std::vector<std::string>& arguments) const;

 private:
  const Command& Find(const std::string& wanted) const;
  ExitStatus RunCommand(const std::vector<std::string>& arguments) const;
  std::vector<Option> OptionsOf(const Command& command) const;
  void PrintHelp() const;
  void PrintHelp(const Command& command) const;
};
