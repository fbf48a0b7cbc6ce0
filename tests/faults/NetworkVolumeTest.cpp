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
constexpr unsigned int kRead = 0x8000;
constexpr unsigned int kWrite = 0x8002;

/// A directory with a file named "file". It looks like one on a network volume of a kind.
struct NetworkFolder {
  explicit NetworkFolder(std::uint32_t magic) {
    Put("file", "0123456789");
    const auto report = [magic](struct statfs* status) {
      status->f_type = static_cast<decltype(status->f_type)>(magic);
      return 0;
    };
    network.fstatfs = [report](int, struct statfs* status) { return report(status); };
    network.statfs = [report](const char*, struct statfs* status) { return report(status); };
    // The library asks for the kind of a volume only if its device has no major number.
    network.statx = [this](int directory, const char* path, int flags, unsigned int wanted,
                           struct statx* status) {
      if ((flags & AT_STATX_FORCE_SYNC) != 0) is_fresh = true;
      const int result = RealStatx(directory, NameOf(path), flags, wanted, status);
      status->stx_dev_major = 0;
      return result;
    };
    network.linkat = [this](int, const char* from, int, const char*, int) {
      EXPECT_STREQ(from, "/");  // a link to it always fails
      is_fresh = true;
      errno = EEXIST;
      return -1;
    };
  }

  // Until the library refreshes the name, "file" leads to `old_target`.
  const char* NameOf(const char* path) const {
    const bool is_old = !is_fresh && old_target != nullptr && std::strcmp(path, "file") == 0;
    return is_old ? old_target : path;
  }

  Folder folder;
  NetworkHost network;
  bool is_fresh = false;
  const char* old_target = nullptr;
};

int Read(OZFile& file, std::string& text) {
  char bytes[100] = {};
  unsigned short count = 0;
  const int error = file.Read(bytes, sizeof(bytes), &count);
  text.assign(bytes, count);
  return error;
}

class NetworkVolumeKind : public testing::TestWithParam<std::uint32_t> {};

TEST_P(NetworkVolumeKind, ReadsReturnNewContentsAndLengths) {
  NetworkFolder world(GetParam());
  bool is_dropped = false;
  world.network.posix_fadvise = [&](int, off_t, off_t, int advice) {
    is_dropped = advice == POSIX_FADV_DONTNEED;
    return 0;
  };
  const auto is_new = [&] { return world.is_fresh && is_dropped; };
  world.network.pread = [&](int, void* bytes, size_t, off_t position) -> ssize_t {
    if (position != 0) return 0;
    std::memcpy(bytes, is_new() ? "new" : "old", 3);
    return 3;
  };
  world.network.lseek = [&](int, off_t, int) -> off_t { return is_new() ? 30 : 10; };
  TestFile file;
  ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
  world.is_fresh = is_dropped = false;
  EXPECT_EQ(file.FileLength(), 30);
  world.is_fresh = is_dropped = false;
  std::string text;
  EXPECT_EQ(Read(file, text), eErrNone);
  EXPECT_EQ(text, "new");
}

TEST_P(NetworkVolumeKind, OpensFindTheFileThatHasTheNameNow) {
  NetworkFolder world(GetParam());
  Put("renamed", "another file");
  world.network.openat = [&](int directory, const char* path, int flags, mode_t mode) {
    return RealOpenat(directory, world.NameOf(path), flags, mode);
  };
  for (const char* old_target : {"renamed", "missing"}) {
    for (const unsigned int share_mode : {0U, OZ_SHARE_EXCLUSIVE}) {
      world.old_target = old_target;
      world.is_fresh = false;
      TestFile file;
      ASSERT_EQ(file.OpenFile("file", share_mode), eErrNone) << old_target;
      std::string text;
      EXPECT_EQ(Read(file, text), eErrNone);
      EXPECT_EQ(text, "0123456789") << old_target;
    }
  }
}

TEST_P(NetworkVolumeKind, WritesReachTheServerAtOnce) {
  NetworkFolder world(GetParam());
  off_t start = 0;
  off_t length = 0;
  int result = 0;
  world.network.sync_file_range = [&](int, off_t from, off_t bytes, unsigned int flags) {
    EXPECT_NE(flags & SYNC_FILE_RANGE_WAIT_AFTER, 0U);
    start = from;
    length = bytes;
    errno = ENOSPC;
    return result;
  };
  TestFile file;
  ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
  file.Seek(4, OZ_SEEK_START, nullptr);
  unsigned short count = 0;
  EXPECT_EQ(file.Write("abc", 3, &count), eErrNone);
  EXPECT_EQ(start, 4);
  EXPECT_EQ(length, 3);
  result = -1;
  EXPECT_EQ(file.Write("abc", 3, &count), eErrDiskFull);
}

INSTANTIATE_TEST_SUITE_P(Network, NetworkVolumeKind, testing::Values(kNfs, kSmb, kFuse));

TEST(NetworkVolume, OwnLocksDoNotRefuseTransfers) {
  NetworkFolder world(kSmb);
  struct flock own = {};
  world.network.fcntl = [&](int descriptor, int command, void* argument) {
    auto* const lock = static_cast<struct flock*>(argument);
    if (command == F_OFD_SETLK && lock->l_type == F_WRLCK) own = *lock;
    const bool overlaps =
        lock->l_start < own.l_start + own.l_len && own.l_start < lock->l_start + lock->l_len;
    if (command == F_OFD_GETLK && overlaps) {
      lock->l_type = F_WRLCK;
      return 0;
    }
    return RealFcntl(descriptor, command, argument);
  };
  TestFile file;
  ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
  ASSERT_EQ(file.LockBytes(OZ_BYTES_LOCK, 2, 3), eErrNone);
  std::string text;
  EXPECT_EQ(Read(file, text), eErrNone);
  EXPECT_EQ(text, "0123456789");
  unsigned short count = 0;
  file.Seek(0, OZ_SEEK_START, nullptr);
  EXPECT_EQ(file.Write("new", 3, &count), eErrNone);
  // But a lock of another user refuses them, here in a gap between the user's own locks.
  own = {};
  own.l_start = 6;
  own.l_len = 1;
  file.Seek(0, OZ_SEEK_START, nullptr);
  EXPECT_EQ(Read(file, text), eErrLocked);
}

TEST(NetworkVolume, RefusalsForAMomentAreTriedAgain) {
  NetworkFolder world(kSmb);
  int moments = 0;
  world.network.fcntl = [&](int descriptor, int command, void* argument) {
    if (command != F_OFD_GETLK || moments == 0) return RealFcntl(descriptor, command, argument);
    --moments;
    static_cast<struct flock*>(argument)->l_type = F_WRLCK;
    return 0;
  };
  TestFile file;
  std::string text;
  moments = 8;
  ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
  moments = 8;
  EXPECT_EQ(Read(file, text), eErrNone);
  moments = 9;
  EXPECT_EQ(Read(file, text), eErrLocked);
  int refusals = 8;
  world.network.pread = [&](int, void*, size_t, off_t) -> ssize_t {
    errno = EACCES;
    return refusals-- > 0 ? -1 : 0;
  };
  EXPECT_EQ(Read(file, text), eErrNone);
  world.network.fcntl = [&](int descriptor, int command, void* argument) {
    if (command != F_OFD_SETLK || moments-- <= 0) return RealFcntl(descriptor, command, argument);
    errno = EAGAIN;
    return -1;
  };
  moments = 8;
  EXPECT_EQ(file.LockBytes(OZ_BYTES_LOCK, 0, 1), eErrNone);
}

TEST(NetworkVolume, LocksAreReleasedBeforeTheClose) {
  NetworkFolder world(kFuse);
  int late = -1;
  world.network.close = [&](int descriptor) {
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) late = dup(descriptor);
    return 0;
  };
  TestFile file;
  ASSERT_EQ(file.OpenFile("file", kWrite, OZ_SHARE_EXCLUSIVE), eErrNone);
  unsigned short count = 0;
  file.Write("new", 3, &count);
  EXPECT_EQ(file.flushFile(), eErrNone);
  EXPECT_EQ(file.IsOpen(), 1);
  world.network.close = nullptr;
  EXPECT_NE(late, -1);
  close(late);
}

TEST(NetworkVolume, OpensOfAFileWithoutItsModeAreTriedAgain) {
  NetworkFolder world(kNfs);
  int moments = 4;
  const auto real_statx = world.network.statx;
  world.network.statx = [&](int directory, const char* path, int flags, unsigned int wanted,
                            struct statx* status) {
    const int result = real_statx(directory, path, flags, wanted, status);
    if (*path == '\0' && S_ISREG(status->stx_mode) && moments-- > 0) status->stx_mode = S_IFREG;
    return result;
  };
  TestFile file;
  EXPECT_EQ(file.OpenFile("file", kRead, 0), eErrNone);
  EXPECT_EQ(moments, -1);
  file.CloseFile();
  int refusals = 4;
  world.network.openat = [&](int directory, const char* path, int flags, mode_t mode) {
    if (refusals-- <= 0) return RealOpenat(directory, path, flags, mode);
    errno = EACCES;
    return -1;
  };
  EXPECT_EQ(file.OpenFile("file", 0), eErrNone);
}

struct LockFault {
  int host_error;
  OZError open;      // the result of an open whose first lock fails with this error
  OZError transfer;  // the result of a read whose query fails with it
};

TEST(NetworkVolume, LostFilesAndServersAreReportedWithoutAWait) {
  constexpr LockFault kFaults[] = {
      {ESTALE, eErrNone, eErrRead},
      {ENOENT, eErrNone, eErrRead},
      {EBADFD, eErrUnknown, eErrRead},
      {ENOTCONN, eErrUnknown, eErrRead},
  };
  for (const LockFault& fault : kFaults) {
    SCOPED_TRACE(std::strerror(fault.host_error));
    NetworkFolder world(kFuse);
    FakeHost host;
    int failures = 1;
    world.network.fcntl = [&](int descriptor, int command, void* argument) {
      if (failures-- <= 0) return RealFcntl(descriptor, command, argument);
      errno = fault.host_error;
      return -1;
    };
    TestFile file;
    EXPECT_EQ(file.OpenFile("file", 0), fault.open);
    if (file.IsOpen() == 0) {
      ASSERT_EQ(file.OpenFile("file", 0), eErrNone);
    }
    failures = 100;
    std::string text;
    EXPECT_EQ(Read(file, text), fault.transfer);
    std::int32_t position = 100;
    EXPECT_EQ(file.VirtualLock(0, &position, eLockWholeRange), eErrLocked);  // at once
    failures = 0;
  }
}

}  // namespace
