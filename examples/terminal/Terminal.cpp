#include "terminal/Terminal.h"

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "terminal/Text.h"

static bool IsDumb() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) == "dumb";
}

bool HasBoxCharacters() { return !IsDumb() && UsesUtf8(); }

bool HasColors() {
  const char* const refused = std::getenv("NO_COLOR");
  return IsTerminal(Stream::kOutput) && !IsDumb() && (refused == nullptr || *refused == '\0');
}

// It writes blanks, since some terminals have no command to clear a line.
void EraseLine() {
  const auto columns = static_cast<std::size_t>(TerminalWidth(Stream::kError) - 1);
  std::cerr << '\r' + std::string(columns, ' ') + '\r';
}

int OutputError() {
  std::cout.clear();
  errno = 0;
  return std::cout << std::endl ? 0 : errno;
}

std::string OutputErrorText(int error) {
  if (error == ENOSPC) return "standard output is full";
  return error == EPIPE ? "nobody reads standard output" : "standard output could not be written";
}

bool Confirm(const std::string& question) {
  std::cerr << Shown(question) << " (y/n) " << std::flush;
  std::string answer;
  if (!std::getline(std::cin, answer)) std::cerr << '\n';
  return answer == "y" || answer == "Y" || answer == "yes";
}
