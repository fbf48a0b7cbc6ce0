// The tables of the pages in docs/, for tests that compare a page with the library.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct PageRow {
  std::string place;               ///< page and line, for messages
  std::vector<std::string> cells;  ///< without the blanks around them; as many as in the header
};

struct PageTable {
  std::vector<std::string> header;
  std::vector<PageRow> rows;
};

/// Returns the tables of a page, such as "guide/file.md". The test fails if there are none.
std::vector<PageTable> TablesOf(const std::string& page);

/// Returns the rows of all tables of a page with this header. The test fails if there are none.
std::vector<PageRow> RowsUnder(const std::string& page, const std::vector<std::string>& header);

/// Returns the texts in backticks of a cell.
std::vector<std::string> CodeIn(const std::string& cell);

/// Checks a column of a table whose first cells are texts in backticks, `<tab>` for a tab. A first
/// cell without any is the empty text. `result_of` returns what the column says about a text.
void CheckTexts(const PageTable& table, std::size_t column,
                const std::function<std::string(const std::string& text)>& result_of);
