#include "orzcore/filespec.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/PageTables.h"

namespace {

using Setter = void (OZFileSpec::*)(const char*);

std::string A(std::size_t length) { return std::string().append(length, 'a'); }

// The text of a cell of the page: in backticks, or "9 characters".
std::string TextOf(const std::string& cell) {
  if (cell.empty()) return cell;
  return cell[0] == '`' ? cell.substr(1, cell.size() - 2) : A(std::stoul(cell));
}

std::string CellOf(const std::string& text) {
  if (text.empty()) return text;
  return text.size() < 100 ? "`" + text + "`" : std::to_string(text.size()) + " characters";
}

// The buffers are on the heap, where the sanitizers see an overrun.
void ExpectParts(const OZFileSpec& file, const std::string& directory, const std::string& name) {
  const std::string path = directory + name;
  EXPECT_EQ(file.GetFullPath(), path);
  EXPECT_EQ(file.ResolveFullPath(), path.empty() ? -1 : 0);
  EXPECT_EQ(file.GetFullPath(std::vector<char>(515, '#').data()), path.substr(0, 514));
  EXPECT_EQ(file.GetFileName(std::vector<char>(260, '#').data()), name.substr(0, 259));
  EXPECT_EQ(file.GetDirectory(std::vector<char>(directory.size() + 1, '#').data()), directory);
}

TEST(FileSpec, SplitsAPathAtTheLastBackslash) {
  constexpr const char* kCases[][2] = {
      {"", ""}, {"", "report.txt"}, {"C:\\data\\", ""}, {"C:\\old\\", "f.txt"}, {"", "C:a/b.txt"}};
  for (const auto& [directory, name] : kCases) {
    ExpectParts(OZFileSpec((std::string(directory) + name).c_str()), directory, name);
    ExpectParts(OZFileSpec(directory, name), directory, name);
  }
  ExpectParts(OZFileSpec("C:\\d", "f"), "C:\\", "df");
  for (const std::size_t length : {258U, 259U, 260U, 513U, 514U, 515U, 516U, 600U, 100'000U}) {
    const std::string path = A(length - 1) + "z";
    ExpectParts(OZFileSpec(path.c_str()), "", path);
    ExpectParts(OZFileSpec((path + "\\f").c_str()), path + "\\", "f");
  }
  ExpectParts(OZFileSpec(A(256).c_str(), A(259).c_str()), "", A(515));
  ExpectParts(OZFileSpec(A(257).c_str(), A(259).c_str()), "", "");
}

TEST(FileSpec, ReplacesItsPartsAsThePageSays) {
  const std::map<std::string, Setter> kSetters = {{"`SetFullPath`", &OZFileSpec::SetFullPath},
                                                  {"`SetDirectory`", &OZFileSpec::SetDirectory},
                                                  {"`SetFileName`", &OZFileSpec::SetFileName},
                                                  {"`SetExtension`", &OZFileSpec::SetExtension}};
  for (const PageRow& row : RowsUnder("guide/file.md", {"Path", "Setter", "Text", "New path"})) {
    const std::string path = TextOf(row.cells[0]), text = TextOf(row.cells[2]);
    const Setter setter = kSetters.at(row.cells[1]);
    // A text that is the end of the path is also passed as that part of it.
    const std::size_t end = path.ends_with(text) ? path.size() - text.size() : 0;
    for (const bool is_null : {false, true}) {
      OZFileSpec file(path.c_str());
      const char* const own = end > 0 ? file.GetFullPath() + end : text.c_str();
      (file.*setter)(is_null && text.empty() ? nullptr : own);
      EXPECT_EQ(CellOf(file.GetFullPath()), row.cells[3]) << row.place;
    }
  }
  OZFileSpec file("C:\\f");
  file.SetPath(file.GetFullPath(), file.GetFullPath() + 3);
  EXPECT_STREQ(file.GetFullPath(), "C:\\ff");
}

TEST(FileSpec, CopiesOwnTheirText) {
  OZFileSpec first("C:\\a");
  auto copy = std::make_unique<OZFileSpec>(first);
  first.SetFullPath("b");
  EXPECT_STREQ(copy->GetFullPath(), "C:\\a");
  EXPECT_EQ(&(first = *copy), &first);
  copy.reset();
  ExpectParts(OZFileSpec(first), "C:\\", "a");
  first = OZFileSpec();
  ExpectParts(OZFileSpec(first), "", "");
}

}  // namespace
