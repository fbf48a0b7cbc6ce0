#include "support/PageTables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

namespace {

// Returns the first group of each match of a pattern.
std::vector<std::string> FindAll(const std::string& text, const std::regex& pattern) {
  return {std::sregex_token_iterator(text.begin(), text.end(), pattern, 1), {}};
}

}  // namespace

std::vector<PageTable> TablesOf(const std::string& page) {
  std::ifstream in(std::string(DOCS_DIRECTORY "/") + page);
  std::vector<PageTable> tables;
  const std::regex cell(R"(\| *([^|]*[^| ])? *(?=\|))");
  bool is_header = true;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    const std::string place = page + ":" + std::to_string(++number);
    const std::vector<std::string> cells = FindAll(line, cell);
    if (!cells.empty() && is_header) {
      tables.push_back({cells, {}});
    } else if (!cells.empty() && !line.starts_with("|-")) {
      EXPECT_EQ(cells.size(), tables.back().header.size()) << place;
      tables.back().rows.push_back({place, cells});
      tables.back().rows.back().cells.resize(tables.back().header.size());
    }
    is_header = cells.empty();
  }
  EXPECT_FALSE(tables.empty()) << page;
  return tables;
}

std::vector<PageRow> RowsUnder(const std::string& page, const std::vector<std::string>& header) {
  std::vector<PageRow> rows;
  for (const PageTable& table : TablesOf(page)) {
    if (table.header == header) rows.insert(rows.end(), table.rows.begin(), table.rows.end());
  }
  EXPECT_FALSE(rows.empty()) << page << " has no rows under " << header[0];
  return rows;
}

std::vector<std::string> CodeIn(const std::string& cell) {
  static const std::regex kCode("`+([^`]+)`+");
  return FindAll(cell, kCode);
}

void CheckTexts(const PageTable& table, std::size_t column,
                const std::function<std::string(const std::string& text)>& result_of) {
  static const std::regex kTab("<tab>");
  for (const PageRow& row : table.rows) {
    std::vector<std::string> texts = CodeIn(row.cells[0]);
    if (texts.empty()) texts.emplace_back();
    for (const std::string& text : texts) {
      EXPECT_EQ(result_of(std::regex_replace(text, kTab, "\t")), row.cells[column])
          << row.place << ", " << table.header[column] << ": " << text;
    }
  }
}
