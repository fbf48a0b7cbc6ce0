// Words and numbers in texts.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Splits a text into words at white space and commas.
std::vector<std::string> SplitWords(std::string text);

/// Returns the number that the text is, or nothing if it is not a number from `least` to `most`.
std::optional<int> WholeNumber(const std::string& text, int least, int most);

/// "1 entry" or "2 entries"
std::string Counted(std::size_t number, const std::string& one, const std::string& many);

/// Returns a text without the blanks at its end.
std::string WithoutTrailingBlanks(std::string text);

/// Returns the number of columns of a text in UTF-8. Combining characters need none, and wide East
/// Asian characters need two.
std::size_t Columns(std::string_view text);

/// Returns the beginning of a text that fits into a number of columns.
std::string_view Fitting(std::string_view text, std::size_t columns);

/// Divides a text into rows of at most so many columns, at least 2. Only words longer than a row
/// are divided.
std::vector<std::string> Wrap(std::string_view text, std::size_t columns);

/// Returns a text with '?' for each character that would command the terminal or change the order
/// of the text, and for each byte that is not UTF-8.
std::string Shown(std::string_view text);

/// Returns `Shown`, with a backslash in front of each character that is one of `special`.
std::string Escaped(std::string_view text, std::string_view special);

/// Whether a text contains another one. A to Z are the same as a to z.
bool Contains(std::string_view text, std::string_view wanted);

/// Returns the name that a mistyped one most likely means, or nothing if none is near.
std::string Nearest(const std::string& mistyped, const std::vector<std::string>& names);
