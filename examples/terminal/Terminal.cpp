#include "terminal/Terminal.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

int TerminalWidth(int descriptor) {
  constexpr int kUsual = 80;
  winsize size{};
  return ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : kUsual;
}

// The locale of the program is not changed, so texts are read in the same way in every locale.
static bool UsesUtf8() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return false;
  const bool utf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
  freelocale(locale);
  return utf8;
}

static bool IsDumb() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) == "dumb";
}

bool HasBoxCharacters() { return !IsDumb() && UsesUtf8(); }

bool HasColors() {
  const char* const refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) != 0 && !IsDumb() && (refused == nullptr || *refused == '\0');
}

// It writes blanks, since some terminals have no command to clear a line.
void EraseLine() {
  const auto columns = static_cast<std::size_t>(TerminalWidth(STDERR_FILENO) - 1);
  std::cerr << '\r' + std::string(columns, ' ') + '\r';
}
