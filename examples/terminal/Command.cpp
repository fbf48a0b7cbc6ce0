#include "terminal/Command.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <new>

#include "terminal/Failure.h"
#include "terminal/Interrupt.h"
#include "terminal/Terminal.h"
#include "terminal/TerminalHost.h"
#include "terminal/Text.h"

static const Option kHelp = {"--help", "", "show this help"};

ExitStatus Program::Run(const std::vector<std::string>& arguments) const {
  PrepareStreams();
  TerminalHost host;
  try {
    const char* const now = std::getenv(clock.c_str());
    if (now != nullptr && !host.StopClock(now)) {
      throw UsageError(clock + " is '" + now +
                       "': it must be a date and a time such as '2026-11-18 09:30'");
    }
    const ExitStatus status = RunCommand(arguments);
    if (!std::cout.flush()) throw Failure{eErrWrite, "Writing the output", __FILE__, __LINE__};
    return status;
  } catch (const UsageError& error) {
    std::cerr << name << ": " << error.what() << "\nTry '" << name << " --help'.\n";
    return kUsage;
  } catch (const Rejection& rejection) {
    std::cerr << name << ": " << rejection.what() << '\n';
  } catch (const Stopped&) {
    std::cerr << name << ": stopped\n";
    return kStopped;
  } catch (const Failure& failure) {
    std::cout.flush();
    ShowFailure(failure);
  } catch (const std::bad_alloc&) {
    ShowFailure({eErrOutOfMemory, "The command", __FILE__, __LINE__});
  }
  return kNegative;
}

ExitStatus Program::RunCommand(const std::vector<std::string>& arguments) const {
  if (arguments.empty()) throw UsageError("a command is missing");
  if (arguments.front() == kHelp.name) return PrintHelp(), kSuccess;
  const auto command = std::find_if(commands.begin(), commands.end(), [&](const Command& each) {
    return each.name == arguments.front();
  });
  if (command == commands.end()) throw UsageError("unknown command '" + arguments.front() + "'");

  const Options given({arguments.begin() + 1, arguments.end()}, OptionsOf(*command));
  if (given.Has(kHelp.name)) return PrintHelp(*command), kSuccess;
  if (given.Words().size() < command->least || given.Words().size() > command->most) {
    throw UsageError(command->name + " takes " +
                     (command->most == 0 ? "no arguments" : command->arguments));
  }
  return command->run(given);
}

std::vector<Option> Program::OptionsOf(const Command& command) const {
  const std::vector<std::string> names = SplitWords(command.options);
  std::vector<Option> taken = {kHelp};
  std::copy_if(options.begin(), options.end(), std::back_inserter(taken), [&](const Option& each) {
    return std::find(names.begin(), names.end(), each.name) != names.end();
  });
  return taken;
}

void Program::PrintHelp() const {
  std::cout << "Usage: " << name << " COMMAND [OPTION...] [ARGUMENT...]\n\nCommands:\n";
  for (const Command& command : commands) {
    std::cout << "  " << std::left << std::setw(8) << command.name << command.summary << '\n';
  }
  std::cout << notes;
}

void Program::PrintHelp(const Command& command) const {
  std::cout << "Usage: " << name << ' ' << command.name << " [OPTION...] " << command.arguments
            << '\n'
            << command.summary << "\n\n"
            << (command.explain != nullptr ? command.explain() + '\n' : "") << "Options:\n";
  for (const Option& option : OptionsOf(command)) {
    std::cout << "  " << std::left << std::setw(18) << option.name + ' ' + option.value
              << option.help << '\n';
  }
}
