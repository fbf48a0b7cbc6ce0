// Processes that do as they like with the same two files for a while, and watch each other.
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <new>
#include <optional>
#include <random>
#include <set>

#include "platform/FileFixtures.h"
#include "platform/posix/FileHandle.h"

namespace platform = orzcore::platform;

namespace {

using namespace orzcore::platform;

int gSwapsLeft = 0;

int Swap() { return renameat2(AT_FDCWD, "one", AT_FDCWD, "two", RENAME_EXCHANGE); }

}  // namespace

// Stands before the runtime's own. Its look at a name is the last step of a proof, after which
// somebody is quick.
extern "C" int statx(int directory, const char* path, int flags, unsigned int mask,
                     struct statx* status) noexcept {
  const long result = syscall(SYS_statx, directory, path, flags, mask, status);
  if (gSwapsLeft > 0 && *path != '\0' && Swap() == 0) --gSwapsLeft;
  return static_cast<int>(result);
}

namespace {

constexpr std::size_t kProcesses = 4;
constexpr auto kTime = std::chrono::milliseconds(300);

enum Deed { kOpen, kCreate, kLock, kRename, kDelete, kDeeds };
const std::set<std::size_t> kExpectedErrors[kDeeds] = {
    {0, 2, 32}, {0, 80}, {0, 33}, {0, 2, 5, 35}, {0, 2, 5}};

// What a process has at the moment, told after it was granted and taken back before it is given up:
// of two who have the same at the same time, one at least sees the other.
struct Possession {
  std::atomic<ino_t> shared, owned;  // the file that is open; 0: none
  std::atomic<ino_t> locked;         // the file that has a byte locked
};

// What all of them see.
struct Board {
  Possession possessions[kProcesses];
  std::atomic<int> results[kDeeds][256];  // how often each error came
  std::atomic<int> second_owners, second_locks, strange_names, lost_contents;
};

class Process {
 public:
  Process(Board& board, std::size_t index)
      : board_(board), mine_(board.possessions[index]), random_(static_cast<unsigned>(index) + 1) {}

  void DoAnything() {
    const char* const path = Draw(2) == 0 ? "one" : "two";
    const std::uint32_t deed = Draw(8);
    if (deed == 0) {
      Count(kDelete, platform::unlink(path) == 0 ? 0 : errno_());
    } else if (deed == 1) {
      Count(kRename, platform::rename(path, Draw(2) == 0 ? "one" : "two") == 0 ? 0 : errno_());
    } else {
      Open(path, Draw(2) == 0 ? kReadWrite : kGenericRead, kCreateNew + Draw(5));
    }
  }

  void Open(const char* path, std::uint32_t access, std::uint32_t disposition) {
    const bool is_alone = Draw(4) != 0;
    File file(path, is_alone ? kShareNone : kShareAll, disposition, access);
    if (!Count(disposition == kCreateNew ? kCreate : kOpen, static_cast<int>(file.error))) return;
    FileOf(file.handle)->is_dirty = false;  // there is no time for the disk
    const int descriptor = FileOf(file.handle)->file.Number();
    struct stat opened = {}, named = {};
    fstat(descriptor, &opened);
    std::atomic<ino_t>& possession = is_alone ? mine_.owned : mine_.shared;
    possession = opened.st_ino;
    for (const Possession& other : board_.possessions) {
      const bool is_second =
          other.owned == opened.st_ino || (is_alone && other.shared == opened.st_ino);
      if (&other != &mine_ && is_second) ++board_.second_owners;
    }
    const bool is_filled = is_alone && pwrite(descriptor, "text", 4, 0) == 4;
    is_alone ? static_cast<void>(sched_yield()) : LockAByte(file, opened.st_ino);
    const bool has_name = stat(path, &named) == 0 && named.st_ino == opened.st_ino;
    if (!has_name) ++board_.strange_names;
    if (is_filled && named.st_size < 4) ++board_.lost_contents;
    possession = 0;
  }

 private:
  std::uint32_t Draw(std::uint32_t count) {
    return static_cast<std::uint32_t>(random_() >> 8) % count;
  }

  bool Count(Deed deed, int error) {
    ++board_.results[deed][error];
    return error == 0;
  }

  void LockAByte(File& file, ino_t number) {
    if (!Count(kLock, file.Lock(7, 1))) return;
    mine_.locked = number;
    for (const Possession& other : board_.possessions) {
      if (&other != &mine_ && other.locked == number) ++board_.second_locks;
    }
    if (Draw(4) == 0) sched_yield();  // rarely, since those who share keep out all others
    mine_.locked = 0;
    file.Unlock(7, 1);
  }

  Board& board_;
  Possession& mine_;
  std::minstd_rand random_;
};

template <typename Work>
void RunAll(std::set<Deed> deeds, Work work) {
  void* const place =
      mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  Board& board = *new (place) Board();
  const auto end = std::chrono::steady_clock::now() + kTime;
  const auto last_end = end + std::chrono::seconds(30);  // a busy machine lets few of them meet
  const auto has_seen_all = [&] {
    const bool did_all = std::all_of(deeds.begin(), deeds.end(),
                                     [&](Deed deed) { return board.results[deed][0] > 0; });
    return did_all && board.results[kOpen][32] > 0 && board.results[kLock][33] > 0;
  };
  const auto goes_on = [&] {
    const auto now = std::chrono::steady_clock::now();
    return now < end || (now < last_end && !has_seen_all());
  };
  std::deque<Child> children;
  for (std::size_t i = 0; i < kProcesses; ++i) {
    children.emplace_back([&] {
      Process process(board, i);
      while (goes_on()) work(process, i);
      return 0;
    });
  }
  for (Child& child : children) EXPECT_EQ(child.Result(), 0);
  EXPECT_EQ(board.second_owners, 0);
  EXPECT_EQ(board.second_locks, 0);
  EXPECT_EQ(board.strange_names, 0);
  EXPECT_EQ(board.lost_contents, 0);
  for (const Deed deed : deeds) {
    for (std::size_t error = 0; error < std::size(board.results[deed]); ++error) {
      const bool is_expected = kExpectedErrors[deed].contains(error);
      EXPECT_TRUE(is_expected || board.results[deed][error] == 0) << deed << ": " << error;
    }
    EXPECT_GT(board.results[deed][0], 0) << deed;
  }
  EXPECT_GT(board.results[kOpen][32], 0);
  EXPECT_GT(board.results[kLock][33], 0);
  munmap(place, sizeof(Board));
}

TEST(Races, LeaveEveryFileToItsOwners) {
  for (const VolumeAbilities volume :
       {VolumeAbilities(), VolumeAbilities{.has_unnamed_files = false},
        VolumeAbilities{.has_safe_rename = false}}) {
    const VolumeGuard guard(volume);
    const Folder folder;
    RunAll({kOpen, kCreate, kLock, kRename, kDelete},
           [](Process& process, std::size_t) { process.DoAnything(); });
  }
}

TEST(Races, LeaveReadOnlyFilesToTheirOwners) {
  const Folder folder;
  Put("one", "", 0444);
  RunAll({kOpen, kLock}, [](Process& process, std::size_t index) {
    std::optional<Unprivileged> user;
    if (index > 0) user.emplace();  // the first one is root, if anybody, and can write
    process.Open("one", kGenericRead, kOpenExisting);
  });
}

TEST(Races, AreNotLostToOpensThatAreRefused) {
  const Folder folder;
  Put("one", "", 0444);
  const Unprivileged user;
  Child holder = MakeHolder([] { return File("one", kShareAll, kOpenExisting, kGenericRead); },
                            [](File&) { return 0; });
  Child doomed([] {
    for (;;) File("one", kShareNone, kOpenExisting, kGenericRead);
    return 0;
  });
  const auto end = std::chrono::steady_clock::now() + kTime;
  while (std::chrono::steady_clock::now() < end) {
    ASSERT_EQ(File("one", kShareAll, kOpenExisting, kGenericRead).error, 0U);
  }
}

TEST(Races, NeverHitWhatTakesThePlaceOfAFile) {
  for (const bool has_safe_rename : {true, false}) {
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    ASSERT_EQ(mkdir("one", 0777) + mkdir("two", 0777), 0);
    Put("one/file", "free");
    Put("two/file", "open");
    Child holder = MakeHolder([] { return File("two/file"); }, [](File&) { return 0; });
    gSwapsLeft = 1;
    EXPECT_EQ(platform::rename("one/file", "moved"), 0);
    EXPECT_EQ(gSwapsLeft, 0);
    EXPECT_EQ(Content("moved") + Content("one/file"), "freeopen");
    ASSERT_EQ(::rename("moved", "two/file"), 0);
    gSwapsLeft = 1;
    EXPECT_EQ(platform::unlink("two/file"), 0);
    EXPECT_EQ(gSwapsLeft, 0);
    EXPECT_EQ(Content("two/file"), "open");
    EXPECT_FALSE(Exists("one/file"));
  }
}

// There is no call between the proof and the deed.
TEST(Races, NeverHitWhatTakesThePlaceOfADirectory) {
  for (const bool has_safe_rename : {true, false}) {
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    ASSERT_EQ(mkdir("one", 0777), 0);
    Put("two", "open");
    Child holder = MakeHolder([] { return File("two"); }, [](File&) { return 0; });
    Child swapper([] {
      for (;;) Swap();
      return 0;
    });
    int results[256] = {};
    const auto end = std::chrono::steady_clock::now() + kTime;
    while (std::chrono::steady_clock::now() < end) {
      ++results[platform::rename("one", "moved") == 0 ? 0 : errno_()];
      ASSERT_FALSE(std::filesystem::is_regular_file("moved"));
      ::rename("moved", "one");
    }
    EXPECT_GT(results[0] + results[5], 0);
  }
}

}  // namespace
