#include <unistd.h>

#include <iomanip>
#include <iostream>
#include <sstream>

#include "Command.h"
#include "FieldKinds.h"
#include "Lines.h"
#include "Print.h"
#include "Text.h"

void ExplainFields(std::ostream& out) {
  out << "The texts are read from FILE or else from standard input, one in each line; empty lines\n"
         "are skipped. A hyphen stands for a text that the field rejects.\n";
}

static void PrintRow(const std::string& field, const Reading& reading) {
  std::ostringstream row;
  row << std::left << std::setw(10) << field << std::setw(10) << reading.result << std::setw(18)
      << reading.value << reading.display;
  std::cout << WithoutTrailingBlanks(row.str()) << '\n';
}

ExitStatus RunFields(const Options& options) {
  if (options.words.size() > 1) throw UsageError("fields takes one FILE");
  const OpenedFile file = options.words.empty() ? nullptr : OpenLines(options.words.front());
  std::FILE* const input = file != nullptr ? file.get() : stdin;
  const Reading kRejected = {"-", "", ""};
  const bool terminal = isatty(fileno(input)) != 0;
  const char* const prompt = terminal ? "> " : "";

  for (std::string line; std::cout << prompt << std::flush, ReadLine(input, &line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (line.find_first_not_of(" \t") == std::string::npos) continue;
    if (!terminal) std::cout << "> " << line << '\n';  // so that the output reads like a session
    PrintRow("FIELD", {"RESULT", "VALUE", "DISPLAY"});
    for (const FieldKind& kind : kFieldKinds) {
      PrintRow(kind.name, kind.read(line.c_str(), options).value_or(kRejected));
    }
    std::cout << '\n';
  }
  if (terminal) std::cout << '\n';  // ends the line of the last prompt
  return kSuccess;
}
