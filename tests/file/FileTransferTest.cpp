#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/FakeHost.h"
#include "support/TestFiles.h"

namespace {

class FileTransfer : public testing::Test {
 protected:
  // Creates a file with a content, and opens it.
  void Make(TestFile& file, const char* name, const std::string& content) {
    ASSERT_EQ(file.OpenFile(directory_.Write(name, content).c_str(), 0x8002, 0), eErrNone);
  }

  FakeHost host_;
  TestDirectory directory_;
};

TEST_F(FileTransfer, ReadsAndWritesAtThePosition) {
  TestFile file;
  Make(file, "file", "0123456789");
  char buffer[20] = {};
  unsigned short count = 77;
  EXPECT_EQ(file.Read(buffer, 4, &count), eErrNone);
  EXPECT_EQ(std::string(buffer, count), "0123");
  EXPECT_EQ(file.FileLength(), 10);
  EXPECT_EQ(file.Position(), 4);
  EXPECT_EQ(file.mNeedsFlushing, 0);
  EXPECT_EQ(file.Put("ab"), eErrNone);
  EXPECT_EQ(file.mNeedsFlushing, 1);
  EXPECT_EQ(file.Read(buffer, 20, &count), eErrNone);
  EXPECT_EQ(std::string(buffer, count), "6789");
  EXPECT_EQ(file.Read(buffer, 20, &count), eErrNone);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(directory_.Read("file"), "0123ab6789");

  const std::string large(65535, 'x');
  EXPECT_EQ(file.Put(large), eErrNone);
  std::vector<char> block(65535);
  EXPECT_EQ(file.Seek(10, 0, nullptr), eErrNone);
  EXPECT_EQ(file.Read(block.data(), 65535, &count), eErrNone);
  EXPECT_EQ(count, 65535);
  EXPECT_EQ(std::string(block.begin(), block.end()), large);
}

// A row: distance, origin, error, the position that the call returns. Positions of 4 GiB and more
// are refused. The last position below is valid, but returns the number of a failure.
constexpr char kSeekRows[] = R"(
  -1 0 109 -1    2147483647 0 0 2147483647    1 1 0 -2147483648    2147483646 1 0 -2    2 1 109 -1
  0 1 0 -2    1 1 109 -1    0 1 109 -1    0 2 109 -1    -1 2 109 -1    -2147483648 2 0 -2147483648
  0 3 109 -1    0 -1 109 -1    0 1 0 -2147483648    -2147483648 1 0 0    -1 1 109 -1    0 1 0 0 )";

TEST_F(FileTransfer, MovesThePosition) {
#ifdef _WIN32
  GTEST_SKIP() << "the runner wraps positions at 4 GiB, which Windows refuses";
#endif
  TestFile file;
  Make(file, "file", "");
  std::filesystem::resize_file(directory_.Path("file"), 0x100000000);
  std::istringstream rows(kSeekRows);
  short origin = 0;
  std::int32_t error = 0, expected = 0;
  for (std::int32_t distance = 0; rows >> distance >> origin >> error >> expected;) {
    std::int32_t position = 77;
    EXPECT_EQ(file.Seek(distance, origin, &position), error) << distance << " from " << origin;
    EXPECT_EQ(position, expected) << distance << " from " << origin;
  }
  EXPECT_TRUE(rows.eof());
}

TEST_F(FileTransfer, ChangesTheSize) {
  TestFile file;
  Make(file, "file", "0123456789");
  EXPECT_EQ(file.ChangeSize(4), eErrNone);
  EXPECT_EQ(std::exchange(file.mNeedsFlushing, 0), 1);
  EXPECT_EQ(file.Put(""), eErrNone);
  EXPECT_EQ(std::exchange(file.mNeedsFlushing, 0), 1);
  EXPECT_EQ(file.Put("+"), eErrNone);  // at the new end
  EXPECT_EQ(directory_.Read("file"), "0123+");
  EXPECT_EQ(file.ChangeSize(7), eErrNone);
  EXPECT_EQ(directory_.Read("file"), std::string("0123+\0\0", 7));
  file.mNeedsFlushing = 0;
  EXPECT_EQ(file.ChangeSize(-1), eErrSeek);
  EXPECT_EQ(file.mNeedsFlushing, 0);
  EXPECT_EQ(file.ChangeSize(0), eErrNone);
  EXPECT_EQ(file.FileLength(), 0);
}

TEST_F(FileTransfer, FailsOnAClosedObject) {
  TestFile file;
  TestFile open;
  Make(open, "file", "x");
  char buffer[1];
  unsigned short count = 77;
  std::int32_t position = 77;
  EXPECT_EQ(file.Read(buffer, 1, &count), eErrInvalidData);
  EXPECT_EQ(file.Write(buffer, 1, &count), eErrInvalidData);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(file.Seek(0, 0, &position), eErrSeek);
  EXPECT_EQ(position, -1);
  EXPECT_EQ(file.ChangeSize(0), eErrInvalidData);
  EXPECT_EQ(file.FileLength(), -1);
  EXPECT_EQ(file.CopyFileTo(open), -1);
  EXPECT_EQ(open.CopyFileTo(file), -1);
  file.SetNeedsFlushing();
  EXPECT_EQ(file.flushFile(), eErrSeek);
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrSeek);
}

TEST_F(FileTransfer, ReportsWhyItFailed) {
#ifdef _WIN32
  GTEST_SKIP()
      << "the runner lets reads and writes pass the locks of others, which Windows does not";
#endif
  TestFile file;
  TestFile other;
  Make(file, "file", std::string(100, 'x'));
  ASSERT_EQ(other.OpenFile(directory_.Path("file").c_str(), 0), eErrNone);
  ASSERT_EQ(other.LockBytes(0, 50, 10), eErrNone);
  char buffer[100];
  unsigned short count = 77;
  EXPECT_EQ(file.Read(buffer, 100, &count), eErrLocked);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(file.Read(buffer, 50, &count), eErrNone);
  EXPECT_EQ(file.Put("y"), eErrLocked);
  EXPECT_EQ(file.mNeedsFlushing, 0);
  EXPECT_EQ(other.Seek(50, 0, nullptr), eErrNone);
  EXPECT_EQ(other.Put("z"), eErrNone);  // a user's own lock does not stop him
}

TEST_F(FileTransfer, CopyOverwritesTheStartOfTheTarget) {
  constexpr std::pair<std::size_t, std::size_t> kSizes[] = {
      {0, 5}, {5, 0}, {5, 10}, {1023, 0}, {1024, 2000}, {1025, 1}, {100000, 7}};
  for (const auto& [from_size, to_size] : kSizes) {
    TestFile from;
    TestFile to;
    std::string content(from_size, ' ');
    for (std::size_t i = 0; i < from_size; ++i) content[i] = static_cast<char>('a' + i % 23);
    Make(from, "from", content);
    Make(to, "to", std::string(to_size, '#'));
    from.Seek(3, 0, nullptr);
    EXPECT_EQ(from.CopyFileTo(to), eErrNone) << from_size;
    const std::string tail(to_size > from_size ? to_size - from_size : 0, '#');
    EXPECT_EQ(directory_.Read("to"), content + tail) << from_size;
    EXPECT_EQ(to.mNeedsFlushing, from_size == 0 ? 0 : 1);
    EXPECT_EQ(to.Position(), static_cast<int>(from_size));
    EXPECT_EQ(from.CopyFileTo(from), eErrNone);
    EXPECT_EQ(from.Position(), static_cast<int>(from_size));
    EXPECT_EQ(directory_.Read("from"), content);
  }
}

TEST_F(FileTransfer, FlushesByClosingAndReopening) {
  for (const unsigned flags :
       {0x8002U, 0x8502U, OZ_OPEN_CREATE | 2, OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE | 2,
        OZ_OPEN_CREATE | OZ_OPEN_APPEND | 2, OZ_OPEN_CREATE | OZ_OPEN_EXCLUSIVE | 1}) {
    SCOPED_TRACE(flags);
    std::filesystem::remove(directory_.Path("file"));
    if (flags == 0x8002) directory_.Write("file", "");
    TestFile file;
    ASSERT_EQ(file.OpenFile(directory_.Path("file").c_str(), flags, 0x10), eErrNone);
    EXPECT_EQ(file.Put("0123456789"), eErrNone);
    EXPECT_EQ(file.Seek(4, 0, nullptr), eErrNone);
    EXPECT_EQ(file.flushFile(), eErrNone);
    EXPECT_EQ(file.mNeedsFlushing, 0);
    EXPECT_EQ(file.Position(), 4);
    EXPECT_EQ(file.GetOpenFlags(), flags);
    EXPECT_EQ(file.GetShareMode(), 0x10U);
    EXPECT_EQ(directory_.Read("file"), "0123456789");
  }
}

TEST_F(FileTransfer, FlushKeepsAPositionAbove2GiB) {
  for (const std::uint32_t high : {0x7FFFFFFFU, 0x80000000U, 0xC0000000U, 0xFFFFFFF0U}) {
    TestFile file;
    Make(file, "file", "x");
    ASSERT_EQ(file.Seek(static_cast<std::int32_t>(high / 2), 0, nullptr), eErrNone);
    ASSERT_EQ(file.Seek(static_cast<std::int32_t>(high - high / 2), 1, nullptr), eErrNone);
    file.SetNeedsFlushing();
    EXPECT_EQ(file.flushFile(), eErrNone) << high;
    EXPECT_EQ(static_cast<std::uint32_t>(file.Position()), high);
    EXPECT_EQ(file.FileLength(), 1);
    EXPECT_EQ(static_cast<std::uint32_t>(file.Position()), high);
  }
}

TEST_F(FileTransfer, FlushSkipsAnObjectWithLocks) {
  TestFile file;
  Make(file, "file", "");
  ASSERT_EQ(file.Put("x"), eErrNone);
  ASSERT_EQ(file.LockBytes(0, 1000, 1), eErrNone);
  EXPECT_EQ(file.flushFile(), eErrNone);
  EXPECT_EQ(file.mNeedsFlushing, 1);
  EXPECT_EQ(file.mLockCount, 1);
  ASSERT_EQ(file.LockBytes(1, 1000, 1), eErrNone);
  EXPECT_EQ(file.flushFile(), eErrNone);
  EXPECT_EQ(file.mNeedsFlushing, 0);
  // The count does not matter if the object treats its volume as one without locks.
  ASSERT_EQ(file.LockBytes(0, 1000, 1), eErrNone);
  file.SetNeedsFlushing();
  file.ClearLockingSupported();
  EXPECT_EQ(file.flushFile(), eErrNone);
  EXPECT_EQ(file.mLockCount, 0);
  EXPECT_NE(file.IsLockingSupported(), 0);
}

TEST_F(FileTransfer, FlushAllStopsAtTheFirstError) {
#ifdef _WIN32
  GTEST_SKIP() << "Windows lets nobody delete a file that is open";
#endif
  TestFile oldest;
  TestFile broken;
  TestFile newest;
  Make(oldest, "oldest", "");
  Make(broken, "broken", "");
  Make(newest, "newest", "");
  for (TestFile* file : {&oldest, &broken, &newest}) ASSERT_EQ(file->Put("x"), eErrNone);
  // This bypasses the library, which would not delete an open file.
  std::filesystem::remove(directory_.Path("broken"));
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrNotFound);
  EXPECT_EQ(newest.mNeedsFlushing, 0);
  EXPECT_EQ(broken.IsOpen(), 0);
  EXPECT_EQ(broken.mNeedsFlushing, 0);
  EXPECT_EQ(oldest.mNeedsFlushing, 1);
  EXPECT_EQ(OZFile::FlushAllFiles(), eErrNone);
  EXPECT_EQ(oldest.mNeedsFlushing, 0);
}

}  // namespace
