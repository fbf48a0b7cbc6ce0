// What was seen on network volumes. In each test, a stand-in for a call of the host does what the
// volume did.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "faults/HostCalls.h"
#include "platform/FileFixtures.h"
#include "support/FakeHost.h"
#include "support/TestFiles.h"

namespace {

constexpr std::uint32_t kNfs = 0x6969;
constexpr std::uint32_t kSmb = 0xFE534D42;
constexpr std::uint32_t kFuse = 0x65735546;
constexpr std::uint32_t kGone = 0;  // `statfs` reports that the directory is gone
constexpr unsigned int kRead = 0x8000;
constexpr unsigned int kWrite = 0x8002;

constexpr std::uint32_t kKinds[] = {kNfs, kSmb, kFuse, kGone};

/// A directory with a file named "file", and a user who opens it. The directory looks like one on a
/// network volume of a kind.
struct NetworkFolder {
  explicit NetworkFolder(std::uint32_t magic) {
    Put("file", "0123456789");
    const auto report = [magic](auto, struct statfs* status) {
      status->f_type = static_cast<decltype(status->f_type)>(magic);
      errno = ESTALE;
      return magic == kGone ? -1 : 0;
    };
    network.fstatfs = report;
    network.statfs = report;
    // The library asks for the kind of a volume only if its device has no major number.
    network.statx = [this](int directory, const char* path, int flags, unsigned int wanted,
                           struct statx* status) {
      if ((flags & AT_STATX_FORCE_SYNC) != 0) is_fresh = true;
      constexpr unsigned int kNeeded = STATX_TYPE | STATX_MODE | STATX_INO | STATX_NLINK;
      EXPECT_EQ(wanted & kNeeded, kNeeded);  // the server may leave out the rest
      const int result = RealStatx(directory, NameOf(path), flags, wanted, status);
      status->stx_dev_major = 0;
      return result;
    };
    network.linkat = [this](int, const char* from, int, const char* to, int) {
      EXPECT_STREQ(from, "/");  // a link to it always fails
      is_fresh = true;
      refreshed = to;
      errno = EEXIST;
      return -1;
    };
  }

  // Until the library refreshes the name, "file" leads to `old_target`.
  const char* NameOf(const char* path) const {
    const bool is_old = !is_fresh && old_target != nullptr && std::strcmp(path, "file") == 0;
    return is_old ? old_target : path;
  }

  OZError Read() {
    char bytes[100] = {};
    unsigned short count = 0;
    const OZError error = file.Read(bytes, sizeof(bytes), &count);
    text.assign(bytes, count);
    return error;
  }

  Folder folder;
  NetworkHost network;
  bool is_fresh = false;
  std::string refreshed;    // the last name that the library refreshed by a link
  bool is_dropped = false;  // the cached contents of the file
  const char* old_target = nullptr;
  int moments = 0;  // as many calls are refused
  std::string text;
  TestFile file;
};

TEST(NetworkVolume, ReadsReturnNewContentsAndLengths) {
  for (const std::uint32_t kind : kKinds) {
    SCOPED_TRACE(kind);
    NetworkFolder world(kind);
    world.network.posix_fadvise = [&](int, off_t, off_t, int advice) {
      world.is_dropped = advice == POSIX_FADV_DONTNEED;
      return 0;
    };
    const auto is_new = [&] { return world.is_fresh && world.is_dropped; };
    world.network.pread = [&](int, void* bytes, size_t, off_t position) -> ssize_t {
      if (position != 0) return 0;
      std::memcpy(bytes, is_new() ? "new" : "old", 3);
      return 3;
    };
    world.network.lseek = [&](int, off_t, int) -> off_t { return is_new() ? 30 : 10; };
    ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
    world.is_fresh = world.is_dropped = false;
    EXPECT_EQ(world.file.FileLength(), 30);
    world.is_fresh = world.is_dropped = false;
    EXPECT_EQ(world.Read(), eErrNone);
    EXPECT_EQ(world.text, "new");
    world.network.pread = nullptr;
  }
}

TEST(NetworkVolume, OpensFindTheFileThatHasTheNameNow) {
  for (const std::uint32_t kind : kKinds) {
    for (const char* old_target : {"renamed", "missing"}) {
      for (const unsigned int share_mode : {0U, OZ_SHARE_EXCLUSIVE}) {
        SCOPED_TRACE(testing::Message() << kind << ' ' << old_target << ' ' << share_mode);
        NetworkFolder world(kind);
        Put("renamed", "another file");
        world.network.openat = [&](int directory, const char* path, int flags, mode_t mode) {
          return RealOpenat(directory, world.NameOf(path), flags, mode);
        };
        world.old_target = old_target;
        ASSERT_EQ(world.file.OpenFile("file", share_mode), eErrNone);
        EXPECT_EQ(world.Read(), eErrNone);
        EXPECT_EQ(world.text, "0123456789");
      }
    }
  }
}

TEST(NetworkVolume, WritesReachTheServerAtOnce) {
  for (const std::uint32_t kind : kKinds) {
    SCOPED_TRACE(kind);
    NetworkFolder world(kind);
    int result = 0;
    world.network.sync_file_range = [&](int, off_t start, off_t length, unsigned int flags) {
      EXPECT_NE(flags & SYNC_FILE_RANGE_WAIT_AFTER, 0U);
      EXPECT_EQ(start, result == 0 ? 4 : 7);
      EXPECT_EQ(length, 3);
      ++world.moments;
      errno = ENOSPC;
      return result;
    };
    ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
    world.file.Seek(4, OZ_SEEK_START, nullptr);
    EXPECT_EQ(world.file.Put("abc"), eErrNone);
    EXPECT_EQ(world.moments, 1);
    result = -1;
    EXPECT_EQ(world.file.Put("abc"), eErrDiskFull);
  }
}

// The host shows a user's own locks in the way of its transfers.
TEST(NetworkVolume, OwnLocksDoNotRefuseTransfers) {
  NetworkFolder world(kSmb);
  struct flock own = {};
  world.network.fcntl = [&](int descriptor, int command, void* argument) {
    auto* const lock = static_cast<struct flock*>(argument);
    if (command == F_OFD_SETLK && lock->l_type == F_WRLCK) own = *lock;
    const bool overlaps =
        lock->l_start < own.l_start + own.l_len && own.l_start < lock->l_start + lock->l_len;
    if (command != F_OFD_GETLK || !overlaps) return RealFcntl(descriptor, command, argument);
    lock->l_type = F_WRLCK;
    return 0;
  };
  ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
  ASSERT_EQ(world.file.LockBytes(OZ_BYTES_LOCK, 2, 3), eErrNone);
  EXPECT_EQ(world.Read(), eErrNone);
  EXPECT_EQ(world.text, "0123456789");
  world.file.Seek(0, OZ_SEEK_START, nullptr);
  EXPECT_EQ(world.file.Put("new"), eErrNone);
  // But a lock of another user refuses them, here in a gap between the user's own locks.
  own.l_start = 6;
  own.l_len = 1;
  world.file.Seek(0, OZ_SEEK_START, nullptr);
  EXPECT_EQ(world.Read(), eErrLocked);
  world.network.fcntl = nullptr;
}

TEST(NetworkVolume, RefusalsForAMomentAreTriedAgain) {
  NetworkFolder world(kSmb);
  int refused = F_OFD_GETLK;
  world.network.fcntl = [&](int descriptor, int command, void* argument) {
    if (command != refused || world.moments-- <= 0) return RealFcntl(descriptor, command, argument);
    static_cast<struct flock*>(argument)->l_type = F_WRLCK;
    errno = EAGAIN;
    return command == F_OFD_GETLK ? 0 : -1;
  };
  world.moments = 8;
  ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
  world.moments = 8;
  EXPECT_EQ(world.Read(), eErrNone);
  world.moments = 9;
  EXPECT_EQ(world.Read(), eErrLocked);
  refused = F_OFD_SETLK;
  world.moments = 8;
  EXPECT_EQ(world.file.LockBytes(OZ_BYTES_LOCK, 0, 1), eErrNone);
  world.network.fcntl = nullptr;
  world.network.pread = [&](int, void*, size_t, off_t) -> ssize_t {
    errno = EACCES;
    return world.moments-- > 0 ? -1 : 0;
  };
  world.moments = 8;
  EXPECT_EQ(world.Read(), eErrNone);
}

TEST(NetworkVolume, OpensDoNotShareAHandleOfTheServer) {
  NetworkFolder world(kSmb);
  int newest_flags = -1;
  bool is_shared = false;
  world.network.openat = [&](int directory, const char* path, int flags, mode_t mode) {
    is_shared = flags == newest_flags;
    newest_flags = flags;
    return RealOpenat(directory, path, flags, mode);
  };
  TestFile files[3];
  for (TestFile& file : files) {
    ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
    EXPECT_FALSE(is_shared);
  }
}

TEST(NetworkVolume, RenamesRefreshTheNewName) {
  NetworkFolder world(kSmb);
  world.network.before_rename = [&] { EXPECT_EQ(world.refreshed, "new"); };
  EXPECT_EQ(OZFile::RenameFile(OZFileSpec("file"), OZFileSpec("new")), eErrNone);
  EXPECT_EQ(Content("new"), "0123456789");
}

TEST(NetworkVolume, LocksAreReleasedBeforeTheClose) {
  NetworkFolder world(kFuse);
  int late = -1;
  world.network.close = [&](int descriptor) {
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) late = dup(descriptor);
    return 0;
  };
  ASSERT_EQ(world.file.OpenFile("file", kWrite, OZ_SHARE_EXCLUSIVE), eErrNone);
  world.file.Put("new");
  EXPECT_EQ(world.file.flushFile(), eErrNone);
  EXPECT_EQ(world.file.IsOpen(), 1);
  world.network.close = nullptr;
  EXPECT_NE(late, -1);
  close(late);
}

TEST(NetworkVolume, OpensOfAFileWithoutItsModeAreTriedAgain) {
  NetworkFolder world(kNfs);
  world.moments = 4;
  const auto real_statx = world.network.statx;
  world.network.statx = [&](int directory, const char* path, int flags, unsigned int wanted,
                            struct statx* status) {
    const int result = real_statx(directory, path, flags, wanted, status);
    const bool is_open = *path == '\0' && S_ISREG(status->stx_mode);
    if (is_open && world.moments-- > 0) status->stx_mode = S_IFREG;
    return result;
  };
  EXPECT_EQ(world.file.OpenFile("file", kRead, 0), eErrNone);
  EXPECT_EQ(world.moments, -1);
  world.moments = 4;
  world.network.statx = real_statx;
  world.network.openat = [&](int directory, const char* path, int flags, mode_t mode) {
    errno = EACCES;
    return world.moments-- > 0 ? -1 : RealOpenat(directory, path, flags, mode);
  };
  EXPECT_EQ(TestFile().OpenFile("file", 0), eErrNone);
}

TEST(NetworkVolume, LostFilesAndServersAreReportedWithoutAWait) {
  const struct {
    int host_error;
    OZError open;  // the result of an open whose first lock fails with this error
  } kRows[] = {
      {ESTALE, eErrNone}, {ENOENT, eErrNone}, {EBADFD, eErrUnknown}, {ENOTCONN, eErrUnknown}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::strerror(row.host_error));
    NetworkFolder world(kFuse);
    FakeHost host;
    world.network.fcntl = [&](int descriptor, int command, void* argument) {
      if (world.moments-- <= 0) return RealFcntl(descriptor, command, argument);
      errno = row.host_error;
      return -1;
    };
    world.moments = 1;
    EXPECT_EQ(world.file.OpenFile("file", 0), row.open);
    if (row.open != eErrNone) {
      ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
    }
    world.moments = 100;
    EXPECT_EQ(world.Read(), eErrRead);
    std::int32_t position = 100;
    EXPECT_EQ(world.file.VirtualLock(0, &position, eLockWholeRange), eErrLocked);  // at once
    world.moments = 0;
  }
}

}  // namespace
