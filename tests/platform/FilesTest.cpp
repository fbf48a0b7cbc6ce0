#include <sys/syscall.h>

#include <sstream>

#include "platform/FileFixtures.h"

namespace {
using namespace platform;
int gSyncs = 0;
}  // namespace

// Counts the syncs. The library calls this `fdatasync` instead of that of the C library.
extern "C" int fdatasync(int descriptor) {
  ++gSyncs;
  return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

namespace {

// A row: the disposition; the error and the content if the file exists; the error if it does not.
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
  EXPECT_EQ(file.Seek(0, kFileCurrent), kInvalidFilePosition);  // the position is above 4 GiB
  EXPECT_NE(GetLastError(), 0U);
  for (const int distance : {-6, 4}) file.Seek(distance, kFileCurrent);  // the last position
  EXPECT_EQ(GetLastError(), 0U);
}

TEST(Closing, SyncsAFileOnlyIfItHasChanged) {
  const Folder folder;
  Put("file", "old");
  std::istringstream rows("3 read 2 0    3 write 0 0    3 write 1 1    3 end 0 1    5 read 0 1 ");
  std::uint32_t disposition = 0, length = 0;
  int syncs = 0;
  for (std::string action; rows >> disposition >> action >> length >> syncs;) {
    File file("file", kShareNone, disposition);
    EXPECT_EQ(file.Do(action, 0, length), 0);
    gSyncs = 0;
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(gSyncs, syncs) << disposition << ' ' << action << ' ' << length;
  }
  EXPECT_TRUE(rows.eof());
}

struct TempName {
  std::string directory;
  std::uint32_t number, result;
  std::string name;
  std::uint32_t error;
};
const TempName kTempNames[] = {
    {".", 0x1002A, 0x2A, "./orz002A.TMP", 0},
    {"", 1, 0, "", 2},
    {std::string(504, '/'), 1, 1, std::string(504, '/') + "orz0001.TMP", 0},
    {std::string(505, '/'), 1, 0, "", 206},
    {std::string(505, '/'), 0, 0, "", 206}};

struct TempPath {
  const char* variable;
  std::uint32_t result;
  const char* path;
};
constexpr TempPath kTempPaths[] = {{"/a", 4, ""}, {"/", 1, "/"}};

// Uses of the calls that the exported classes never make.
TEST(Files, FollowTheirHeaderInUnusualCalls) {
  const Folder folder;
  File file("file", kShareAll, kCreateNew, kGenericWrite);
  EXPECT_EQ(file.Read(1), 5);
  EXPECT_EQ(file.done, 0U);
  std::int32_t high = 0;
  EXPECT_EQ(SetFilePointer(file.handle, 0, &high, kFileBegin), kInvalidFilePosition);
  for (void* const handle : {InvalidHandle(), static_cast<void*>(nullptr)}) {
    File none("missing");
    none.handle = handle;
    for (const int error : {none.Lock(0, 1), none.Unlock(0, 1), none.Resize(), none.Close()}) {
      EXPECT_EQ(error, 6);
    }
  }
  EXPECT_EQ(File(std::string(5000, 'x')).error, 206U);
  for (const mode_t mode : {0020U, 0002U}) {
    Put("file", "", mode);
    EXPECT_EQ(File("file").error, IsRoot() ? 0U : 5U) << mode;
  }
  char name[kFullPathSize] = "";
  for (const TempName& row : kTempNames) {
    SCOPED_TRACE(testing::Message() << row.directory << ", " << row.number);
    EXPECT_EQ(GetTempFileNameA(row.directory.c_str(), "orz", row.number, name), row.result);
    EXPECT_EQ(name, row.name);
    EXPECT_FALSE(Exists(name));
    EXPECT_TRUE(row.result != 0 || GetLastError() == row.error) << GetLastError();
  }
  for (const TempPath& row : kTempPaths) {
    setenv("TMPDIR", row.variable, 1);
    EXPECT_EQ(GetTempPathA(3, name), row.result) << row.variable;
    EXPECT_STREQ(name, row.path) << row.variable;
  }
  unsetenv("TMPDIR");
  EXPECT_EQ(OemToCharA("caf\xE9\\x", name), 1);
  EXPECT_STREQ(name, "caf\xE9\\x");
}

}  // namespace
