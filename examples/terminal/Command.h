// A program made of commands, its help, and how it ends.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "terminal/Options.h"

/// How a program ends.
enum ExitStatus : int {
  kSuccess = 0,
  kNegative = 1,   ///< a rejected text, nothing found, damage, or a failure
  kUsage = 2,      ///< a command line that cannot be carried out
  kStopped = 130,  ///< stopped with Ctrl-C, in the number that shells use
};

/// What the user asked for and cannot have; its text tells why.
struct Rejection : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// One command.
struct Command {
  std::string name;
  std::string arguments;  ///< what stands behind the options
  std::size_t least;      ///< words that it needs
  std::size_t most;       ///< words that it takes
  std::string summary;    ///< in one line
  std::string options;    ///< their names, with blanks between them

  /// Carries out the command, or throws `UsageError`, `Rejection`, `Failure` or `Stopped`.
  ExitStatus (*run)(const Options& options);

  std::string (*explain)() = nullptr;  ///< what the help adds to the summary
};

/// A program.
struct Program {
  std::string name;
  std::string notes;            ///< what ends its help
  std::string clock;            ///< the variable in the environment that fixes the time
  std::vector<Option> options;  ///< those of all commands
  std::vector<Command> commands;

  /// Carries out a command line, and tells the user what goes wrong.
  ExitStatus Run(const std::vector<std::string>& arguments) const;

 private:
  ExitStatus RunCommand(const std::vector<std::string>& arguments) const;
  std::vector<Option> OptionsOf(const Command& command) const;
  void PrintHelp() const;
  void PrintHelp(const Command& command) const;
};
