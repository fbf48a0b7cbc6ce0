#include "fields/FieldCommands.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include "fields/FieldKinds.h"
#include "terminal/Terminal.h"
#include "terminal/Text.h"

std::string ExplainParse() {
  std::ostringstream out;
  out << "KIND, and what to type:\n";
  for (const FieldKind& kind : kFieldKinds) {
    out << "  " << std::left << std::setw(11) << kind.name << kind.accepts << '\n';
  }
  return out.str();
}

ExitStatus RunParse(const Options& options) {
  const Settings settings(options);
  const FieldKind& kind = FindFieldKind(options.Words().front());
  const std::string text = options.Text(1, options.Words().size());
  const auto reading = kind.Read(text, settings);
  if (!reading) throw Rejection("the " + kind.name + " field rejects '" + text + "'");
  std::cout << "value    " << reading->value << "\nresult   " << reading->result << '\n';
  if (!reading->display.empty()) std::cout << "display  " << reading->display << '\n';
  return kSuccess;
}

static void PrintRow(const std::string& field, const Reading& reading) {
  std::ostringstream row;
  row << std::left << std::setw(10) << field << std::setw(10) << reading.result << std::setw(18)
      << reading.value << reading.display;
  std::cout << WithoutTrailingBlanks(row.str()) << '\n';
}

ExitStatus RunFields(const Options& options) {
  const Settings settings(options);
  const Reading kRejected = {"-", "", ""};
  const bool terminal = IsTerminal(Stream::kInput);
  const char* const prompt = terminal ? "> " : "";

  for (std::string line; std::cout << prompt << std::flush, std::getline(std::cin, line);) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    if (!terminal) std::cout << "> " << line << '\n';  // the output then looks as on a terminal
    PrintRow("FIELD", {"RESULT", "VALUE", "DISPLAY"});
    for (const FieldKind& kind : kFieldKinds) {
      PrintRow(kind.name, kind.Read(line, settings).value_or(kRejected));
    }
    std::cout << '\n';
  }
  if (terminal) std::cout << '\n';  // ends the line of the last prompt
  return kSuccess;
}
