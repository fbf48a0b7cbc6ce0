// The commands of daybook.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "terminal/Options.h"

/// How the program ends.
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
  std::vector<Option> options;

  /// Carries out the command, or throws `UsageError`, `Rejection`, `Failure` or `Stopped`.
  ExitStatus (*run)(const Options& options);

  std::string (*explain)() = nullptr;  ///< what the help adds to the summary
};

std::string ExplainParse();
std::string ExplainEntry();
std::string ExplainList();
std::string ExplainStress();

ExitStatus RunParse(const Options& options);
ExitStatus RunFields(const Options& options);
ExitStatus RunNext(const Options& options);
ExitStatus RunAdd(const Options& options);
ExitStatus RunEdit(const Options& options);
ExitStatus RunDone(const Options& options);
ExitStatus RunList(const Options& options);
ExitStatus RunCopy(const Options& options);
ExitStatus RunRename(const Options& options);
ExitStatus RunDelete(const Options& options);
ExitStatus RunStress(const Options& options);
