// Words and numbers in texts.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// Splits a text into words at white space and commas.
std::vector<std::string> SplitWords(std::string text);

/// Returns the number that the text is, or nothing if it is not a number from `least` to `most`.
std::optional<int> WholeNumber(const std::string& text, int least, int most);

/// Returns a text without the blanks at its end.
std::string WithoutTrailingBlanks(std::string text);
