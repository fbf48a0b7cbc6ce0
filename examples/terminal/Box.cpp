#include "terminal/Box.h"

#include <algorithm>
#include <vector>

#include "terminal/Text.h"

namespace {

std::string Repeat(const char* piece, std::size_t times) {
  std::string text;
  for (; times > 0; --times) text += piece;
  return text;
}

}  // namespace

std::string DrawBox(std::string_view text, std::string_view caption, int columns,
                    const Frame& frame) {
  const std::string foot = " [OK] ";
  std::vector<std::string> rows = Wrap(text, static_cast<std::size_t>(columns));
  for (std::string& row : rows) row = Shown(row);
  // The blanks around the caption count too.
  std::string head(Fitting(caption, static_cast<std::size_t>(std::max(columns, 2)) - 2));
  if (!head.empty()) head = ' ' + head + ' ';
  std::size_t inside =
      std::max(Columns(head), Columns(foot)) + 2;  // and a border piece at each end
  for (const std::string& row : rows) inside = std::max(inside, Columns(row) + 2);

  std::string box = frame.top_left + Repeat(frame.horizontal, 1) + head +
                    Repeat(frame.horizontal, inside - Columns(head) - 1) + frame.top_right + '\n';
  for (const std::string& row : rows) {
    box += frame.vertical + (' ' + row) + Repeat(" ", inside - Columns(row) - 1) + frame.vertical +
           '\n';
  }
  return box + frame.bottom_left + Repeat(frame.horizontal, inside - Columns(foot) - 1) + foot +
         frame.horizontal + frame.bottom_right + '\n';
}
