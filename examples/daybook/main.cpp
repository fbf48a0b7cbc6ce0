// daybook: dates, times and recurring dates in the terminal.

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <new>

#include "Command.h"
#include "Failure.h"
#include "Moment.h"
#include "TerminalHost.h"
#include "Text.h"

namespace {

constexpr unsigned kAllFieldOptions = kDateOptions | kFieldOptions | kReferenceOptions;
const Command kCommands[] = {
    {"parse", "KIND TEXT...", "Show what one kind of entry field makes of a text.",
     kAllFieldOptions, ExplainParse, RunParse},
    {"next", "RULE... DATE", "List the next dates of a rule.", kDateOptions | kSearchOptions,
     ExplainNext, RunNext},
    {"fields", "[FILE]", "Show what every kind of entry field makes of some texts.",
     kAllFieldOptions, ExplainFields, RunFields},
};

void PrintHelp() {
  std::cout << "Usage: daybook COMMAND [OPTION...] [ARGUMENT...]\n\nCommands:\n";
  for (const Command& command : kCommands) {
    std::cout << "  " << std::left << std::setw(10) << command.name << command.summary << '\n';
  }
  std::cout << R"(
'daybook COMMAND --help' explains a command. What begins with two hyphens is an
option, up to a lone '--'. DAYBOOK_NOW='2026-11-18 09:30' in the environment
fixes the current time.

Exit status: 0 success; 1 a rejected text, no date found or a failure, which a
message box explains; 2 wrong usage; 130 a listing stopped with Ctrl-C.
)";
}

void PrintHelp(const Command& command) {
  std::cout << "Usage: daybook " << command.name << " [OPTION...] " << command.arguments << '\n'
            << command.summary << "\n\n";
  command.explain(std::cout);
  std::cout << "\nOptions:\n";
  PrintOptions(std::cout, command.options);
}

ExitStatus Run(const std::vector<std::string>& arguments) {
  if (arguments.empty()) throw UsageError("a command is missing");
  if (arguments.front() == "--help") return PrintHelp(), kSuccess;
  for (const Command& command : kCommands) {
    if (command.name != arguments.front()) continue;
    const Options options = ReadOptions({arguments.begin() + 1, arguments.end()}, command.options);
    if (options.help) return PrintHelp(command), kSuccess;
    return command.run(options);
  }
  throw UsageError("unknown command '" + arguments.front() + "'");
}

}  // namespace

int main(int argc, char** argv) {
  TerminalHost host;
  try {
    if (const char* const now = std::getenv("DAYBOOK_NOW")) host.StopClock(ReadMoment(now));
    const ExitStatus status = Run({argv + 1, argv + argc});
    if (!std::cout.flush()) throw Failure{eErrWrite, "Writing the output", __FILE__, __LINE__};
    return status;
  } catch (const UsageError& error) {
    std::cerr << "daybook: " << error.what() << "\nTry 'daybook --help'.\n";
    return kUsage;
  } catch (const Failure& failure) {
    ShowFailure(failure);
  } catch (const std::bad_alloc&) {
    ShowFailure({eErrOutOfMemory, nullptr, __FILE__, __LINE__});
  }
  return kNegative;
}
