// Drawing a message box out of characters.
#pragma once

#include <string>
#include <string_view>

/// What the box is drawn with; each piece is one column wide.
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

/// Draws a box with an OK button around a text, which is wrapped at blanks.
///
/// @param caption  stands in the top border; nothing if it is empty
/// @param columns  the columns of the widest text; the caption is cut to them
std::string DrawBox(std::string_view text, std::string_view caption, int columns,
                    const Frame& frame);
