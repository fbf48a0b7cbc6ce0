#include "RunDaybook.h"

#include <sys/wait.h>

#include <cstdio>

Outcome Daybook::Shell(const std::string& command) const {
  const std::string script = "cd '" + directory.Path("") +
                             "'; PATH=$(dirname '" DAYBOOK_PATH
                             "'):$PATH; export DAYBOOK_NOW='2026-11-18 09:30' TERM=vt100 LC_ALL=C "
                             "NO_COLOR= LOCPATH='" LOCALE_DIRECTORY "'; " +
                             command;
  Outcome outcome{-1, ""};
  FILE* const pipe = popen(script.c_str(), "r");
  if (pipe == nullptr) return outcome;
  char block[4096];
  while (const std::size_t length = std::fread(block, 1, sizeof block, pipe)) {
    outcome.text.append(block, length);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  return outcome;
}

Outcome Daybook::OnTerminal(const std::string& command, const std::string& typed) const {
  return Shell("echo " + typed + " | script -qec '" + command + "' /dev/null | tr -d '\\r'");
}
