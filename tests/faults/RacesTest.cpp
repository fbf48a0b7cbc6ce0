// Other users who act between two steps of the library. The stand-ins for the host's calls let them
// act at exactly these moments.
#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "faults/HostCalls.h"
#include "platform/FileFixtures.h"

namespace {

using namespace platform;

// Another user, who can lock some bytes of a file.
struct Other {
  explicit Other(const char* path, off_t first = off_t{1} << 62, off_t count = 2)  // share state
      : start(first), length(count), file(open(path, O_RDONLY | O_CLOEXEC)) {}
  Other(const Other&) = delete;
  ~Other() { close(file); }

  void Set(short type) { EXPECT_EQ(Call(F_OFD_SETLK, type), type); }
  bool CanBeAlone() { return Call(F_OFD_GETLK, F_WRLCK) == F_UNLCK; }
  short Call(int command, short type) {
    struct flock lock = {type, SEEK_SET, start, length, 0};
    return RealFcntl(file, command, &lock) == 0 ? lock.l_type : short{-1};
  }

  off_t start, length;
  int file;
};

// Without write permission, the library can take a shared lock only. In its first attempts, another
// user takes one, too, before the library looks for other locks again.
struct Collision {
  int attempts;
  bool ends;  // the other user gives his lock up when the library has given up its own
  std::uint32_t error;
};

TEST(Races, UsersWithSharedLocksStepBackAndTryAgain) {
  constexpr Collision kCollisions[] = {{1, false, 32}, {1, true, 0}, {7, true, 0}, {8, true, 32}};
  const Folder folder;
  Put("file", "", 0444);
  const Unprivileged user;
  for (const Collision& row : kCollisions) {
    SCOPED_TRACE(testing::Message() << row.attempts << " attempts, ends: " << row.ends);
    Other other("file");
    int attempts = 0;
    bool is_taken = false;
    Hooks hooks;
    hooks.after_lock = [&](int command, const struct flock* lock) {
      if (command != F_OFD_SETLK) return;
      if (lock->l_type == F_RDLCK) {
        EXPECT_FALSE(is_taken) << "this lock blocks other users in vain";
        is_taken = ++attempts <= row.attempts;
      } else if (row.ends) {
        is_taken = false;
      }
      other.Set(is_taken ? F_RDLCK : F_UNLCK);
    };
    EXPECT_EQ(File("file", kShareNone, kOpenExisting, kGenericRead).error, row.error);
    EXPECT_TRUE(other.CanBeAlone());
  }
}

TEST(Races, LocksThatTheHostDoesNotReleaseAreReleasedLater) {
  const Folder folder;
  Put("file", "", 0444);
  const Unprivileged user;
  for (const int refusals : {0, 1, 2}) {
    SCOPED_TRACE(refusals);
    Other other("file", 7, 1);
    File file("file", kShareAll, kOpenExisting, kGenericRead);
    {
      Hooks hooks;
      hooks.after_lock = [&](int command, const struct flock* lock) {
        if (command == F_OFD_SETLK && lock->l_type == F_RDLCK) other.Set(F_RDLCK);
      };
      const Injection injection({"unlock", EIO, 1, refusals});
      EXPECT_EQ(file.Lock(7, 1), 33);
      EXPECT_EQ(other.CanBeAlone(), refusals == 0);
      other.Set(F_UNLCK);
      hooks.after_lock = nullptr;
      if (refusals == 2) {
        EXPECT_EQ(file.Lock(20, 1), 33);
      }
      EXPECT_EQ(file.Lock(20, 1), 0);
    }
    EXPECT_TRUE(other.CanBeAlone());
    EXPECT_EQ((Injection({"unlock", EIO}), file.Unlock(20, 1)), 158);
    EXPECT_EQ(file.Unlock(20, 1), 0);
  }
}

enum class Act { kTake, kDelete, kReplace };

// What another user does right after the host has opened or created a file for the library.
struct Intrusion {
  const char* path;
  std::uint32_t disposition, share;
  Act act;
  std::uint32_t error;
  const char* content;  // after this user has written one character if he has got the file
};

TEST(Races, OpensTakeOrEmptyNoFileOfAnotherUser) {
  constexpr Intrusion kIntrusions[] = {
      {"new", kCreateNew, kShareNone, Act::kTake, 80, ""},
      {"new", kCreateNew, kShareAll, Act::kTake, 80, ""},
      {"new", kOpenAlways, kShareAll, Act::kTake, 32, ""},
      {"new", kCreateNew, kShareAll, Act::kDelete, 0, "x"},
      {"new", kCreateNew, kShareAll, Act::kReplace, 80, "spare"},
      {"file", kTruncateExisting, kShareNone, Act::kTake, 32, "old"},
      {"file", kOpenExisting, kShareAll, Act::kReplace, 0, "xpare"},
      {"file", kOpenExisting, kShareAll, Act::kDelete, 2, ""}};
  const VolumeGuard guard({.has_unnamed_files = false});
  for (const Intrusion& row : kIntrusions) {
    SCOPED_TRACE(testing::Message() << "row " << &row - kIntrusions);
    const Folder folder;
    Put("file", "old");
    Put("spare", "spare");
    std::optional<Other> other;
    bool is_due = true;
    Hooks hooks;
    hooks.after_open = [&](const char* path, int, int) {
      if (std::strcmp(path, row.path) != 0 || !std::exchange(is_due, false)) return;
      if (row.act == Act::kTake) other.emplace(path).Set(F_RDLCK);
      if (row.act == Act::kDelete) ::unlink(path);
      if (row.act == Act::kReplace) ::rename("spare", path);
    };
    File file(row.path, row.share, row.disposition);
    EXPECT_FALSE(is_due);
    EXPECT_EQ(file.error, row.error);
    if (file.error == 0) file.Write("x");
    EXPECT_EQ(Content(row.path), row.content);
  }
}

// The library opens a directory first, or checks a name in the current directory. Then another user
// exchanges "one" and "two", once.
struct Swap {
  Swap() {
    hooks.after_statx = [this](const char* path, auto...) {
      if (*path == '\0' || !std::exchange(is_due, false)) return;
      EXPECT_EQ(::renameat2(AT_FDCWD, "one", AT_FDCWD, "two", RENAME_EXCHANGE), 0);
    };
  }
  ~Swap() { EXPECT_FALSE(is_due); }
  Hooks hooks;
  bool is_due = true;
};

TEST(Races, RenameAndDeleteChangeTheFileThatTheyChecked) {
  for (const bool has_safe_rename : {true, false}) {
    SCOPED_TRACE(has_safe_rename);
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    std::filesystem::create_directory("one");
    std::filesystem::create_directory("two");
    Put("one/file", "free");
    Put("two/file", "open");
    const File holder("two/file");
    EXPECT_EQ((Swap(), platform::rename("one/file", "moved")), 0);
    EXPECT_EQ(Content("moved") + Content("one/file"), "freeopen");
    ASSERT_EQ(::rename("moved", "two/file"), 0);
    EXPECT_EQ((Swap(), platform::unlink("two/file")), 0);
    EXPECT_EQ(Content("two/file"), "open");
    EXPECT_FALSE(Exists("one/file"));
    // A rename of a directory never moves an open file.
    std::filesystem::remove_all("two");
    Put("two", "open");
    const File other_holder("two");
    EXPECT_EQ((Swap(), platform::rename("one", "moved")), -1);
    EXPECT_EQ(errno_(), 5);
    EXPECT_EQ(Content("one"), "open");
    EXPECT_FALSE(Exists("moved"));
  }
}

}  // namespace
