// What the calls of the platform answer on every system. Where the answers are meant to differ, the
// table of docs/guide/platform.md tells users about it; this test compares the two.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "platform/files.h"
#include "platform/system.h"
#include "support/TestFiles.h"

namespace {

using namespace orzcore::platform;

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

// What a row does with the paths `a` and `b`, and what its answer is.
enum class Call {
  kCreate,      // makes `a`, or empties it; the answer is the error of the open
  kCreateNew,   // makes `a`
  kOpen,        // opens `a` for reading and writing
  kOpenTwice,   // opens `a` shared, and then `b` alone; the answer is the error of the second open
  kLockTwice,   // locks bytes of `a` by two handles; the answer is the error of the second lock
  kUnlock,      // unlocks bytes of `a` that are not locked
  kSeekBack,    // moves to a position before the file
  kSeekFar,     // moves to a position that needs more than 32 bits
  kSeekHigh,    // passes a variable for the high half of a position
  kReadClosed,  // reads by a handle that may only write
  kNullHandle,  // closes the handle null
  kRename,      // renames `a` to `b`; the answer is the number of `errno_`
  kRemove,      // deletes `a`; the answer is the number of `errno_`
  kRemoveOpen,  // deletes `a` while it is open
  kExists,      // asks whether `a` exists; the answer is 1 or 0
  kEmptyBlock,  // allocates 0 bytes; the answer is the flags of the block
  kLockBlock,   // locks a block twice and unlocks it once; the answer is 1 if it is still locked
  kPageBlock,   // locks a block; the answer is 1 if its address is on a page boundary
  kNoString,    // loads a string of a handle without strings; the answer is its length
};

struct Row {
  const char* what;  // as the page calls it
  Call call;
  const char* a = "";
  const char* b = "";
  int posix;
  int windows;
  const char* unproven = nullptr;  // why the runner of Windows programs proves nothing here
};

constexpr char kLaxLocks[] = "the runner reports 33 where Windows reports that nothing is locked";
constexpr char kWraps[] = "the runner wraps positions at 4 GiB, which Windows refuses";

const std::string kLongPath = std::string(512, '/').replace(0, 1, ".") + "file";

const Row kRows[] = {
    {"create a new file", Call::kCreateNew, "new", "", 0, 0},
    {"create a file that exists", Call::kCreateNew, "file", "", 80, 80},
    {"empty a file", Call::kCreate, "file", "", 0, 0},
    {"open a file", Call::kOpen, "file", "", 0, 0},
    {"open a missing file", Call::kOpen, "missing", "", 2, 2},
    {"open an empty path", Call::kOpen, "", "", 3, 3},
    {"open a directory", Call::kOpen, "folder", "", 5, 5},
    {"open `\\` and `/` in a path", Call::kOpen, "folder\\../file", "", 0, 0},
    {"open a file in a missing directory", Call::kOpen, "missing/x", "", 2, 3},
    {"open a file in a file", Call::kOpen, "file/x", "", 3, 3},
    {"create a file whose name has `*`", Call::kCreate, "a*b", "", 0, 123},
    {"create a file whose name has `?`", Call::kCreate, "a?b", "", 0, 123},
    {"create a file whose name has `<`", Call::kCreate, "a<b", "", 0, 123},
    {"open `FILE` if there is `file`", Call::kOpen, "FILE", "", 2, 0},
    {"open `file.` if there is `file`", Call::kOpen, "file.", "", 2, 0},
    {"open a path of 516 characters", Call::kOpen, kLongPath.c_str(), "", 0, 206},
    {"open a shared file alone", Call::kOpenTwice, "file", "file", 32, 32},
    {"lock bytes that another user has locked", Call::kLockTwice, "file", "", 33, 33},
    {"unlock bytes that are not locked", Call::kUnlock, "file", "", 158, 158, kLaxLocks},
    {"move before the start of a file", Call::kSeekBack, "file", "", 131, 131},
    {"move past 4 GiB", Call::kSeekFar, "file", "", 87, 87, kWraps},
    {"move with a high half", Call::kSeekHigh, "file", "", 87, 87},
    {"read by a handle that only writes", Call::kReadClosed, "file", "", 5, 5},
    {"close no handle", Call::kNullHandle, "", "", 6, 6},
    {"rename a file", Call::kRename, "file", "moved", 0, 0},
    {"rename a file to its own name", Call::kRename, "file", "file", 0, 0},
    {"rename a missing file", Call::kRename, "missing", "moved", 2, 2},
    {"rename into a missing directory", Call::kRename, "file", "missing/x", 2, 2},
    {"rename to a name that exists", Call::kRename, "file", "other", 35, 35},
    {"rename a directory", Call::kRename, "folder", "moved", 0, 0},
    {"delete a file", Call::kRemove, "file", "", 0, 0},
    {"delete a missing file", Call::kRemove, "missing", "", 2, 2},
    {"delete a file in a missing directory", Call::kRemove, "missing/x", "", 2, 2},
    {"delete a directory", Call::kRemove, "folder", "", 5, 5},
    {"delete a file that is open", Call::kRemoveOpen, "file", "", 5, 5},
    {"ask for a file", Call::kExists, "file", "", 1, 1},
    {"ask for a missing file", Call::kExists, "missing", "", 0, 0},
    {"allocate a block of 0 bytes", Call::kEmptyBlock, "", "", 0x4000, 0x4000},
    {"lock a block twice, unlock it once", Call::kLockBlock, "", "", 1, 1},
    {"lock a block: on a page boundary", Call::kPageBlock, "", "", 1, 0},
    {"load a string that nobody has", Call::kNoString, "", "", 0, 0},
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.what; }

void* Open(const char* path, std::uint32_t disposition,
           std::uint32_t access = kGenericRead | kGenericWrite,
           std::uint32_t share = kFileShareRead | kFileShareWrite) {
  return CreateFileA(path, access, share, nullptr, disposition, 0, nullptr);
}

int ErrorOf(int success) { return success == 1 ? 0 : static_cast<int>(GetLastError()); }

int ErrorOfOpen(void* handle) {
  if (handle == InvalidHandle()) return static_cast<int>(GetLastError());
  return ErrorOf(CloseHandle(handle));
}

int ErrorOfMove(std::uint32_t position) {
  return position == kInvalidFilePosition ? static_cast<int>(GetLastError()) : 0;
}

int AnswerOfBlock(Call call) {
  constexpr unsigned int kFlags = kGlobalMovable | kGlobalZeroFilled | kGlobalDiscardable;
  constexpr std::uintptr_t kPage = 4096;
  void* const block = GlobalAlloc(kFlags, call == Call::kEmptyBlock ? 0 : 5000);
  EXPECT_NE(block, nullptr);
  int answer = static_cast<int>(GlobalFlags(block));
  if (call != Call::kEmptyBlock) {
    void* const address = GlobalLock(block);
    EXPECT_NE(address, nullptr);
    EXPECT_EQ(GlobalLock(block), address);
    answer = GlobalUnlock(block) != 0 ? 1 : 0;
    if (call == Call::kPageBlock) {
      answer = reinterpret_cast<std::uintptr_t>(address) % kPage == 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(GlobalFree(block), nullptr);
  return answer;
}

int AnswerOfOpenFile(const Row& row) {
  const std::uint32_t access = row.call == Call::kReadClosed ? kGenericWrite : kGenericRead;
  void* const file = Open(row.a, kOpenExisting, access);
  EXPECT_NE(file, InvalidHandle());
  int answer = -1;
  if (row.call == Call::kOpenTwice) {
    answer = ErrorOfOpen(Open(row.b, kOpenExisting, kGenericRead, 0));
  } else if (row.call == Call::kLockTwice) {
    void* const other = Open(row.a, kOpenExisting);
    EXPECT_EQ(LockFile(file, 10, 0, 5, 0), 1);
    answer = ErrorOf(LockFile(other, 12, 0, 1, 0));
    EXPECT_EQ(UnlockFile(file, 10, 0, 5, 0), 1);
    EXPECT_EQ(LockFile(other, 12, 0, 1, 0), 1);
    EXPECT_EQ(CloseHandle(other), 1);
  } else if (row.call == Call::kUnlock) {
    answer = ErrorOf(UnlockFile(file, 10, 0, 5, 0));
  } else if (row.call == Call::kSeekBack) {
    answer = ErrorOfMove(SetFilePointer(file, -1, nullptr, kFileBegin));
  } else if (row.call == Call::kSeekFar) {
    for (int i = 0; i < 3; ++i) {
      answer = ErrorOfMove(SetFilePointer(file, 0x7FFFFFFF, nullptr, kFileCurrent));
    }
  } else if (row.call == Call::kSeekHigh) {
    std::int32_t high = 0;
    answer = ErrorOfMove(SetFilePointer(file, 0, &high, kFileBegin));
  } else if (row.call == Call::kReadClosed) {
    char byte = 0;
    std::uint32_t done = 0;
    answer = ErrorOf(ReadFile(file, &byte, 1, &done, nullptr));
  } else if (row.call == Call::kRemoveOpen) {
    answer = orzcore::platform::remove(row.a) == 0 ? 0 : errno_();
  }
  EXPECT_EQ(CloseHandle(file), 1);
  return answer;
}

int AnswerOf(const Row& row) {
  switch (row.call) {
    case Call::kCreate:
      return ErrorOfOpen(Open(row.a, kCreateAlways));
    case Call::kCreateNew:
      return ErrorOfOpen(Open(row.a, kCreateNew));
    case Call::kOpen:
      return ErrorOfOpen(Open(row.a, kOpenExisting));
    case Call::kNullHandle:
      return ErrorOf(CloseHandle(nullptr));
    case Call::kRename:
      return orzcore::platform::rename(row.a, row.b) == 0 ? 0 : errno_();
    case Call::kRemove:
      return orzcore::platform::remove(row.a) == 0 ? 0 : errno_();
    case Call::kExists:
      return orzcore::platform::access(row.a, 0) == 0 ? 1 : 0;
    case Call::kEmptyBlock:
    case Call::kLockBlock:
    case Call::kPageBlock:
      return AnswerOfBlock(row.call);
    case Call::kNoString: {
      char buffer[] = "as before";
      const int length = LoadStringA(&buffer, 1, buffer, sizeof(buffer));
      EXPECT_STREQ(buffer, "as before");
      return length;
    }
    default:
      return AnswerOfOpenFile(row);
  }
}

class SystemCalls : public testing::TestWithParam<Row> {};

TEST_P(SystemCalls, AnswerAsTheTableSays) {
  const Row& row = GetParam();
  if (kIsWindows && row.unproven != nullptr) GTEST_SKIP() << row.unproven;
  const std::filesystem::path before = std::filesystem::current_path();
  const TestDirectory directory;
  for (const char* name : {"file", "other"}) directory.Write(name, "content");
  std::filesystem::create_directory(directory.Path("folder"));
  std::filesystem::current_path(directory.Path(""));
  EXPECT_EQ(AnswerOf(row), kIsWindows ? row.windows : row.posix) << row.what;
  std::filesystem::current_path(before);
}

INSTANTIATE_TEST_SUITE_P(Rows, SystemCalls, testing::ValuesIn(kRows));

TEST(SystemCalls, DifferAsThePageTells) {
  std::set<std::string> meant;
  for (const Row& row : kRows) {
    if (row.posix == row.windows) continue;
    meant.insert(std::string("| ") + row.what + " | " + std::to_string(row.posix) + " | " +
                 std::to_string(row.windows) + " |");
  }
  std::ifstream page(PLATFORM_PAGE);
  std::set<std::string> told;
  std::string line;
  while (std::getline(page, line) && line != "| Call | POSIX | Windows |") continue;
  std::getline(page, line);  // between the header and the rows
  while (std::getline(page, line) && line.starts_with('|')) told.insert(line);
  EXPECT_EQ(told, meant);
}

}  // namespace
