#include "terminal/Command.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
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

static bool IsHelp(const std::string& argument) {
  return argument == kHelp.name || argument == "-h";
}

static void CheckWords(const Command& command, const std::vector<std::string>& words) {
  const std::string usage = ": " + command.name + ' ' + command.arguments;
  if (words.size() < command.least) {
    const std::vector<std::string> names = SplitWords(command.arguments);
    const std::string& missing = names[std::min(words.size(), names.size() - 1)];
    throw UsageError(missing.substr(0, missing.find('.')) + " is missing" + usage);
  }
  if (words.size() > command.most) {
    throw UsageError("'" + words[command.most] + "' is one argument too many" +
                     (command.most == 0 ? ": " + command.name + " takes none" : usage));
  }
}

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
    if (std::cout.flush()) return status;
    // The end of a pipe that was closed early, as 'head' does, is no fault.
    const int fault = OutputError();
    if (fault != EPIPE) throw Rejection(OutputErrorText(fault));
  } catch (const UsageError& error) {
    const bool known = std::any_of(commands.begin(), commands.end(), [&](const Command& each) {
      return !arguments.empty() && each.name == arguments.front();
    });
    std::cerr << name << ": " << Shown(error.what()) << "\nTry '" << name
              << (known ? ' ' + arguments.front() : "") << " --help'.\n";
    return kUsage;
  } catch (const Rejection& rejection) {
    std::string begin = name + ": ";
    for (const std::string& line : Wrap(rejection.what(), SIZE_MAX)) {
      std::cerr << begin << Shown(line) << '\n';
      begin.clear();
    }
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
  std::string first = arguments.front();
  std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
  if (IsHelp(first) || (first == "help" && rest.empty())) return PrintHelp(), kSuccess;
  if (first == "--version") {
    std::cout << name << ' ' << version << '\n';
    return kSuccess;
  }
  if (first == "help") {
    first = rest.front();
    rest = {kHelp.name};
  }
  const Command& command = Find(first);
  if (!rest.empty() && IsHelp(rest.front())) return PrintHelp(command), kSuccess;
  const Options given(rest, OptionsOf(command));
  if (given.Has(kHelp.name)) return PrintHelp(command), kSuccess;
  CheckWords(command, given.Words());
  return command.run(given);
}

const Command& Program::Find(const std::string& wanted) const {
  std::vector<std::string> names = {"help", kHelp.name, "--version"};
  for (const Command& command : commands) {
    if (command.name == wanted) return command;
    names.push_back(command.name);
  }
  throw UsageError("unknown command '" + wanted + "'" + DidYouMean(wanted, names));
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
    if (command.summary.empty()) continue;
    std::cout << "  " << std::left << std::setw(8) << command.name << command.summary << '\n';
  }
  std::cout << notes;
}

void Program::PrintHelp(const Command& command) const {
  std::cout << "Usage: " << name << ' ' << command.name << " [OPTION...]"
            << (command.arguments.empty() ? "" : " ") << command.arguments << '\n'
            << command.summary << "\n\n"
            << (command.explain != nullptr ? command.explain() + '\n' : "") << "Options:\n";
  for (const Option& option : OptionsOf(command)) {
    std::cout << "  " << std::left << std::setw(18) << option.name + ' ' + option.value
              << option.help << '\n';
  }
}
