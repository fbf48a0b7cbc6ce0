#include <optional>
#include <vector>

#include "platform/FileFixtures.h"
#include "support/PageTables.h"

namespace {

using namespace platform;

// How a user opens the file. A user who may not write the file gets a descriptor that cannot take
// exclusive locks.
struct OpenMode {
  bool is_writable;
  std::uint32_t share;
};

constexpr OpenMode kWriter = {true, kShareAll};
constexpr OpenMode kReader = {false, kShareAll};
constexpr OpenMode kOpenModes[] = {kWriter, {true, kShareNone}, kReader, {false, kShareNone}};

File OpenWith(const OpenMode& mode) {
  const int bits = mode.is_writable ? 0644 : 0444;
  std::filesystem::permissions("file", static_cast<std::filesystem::perms>(bits));
  std::optional<Unprivileged> user;
  if (!mode.is_writable) user.emplace();
  return File("file", mode.share, kOpenExisting, mode.is_writable ? kReadWrite : kGenericRead);
}

TEST(ShareModes, BindOtherHandlesUntilTheClose) {
  const Folder folder;
  Put("file", "old");
  for (const OpenMode& first : kOpenModes) {
    for (const OpenMode& second : kOpenModes) {
      SCOPED_TRACE(testing::Message() << &first - kOpenModes << ", then " << &second - kOpenModes);
      const bool do_share = first.share == kShareAll && second.share == kShareAll;
      const std::uint32_t expected = do_share ? 0 : 32;
      File file = OpenWith(first);
      EXPECT_EQ(file.error, 0U);
      EXPECT_EQ(OpenWith(second).error, expected);
      EXPECT_EQ(OpenWith(second).error, expected);  // the first attempt left no mark
      file.Close();
      EXPECT_EQ(OpenWith(second).error, 0U);
    }
  }
}

// A call for a column of the page.
struct Call {
  std::size_t cell;
  int user;  // 0: the user who has the lock; 1: another user
  int (File::*use)(std::uint32_t offset, std::uint32_t length);
  int refusal;
  bool refuses_in_runner;  // the runner of Windows programs refuses with the same number
};
constexpr Call kCalls[] = {{4, 0, &File::Lock, 33, true},
                           {5, 1, &File::Lock, 33, true},
                           {6, 0, &File::Unlock, 158, false},
                           {7, 1, &File::ReadAt, 33, false},
                           {7, 1, &File::WriteAt, 33, false}};

// Compares the result of a call with its cell. Only users who may write do.
void Compare(const PageRow& row, const Call& call, const OpenMode& first, const OpenMode& second) {
  const bool is_refused = row.cells[call.cell] == "refused";
  if (row.cells[call.cell] == "-" || (kIsWindows && is_refused && !call.refuses_in_runner)) return;
  if (call.use == &File::WriteAt && !second.is_writable) return;
  const auto number = [&](std::size_t cell) {
    return static_cast<std::uint32_t>(std::stoul(row.cells[cell]));
  };
  if (kIsWindows && (number(1) == 0 || number(3) == 0)) return;  // the page has those of POSIX
  File files[] = {OpenWith(first), OpenWith(second)};
  EXPECT_EQ(files[0].Lock(number(0), number(1)), 0);
  EXPECT_EQ((files[call.user].*call.use)(number(2), number(3)), is_refused ? call.refusal : 0)
      << row.place << ", cell " << call.cell;
}

TEST(ByteLocks, RefuseWhatThePageTells) {
  const std::vector<std::string> kHeader = {
      "Locked from",      "Length",          "Call from",          "Length",
      "Lock by the same", "Lock by another", "Unlock by the same", "Transfer by another"};
  const Folder folder;
  Put("file", "");
  for (const PageRow& row : RowsUnder("internals.md", kHeader)) {
    for (const Call& call : kCalls) {
      for (const OpenMode& first : {kWriter, kReader}) {
        for (const OpenMode& second : {kWriter, kReader}) Compare(row, call, first, second);
      }
    }
  }
}

TEST(ByteLocks, AreReleasedAsWholeRangesAlsoAmongNeighbours) {
  constexpr std::uint32_t kCount = 300;  // there is no fixed limit for a handle
  const Folder folder;
  Put("file", "");
  File file("file");
  File other("file");
  const auto offset = [](std::uint32_t i) { return i * 7 % kCount * 2; };  // in disorder
  for (std::uint32_t i = 0; i < kCount; ++i) ASSERT_EQ(file.Lock(offset(i), 2), 0);
  for (std::uint32_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(file.Lock(offset(i) + 1, 1), 33);
    ASSERT_EQ(file.Unlock(offset(i), 2), 0);
    ASSERT_EQ(other.Lock(offset(i), 2), 0);
    ASSERT_NE(file.Unlock(offset(i), 2), 0);
  }
}

TEST(ByteLocks, RefuseTransfersInTheGapsOfOwnLocks) {
  if (kIsWindows) GTEST_SKIP() << "the runner lets transfers pass the locks of others";
  const Folder folder;
  Put("file", "0123456789");
  File file("file");
  File other("file");
  for (const std::uint32_t own : {2U, 4U}) EXPECT_EQ(file.Lock(own, 1), 0);
  EXPECT_EQ(file.ReadAt(0, 9), 0);
  for (const std::uint32_t gap : {0U, 3U, 5U}) {
    EXPECT_EQ(other.Lock(gap, 1), 0);
    EXPECT_EQ(file.ReadAt(0, 9), 33) << gap;
    EXPECT_EQ(file.WriteAt(0, gap), 0) << gap;
    EXPECT_EQ(other.Unlock(gap, 1), 0);
  }
}

}  // namespace
