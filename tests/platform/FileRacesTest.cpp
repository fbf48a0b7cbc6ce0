// Several processes use the same two files at random for a while, and check that none of them gets
// what another one has exclusively.
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

// The program's own `statx`, which the library calls instead of that of the C library. It is the
// last step in which the library checks a name. Right after it, this one exchanges the two names.
extern "C" int statx(int directory, const char* path, int flags, unsigned int mask,
                     struct statx* status) noexcept {
  const long result = syscall(SYS_statx, directory, path, flags, mask, status);
  if (gSwapsLeft > 0 && *path != '\0' && Swap() == 0) --gSwapsLeft;
  return static_cast<int>(result);
}

namespace {

constexpr std::size_t kProcesses = 4;
constexpr auto kTime = std::chrono::milliseconds(300);

enum Action { kOpen, kCreate, kLock, kRename, kDelete, kActions };
const std::set<std::size_t> kExpectedErrors[kActions] = {
    {0, 2, 32}, {0, 80}, {0, 33}, {0, 2, 5, 35}, {0, 2, 5}};

// What a process has at the moment. It writes an entry after it has got the file or the lock, and
// clears the entry before it gives it up. So if two processes have the same at the same time, at
// least one of them sees the other's entry.
struct Holdings {
  std::atomic<ino_t> shared, owned;  // the inode of the file that is open; 0: none
  std::atomic<ino_t> locked;         // the inode of the file in which it has locked a byte
};

// Memory that all processes share.
struct SharedState {
  Holdings holdings[kProcesses];
  std::atomic<int> results[kActions][256];  // how often an action gave an error
  std::atomic<int> second_owners, second_locks, strange_names, lost_contents;
};

class Process {
 public:
  Process(SharedState& state, std::size_t index)
      : state_(state), mine_(state.holdings[index]), random_(static_cast<unsigned>(index) + 1) {}

  void DoAnything() {
    const char* const path = Draw(2) == 0 ? "one" : "two";
    const std::uint32_t choice = Draw(8);
    if (choice == 0) {
      Count(kDelete, platform::unlink(path) == 0 ? 0 : errno_());
    } else if (choice == 1) {
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
    std::atomic<ino_t>& entry = is_alone ? mine_.owned : mine_.shared;
    entry = opened.st_ino;
    for (const Holdings& other : state_.holdings) {
      const bool is_second =
          other.owned == opened.st_ino || (is_alone && other.shared == opened.st_ino);
      if (&other != &mine_ && is_second) ++state_.second_owners;
    }
    const bool is_filled = is_alone && pwrite(descriptor, "text", 4, 0) == 4;
    is_alone ? static_cast<void>(sched_yield()) : LockAByte(file, opened.st_ino);
    const bool has_name = stat(path, &named) == 0 && named.st_ino == opened.st_ino;
    if (!has_name) ++state_.strange_names;
    if (is_filled && named.st_size < 4) ++state_.lost_contents;
    entry = 0;
  }

 private:
  std::uint32_t Draw(std::uint32_t count) {
    return static_cast<std::uint32_t>(random_() >> 8) % count;
  }

  bool Count(Action action, int error) {
    ++state_.results[action][error];
    return error == 0;
  }

  void LockAByte(File& file, ino_t number) {
    if (!Count(kLock, file.Lock(7, 1))) return;
    mine_.locked = number;
    for (const Holdings& other : state_.holdings) {
      if (&other != &mine_ && other.locked == number) ++state_.second_locks;
    }
    // Not always: while a process that shares waits here, exclusive opens of the file fail.
    if (Draw(4) == 0) sched_yield();
    mine_.locked = 0;
    file.Unlock(7, 1);
  }

  SharedState& state_;
  Holdings& mine_;
  std::minstd_rand random_;
};

template <typename Work>
void RunAll(std::set<Action> actions, Work work) {
  void* const place =
      mmap(nullptr, sizeof(SharedState), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  SharedState& state = *new (place) SharedState();
  const auto end = std::chrono::steady_clock::now() + kTime;
  // On a busy machine, the processes take longer to meet.
  const auto last_end = end + std::chrono::seconds(30);
  const auto has_seen_all = [&] {
    const bool did_all = std::all_of(actions.begin(), actions.end(),
                                     [&](Action action) { return state.results[action][0] > 0; });
    return did_all && state.results[kOpen][32] > 0 && state.results[kLock][33] > 0;
  };
  const auto goes_on = [&] {
    const auto now = std::chrono::steady_clock::now();
    return now < end || (now < last_end && !has_seen_all());
  };
  std::deque<Child> children;
  for (std::size_t i = 0; i < kProcesses; ++i) {
    children.emplace_back([&] {
      Process process(state, i);
      while (goes_on()) work(process, i);
      return 0;
    });
  }
  for (Child& child : children) EXPECT_EQ(child.Result(), 0);
  EXPECT_EQ(state.second_owners, 0);
  EXPECT_EQ(state.second_locks, 0);
  EXPECT_EQ(state.strange_names, 0);
  EXPECT_EQ(state.lost_contents, 0);
  for (const Action action : actions) {
    for (std::size_t error = 0; error < std::size(state.results[action]); ++error) {
      const bool is_expected = kExpectedErrors[action].contains(error);
      EXPECT_TRUE(is_expected || state.results[action][error] == 0) << action << ": " << error;
    }
    EXPECT_GT(state.results[action][0], 0) << action;
  }
  EXPECT_GT(state.results[kOpen][32], 0);
  EXPECT_GT(state.results[kLock][33], 0);
  munmap(place, sizeof(SharedState));
}

TEST(Races, NeverBreakShareModesLocksNamesOrContents) {
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
    if (index > 0) user.emplace();  // if root runs the test, the first process can write
    process.Open("one", kGenericRead, kOpenExisting);
  });
}

TEST(Races, RefusedOpensDoNotBlockOtherUsers) {
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

TEST(Races, RenameAndDeleteChangeTheFileThatTheyChecked) {
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

// There is no call between the check and the rename after which this process could exchange the
// names. So another process exchanges them all the time.
TEST(Races, RenameOfADirectoryNeverMovesAnOpenFile) {
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
