#include <optional>
#include <vector>

#include "platform/FileFixtures.h"
#include "support/PageTables.h"

namespace {

using namespace platform;

// Opens the file for a user. One who may not write the file gets a descriptor that cannot take
// exclusive locks.
File OpenFor(bool is_writer) {
  const int bits = is_writer ? 0644 : 0444;
  std::filesystem::permissions("file", static_cast<std::filesystem::perms>(bits));
  std::optional<Unprivileged> user;
  if (!is_writer) user.emplace();
  return File("file", kShareAll, kOpenExisting, is_writer ? kReadWrite : kGenericRead);
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
void Compare(const PageRow& row, const Call& call, bool first_writes, bool second_writes) {
  const bool is_refused = row.cells[call.cell] == "refused";
  if (row.cells[call.cell] == "-" || (kIsWindows && is_refused && !call.refuses_in_runner)) return;
  if (call.use == &File::WriteAt && !second_writes) return;
  const auto number = [&](std::size_t cell) {
    return static_cast<std::uint32_t>(std::stoul(row.cells[cell]));
  };
  if (kIsWindows && (number(1) == 0 || number(3) == 0)) return;  // the page has those of POSIX
  File files[] = {OpenFor(first_writes), OpenFor(second_writes)};
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
      for (const bool first_writes : {true, false}) {
        for (const bool second_writes : {true, false}) {
          Compare(row, call, first_writes, second_writes);
        }
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
