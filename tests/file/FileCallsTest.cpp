// What the calls of an object return and leave behind.
#include <algorithm>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <utility>

#include "file/FileTest.h"
#include "support/PageTables.h"
#include "support/System.h"

namespace {

// A text in the words of the page.
std::string Shown(std::string text) {
  if (text.empty()) return "nothing";
  std::replace(text.begin(), text.end(), '\0', '.');
  if (text.size() < 20) return text;
  const bool is_uniform = text.find_first_not_of(text[0]) == std::string::npos;
  return std::to_string(text.size()) + (is_uniform ? std::string(" times ") + text[0] : " bytes");
}

std::string StateOf(TestFile& file) {
  char path[OZFile::kPathSize] = "(no path)";
  file.GetFileName(path, OZFile::kPathSize);
  const std::string name = std::filesystem::path(path).filename().string();
  std::ostringstream state;
  state << (file.IsOpen() == 0 ? "closed" : name + " at " + std::to_string(file.Position()));
  if (file.mLockCount != 0) state << ", locks: " << file.mLockCount;
  if (file.mNeedsFlushing != 0) state << ", to flush";
  return state.str();
}

std::string ModesOf(const TestFile& file) {
  unsigned lock_mode = 0;
  EXPECT_EQ(file.GetLockMode(&lock_mode), eErrNone);
  std::ostringstream modes;
  modes << std::hex << std::showbase << file.GetOpenFlags() << ", " << file.GetShareMode() << ", "
        << lock_mode;
  return modes.str();
}

class FileCalls : public FileTest {
 protected:
  std::string Path() const { return directory_.Path(first_); }
  OZFileSpec ThePath() const { return Spec(first_.c_str()); }
  int Number() const { return std::stoi(first_); }

  OZError Open(TestFile& file, unsigned flags, unsigned share_mode) const {
    return file.OpenFile(ThePath(), flags, share_mode);
  }

  OZError Read(TestFile& file) {
    read_.assign(std::stoul(first_), '#');
    unsigned short count = 77;
    const OZError error = file.Read(read_.data(), static_cast<unsigned short>(Number()), &count);
    EXPECT_TRUE(error == eErrNone || count == 77) << count;
    read_.resize(count);
    return error;
  }

  static OZError Write(TestFile& file, const std::string& text) {
    unsigned short count = 77;
    const OZError error = file.Write(text.data(), static_cast<unsigned short>(text.size()), &count);
    EXPECT_EQ(count, error == eErrNone ? text.size() : 77);
    return error;
  }

  OZError Lock(TestFile& file, short operation) const {
    return file.LockBytes(operation, Number(), std::stoi(last_) - Number() + 1);
  }

  OZError LockRange(TestFile& file, unsigned flags) const {
    std::int32_t position = Number();
    return file.VirtualLock(flags, &position, eLockWholeRange);
  }

  // Makes the call of a row, and returns its result, in the words of the page.
  std::string ResultOf(const PageRow& row) {
    std::string to;
    first_ = last_ = "";
    std::istringstream(row.cells[2]) >> first_ >> to >> last_;
    TestFile& file = *users_.at(row.cells[0]);
    if (row.cells[1] == "modes") return ModesOf(file);
    const int result = calls_.at(row.cells[1])(file);
    const std::size_t boxes = std::exchange(host_.boxes, {}).size();
    if (boxes != 0) return std::to_string(result) + ", boxes: " + std::to_string(boxes);
    const bool has_read = row.cells[1] == "read" && result == eErrNone;
    return has_read ? "0: " + Shown(read_) : std::to_string(result);
  }

  // The names and contents of all files.
  std::string Files() const {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory_.Path(""))) {
      const std::string name = entry.path().filename().string();
      files.insert(name + ": " + Shown(directory_.Read(name)));
    }
    std::string text;
    for (const std::string& file : files) text += (text.empty() ? "" : ", ") + file;
    return text;
  }

  std::string first_, last_;  // of the arguments, such as 10 and 14 in "10 to 14"
  std::string read_;
  const std::map<std::string, std::function<int(TestFile&)>> calls_ = {
      {"create", [&](TestFile& f) { return f.CreateFileA(Path().c_str(), 0); }},
      {"create by a spec", [&](TestFile& f) { return f.CreateFileA(ThePath(), 0); }},
      {"open", [&](TestFile& f) { return f.OpenFile(Path().c_str(), 0); }},
      {"open to append", [&](TestFile& f) { return Open(f, OZ_OPEN_APPEND | 0x8002, 0x40); }},
      {"open to read", [&](TestFile& f) { return Open(f, 0, 0); }},
      {"open to read alone", [&](TestFile& f) { return Open(f, 0, OZ_SHARE_EXCLUSIVE); }},
      {"open alone", [&](TestFile& f) { return Open(f, 2, OZ_SHARE_EXCLUSIVE); }},
      {"open emptied", [&](TestFile& f) { return Open(f, OZ_OPEN_CREATE | 2, 0x40); }},
      {"`openFile`", [&](TestFile& f) { return f.openFile(Path().c_str(), 2, 0); }},
      {"close", [](TestFile& f) { return f.CloseFile(); }},
      {"read", [&](TestFile& f) { return Read(f); }},
      {"write", [&](TestFile& f) { return Write(f, first_); }},
      {"write `x`, times",
       [&](TestFile& f) { return Write(f, std::string(std::stoul(first_), 'x')); }},
      {"seek", [&](TestFile& f) { return f.Seek(Number(), OZ_SEEK_START, nullptr); }},
      {"length", [](TestFile& f) { return f.FileLength(); }},
      {"resize", [&](TestFile& f) { return f.ChangeSize(Number()); }},
      {"copy to", [&](TestFile& f) { return f.CopyFileTo(*users_.at(first_)); }},
      {"mark", [](TestFile& f) { return f.SetNeedsFlushing(), 0; }},
      {"flush", [](TestFile& f) { return f.flushFile(); }},
      {"flush all", [](TestFile& /*f*/) { return OZFile::FlushAllFiles(); }},
      {"lock", [&](TestFile& f) { return Lock(f, OZ_BYTES_LOCK); }},
      {"unlock", [&](TestFile& f) { return Lock(f, OZ_BYTES_UNLOCK); }},
      {"operation 2", [&](TestFile& f) { return Lock(f, 2); }},
      {"lock range", [&](TestFile& f) { return LockRange(f, 0); }},
      {"release range", [&](TestFile& f) { return LockRange(f, OZ_LOCK_RELEASE); }},
      {"store try", [](TestFile& f) { return f.SetLockMode(OZ_LOCK_NOWAIT); }},
      {"forget", [](TestFile& f) { return f.ClearLockMode(); }},
      {"ignore locks", [](TestFile& f) { return f.ClearLockingSupported(); }},
      {"has locks", [](TestFile& f) { return f.IsLockingSupported(); }},
      {"make read-only", [&](TestFile& /*f*/) { return MakeReadOnly(first_.c_str()), 0; }},
      {"rename", [&](TestFile& f) { return f.RenameFile(ThePath()); }},
      {"delete", [](TestFile& f) { return f.DeleteFileA(); }},
      {"rename path",
       [&](TestFile& /*f*/) { return OZFile::RenameFile(ThePath(), Spec(last_.c_str())); }},
      {"delete path", [&](TestFile& /*f*/) { return OZFile::DeleteFileA(ThePath()); }}};
};

TEST_F(FileCalls, DoWhatThePageSays) {
  const std::vector<std::string> header = {"User", "Call", "With", "Result", "Object", "Files"};
  for (const PageRow& row : RowsUnder("guide/file.md", header)) {
    SCOPED_TRACE(row.place);
    EXPECT_EQ(ResultOf(row), row.cells[3]);
    EXPECT_EQ(StateOf(*users_.at(row.cells[0])), row.cells[4]);
    EXPECT_EQ(Files(), row.cells[5]);
  }
}

TEST_F(FileCalls, MoveThePosition) {
  const std::map<std::string, short> kOrigins = {
      {"start", OZ_SEEK_START}, {"position", OZ_SEEK_CURRENT}, {"end", OZ_SEEK_END}, {"3", 3}};
  const std::vector<std::string> header = {"Size of the file", "Offset", "From", "Result",
                                           "New position"};
  Make(a_, "file", "");
  for (const PageRow& row : RowsUnder("guide/file.md", header)) {
    const std::uintmax_t size = std::stoull(row.cells[0]);
    if (kIsWindows && size > 10) GTEST_SKIP() << "the runner wraps positions at 4 GiB";
    std::filesystem::resize_file(directory_.Path("file"), size);
    std::int32_t position = 77;
    const OZError error = a_.Seek(std::stoi(row.cells[1]), kOrigins.at(row.cells[2]), &position);
    EXPECT_EQ(error, std::stoi(row.cells[3])) << row.place;
    EXPECT_EQ(position, std::stoi(row.cells[4])) << row.place;
  }
  EXPECT_EQ(a_.FileLength(), -1);  // the call could not restore the position
}

TEST_F(FileCalls, FlushByClosingAndReopening) {
  constexpr unsigned kEmpties = OZ_OPEN_CREATE | 2;
  constexpr std::pair<unsigned, std::uint32_t> kRows[] = {{0x8002, 4},
                                                          {0x8502, 0x7FFFFFFF},
                                                          {kEmpties, 0x80000000},
                                                          {kEmpties | OZ_OPEN_TRUNCATE, 0xC0000000},
                                                          {kEmpties | OZ_OPEN_APPEND, 0xFFFFFFF0}};
  for (const auto& [flags, position] : kRows) {
    SCOPED_TRACE(flags);
    const std::string path = directory_.Write("file", "");
    if ((flags & OZ_OPEN_EXCLUSIVE) != 0) std::filesystem::remove(path);
    ASSERT_EQ(a_.OpenFile(path.c_str(), flags, 0x10), eErrNone);
    EXPECT_EQ(a_.Put("0123456789"), eErrNone);
    a_.Seek(static_cast<std::int32_t>(position / 2), OZ_SEEK_START, nullptr);
    a_.Seek(static_cast<std::int32_t>(position - position / 2), OZ_SEEK_CURRENT, nullptr);
    const FileState flushed = {flags, 0x10, static_cast<std::int32_t>(position)};
    EXPECT_EQ(a_.flushFile(), eErrNone);
    EXPECT_EQ(a_.State(), flushed);
    EXPECT_EQ(a_.FileLength(), 10);
    EXPECT_EQ(a_.State(), flushed);
    a_.CloseFile();
    EXPECT_EQ(directory_.Read("file"), "0123456789");
  }
}

TEST_F(FileCalls, LoseAFileThatAnotherUserOpensWhileTheBoxIsShown) {
  for (TestFile* file : {&a_, &b_}) Make(*file, "file", "content");
  host_.while_box_is_open = [&] {
    b_.CloseFile();
    b_.OpenFile(directory_.Path("file").c_str(), OZ_SHARE_EXCLUSIVE);
  };
  EXPECT_EQ(a_.DeleteFileA(), eErrSharing);
  EXPECT_EQ(a_.IsOpen(), 0);  // the reopen failed
}

TEST_F(FileCalls, MakeTemporaryFilesWithNamesOfTheirOwn) {
  std::set<std::string> paths;
  for (const std::string prefix : {"orz", "orzcore", "o", "", "o/r\\z"}) {
    OZFileSpec spec;
    OZFile::MakeTempFileName(prefix.c_str(), spec);
    const std::filesystem::path path = spec.GetFullPath();
    const std::regex pattern((prefix.size() < 3 ? prefix : "orz") + "[0-9A-F]+\\.TMP",
                             std::regex::icase);
    EXPECT_TRUE(std::regex_match(path.filename().string(), pattern)) << path;
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    EXPECT_TRUE(paths.insert(path.string()).second) << path;
    EXPECT_EQ(OZFile::DeleteFileA(spec), eErrNone);
  }
}

}  // namespace
