#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <sstream>

#include "platform/FileFixtures.h"

namespace {
using namespace platform;
int gSyncs = 0;
}  // namespace

// Stands before the runtime's own, to count.
extern "C" int fdatasync(int descriptor) {
  ++gSyncs;
  return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

namespace {

// Disposition; error and content if the file exists; error if it does not.
constexpr char kDispositionRows[] = R"(
  1 80 old 0    2 0 - 0    3 0 old 2    4 0 old 0    5 0 - 2    0 87 old 87    6 87 old 87 )";

TEST(Files, AreOpenedAsTheDispositionSays) {
  const mode_t mask = umask(027);
  for (const bool has_unnamed_files : {true, false}) {
    const VolumeGuard guard({.has_unnamed_files = has_unnamed_files});
    std::istringstream rows(kDispositionRows);
    std::uint32_t disposition = 0, error_if_there = 0, error_if_missing = 0;
    for (std::string content;
         rows >> disposition >> error_if_there >> content >> error_if_missing;) {
      SCOPED_TRACE(testing::Message() << disposition << has_unnamed_files);
      for (const std::uint32_t access : {kReadWrite, kGenericRead}) {
        const Folder folder;
        Put("there", "old");
        EXPECT_EQ(File("there", kShareAll, disposition, access).error, error_if_there);
        EXPECT_EQ(Content("there"), content == "-" ? "" : content);
        const File created("new", kShareNone, disposition, access);
        EXPECT_EQ(created.error, error_if_missing);
        EXPECT_EQ(File("new").error, error_if_missing == 0 ? 32 : 2);
        struct stat status = {};
        EXPECT_EQ(stat("new", &status) == 0, error_if_missing == 0);
        EXPECT_EQ(status.st_mode & 07777, error_if_missing == 0 ? 0640U : 0U);
      }
    }
    EXPECT_TRUE(rows.eof());
  }
  umask(mask);
}

// Opens in rows of path, whether to write, disposition, error.
void ExpectErrors(const char* opens) {
  std::istringstream rows(opens);
  std::uint32_t writes = 0, disposition = 0, error = 0;
  for (std::string path; rows >> path >> writes >> disposition >> error;) {
    const std::uint32_t access = writes != 0 ? kReadWrite : kGenericRead;
    EXPECT_EQ(File(path, kShareNone, disposition, access).error, error) << path << disposition;
  }
  EXPECT_TRUE(rows.eof());
}

TEST(Files, AreRefusedForAReason) {
  const Folder folder;
  Put("file", "old");
  Put("readonly", "old", 0444);
  ASSERT_EQ(mkfifo("fifo", 0666) + symlink("no", "dangling") + symlink("circle", "circle"), 0);
  ExpectErrors(R"(
      missing/file 1 3 2    missing/file 1 1 2    file/file 1 3 3    file/file 1 1 3    . 1 3 5
      . 0 3 5    . 1 1 80    fifo 1 3 5    fifo 0 2 5    /dev/full 1 3 5    circle 1 3 5
      dangling 1 3 2    dangling 1 2 80    readonly 1 3 5    readonly 0 3 0    readonly 0 2 5
      readonly 0 5 5    .\/\file 1 3 0 )");
  EXPECT_EQ(File("", kShareAll, kCreateAlways).error, 3U);
  EXPECT_EQ(File(std::string(255, 'x'), kShareAll, kCreateNew).error, 0U);
  EXPECT_EQ(File(std::string(256, 'x'), kShareAll, kCreateNew).error, 206U);
  for (const auto& [slashes, error] : {std::pair(4090, 0U), std::pair(4091, 206U)}) {
    std::string path(static_cast<std::size_t>(slashes) + 1, '/');
    path[0] = '.';
    EXPECT_EQ(File(path + "file").error, error) << slashes;
  }
  EXPECT_EQ(Content("readonly") + Content("file"), "oldold");
}

TEST(Files, KeepOutUsersWithoutPermission) {
  if (!IsRoot()) GTEST_SKIP() << "needs root, to make files that belong to another user";
  const Folder folder;
  Put("shared", "", 0644);
  Put("secret", "", 0600);
  chmod(".", 0755);
  const Unprivileged user;
  ExpectErrors("shared 1 3 5  shared 0 2 5  shared 0 3 0  secret 0 3 5  new 1 1 5  shared 1 1 80 ");
}

TEST(Files, AreInUseIfAnotherProgramLeasedThem) {
  const Folder folder;
  Put("leased", "");
  std::signal(SIGIO, SIG_IGN);
  const int owner = open("leased", O_RDWR | O_CLOEXEC);
  const bool is_leased = fcntl(owner, F_SETLEASE, F_WRLCK) == 0;
  EXPECT_EQ(File("leased").error, is_leased ? 32U : 0U);
  close(owner);
  if (!is_leased) GTEST_SKIP() << "needs a volume with leases";
}

TEST(Files, RunOutOfDescriptors) {
  const Folder folder;
  Put("file", "");
  Child child([] {
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {0, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const std::uint32_t opened = File("file").error;
    const std::uint32_t created = File("new", kShareAll, kCreateNew).error;
    const int deleted = platform::unlink("./file");
    const int reason = errno_();
    setrlimit(RLIMIT_NOFILE, &limit);  // a failed check, and the sanitizers, need descriptors
    EXPECT_EQ(opened, 4U);
    EXPECT_EQ(created, 4U);
    EXPECT_EQ(deleted, -1);
    EXPECT_EQ(reason, 4);
    return 0;
  });
  EXPECT_EQ(child.Result(), 0);
}

TEST(Transfers, NeedAHandleWithAccess) {
  const Folder folder;
  Put("file", "text");
  File reader("file", kShareAll, kOpenExisting, kGenericRead);
  File writer("file", kShareAll, kOpenExisting, kGenericWrite);
  EXPECT_EQ(reader.Write(""), 5);
  EXPECT_EQ(reader.Resize(), 5);
  EXPECT_EQ(writer.Read(1), 5);
  EXPECT_EQ(writer.done, 0U);
  EXPECT_EQ(reader.Read(9), 0);
  EXPECT_EQ(reader.text, "text");
  for (void* const handle : {InvalidHandle(), static_cast<void*>(nullptr)}) {
    File file("missing");
    file.handle = handle;
    EXPECT_EQ(file.Seek(0), kInvalidFilePosition);
    for (const int error : {file.Read(1), file.Write("x"), file.Resize(), file.Lock(0, 1),
                            file.Unlock(0, 1), file.Close()}) {
      EXPECT_EQ(error, 6);
    }
  }
}

TEST(Transfers, StopAtTheLimitOfFileSizes) {
  const Folder folder;
  gSyncs = 0;
  Child child([] {
    File file("file", kShareAll, kCreateNew);
    const rlimit limit = {100, 100};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_IGN);
    EXPECT_EQ(file.Write(std::string(150, 'x')), 112);
    EXPECT_EQ(file.done, 0U);
    EXPECT_EQ(file.Seek(0, kFileCurrent), 0);
    EXPECT_EQ(file.Seek(101), 101);
    EXPECT_EQ(file.Resize(), 112);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(gSyncs, 1);  // 100 bytes did reach the file
    return 0;
  });
  EXPECT_EQ(child.Result(), 0);
  EXPECT_EQ(Content("file"), std::string(100, 'x'));
}

TEST(Volumes, AreFullOrWriteProtected) {
  constexpr int kNoMount = 2;
  const Folder folder;
  Child child([] {
    const std::string here = std::filesystem::current_path();
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) ||
        mount("none", here.c_str(), "tmpfs", 0, "size=64k") || chdir(here.c_str())) {
      return kNoMount;
    }
    File file("file", kShareAll, kCreateNew);
    EXPECT_EQ(file.Write(std::string(100000, 'x')), 112);
    EXPECT_EQ(file.Seek(0x7FFFFFFF), 0x7FFFFFFF);
    EXPECT_EQ(file.Resize(), 0);  // sparse, so that only a write can fail
    EXPECT_EQ(file.Write("x"), 112);
    file.Close();
    EXPECT_EQ(mount("none", here.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
    ExpectErrors("file 1 3 19  file 0 5 19  new 1 1 19  file 1 1 80  file 0 3 0 ");
    EXPECT_EQ(platform::rename("file", "to"), -1);
    EXPECT_EQ(errno_(), 5);
    return 0;
  });
  const int result = child.Result();
  if (result == kNoMount) GTEST_SKIP() << "needs root, to mount a volume";
  EXPECT_EQ(result, 0);
}

// Distance, origin, position and error after it; error 6 is an old one, which a success leaves.
constexpr char kSeekRows[] = R"(
  -1 0 4294967295 131    2147483647 0 2147483647 6    1 1 2147483648 6
  2147483646 1 4294967294 6    2 1 4294967295 87    0 1 4294967294 6    1 1 4294967295 0
  0 1 4294967295 0    0 2 4294967295 87    -1 2 4294967295 0    -2147483648 2 2147483648 6
  0 3 4294967295 87    0 4 4294967295 87    -2147483648 1 0 6    -1 1 4294967295 131    0 1 0 6 )";

TEST(Positions, HaveThirtyTwoBits) {
  const Folder folder;
  Put("sparse", "");
  ASSERT_EQ(truncate("sparse", 0x100000000), 0);
  File file("sparse");
  std::istringstream rows(kSeekRows);
  std::int64_t distance = 0, position = 0;
  for (std::uint32_t origin = 0, error = 0; rows >> distance >> origin >> position >> error;) {
    CloseHandle(nullptr);  // error 6
    EXPECT_EQ(file.Seek(distance, origin), position) << distance << " from " << origin;
    EXPECT_EQ(GetLastError(), error) << distance << " from " << origin;
  }
  EXPECT_TRUE(rows.eof());
  std::int32_t high = 0;
  EXPECT_EQ(SetFilePointer(file.handle, 0, &high, kFileBegin), kInvalidFilePosition);
}

TEST(Positions, FollowTransfersAndCrossTwoAndFourGibibytes) {
  const Folder folder;
  File file("sparse", kShareAll, kCreateNew);
  for (const std::int64_t start : {0LL, 0x7FFFFFFELL, 0xFFFFFFFALL}) {
    SCOPED_TRACE(start);
    EXPECT_EQ(file.Seek(start / 2), start / 2);
    EXPECT_EQ(file.Seek(start / 2, kFileCurrent), start);
    EXPECT_EQ(file.Resize(), 0);
    EXPECT_EQ(file.Write("01234"), 0);
    EXPECT_EQ(file.Read(5), 0);
    EXPECT_EQ(file.text, "");  // the end of the file
    EXPECT_EQ(file.Seek(-3, kFileEnd), start + 2);
    EXPECT_EQ(file.Write("efghi"), 0);
    EXPECT_EQ(file.done, 5U);
    file.Seek(-7, kFileCurrent);
    EXPECT_EQ(file.Read(99), 0);
    EXPECT_EQ(file.text, "01efghi");
  }
  EXPECT_EQ(file.Seek(0, kFileCurrent), kInvalidFilePosition);  // above 4 GiB by now
}

TEST(Closing, ForcesOutWhatChanged) {
  const Folder folder;
  Put("file", "old");
  std::istringstream rows("3 read 2 0    3 write 0 0    3 write 1 1    3 end 0 1    5 read 0 1 ");
  std::uint32_t disposition = 0, length = 0;
  int syncs = 0;
  for (std::string deed; rows >> disposition >> deed >> length >> syncs;) {
    File file("file", kShareNone, disposition);
    EXPECT_EQ(file.Do(deed, 0, length), 0);
    gSyncs = 0;
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(gSyncs, syncs) << disposition << ' ' << deed << ' ' << length;
  }
  EXPECT_TRUE(rows.eof());
}

TEST(TempNames, AreUniqueAndPrivate) {
  const Folder folder;
  char name[kFullPathSize];
  for (const char* prefix : {"orz", "orzcore", "orzcore", "o", ""}) {
    const std::uint32_t number = GetTempFileNameA(R"(.\)", prefix, 0, name);
    char expected[32];
    std::snprintf(expected, sizeof(expected), "./%.3s%04X.TMP", prefix, number);
    EXPECT_STREQ(name, expected);
    struct stat status = {};
    EXPECT_EQ(stat(name, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_EQ(File(name, kShareNone).Seek(0, kFileEnd), 0);
  }
  EXPECT_EQ(GetTempFileNameA(".", "orz", 0x1002A, name), 0x2AU);
  EXPECT_STREQ(name, "./orz002A.TMP");
  EXPECT_FALSE(Exists(name));
  EXPECT_EQ(GetTempFileNameA("missing", "orz", 0, name), 0U);
  EXPECT_EQ(GetLastError(), 2U);
  EXPECT_STREQ(name, "");
  EXPECT_EQ(GetTempFileNameA(std::string(510, '/').c_str(), "orz", 0, name), 0U);
  EXPECT_EQ(GetLastError(), 206U);
}

TEST(TempNames, LieWhereTheUserSays) {
  Child child([] {
    for (const std::string set : {"/var/tmp", "/a/", ""}) {
      const std::string expected = set == "/var/tmp" ? "/var/tmp/" : set == "" ? "/tmp/" : set;
      setenv("TMPDIR", set.c_str(), 1);
      char buffer[16];
      EXPECT_EQ(GetTempPathA(sizeof(buffer), buffer), expected.size());
      EXPECT_EQ(buffer, expected);
      const auto too_short = static_cast<std::uint32_t>(expected.size());
      EXPECT_EQ(GetTempPathA(too_short, buffer), expected.size() + 1);
      EXPECT_STREQ(buffer, "");
    }
    return 0;
  });
  EXPECT_EQ(child.Result(), 0);
}

TEST(OemToCharA, CopiesTheText) {
  char copy[8] = "";
  EXPECT_EQ(platform::OemToCharA("caf\xE9\\x", copy), 1);
  EXPECT_STREQ(copy, "caf\xE9\\x");
}

}  // namespace
