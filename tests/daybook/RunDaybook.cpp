#include "RunDaybook.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

std::string ReadAll(int descriptor) {
  std::string text;
  char block[4096];
  for (ssize_t length = 0; (length = read(descriptor, block, sizeof block)) > 0;) {
    text.append(block, static_cast<std::size_t>(length));
  }
  return text;
}

Outcome RunShell(const std::string& command) {
  const std::string script =
      std::string("daybook() { '" DAYBOOK_PATH "' \"$@\"; }; export DAYBOOK_NOW='") + kNow +
      "' TERM=vt100 LC_ALL=C; " + command;
  Outcome outcome{-1, ""};
  FILE* const pipe = popen(script.c_str(), "r");
  if (pipe == nullptr) return outcome;
  outcome.text = ReadAll(fileno(pipe));
  const int status = pclose(pipe);
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  return outcome;
}

Outcome RunDaybook(const std::string& arguments, const std::string& stream,
                   const std::string& input, const std::string& now) {
  return RunShell("printf '" + input + "' | DAYBOOK_NOW='" + now + "' daybook " + arguments + ' ' +
                  stream);
}
