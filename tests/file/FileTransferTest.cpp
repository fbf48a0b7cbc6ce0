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

// Reads at most `count` bytes.
std::string Take(TestFile& file, unsigned short count) {
  std::string text(count, '#');
  unsigned short done = 77;
  EXPECT_EQ(file.Read(text.data(), count, &done), eErrNone);
  return text.substr(0, done);
}

TEST_F(FileTransfer, ReadsAndWritesAtThePosition) {
  Make(a_, "file", "0123456789");
  EXPECT_EQ(Take(a_, 4), "0123");
  EXPECT_EQ(a_.FileLength(), 10);
  EXPECT_EQ(a_.State(), (FileState{.flags = 2, .position = 4}));
  EXPECT_EQ(a_.Put("ab"), eErrNone);
  EXPECT_EQ(a_.State(), (FileState{.flags = 2, .position = 6, .needs_flushing = 1}));
  EXPECT_EQ(Take(a_, 20), "6789");
  EXPECT_EQ(Take(a_, 20), "");
  a_.mNeedsFlushing = 0;
  EXPECT_EQ(a_.ChangeSize(-1), eErrSeek);
  EXPECT_EQ(a_.mNeedsFlushing, 0);
  EXPECT_EQ(a_.ChangeSize(4), eErrNone);
  EXPECT_EQ(a_.State(), (FileState{.flags = 2, .position = 4, .needs_flushing = 1}));
  EXPECT_EQ(a_.Put("+"), eErrNone);
  EXPECT_EQ(a_.ChangeSize(7), eErrNone);
  EXPECT_EQ(directory_.Read("file"), std::string("0123+\0\0", 7));
  const std::string large(65535, 'x');
  EXPECT_EQ(a_.Put(large), eErrNone);
  EXPECT_EQ(a_.Seek(7, OZ_SEEK_START, nullptr), eErrNone);
  EXPECT_EQ(Take(a_, 65535), large);
}

TEST_F(FileTransfer, MovesThePosition) {
  Make(a_, "file", "0123456789");
  ExpectMoves(a_, "Offset, in a file of 10 bytes");
  if (kIsWindows) GTEST_SKIP() << "the runner wraps positions at 4 GiB, which Windows refuses";
  std::filesystem::resize_file(directory_.Path("file"), 0x100000000);
  ExpectMoves(a_, "Offset, in a file of 4 GiB");
  EXPECT_EQ(a_.FileLength(), -1);  // the call could not restore the position
}

TEST_F(FileTransfer, FailsOnAClosedObject) {
  Make(b_, "file", "x");
  char byte = 0;
  unsigned short count = 77;
  EXPECT_EQ(a_.Read(&byte, 1, &count), eErrInvalidData);
  EXPECT_EQ(a_.Write(&byte, 1, &count), eErrInvalidData);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(a_.Seek(0, OZ_SEEK_START, nullptr), eErrSeek);
  EXPECT_EQ(a_.ChangeSize(0), eErrInvalidData);
  EXPECT_EQ(a_.FileLength(), -1);
  EXPECT_EQ(a_.CopyFileTo(b_), -1);
  EXPECT_EQ(b_.CopyFileTo(a_), -1);
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrNone);
  a_.SetNeedsFlushing();
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrSeek);
  Make(a_, "file", "x");
  EXPECT_EQ(a_.mNeedsFlushing, 0);  // an open forgets the mark
}

TEST_F(FileTransfer, IsRefusedByTheLocksOfOthers) {
  if (kIsWindows) GTEST_SKIP() << "the runner lets reads and writes pass the locks of others";
  for (TestFile* file : {&a_, &b_}) Make(*file, "file", std::string(100, 'x'));
  ASSERT_EQ(b_.LockBytes(OZ_BYTES_LOCK, 50, 10), eErrNone);
  char buffer[51];
  unsigned short count = 77;
  EXPECT_EQ(a_.Read(buffer, 51, &count), eErrLocked);
  EXPECT_EQ(a_.Write(buffer, 51, &count), eErrLocked);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(a_.mNeedsFlushing, 0);
  EXPECT_EQ(Take(a_, 50).size(), 50U);
  EXPECT_EQ(b_.Put(std::string(60, 'z')), eErrNone);  // a user's own lock does not stop him
}

TEST_F(FileTransfer, CopyOverwritesTheStartOfTheTarget) {
  constexpr std::pair<int, std::size_t> kSizes[] = {{0, 5},       {5, 0},    {5, 10},    {1023, 0},
                                                    {1024, 2000}, {1025, 1}, {100000, 7}};
  for (const auto& [size, old_size] : kSizes) {
    SCOPED_TRACE(size);
    std::string content;
    for (int i = 0; i < size; ++i) content += static_cast<char>('a' + i % 23);
    Make(a_, "from", content);
    Make(b_, "to", std::string(old_size, '#'));
    a_.Seek(3, OZ_SEEK_START, nullptr);
    EXPECT_EQ(a_.CopyFileTo(b_), eErrNone);
    EXPECT_EQ(b_.State(), (FileState{.flags = 2, .position = size, .needs_flushing = size > 0}));
    if (content.size() < old_size) content.resize(old_size, '#');
    EXPECT_EQ(directory_.Read("to"), content);
    EXPECT_EQ(b_.CopyFileTo(b_), eErrNone);
    EXPECT_EQ(b_.Position(), static_cast<int>(content.size()));
    EXPECT_EQ(directory_.Read("to"), content);
    a_.CloseFile();
    b_.CloseFile();
  }
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

TEST_F(FileTransfer, FlushSkipsAnObjectWithLocks) {
  Make(a_, "file", "");
  ASSERT_EQ(a_.Put("x"), eErrNone);
  ASSERT_EQ(a_.LockBytes(OZ_BYTES_LOCK, 1000, 1), eErrNone);
  EXPECT_EQ(a_.flushFile(), eErrNone);
  EXPECT_EQ(a_.State(), (FileState{.flags = 2, .position = 1, .locks = 1, .needs_flushing = 1}));
  // The count does not matter if the object treats its volume as one without locks.
  a_.ClearLockingSupported();
  EXPECT_EQ(a_.flushFile(), eErrNone);
  EXPECT_EQ(a_.State(), (FileState{.flags = 2, .position = 1}));
  EXPECT_NE(a_.IsLockingSupported(), 0);
}

TEST_F(FileTransfer, FlushAllBeginsWithTheNewestAndStopsAtTheFirstError) {
  Make(a_, "oldest", "");
  // An object that does not remember its path cannot be flushed.
  ASSERT_EQ(b_.openFile(directory_.Path("oldest").c_str(), 2, 0), eErrNone);
  Make(c_, "newest", "");
  for (TestFile* file : {&a_, &b_, &c_}) file->SetNeedsFlushing();
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrFileState);
  EXPECT_EQ(c_.mNeedsFlushing, 0);
  EXPECT_EQ(a_.mNeedsFlushing, 1);
  b_.CloseFile();
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrNone);
  EXPECT_EQ(a_.mNeedsFlushing, 0);
}

}  // namespace
