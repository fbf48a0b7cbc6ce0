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

bool Sets(int command, const void* lock, short type) {
  return command == F_OFD_SETLK && static_cast<const struct flock*>(lock)->l_type == type;
}

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
    NetworkHost host;
    host.fcntl = [&](int file, int command, void* lock) {
      const int result = RealFcntl(file, command, lock);
      if (Sets(command, lock, F_RDLCK)) {
        EXPECT_FALSE(is_taken) << "this lock blocks other users in vain";
        is_taken = ++attempts <= row.attempts;
        if (is_taken) other.Set(F_RDLCK);
      } else if (Sets(command, lock, F_UNLCK) && row.ends) {
        is_taken = false;
        other.Set(F_UNLCK);
      }
      return result;
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
    int left = refusals;
    bool collides = true;
    NetworkHost host;
    host.fcntl = [&](int descriptor, int command, void* lock) {
      errno = EIO;
      if (Sets(command, lock, F_UNLCK) && left-- > 0) return -1;
      const int result = RealFcntl(descriptor, command, lock);
      if (Sets(command, lock, F_RDLCK) && collides) other.Set(F_RDLCK);
      return result;
    };
    EXPECT_EQ(file.Lock(7, 1), 33);
    EXPECT_EQ(other.CanBeAlone(), refusals == 0);
    other.Set(F_UNLCK);
    collides = false;
    if (refusals == 2) {
      EXPECT_EQ(file.Lock(20, 1), 33);
    }
    EXPECT_EQ(file.Lock(20, 1), 0);
    EXPECT_TRUE(other.CanBeAlone());
    left = 1;
    EXPECT_EQ(file.Unlock(20, 1), 158);
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
  for (const Intrusion& row : kIntrusions) {
    SCOPED_TRACE(testing::Message() << "row " << &row - kIntrusions);
    const Folder folder;
    Put("file", "old");
    Put("spare", "spare");
    std::optional<Other> other;
    bool has_acted = false;
    NetworkHost host;
    host.openat = [&](int directory, const char* path, int flags, mode_t mode) {
      errno = EOPNOTSUPP;
      if ((flags & O_TMPFILE) == O_TMPFILE) return -1;
      const int file = RealOpenat(directory, path, flags, mode);
      if (file < 0 || has_acted || std::strcmp(path, row.path) != 0) return file;
      has_acted = true;
      if (row.act == Act::kTake) other.emplace(path).Set(F_RDLCK);
      if (row.act == Act::kDelete) ::unlink(path);
      if (row.act == Act::kReplace) ::rename("spare", path);
      return file;
    };
    File file(row.path, row.share, row.disposition);
    EXPECT_TRUE(has_acted);
    EXPECT_EQ(file.error, row.error);
    if (file.error == 0) file.Write("x");
    EXPECT_EQ(Content(row.path), row.content);
  }
}

TEST(Races, TemporaryFilesSkipNamesThatAreTaken) {
  const Folder folder;
  char name[kFullPathSize] = "old";
  for (const bool goes_on : {false, true}) {
    const Injection injection({"open", EEXIST, 1, goes_on});
    EXPECT_EQ(GetTempFileNameA(".", "orz", 0, name) == 0, goes_on);
    EXPECT_EQ(Exists(name), !goes_on);
  }
  EXPECT_STREQ(name, "");
  EXPECT_EQ(GetLastError(), 80U);
}

// Exchanges two names, at most once.
struct Swap {
  void operator()() {
    if (!std::exchange(is_due, false)) return;
    EXPECT_EQ(::renameat2(AT_FDCWD, "one", AT_FDCWD, "two", RENAME_EXCHANGE), 0);
  }
  bool is_due = true;
};

TEST(Races, RenameAndDeleteChangeTheFileThatTheyChecked) {
  for (const bool has_safe_rename : {true, false}) {
    SCOPED_TRACE(has_safe_rename);
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    ASSERT_EQ(mkdir("one", 0777) + mkdir("two", 0777), 0);
    Put("one/file", "free");
    Put("two/file", "open");
    const File holder("two/file");
    Swap swap;
    NetworkHost host;
    // The last step in which the library checks a name.
    host.statx = [&](int in, const char* path, int flags, unsigned int wanted, struct statx* out) {
      const int result = RealStatx(in, path, flags, wanted, out);
      if (*path != '\0') swap();
      return result;
    };
    EXPECT_EQ(platform::rename("one/file", "moved"), 0);
    EXPECT_FALSE(swap.is_due);
    EXPECT_EQ(Content("moved") + Content("one/file"), "freeopen");
    ASSERT_EQ(::rename("moved", "two/file"), 0);
    swap.is_due = true;
    EXPECT_EQ(platform::unlink("two/file"), 0);
    EXPECT_FALSE(swap.is_due);
    EXPECT_EQ(Content("two/file"), "open");
    EXPECT_FALSE(Exists("one/file"));
  }
}

TEST(Races, RenameOfADirectoryNeverMovesAnOpenFile) {
  for (const bool has_safe_rename : {true, false}) {
    SCOPED_TRACE(has_safe_rename);
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    ASSERT_EQ(mkdir("one", 0777), 0);
    Put("two", "open");
    const File holder("two");
    Swap swap;
    NetworkHost host;
    host.before_rename = [&] { swap(); };
    EXPECT_EQ(platform::rename("one", "moved"), -1);
    EXPECT_EQ(errno_(), 5);
    EXPECT_FALSE(swap.is_due);
    EXPECT_EQ(Content("one"), "open");
    EXPECT_FALSE(Exists("moved"));
  }
}

}  // namespace
