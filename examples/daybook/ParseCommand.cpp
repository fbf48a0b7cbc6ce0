#include <algorithm>
#include <iomanip>
#include <iostream>

#include "Command.h"
#include "FieldKinds.h"
#include "Text.h"

void ExplainParse(std::ostream& out) {
  out << "Several TEXT arguments are joined by blanks.\n\nKIND, and what to type:\n";
  for (const FieldKind& kind : kFieldKinds) {
    out << "  " << std::left << std::setw(11) << kind.name << kind.accepts << '\n';
  }
}

ExitStatus RunParse(const Options& options) {
  if (options.words.size() < 2) throw UsageError("parse needs a KIND and a TEXT");
  const std::string& name = options.words.front();
  const std::string text = Join({options.words.begin() + 1, options.words.end()});
  const auto kind = std::find_if(kFieldKinds.begin(), kFieldKinds.end(),
                                 [&](const FieldKind& each) { return each.name == name; });
  if (kind == kFieldKinds.end()) throw UsageError("unknown KIND '" + name + "'");

  const auto reading = kind->read(text.c_str(), options);
  if (!reading) {
    std::cerr << "daybook: the " << name << " field rejects '" << text << "'\n";
    return kNegative;
  }
  std::cout << "value    " << reading->value << "\nresult   " << reading->result << '\n';
  if (!reading->display.empty()) std::cout << "display  " << reading->display << '\n';
  return kSuccess;
}
