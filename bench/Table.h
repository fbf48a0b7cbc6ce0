// A table, printed for the terminal or as Markdown.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace bench {

enum class Style { kText, kMarkdown };

class Table {
 public:
  using Row = std::vector<std::string>;

  Table(std::string title, Row headings)
      : title_(std::move(title)), headings_(std::move(headings)) {}

  /// Adds a row with a cell for each heading.
  void Add(Row row) { rows_.push_back(std::move(row)); }

  /// Prints the table; nothing if it has no rows.
  void Print(std::ostream& out, Style style) const;

 private:
  std::string title_;
  Row headings_;
  std::vector<Row> rows_;
};

}  // namespace bench
