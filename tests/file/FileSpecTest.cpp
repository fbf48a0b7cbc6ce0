#include "orzcore/filespec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace {

using Getter = char* (OZFileSpec::*)(char*) const;

struct Edit {
  std::string path;
  void (OZFileSpec::*setter)(const char*);
  std::string text, expected;
};
constexpr auto kFullPath = &OZFileSpec::SetFullPath;
constexpr auto kDirectory = &OZFileSpec::SetDirectory;
constexpr auto kFileName = &OZFileSpec::SetFileName;
constexpr auto kExtension = &OZFileSpec::SetExtension;

std::string A(std::size_t length) { return std::string().append(length, 'a'); }

// Returns what a getter writes into a buffer of `size` bytes on the heap, where the sanitizers see
// an overrun.
std::string Read(const OZFileSpec& file, Getter getter, std::size_t size) {
  const auto buffer = std::make_unique<char[]>(size);
  std::fill_n(buffer.get(), size, '#');
  EXPECT_EQ((file.*getter)(buffer.get()), buffer.get());
  return buffer.get();
}

void ExpectParts(const OZFileSpec& file, const std::string& directory, const std::string& name) {
  const std::string path = directory + name;
  EXPECT_EQ(file.GetFullPath(), path);
  EXPECT_EQ(file.ResolveFullPath(), path.empty() ? -1 : 0);
  EXPECT_EQ(Read(file, &OZFileSpec::GetFullPath, 515), path.substr(0, 514));
  EXPECT_EQ(Read(file, &OZFileSpec::GetFileName, 260), name.substr(0, 259));
  EXPECT_EQ(Read(file, &OZFileSpec::GetDirectory, directory.size() + 1), directory);
}

std::string Edited(const std::string& path, decltype(Edit::setter) setter, const char* text) {
  OZFileSpec file(path.c_str());
  (file.*setter)(text);
  EXPECT_EQ(file.ResolveFullPath(), *file.GetFullPath() == '\0' ? -1 : 0);
  return file.GetFullPath();
}

TEST(FileSpec, SplitsAPathAtTheLastBackslash) {
  constexpr const char* kCases[][2] = {
      {"", ""}, {"", "report.txt"}, {"C:\\data\\", ""}, {"C:\\old\\", "f.txt"}, {"", "C:a/b.txt"}};
  for (const auto& [directory, name] : kCases) {
    const std::string path = std::string(directory) + name;
    SCOPED_TRACE(path);
    ExpectParts(OZFileSpec(path.c_str()), directory, name);
    ExpectParts(OZFileSpec(directory, name), directory, name);
  }
  ExpectParts(OZFileSpec(nullptr), "", "");
  ExpectParts(OZFileSpec("C:\\d", "f"), "C:\\", "df");
  for (const std::size_t length : {258U, 259U, 260U, 513U, 514U, 515U, 516U, 600U, 100'000U}) {
    const std::string path = A(length - 1) + "z";
    ExpectParts(OZFileSpec(path.c_str()), "", path);
    ExpectParts(OZFileSpec((path + "\\f").c_str()), path + "\\", "f");
  }
}

TEST(FileSpec, ReplacesItsParts) {
  const Edit kEdits[] = {{"a", kFullPath, "", ""},
                         {"C:\\old\\f.txt", kDirectory, "C:\\new", "C:\\new\\f.txt"},
                         {"C:\\old\\f.txt", kDirectory, "C:\\new\\", "C:\\new\\f.txt"},
                         {"C:\\old\\f.txt", kDirectory, "", "f.txt"},
                         {"", kDirectory, "d/", "d/\\"},
                         {A(259) + "z", kDirectory, "d", "d\\" + A(259)},
                         {"C:\\d\\f.txt", kFileName, "", "C:\\d\\"},
                         {"C:\\d\\f.txt", kFileName, "C:\\e\\g", R"(C:\d\C:\e\g)"},
                         {"report.txt", kFileName, "x", "x"},
                         {"C:\\d\\x.tar.gz", kExtension, ".bak", "C:\\d\\x.tar.bak"},
                         {"C:\\d.e\\f", kExtension, ".txt", "C:\\d.e\\f.txt"},
                         {"a.b", kExtension, "", "a"},
                         {".profile", kExtension, ".txt", ".txt"},
                         {"", kExtension, ".txt", ".txt"}};
  for (const auto& [path, setter, text, expected] : kEdits) {
    EXPECT_EQ(Edited(path, setter, text.c_str()), expected) << path << " and " << text;
    if (!text.empty()) continue;
    EXPECT_EQ(Edited(path, setter, nullptr), expected) << path << " and null";
  }
}

TEST(FileSpec, BecomesEmptyIfThePathWouldBeTooLong) {
  const Edit kLongest[] = {{"C:\\f", kDirectory, A(513), A(513) + "\\f"},
                           {"C:\\", kDirectory, A(514), A(514) + "\\"},
                           {"C:\\f", kFileName, A(512), "C:\\" + A(512)},
                           {A(514) + "\\f", kFileName, "", A(514) + "\\"},
                           {"C:\\f.txt", kExtension, A(262), "C:\\f" + A(262)},
                           {"C:\\" + A(259), kExtension, ".bak", "C:\\" + A(259) + ".bak"}};
  for (const auto& [path, setter, text, expected] : kLongest) {
    EXPECT_EQ(Edited(path, setter, text.c_str()), expected);
    for (const std::size_t more : {1U, 100'000U}) {
      EXPECT_EQ(Edited(path, setter, (text + A(more)).c_str()), "") << path << " and " << text;
    }
  }
  EXPECT_EQ(Edited(A(515) + "\\f", kFileName, nullptr), "");
  ExpectParts(OZFileSpec(A(256).c_str(), A(259).c_str()), "", A(515));
  ExpectParts(OZFileSpec(A(257).c_str(), A(259).c_str()), "", "");
  ExpectParts(OZFileSpec(A(516).c_str(), ""), "", "");
}

TEST(FileSpec, CopiesOwnTheirText) {
  OZFileSpec first("C:\\a");
  auto copy = std::make_unique<OZFileSpec>(first);
  first.SetFullPath("b");
  EXPECT_STREQ(copy->GetFullPath(), "C:\\a");
  EXPECT_EQ(&(first = *copy), &first);
  copy.reset();
  EXPECT_STREQ(first.GetFullPath(), "C:\\a");
  first = OZFileSpec();
  ExpectParts(OZFileSpec(first), "", "");
}

TEST(FileSpec, AcceptsPartsOfItsOwnPath) {
  const Edit kEdits[] = {
      {"C:\\f.x", kFullPath, "f.x", "f.x"},
      {"C:\\f.x", kDirectory, "\\f.x", R"(\f.x\f.x)"},
      {"C:\\f.x", kFileName, "\\f.x", R"(C:\\f.x)"},
      {"C:\\f.x", kExtension, "f.x", "C:\\ff.x"},
  };
  for (const auto& [path, setter, text, expected] : kEdits) {
    OZFileSpec file(path.c_str());
    (file.*setter)(file.GetFullPath() + path.size() - text.size());
    EXPECT_EQ(file.GetFullPath(), expected);
  }
  OZFileSpec file("C:\\f");
  file.SetPath(file.GetFullPath(), file.GetFullPath() + 3);
  EXPECT_STREQ(file.GetFullPath(), "C:\\ff");
}

}  // namespace
