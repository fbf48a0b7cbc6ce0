// What only POSIX has: modes, files without a name, and the calls of the C library.
#include <sys/syscall.h>

#include <ctime>

#include "platform/FileFixtures.h"

namespace {
using namespace platform;
int gSyncs = 0;
std::uint32_t gMoment = 0;  // the time that the library reads, in units of 64 ns; 0: the real time
}  // namespace

// The program's own calls: the library calls these instead of those of the C library.
extern "C" int fdatasync(int descriptor) {
  ++gSyncs;
  return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
  constexpr long kCall = sizeof(long) == 8 ? SYS_clock_gettime : 403;  // has times of 64 bits
  if (gMoment == 0) return static_cast<int>(syscall(kCall, clock, now));
  *now = {0, static_cast<long>(gMoment) * 64};
  return 0;
}

namespace {

TEST(NewFiles, HaveTheModeThatTheUmaskLeavesButTheirOwnerCanOpenThem) {
  constexpr struct { mode_t umask, mode; } kRows[] = {{027, 0640}, {0, 0666}, {0777, 0600}};
  for (const bool has_unnamed_files : {true, false}) {
    for (const auto& row : kRows) {
      SCOPED_TRACE(testing::Message() << row.umask << ", without a name: " << has_unnamed_files);
      const VolumeGuard guard({.has_unnamed_files = has_unnamed_files});
      const Folder folder;
      Put("there", "old");
      const mode_t before = umask(row.umask);
      EXPECT_EQ(File("there", kShareAll, kCreateNew).error, 80U);
      const File created("new", kShareNone, kOpenAlways, kGenericRead);
      umask(before);
      EXPECT_EQ(File("new").error, 32U);
      struct stat status = {};
      EXPECT_EQ(stat("new", &status), 0);
      EXPECT_EQ(status.st_mode & 07777, row.mode);
    }
  }
}

TEST(Permissions, AreNeededToWriteAFileButNotToListItsDirectory) {
  const Folder folder;
  for (const int mode : {0020, 0002}) {  // somebody may write it, so root may
    Put("file", "", mode);
    EXPECT_EQ(File("file").error, getuid() == 0 ? 0U : 5U) << mode;
  }
  Put("readonly", "", 0444);
  ASSERT_EQ(mkdir("unlisted", 0777) + chmod("unlisted", 0333), 0);
  {
    const Unprivileged user;
    EXPECT_EQ(platform::rename("readonly", "unlisted/file"), 0);
    EXPECT_EQ(platform::rename("unlisted/file", "moved"), 0);
  }
  EXPECT_EQ(chmod("unlisted", 0777), 0);  // so that it can be removed
}

TEST(Positions, HaveA32BitNumberOrNone) {
  const Folder folder;
  File file("sparse", kShareAll, kCreateNew);
  for (const std::uint32_t origin : {kFileBegin, kFileCurrent}) file.Seek(0x7FFFFFFF, origin);
  EXPECT_EQ(file.Write("ab"), 0);
  EXPECT_EQ(file.Move(0, kFileCurrent), 87);  // the position is 4 GiB
  EXPECT_EQ(file.Seek(-1, kFileCurrent), kInvalidFilePosition);
  EXPECT_EQ(GetLastError(), 0U);  // so the number is a position
  EXPECT_EQ(file.Read(2), 0);
  EXPECT_EQ(file.text, "b");
}

int WriteToAVolumeThatTakesNothing(File& file) {
  const VolumeGuard guard({.longest_write = 0});
  return file.Write("x");
}

TEST(Closing, SyncsAFileOnlyIfItHasChanged) {
  const struct {
    std::uint32_t disposition;
    int (*use)(File& file);
    int syncs;
  } kRows[] = {{kOpenExisting, [](File& file) { return file.Read(2); }, 0},
               {kOpenExisting, [](File& file) { return file.Write(""); }, 0},
               {kOpenExisting, WriteToAVolumeThatTakesNothing, 0},
               {kOpenExisting, [](File& file) { return file.Write("x"); }, 1},
               {kOpenExisting, [](File& file) { return file.Resize(); }, 1},
               {kTruncateExisting, [](File& file) { return file.Read(0); }, 1}};
  const Folder folder;
  Put("file", "old");
  for (const auto& row : kRows) {
    File file("file", kShareNone, row.disposition);
    EXPECT_EQ(row.use(file), 0);
    gSyncs = 0;
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(gSyncs, row.syncs) << "row " << &row - kRows;
  }
}

TEST(TempNames, FitTheirBuffers) {
  const struct {
    std::string directory, name;
    std::uint32_t number, result, error;
  } kNames[] = {{".", "./orz002A.TMP", 0x1002A, 0x2A, 0},
                {"", "", 1, 0, 2},
                {std::string(504, '/'), std::string(504, '/') + "orz0001.TMP", 1, 1, 0},
                {std::string(505, '/'), "", 1, 0, 206},
                {std::string(505, '/'), "", 0, 0, 206}};
  char name[kFullPathSize] = "";
  for (const auto& row : kNames) {
    SCOPED_TRACE(testing::Message() << row.directory << ", " << row.number);
    EXPECT_EQ(GetTempFileNameA(row.directory.c_str(), "orz", row.number, name), row.result);
    EXPECT_TRUE(row.error == 0 || GetLastError() == row.error) << GetLastError();
    EXPECT_EQ(name, row.name);
    EXPECT_FALSE(Exists(name));
  }
  setenv("TMPDIR", "/a", 1);
  for (const std::uint32_t size : {0U, 3U}) EXPECT_EQ(GetTempPathA(size, name), 4U);
  EXPECT_STREQ(name, "");
  EXPECT_EQ(GetTempPathA(4, name), 3U);
  EXPECT_STREQ(name, "/a/");
  unsetenv("TMPDIR");
}

// The search for a free name begins with the time and the number of the process.
TEST(TempNames, AreTheNextFreeOnes) {
  constexpr std::uint32_t kCount = 0xFFFF;
  const auto process = static_cast<std::uint32_t>(getpid());
  const Folder folder;
  char name[kFullPathSize] = "";
  gMoment = 2 * kCount - 1 - process % kCount;  // the search begins with the last number
  EXPECT_EQ(GetTempFileNameA(".", "orz", 0, name), kCount);
  EXPECT_STREQ(name, "./orzFFFF.TMP");
  for (const std::uint32_t number : {1U, 2U}) {
    EXPECT_EQ(GetTempFileNameA(".", "orz", 0, name), number);
    EXPECT_TRUE(Exists(name));
  }
  gMoment = 0;
}

}  // namespace
