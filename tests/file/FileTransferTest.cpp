#include <map>
#include <utility>

#include "file/FileTest.h"
#include "support/PageTables.h"
#include "support/System.h"

namespace {

using FileTransfer = FileTest;

TEST_F(FileTransfer, MovesThePosition) {
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

TEST_F(FileTransfer, FlushesByClosingAndReopening) {
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

}  // namespace
