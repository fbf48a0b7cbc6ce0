// Drawing a message box with characters.
#pragma once

#include <string>
#include <string_view>

/// The pieces of the border. Each is one column wide.
struct Frame {
  const char* top_left;
  const char* top_right;
  const char* bottom_left;
  const char* bottom_right;
  const char* horizontal;
  const char* vertical;
};

inline constexpr Frame kAsciiFrame = {"+", "+", "+", "+", "-", "|"};
inline constexpr Frame kLineFrame = {"┌", "┐", "└", "┘", "─", "│"};

/// Draws a box with an OK button around a text. Long lines are wrapped at blanks. Characters that
/// command a terminal are shown as '?'.
///
/// @param caption  shown in the top border, cut to `columns` with a blank at each end; may be empty
/// @param columns  the most columns for a line of text
std::string DrawBox(std::string_view text, std::string_view caption, int columns,
                    const Frame& frame);
