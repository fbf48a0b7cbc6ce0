#include <map>
#include <utility>

#include "file/FileTest.h"
#include "support/PageTables.h"
#include "support/System.h"

namespace {

using FileTransfer = FileTest;

// Moves the position as the rows of a table say.
void ExpectMoves(TestFile& file, const char* first_header) {
  const std::map<std::string, short> kOrigins = {
      {"start", OZ_SEEK_START}, {"position", OZ_SEEK_CURRENT}, {"end", OZ_SEEK_END}, {"3", 3}};
  for (const PageRow& row :
       RowsUnder("guide/file.md", {first_header, "From", "Result", "New position"})) {
    std::int32_t position = 77;
    EXPECT_EQ(file.Seek(std::stoi(row.cells[0]), kOrigins.at(row.cells[1]), &position),
              std::stoi(row.cells[2]))
        << row.place;
    EXPECT_EQ(position, std::stoi(row.cells[3])) << row.place;
  }
}

TEST_F(FileTransfer, MovesThePosition) {
  Make(a_, "file", "0123456789");
  ExpectMoves(a_, "Offset, in a file of 10 bytes");
  if (kIsWindows) GTEST_SKIP() << "the runner wraps positions at 4 GiB, which Windows refuses";
  std::filesystem::resize_file(directory_.Path("file"), 0x100000000);
  ExpectMoves(a_, "Offset, in a file of 4 GiB");
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
