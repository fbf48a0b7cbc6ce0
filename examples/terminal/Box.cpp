#include "terminal/Box.h"

#include <algorithm>
#include <vector>

#include "terminal/Text.h"

namespace {

// Every byte of a UTF-8 character except the first begins with the bits 10.
bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

std::size_t Columns(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

// The beginning of a text that fits into a number of columns.
std::string_view Fitting(std::string_view text, std::size_t columns) {
  std::size_t end = 0;
  while (end < text.size() && (columns > 0 || !BeginsCharacter(text[end]))) {
    columns -= BeginsCharacter(text[end]) ? 1 : 0;
    ++end;
  }
  return text.substr(0, end);
}

// Removes the first row from a line and returns it. Only words longer than a row are divided.
std::string_view TakeRow(std::string_view* line, std::size_t columns) {
  std::string_view row = Fitting(*line, columns);
  if (row.size() < line->size()) {
    const std::size_t blank = line->rfind(' ', row.size());
    if (blank != std::string_view::npos && blank != 0) row = row.substr(0, blank);
  }
  line->remove_prefix(row.size());
  line->remove_prefix(std::min(line->find_first_not_of(' '), line->size()));
  return row;
}

std::vector<std::string> Wrap(std::string_view text, std::size_t columns) {
  std::vector<std::string> rows;
  for (bool more = true; more;) {
    std::string_view line = text.substr(0, text.find('\n'));
    more = line.size() < text.size();
    text.remove_prefix(line.size() + (more ? 1 : 0));
    do {
      rows.push_back(WithoutTrailingBlanks(std::string(TakeRow(&line, columns))));
    } while (!line.empty());
  }
  return rows;
}

std::string Repeat(const char* piece, std::size_t times) {
  std::string text;
  for (; times > 0; --times) text += piece;
  return text;
}

}  // namespace

std::string DrawBox(std::string_view text, std::string_view caption, int columns,
                    const Frame& frame) {
  const std::string foot = " [OK] ";
  const std::vector<std::string> rows = Wrap(text, static_cast<std::size_t>(columns));
  std::string head(Fitting(caption, static_cast<std::size_t>(columns)));
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
