// daybook: a small organizer in the terminal, whose files several users share.

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <new>

#include "Command.h"
#include "Rule.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"
#include "terminal/TerminalHost.h"
#include "terminal/Text.h"

namespace {

constexpr std::size_t kAny = 1000;  // words of a text

const Option kHelp = {"--help", "", "show this help"};
const Option kDayFirst = {"--day-first", "", "3/5 is 3 May"};
const Option k24Hour = {"--24-hour", "", "a bare 3 is 03:00"};

std::string ExplainNext() {
  return std::string(
             "The last argument is DATE (quote it: 'next fri'); all words in front are "
             "RULE.\n\n") +
         kRuleHelp;
}

const std::vector<Command> kCommands = {
    {"parse",
     "KIND TEXT...",
     2,
     kAny,
     "Show what one kind of entry field makes of a text.",
     {kDayFirst, k24Hour},
     RunParse,
     ExplainParse},
    {"fields",
     "",
     0,
     0,
     "Show what every kind of field makes of each line of the input.",
     {kDayFirst, k24Hour},
     RunFields},
    {"next",
     "RULE... DATE",
     2,
     kAny,
     "List the dates of a rule behind a date.",
     {kDayFirst,
      {"--count", "N", "how many dates are listed (5)"},
      {"--back", "", "search backward"},
      {"--include", "", "DATE itself may be the first"}},
     RunNext,
     ExplainNext},
};

void PrintHelp() {
  std::cout << "Usage: daybook COMMAND [OPTION...] [ARGUMENT...]\n\nCommands:\n";
  for (const Command& command : kCommands) {
    std::cout << "  " << std::left << std::setw(8) << command.name << command.summary << '\n';
  }
  std::cout << R"(
'daybook COMMAND --help' explains a command. What begins with two hyphens is an
option, up to a lone '--'. DAYBOOK_NOW='2026-11-18 09:30' in the environment
fixes the current time.

Exit status: 0 success; 1 a rejected text, nothing found, or a failure, which a
message box explains; 2 wrong usage; 130 stopped with Ctrl-C.
)";
}

void PrintHelp(const Command& command) {
  std::cout << "Usage: daybook " << command.name << " [OPTION...] " << command.arguments << '\n'
            << command.summary << "\n\n"
            << (command.explain != nullptr ? command.explain() + '\n' : "") << "Options:\n";
  for (const Option& option : command.options) {
    std::cout << "  " << std::left << std::setw(18) << option.name + ' ' + option.value
              << option.help << '\n';
  }
}

ExitStatus Run(const std::vector<std::string>& arguments) {
  if (arguments.empty()) throw UsageError("a command is missing");
  if (arguments.front() == kHelp.name) return PrintHelp(), kSuccess;
  for (const Command& command : kCommands) {
    if (command.name != arguments.front()) continue;
    std::vector<Option> known = command.options;
    known.push_back(kHelp);
    const Options options({arguments.begin() + 1, arguments.end()}, known);
    if (options.Has(kHelp.name)) return PrintHelp(command), kSuccess;
    if (options.Words().size() < command.least || options.Words().size() > command.most) {
      throw UsageError(command.name + " takes " +
                       (command.most == 0 ? "no arguments" : command.arguments));
    }
    return command.run(options);
  }
  throw UsageError("unknown command '" + arguments.front() + "'");
}

}  // namespace

int main(int argc, char** argv) {
  TerminalHost host;
  try {
    const char* const now = std::getenv("DAYBOOK_NOW");
    if (now != nullptr && !host.StopClock(now)) {
      throw UsageError("DAYBOOK_NOW is '" + std::string(now) +
                       "': it must be a date and a time such as '2026-11-18 09:30'");
    }
    const ExitStatus status = Run({argv + 1, argv + argc});
    if (!std::cout.flush()) throw Failure{eErrWrite, "Writing the output", __FILE__, __LINE__};
    return status;
  } catch (const UsageError& error) {
    std::cerr << "daybook: " << error.what() << "\nTry 'daybook --help'.\n";
    return kUsage;
  } catch (const Rejection& rejection) {
    std::cerr << "daybook: " << rejection.what() << '\n';
  } catch (const Stopped&) {
    std::cerr << "daybook: stopped\n";
    return kStopped;
  } catch (const Failure& failure) {
    ShowFailure(failure);
  } catch (const std::bad_alloc&) {
    ShowFailure({eErrOutOfMemory, "The command", __FILE__, __LINE__});
  }
  return kNegative;
}
