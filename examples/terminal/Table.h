// Tables that fit the terminal.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// A column of a table.
struct Column {
  enum Alignment { kLeft, kRight };

  std::string title;
  int importance;  ///< the column with the highest number is shown first
  Alignment alignment = kLeft;
};

/// A table. Its last column wraps under itself and is never left out. Of the other columns, those
/// are shown that leave room for it, the most important ones first. A column without any text is
/// not shown.
class Table {
 public:
  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// Adds a row with a cell for every column.
  ///
  /// @param color  the command that begins its colour, or nothing
  void Add(std::vector<std::string> cells, std::string color = "");

  /// Returns the lines of the table, none longer than `width`; 0 means no limit. Without a limit,
  /// every column is there and nothing is wrapped.
  std::string Draw(std::size_t width) const;

  /// Writes the table to standard output as it fits the terminal, with its colours if the terminal
  /// has them. If standard output is not a terminal, there is no limit.
  void Print() const;

 private:
  struct Row {
    std::vector<std::string> cells;
    std::string color;
  };

  std::string DrawRows(std::size_t width, bool colored) const;

  std::vector<Column> columns_;
  std::vector<Row> rows_;
};
