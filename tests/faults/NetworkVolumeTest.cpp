// What was seen on network volumes. A local volume behaves as the network volume did.
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
constexpr std::uint32_t kKinds[] = {kNfs,       kSmb,       0x517B,     0xFF534D42, kFuse,
                                    0x00C36400, 0x5346414F, 0x01021997, 0x0BD00BD0, kGone};

bool Overlap(const struct flock& one, const struct flock& other) {
  return one.l_start < other.l_start + other.l_len && other.l_start < one.l_start + one.l_len;
}

/// A directory with a file named "file", and a user who opens it. The directory looks like one on a
/// network volume of a kind.
struct NetworkFolder {
  explicit NetworkFolder(std::uint32_t magic) {
    Put("file", "0123456789");
    hooks.statfs = [magic](struct statfs* status) {
      status->f_type = static_cast<decltype(status->f_type)>(magic);
      errno = ESTALE;
      return magic == kGone ? -1 : 0;
    };
    hooks.after_statx = [this](const char* path, int flags, unsigned wanted, struct statx* status) {
      constexpr unsigned kNeeded = STATX_TYPE | STATX_MODE | STATX_INO | STATX_NLINK;
      EXPECT_EQ(wanted & kNeeded, kNeeded);  // the server may leave out the rest
      status->stx_dev_major = 0;  // else the library does not ask for the kind of the volume
      const bool is_forced = (flags & AT_STATX_FORCE_SYNC) != 0;
      if (is_forced && *path != '\0') RefreshName(path);
      if (is_forced && *path == '\0') has_attributes = true;
    };
    hooks.before_link = [this](const char* from, const char* to) {
      if (std::strcmp(from, "/") == 0) RefreshName(to);
    };
    hooks.before_advice = [this](int advice) {
      const bool is_dropped = advice == POSIX_FADV_DONTNEED && has_attributes;
      if (is_dropped && has_old_content) Put("file", "0123456789");
    };
    // A query also reports the newest lock of the user who asks.
    hooks.after_lock = [this](int command, struct flock* lock) {
      if (command == F_OFD_SETLK && lock->l_type != F_UNLCK) own_lock = *lock;
      if (command == F_OFD_GETLK && Overlap(*lock, own_lock)) lock->l_type = F_WRLCK;
    };
  }

  void RefreshName(const char* name) {
    refreshed = name;
    ::rename("file of the server", "file");
  }

  // Until the library drops what the host has cached, the file has an old content and length.
  void CacheOldContent() {
    has_old_content = true;
    has_attributes = false;
    Put("file", "old");
  }

  OZError Read() {
    char bytes[100] = {};
    unsigned short count = 0;
    file.Seek(0, OZ_SEEK_START, nullptr);
    const OZError error = file.Read(bytes, sizeof(bytes), &count);
    EXPECT_EQ(std::string(bytes, count), error == eErrNone ? "0123456789" : "");
    return error;
  }

  Folder folder;
  Hooks hooks;
  FakeHost host;
  std::string refreshed;  // the last name that the library refreshed
  bool has_old_content = false;
  bool has_attributes = false;  // of the open file, from the server
  struct flock own_lock = {};
  TestFile file;
};

TEST(NetworkVolume, OpensFindTheFileThatHasTheNameNow) {
  for (const std::uint32_t kind : kKinds) {
    for (const bool has_old_file : {false, true}) {
      for (const unsigned int share_mode : {0U, OZ_SHARE_EXCLUSIVE}) {
        SCOPED_TRACE(testing::Message() << kind << ' ' << has_old_file << ' ' << share_mode);
        NetworkFolder world(kind);
        ::rename("file", "file of the server");
        if (has_old_file) Put("file", "another file");
        ASSERT_EQ(world.file.OpenFile("file", share_mode), eErrNone);
        EXPECT_EQ(world.Read(), eErrNone);
      }
    }
  }
}

TEST(NetworkVolume, ReadsGetNewContentsAndWritesReachTheServerAtOnce) {
  for (const std::uint32_t kind : kKinds) {
    SCOPED_TRACE(kind);
    NetworkFolder world(kind);
    ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
    world.CacheOldContent();
    EXPECT_EQ(world.file.FileLength(), 10);
    world.CacheOldContent();
    EXPECT_EQ(world.Read(), eErrNone);
    off_t start_of_sync = 0;
    world.hooks.before_range_sync = [&](off_t start, off_t length, unsigned flags) {
      EXPECT_NE(flags & SYNC_FILE_RANGE_WAIT_AFTER, 0U);
      EXPECT_EQ(length, 3);
      start_of_sync = start;
    };
    world.file.Seek(4, OZ_SEEK_START, nullptr);
    EXPECT_EQ(world.file.Put("abc"), eErrNone);
    EXPECT_EQ(start_of_sync, 4);
    for (const int error : {EINVAL, ENOSYS, ESPIPE, ENOSPC}) {
      const Injection injection({"sync_file_range", error});
      EXPECT_EQ(world.file.Put("abc"), error == ENOSPC ? eErrDiskFull : eErrNone) << error;
    }
    EXPECT_EQ(start_of_sync, 16);
  }
}

TEST(NetworkVolume, OnlyLocksOfOthersRefuseTransfers) {
  NetworkFolder world(kSmb);
  TestFile other;
  ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
  ASSERT_EQ(other.OpenFile("file", 0), eErrNone);
  ASSERT_EQ(world.file.LockBytes(OZ_BYTES_LOCK, 2, 3), eErrNone);
  ASSERT_EQ(world.file.LockBytes(OZ_BYTES_LOCK, 8, 1), eErrNone);
  EXPECT_EQ(world.Read(), eErrNone);
  world.file.Seek(0, OZ_SEEK_START, nullptr);
  EXPECT_EQ(world.file.Put("012"), eErrNone);
  ASSERT_EQ(other.LockBytes(OZ_BYTES_LOCK, 6, 1), eErrNone);
  EXPECT_EQ(world.Read(), eErrLocked);
}

TEST(NetworkVolume, ReadOnlyUsersAreNotRefusedByTheirOwnLocks) {
  NetworkFolder world(kSmb);
  ::chmod("file", 0444);
  const Unprivileged user;
  EXPECT_EQ(world.file.OpenFile("file", 0x8000, OZ_SHARE_EXCLUSIVE), eErrNone);
  world.file.CloseFile();
  EXPECT_EQ(world.file.OpenFile("file", 0x8000, 0), eErrNone);
  EXPECT_EQ(world.file.LockBytes(OZ_BYTES_LOCK, 2, 3), eErrNone);
}

struct Refusal {
  std::uint32_t kind;
  Fault fault;  // its count is as large as it may be
  OZError (*act)(NetworkFolder&);
  OZError refused;  // the result if one more call is refused
};

TEST(NetworkVolume, RefusalsForAMomentAreTriedAgain) {
  const auto open = [](NetworkFolder&) { return TestFile().OpenFile("file", 0); };
  const auto read = [](NetworkFolder& world) { return world.Read(); };
  const auto lock = [](NetworkFolder& world) { return world.file.LockBytes(0, 0, 1); };
  const Refusal kRows[] = {{kSmb, {"fcntl", EAGAIN, 1, 8}, open, eErrSharing},
                           {kSmb, {"fcntl", EAGAIN, 1, 8}, read, eErrLocked},
                           {kSmb, {"fcntl", EAGAIN, 1, 8}, lock, eErrLocked},
                           {kSmb, {"pread", EACCES, 1, 8}, read, eErrAccessDenied},
                           {kSmb, {"openat", EACCES, 1, 1}, open, eErrAccessDenied},
                           {kNfs, {"openat", EACCES, 1, 9}, open, eErrAccessDenied}};
  for (const Refusal& row : kRows) {
    for (const int more : {0, 1}) {
      SCOPED_TRACE(testing::Message() << "row " << &row - kRows << ", and " << more);
      NetworkFolder world(row.kind);
      ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
      Fault fault = row.fault;
      fault.count += more;
      const Injection injection(fault);
      EXPECT_EQ(row.act(world), more == 0 ? eErrNone : row.refused);
    }
  }
}

TEST(NetworkVolume, OpensDoNotShareAHandleOfTheServer) {
  NetworkFolder world(kSmb);
  int newest_flags = -1;
  bool is_shared = false;
  world.hooks.after_open = [&](const char*, int flags, int) {
    is_shared = flags == newest_flags;
    newest_flags = flags;
  };
  TestFile files[3];
  for (TestFile& file : files) {
    ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
    EXPECT_FALSE(is_shared);
  }
}

TEST(NetworkVolume, StaleNamesAndNewNamesAreLookedUpAgain) {
  NetworkFolder world(kSmb);
  const Fault fault = {"openat", ESTALE, 1, kAllLater};
  EXPECT_EQ((Injection(fault), world.file.OpenFile("file", 0)), eErrSharing);
  EXPECT_EQ(world.refreshed, "file");
  EXPECT_EQ(OZFile::RenameFile(OZFileSpec("file"), OZFileSpec("new")), eErrNone);
  EXPECT_EQ(world.refreshed, "new");
}

// Until the server has been asked, the host shows a file that another machine has deleted.
TEST(NetworkVolume, DeletedFilesDoNotExistAndAreCreatedAgain) {
  NetworkFolder world(kSmb);
  world.hooks.before_link = [](const char* from, const char*) {
    if (std::strcmp(from, "/") == 0) ::unlink("file");
  };
  EXPECT_EQ(world.file.CreateFileA("file", 0), eErrNone);
  EXPECT_EQ(world.file.FileLength(), 0);
  EXPECT_FALSE(Exists("file"));
}

TEST(NetworkVolume, LocksAreReleasedBeforeTheClose) {
  NetworkFolder world(kFuse);
  int late = -1;  // releases its locks later
  world.hooks.after_open = [&](const char*, int, int file) { late = dup(file); };
  ASSERT_EQ(world.file.OpenFile("file", OZ_SHARE_EXCLUSIVE), eErrNone);
  world.hooks.after_open = nullptr;
  world.file.Put("new");
  EXPECT_EQ(world.file.flushFile(), eErrNone);
  EXPECT_EQ(world.file.mNeedsFlushing, 0);  // it is open again
  close(late);
}

TEST(NetworkVolume, OpensOfAFileWithoutItsModeAreTriedAgain) {
  NetworkFolder world(kNfs);
  int looks_without_mode = 4;  // at an open file
  world.hooks.after_statx = [&](const char* path, int, unsigned, struct statx* status) {
    status->stx_dev_major = 0;
    if (*path != '\0' || !S_ISREG(status->stx_mode) || looks_without_mode == 0) return;
    --looks_without_mode;
    status->stx_mode = S_IFREG;
  };
  EXPECT_EQ(world.file.OpenFile("file", 0x8000, 0), eErrNone);
  EXPECT_EQ(looks_without_mode, 0);
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
    ASSERT_EQ(world.file.OpenFile("file", 0), eErrNone);
    EXPECT_EQ((Injection({"fcntl", row.host_error}), TestFile().OpenFile("file", 0)), row.open);
    const Injection injection({"fcntl", row.host_error, 1, kAllLater});
    EXPECT_EQ(world.Read(), eErrRead);
    std::int32_t position = 100;
    EXPECT_EQ(world.file.VirtualLock(0, &position, eLockWholeRange), eErrLocked);  // at once
  }
}

}  // namespace
