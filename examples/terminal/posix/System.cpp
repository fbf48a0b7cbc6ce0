#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <string_view>

#include "terminal/Terminal.h"

static int Descriptor(Stream stream) {
  if (stream == Stream::kInput) return STDIN_FILENO;
  return stream == Stream::kOutput ? STDOUT_FILENO : STDERR_FILENO;
}

// Without these signals, a limit for file sizes and a closed pipe are errors like a full disk.
void PrepareStreams() {
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

bool IsTerminal(Stream stream) { return isatty(Descriptor(stream)) != 0; }

int TerminalWidth(Stream stream) {
  winsize size{};
  const bool known = ioctl(Descriptor(stream), TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
  return known ? size.ws_col : kUsualWidth;
}

// The locale of the program is not changed, so texts are read in the same way in every locale.
bool UsesUtf8() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return false;
  const bool utf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
  freelocale(locale);
  return utf8;
}
