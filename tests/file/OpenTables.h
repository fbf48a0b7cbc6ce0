// The tables of docs/guide/file.md that say what an open does.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "file/FileTest.h"
#include "support/PageTables.h"

/// Paths of all kinds. `file` is a file, and there is no `missing`.
class OpenTables : public FileTest {
 protected:
  /// Checks every row of a table. `paths` has the path for each first cell.
  void Check(const char* first_header, const std::map<std::string, std::string>& paths) const {
    const std::vector<unsigned> kFlags[] = {
        {0, OZ_OPEN_TRUNCATE, OZ_OPEN_EXCLUSIVE | OZ_OPEN_TRUNCATE},
        {1, 2, 3 | OZ_OPEN_TRUNCATE, 2 | OZ_OPEN_EXCLUSIVE},
        {2 | OZ_OPEN_CREATE, 3 | OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE},
        {2 | OZ_OPEN_CREATE | OZ_OPEN_EXCLUSIVE, 1 | OZ_OPEN_CREATE | OZ_OPEN_EXCLUSIVE}};
    const std::vector<std::string> header = {first_header, "Read", "Write", "Empty", "Create"};
    for (const PageRow& row : RowsUnder("guide/file.md", header)) {
      ASSERT_TRUE(paths.contains(row.cells[0])) << row.place;
      for (std::size_t i = 1; i < header.size(); ++i) {
        for (const unsigned flags : kFlags[i - 1]) {
          const std::string result = ResultOf(paths.at(row.cells[0]), flags);
          EXPECT_TRUE(row.cells[i].ends_with(result)) << row.place << ' ' << flags << ' ' << result;
        }
      }
    }
  }

 private:
  // Opens a path, and returns what happened, in the words of the page.
  std::string ResultOf(const std::string& path, unsigned flags) const {
    directory_.Write("file", "old");
    std::filesystem::remove(directory_.Path("missing"));
    TestFile file;
    const OZError error = file.OpenFile(directory_.Path(path).c_str(), flags, 0);
    EXPECT_EQ(file.IsOpen(), error == eErrNone ? 1 : 0);
    const std::string content = directory_.Read("file");
    if (error != eErrNone && content == "old") return std::to_string(error) + ")";
    EXPECT_EQ(file.ChangeSize(3), (flags & 3) != 0 ? eErrNone : eErrAccessDenied);
    if (path == "missing") return directory_.Read(path).size() == 3 ? "created" : "lost";
    return content.empty() ? "emptied" : "opened";
  }
};
