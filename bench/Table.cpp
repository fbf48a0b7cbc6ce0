#include "Table.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>

namespace bench {
namespace {

// The cells of a row, each as wide as its column.
void PrintRow(std::ostream& out, const Table::Row& row, const std::vector<std::size_t>& widths,
              Style style) {
  std::string line = style == Style::kMarkdown ? "| " : "";
  for (std::size_t i = 0; i < row.size(); ++i) {
    line += row[i] + std::string(widths[i] - row[i].size(), ' ');
    line += style == Style::kMarkdown ? " | " : "  ";
  }
  out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
}

}  // namespace

void Table::Print(std::ostream& out, Style style) const {
  if (rows_.empty()) return;
  std::vector<std::size_t> widths;
  for (const std::string& heading : headings_) widths.push_back(heading.size());
  for (const Row& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  out << (style == Style::kMarkdown ? "### " : "") << title_ << "\n\n";
  PrintRow(out, headings_, widths, style);
  Row rules;
  for (const std::size_t width : widths) rules.emplace_back(width, '-');
  PrintRow(out, rules, widths, style);
  for (const Row& row : rows_) PrintRow(out, row, widths, style);
  out << '\n';
}

}  // namespace bench
