// Words and numbers in the arguments of a command line.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// A command line that cannot be carried out; its text tells the user why.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Joins words with one blank between them.
std::string Join(const std::vector<std::string>& words);

/// Splits a text into words at white space and commas.
std::vector<std::string> SplitWords(std::string text);

/// Returns the number that a text consists of, if it lies in a range.
std::optional<int> WholeNumber(const std::string& text, int least, int most);
