// The commands of daybook.
#pragma once

#include <iosfwd>
#include <string>

#include "Options.h"

/// How the program ends.
enum ExitStatus : int {
  kSuccess = 0,
  kNegative = 1,   ///< a rejected text, no date found, or a failure
  kUsage = 2,      ///< a command line that cannot be carried out
  kStopped = 130,  ///< stopped with Ctrl-C, in the number that shells use
};

/// One command.
struct Command {
  std::string name;
  std::string arguments;  ///< what stands behind the options
  std::string summary;    ///< in one line
  unsigned options;       ///< the groups of options that it takes

  /// Writes what the help adds to the summary.
  void (*explain)(std::ostream& out);

  /// Carries out the command, or throws `UsageError` if the words do not fit it.
  ExitStatus (*run)(const Options& options);
};

void ExplainParse(std::ostream& out);
ExitStatus RunParse(const Options& options);

void ExplainNext(std::ostream& out);
ExitStatus RunNext(const Options& options);

void ExplainFields(std::ostream& out);
ExitStatus RunFields(const Options& options);
