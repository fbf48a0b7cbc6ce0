#include "terminal/Options.h"

#include <algorithm>

#include "terminal/Text.h"

std::string DidYouMean(const std::string& mistyped, const std::vector<std::string>& names) {
  const std::string nearest = Nearest(mistyped, names);
  return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

Options::Options(const std::vector<std::string>& arguments, const std::vector<Option>& known) {
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--") {
      words_.insert(words_.end(), argument + 1, arguments.end());
      return;
    }
    if (!argument->starts_with("--")) {
      words_.push_back(*argument);
      continue;
    }
    const std::size_t equals = argument->find('=');
    const std::string name = argument->substr(0, equals);
    const auto option = std::find_if(known.begin(), known.end(),
                                     [&](const Option& each) { return each.name == name; });
    if (option == known.end()) {
      std::vector<std::string> names;
      names.reserve(known.size());
      for (const Option& each : known) names.push_back(each.name);
      throw UsageError("unknown option '" + name + "'" + DidYouMean(name, names));
    }
    const bool takes_value = !option->value.empty();
    if (equals != std::string::npos) {
      if (!takes_value) throw UsageError("option '" + name + "' takes no value");
      values_[name] = argument->substr(equals + 1);
      continue;
    }
    if (takes_value && ++argument == arguments.end()) {
      throw UsageError("option '" + name + "' needs a value: " + option->value);
    }
    values_[name] = takes_value ? *argument : "";
  }
}

const std::string* Options::Find(const std::string& name) const {
  const auto value = values_.find(name);
  return value != values_.end() ? &value->second : nullptr;
}

int Options::Number(const std::string& name, int least, int most, int otherwise) const {
  const std::string* const value = Find(name);
  if (value == nullptr) return otherwise;
  if (const auto number = WholeNumber(*value, least, most)) return *number;
  throw UsageError(name + " is '" + *value + "': it must be a whole number from " +
                   std::to_string(least) + " to " + std::to_string(most));
}

std::string Options::Text(std::size_t first, std::size_t end) const {
  std::string text;
  for (std::size_t word = first; word < end; ++word) {
    text += (word > first ? " " : "") + words_[word];
  }
  return text;
}
