#include "terminal/Text.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <sstream>

std::vector<std::string> SplitWords(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

std::optional<int> WholeNumber(const std::string& text, int least, int most) {
  int number = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = error == std::errc() && rest == text.data() + text.size();
  return whole && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

std::string WithoutTrailingBlanks(std::string text) {
  return text.erase(text.find_last_not_of(' ') + 1);
}
