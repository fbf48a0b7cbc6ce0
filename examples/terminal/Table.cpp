#include "terminal/Table.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <set>

#include "terminal/Terminal.h"
#include "terminal/Text.h"

void Table::Add(std::vector<std::string> cells, std::string color) {
  for (std::string& cell : cells) cell = Shown(cell);
  rows_.push_back({std::move(cells), std::move(color)});
}

std::string Table::Draw(std::size_t width) const { return DrawRows(width, false); }

void Table::Print() const {
  const bool limited = IsTerminal(Stream::kOutput);
  std::cout << DrawRows(limited ? static_cast<std::size_t>(TerminalWidth(Stream::kOutput)) : 0,
                        HasColors());
}

std::string Table::DrawRows(std::size_t width, bool colored) const {
  constexpr std::size_t kGap = 2;         // blanks between columns
  constexpr std::size_t kLeastText = 20;  // columns that the last column should have
  constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
  const std::size_t last = columns_.size() - 1;

  std::vector<std::size_t> widths;
  std::vector<std::size_t> by_importance;
  for (std::size_t column = 0; column < last; ++column) {
    widths.push_back(Columns(columns_[column].title));
    for (const Row& row : rows_)
      widths[column] = std::max(widths[column], Columns(row.cells[column]));
    if (widths[column] != 0) by_importance.push_back(column);
  }
  std::sort(by_importance.begin(), by_importance.end(),
            [&](auto a, auto b) { return columns_[a].importance > columns_[b].importance; });
  std::set<std::size_t> shown;  // the columns before the last one, by their number
  std::size_t before = 0;       // columns of the terminal that they need
  for (const std::size_t column : by_importance) {
    const std::size_t needed = widths[column] + kGap;
    if (width != 0 && before + needed + kLeastText > width) continue;
    before += needed;
    shown.insert(column);
  }
  const std::size_t text = width == 0 ? kNoLimit : width - before;

  std::string lines;
  const auto draw = [&](const Row& row) {
    std::string line;
    for (const std::size_t column : shown) {
      const std::string& cell = row.cells[column];
      const std::string blanks(widths[column] - Columns(cell), ' ');
      line += columns_[column].alignment == Column::kRight ? blanks + cell : cell + blanks;
      line.append(kGap, ' ');
    }
    for (const std::string& part : Wrap(row.cells[last], text)) {
      line += part;
      line = WithoutTrailingBlanks(line);
      lines += colored && !row.color.empty() ? row.color + line + "\033[0m\n" : line + '\n';
      line.assign(before, ' ');
    }
  };
  Row titles;
  for (const Column& column : columns_) titles.cells.push_back(column.title);
  draw(titles);
  for (const Row& row : rows_) draw(row);
  return lines;
}
