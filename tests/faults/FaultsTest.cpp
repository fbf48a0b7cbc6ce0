// Runs every operation again and again. Each time, another call of the host or another allocation
// fails.
#include <dirent.h>

#include <algorithm>
#include <cerrno>

#include "faults/HostCalls.h"
#include "faults/Operations.h"

namespace {

struct Failure {
  std::vector<std::string> calls;
  std::vector<int> host_errors;
  std::vector<OZError> results;  // what an operation may return if one of the calls fails so
};

constexpr int kCannotRewind = -1;

const std::vector<std::string> kNaming = {"link",      "linkat", "mkdirat", "renameat",
                                          "renameat2", "unlink", "unlinkat"};
const std::vector<std::string> kSyncing = {"fdatasync", "fsync", "close"};

const std::vector<int> kNoLocks = {ENOLCK, EOPNOTSUPP, EINVAL, ENOSYS};

const std::vector<Failure> kFailures = {
    {{"new", "newlocale"}, {ENOMEM}, {eErrOutOfMemory, eErrLocked}},
    {{"mmap"}, {ENOMEM, EAGAIN, EPERM}, {eErrOutOfMemory}},
    {{"madvise"}, {EINVAL, EAGAIN}, {}},
    {{"open", "openat", "statx", "fstat", "fstatat", "pread", "pwrite", "ftruncate", "fcntl",
      "nanosleep", "fsync"},
     {EINTR},
     {}},
    {{"open", "openat"}, {EMFILE, ENFILE}, {eErrTooManyOpenFiles}},
    {{"open", "openat"}, {ENOSPC, EDQUOT}, {eErrDiskFull}},
    {{"open", "openat"}, {EROFS}, {eErrWriteProtected, eErrAccessDenied}},
    {{"open", "openat"}, {EEXIST}, {eErrCannotCreate}},
    {{"open", "openat"}, {EOPNOTSUPP, EOVERFLOW}, {eErrUnknown}},
    {{"open", "openat"}, {EISDIR, ENXIO, ETXTBSY, EBUSY}, {eErrAccessDenied}},
    {{"open", "openat"}, {EAGAIN, ESTALE}, {eErrSharing, eErrAccessDenied, eErrUnknown}},
    {{"open", "openat", "statx", "fstatat"},
     {ENOENT},
     {eErrNotFound, eErrSharing, eErrAccessDenied, eErrCannotCreate}},
    {{"open", "openat", "statx", "fstatat"}, {ENOTDIR}, {eErrNotFound}},
    {{"open", "openat", "statx", "fstat", "fstatat"}, {EACCES, ELOOP}, {eErrAccessDenied}},
    {{"open", "openat"}, {EPERM}, {eErrAccessDenied}},
    {{"statx"}, {EPERM, ENOSYS}, {}},
    {{"open", "openat", "statx", "fstat", "fstatat"}, {ENOMEM}, {eErrOutOfMemory}},
    {{"open", "openat", "statx", "fstat", "fstatat"}, {EIO}, {eErrUnknown}},
    {{"stat", "access"}, {EACCES, ENOMEM, EIO}, {}},
    {{"lseek"}, {EIO, EOVERFLOW}, {eErrSeek, eErrUnknown}},
    {{"pread"}, {EIO, EAGAIN, ESTALE}, {eErrRead}},
    {{"pread", "pwrite"}, {ENOMEM}, {eErrOutOfMemory}},
    {{"pread", "pwrite"}, {kHalf}, {}},
    {{"pwrite"}, {EIO, EAGAIN, ESTALE, kNothing}, {eErrWrite}},
    {{"pwrite"}, {EPERM}, {eErrAccessDenied}},
    {{"pwrite", "ftruncate"}, {ENOSPC, EDQUOT, EFBIG}, {eErrDiskFull}},
    {{"ftruncate"}, {EIO, EAGAIN, ESTALE}, {eErrWrite, eErrUnknown}},
    {{"ftruncate"}, {EPERM}, {eErrAccessDenied}},
    {kSyncing, {EIO, ESTALE}, {eErrWrite}},
    {kSyncing, {ENOSPC, EDQUOT}, {eErrDiskFull}},
    {{"close"}, {EINTR}, {}},
    {{"fcntl"},
     {EOPNOTSUPP, EINVAL, ENOSYS},
     {eErrSharing, eErrLocked, eErrUnlock, eErrAccessDenied}},
    {{"fcntl"},
     {EAGAIN, EACCES, ENOLCK},
     {eErrSharing, eErrLocked, eErrUnlock, eErrAccessDenied, eErrCannotCreate}},
    {{"fcntl"},
     {EIO, ENOTCONN, EBADFD, ESTALE, ENOENT},
     {eErrUnknown, eErrSharing, eErrLocked, eErrUnlock, eErrRead, eErrWrite, eErrAccessDenied,
      eErrCannotCreate}},
    {{"fstatfs", "statfs"}, {EIO, ENOSYS}, {}},
    {{"link", "linkat", "renameat2", "mkdirat"}, {EEXIST}, {eErrCannotCreate}},
    {{"link", "linkat", "renameat2", "mkdirat"}, {ENOSPC, EDQUOT}, {eErrDiskFull}},
    {{"link", "linkat"}, {EMLINK}, {eErrUnknown}},
    {{"linkat", "renameat", "renameat2"}, {EXDEV}, {eErrUnknown}},
    {{"renameat2"}, {ENOSYS}, {eErrUnknown}},
    {{"renameat2"}, {EINVAL}, {eErrAccessDenied}},
    {kNaming, {EACCES, EPERM, EROFS, EBUSY}, {eErrAccessDenied}},
    {kNaming, {EINTR}, {}},
    {{"link", "linkat", "renameat", "renameat2", "unlink", "unlinkat"}, {kDoneInterrupted}, {}},
    {kNaming, {ENOTCONN, ETIMEDOUT}, {eErrAccessDenied}},
    {kNaming, {ENOENT, ENOTDIR}, {eErrNotFound}},
    {kNaming, {ENOMEM}, {eErrOutOfMemory}},
    {kNaming, {EIO, ESTALE}, {eErrUnknown, eErrAccessDenied}},
    {{"clock_gettime"}, {EPERM}, {}},
};

int CountDescriptors() {
  int count = 0;
  DIR* const directory = opendir("/proc/self/fd");
  while (readdir(directory) != nullptr) ++count;
  closedir(directory);
  return count;
}

template <typename List, typename Item>
bool Has(const List& list, const Item& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

// The parts of the world that an operation can change.
struct State {
  explicit State(World& w)
      : files(World::Files()),
        is_open(w.file.IsOpen()),
        position(is_open != 0 ? w.file.Position() : 0),
        needs_flushing(w.file.mNeedsFlushing),
        out(w.out) {}
  bool operator==(const State&) const = default;

  std::map<std::string, std::string> files;
  int is_open;
  std::int32_t position;
  std::int32_t needs_flushing;
  Outputs out;
};

struct Trial {
  int result;
  State before;
  State after;
  int syncs;
  bool failed;  // the fault has happened
  std::set<std::string> calls;
};

// Checks that the failed operation has left no lock, and that it succeeds now.
void CheckRepetition(World& w, const Operation& operation) {
  if (std::filesystem::exists("file")) {
    TestFile other;
    EXPECT_EQ(other.OpenFile("file", 0), eErrNone);
    EXPECT_EQ(other.LockBytes(0, 10, 1000), eErrNone);
  }
  if (operation.prepare != nullptr && w.file.IsOpen() == 0) operation.prepare(w);
  EXPECT_EQ(operation.run(w), operation.clean);
}

// Checks that a close that lost data makes the next open fail.
void CheckNote(World& w, OZError expected) {
  EXPECT_EQ(w.file.OpenFile(w.closed_path, OZ_SHARE_EXCLUSIVE), expected);
  EXPECT_EQ(w.file.IsOpen(), 0);
}

// Checks that the objects still work, that no lock or open file is left after they are closed, and
// that the other user's lock is still there.
void CheckAftermath(World& w) {
  const bool has_file = std::filesystem::exists("file");
  char byte = 0;
  unsigned short count = 0;
  if (w.file.IsOpen() == 0) {
    w.holder.CloseFile();
    EXPECT_EQ(w.file.OpenFile("file", OZ_SHARE_EXCLUSIVE), has_file ? eErrNone : eErrNotFound);
  }
  if (w.file.IsOpen() != 0) {
    EXPECT_EQ(w.file.Seek(0, 0, nullptr), eErrNone);
    EXPECT_EQ(w.file.Read(&byte, 1, &count), eErrNone);
  }
  EXPECT_EQ(w.memory.LockMemory(), eErrNone);
  w.memory.UnlockMemory();
  w.host.boxes.clear();
  w.alerts.MutexBegin();
  w.alerts.AlertUser(&w.info, "text", nullptr, 0);
  w.alerts.MutexEnd();
  EXPECT_EQ(w.host.boxes.size(), 1U);
  w.spec.SetFullPath("spec");
  EXPECT_STREQ(w.spec.GetFullPath(), "spec");
  for (TestFile* file : {&w.file, &w.target, &w.holder}) file->CloseFile();
  EXPECT_EQ(w.file.OpenFile("taken", 0), eErrNone);
  EXPECT_EQ(w.file.Read(&byte, 1, &count), eErrLocked);
  for (TestFile* file : {&w.file, &w.neighbour}) file->CloseFile();
  for (const auto& [name, content] : World::Files()) {
    if (!std::filesystem::is_regular_file(name)) continue;
    EXPECT_EQ(w.file.OpenFile(name.c_str(), OZ_SHARE_EXCLUSIVE), eErrNone) << name;
    w.file.CloseFile();
  }
}

Trial Try(const Operation& operation, const Fault& fault) {
  World w;
  if (operation.prepare != nullptr) operation.prepare(w);
  const State before(w);
  const int syncs = Syncs();
  int result = 0;
  bool failed = false;
  std::set<std::string> calls;
  {
    const Injection injection(fault);
    result = operation.run(w);
    failed = Injection::HasHappened();
    calls = Injection::Calls();
  }
  const Trial trial = {result, before, State(w), Syncs() - syncs, failed, calls};
  // The first close of an operation closes the file. A later one closes a directory, and loses
  // nothing.
  const bool loses_data =
      failed && Has(kSyncing, fault.call) && fault.host_error != EINTR &&
      (fault.call != "close" || (fault.first == 1 && before.needs_flushing != 0));
  if ((operation.allowed & kNoted) != 0 && loses_data) {
    CheckNote(w, fault.host_error == EIO || fault.host_error == ESTALE ? eErrWrite : eErrDiskFull);
  }
  const bool is_failure = result != eErrNone && result != operation.clean;
  if (is_failure && (operation.allowed & kPartly) == 0) CheckRepetition(w, operation);
  CheckAftermath(w);
  return trial;
}

class Faults : public testing::TestWithParam<Operation> {
 protected:
  bool Allows(unsigned exceptions) const { return (GetParam().allowed & exceptions) != 0; }

  void CheckSuccess(const Trial& trial, const Trial& clean) const {
    EXPECT_EQ(trial.after.files, clean.after.files);
    EXPECT_TRUE(trial.after.out == clean.after.out);
    if (trial.after.is_open == 0 && Allows(kClosed | kReopened)) return;
    EXPECT_EQ(trial.after.is_open, clean.after.is_open);
    EXPECT_EQ(trial.after.position, clean.after.position);
    EXPECT_EQ(trial.after.needs_flushing, clean.after.needs_flushing);
    if (!Allows(kNoted | kReopened | kSilent)) {
      EXPECT_EQ(trial.syncs, clean.syncs);
    }
  }

  void CheckFailure(const Trial& trial, const Failure& failure, bool goes_on) const {
    EXPECT_TRUE(Has(GetParam().failures, trial.result));
    EXPECT_TRUE(Allows(kSilent) || trial.result == kCannotRewind ||
                Has(failure.results, trial.result));
    // An operation that finds no memory must fail before it changes anything.
    EXPECT_TRUE(trial.after == trial.before || trial.calls != std::set<std::string>{"new"});
    EXPECT_TRUE(trial.after.out == trial.before.out);
    if (!Allows(kPartly)) {
      EXPECT_EQ(trial.after.files, trial.before.files);
    }
    if (trial.after.is_open == 0 && Allows(goes_on ? kClosed | kReopened : kClosed)) return;
    EXPECT_EQ(trial.after.is_open, trial.before.is_open);
    if (!Allows(kMoved | kReopened)) {
      EXPECT_EQ(trial.after.position, trial.before.position);
    }
  }

  // Runs the operation with a fault. Returns true if the operation made the call that fails.
  bool CheckFault(const Trial& clean, const Failure& failure, const Fault& fault) const {
    SCOPED_TRACE(testing::Message()
                 << fault.call << " says " << fault.host_error << ", "
                 << (fault.host_error > 0 ? std::strerror(fault.host_error) : "a part")
                 << ", from call " << fault.first << (fault.goes_on ? " on" : " once"));
    const int descriptors = CountDescriptors();
    const int blocks = LiveBlocks();
    const Trial trial = Try(GetParam(), fault);
    EXPECT_EQ(CountDescriptors(), descriptors);
    EXPECT_EQ(LiveBlocks(), blocks);
    const bool no_locks = fault.call == "fcntl" && Has(kNoLocks, fault.host_error);
    if (no_locks && Allows(kLocks)) return trial.failed;
    SCOPED_TRACE(testing::Message() << "the result is " << trial.result);
    if (Allows(kSilent) && trial.result == eErrNone && trial.after == trial.before) {
      return trial.failed;
    }
    if (trial.result == clean.result) {
      CheckSuccess(trial, clean);
    } else {
      CheckFailure(trial, failure, fault.goes_on);
    }
    return trial.failed;
  }
};

TEST_P(Faults, GiveAnExpectedResultAndLeaveNothingBehind) {
  const Trial clean = Try(GetParam(), {"", 0, 1, false});
  ASSERT_EQ(clean.result, GetParam().clean);
  for (const Failure& failure : kFailures) {
    for (const std::string& call : failure.calls) {
      if (!clean.calls.contains(call)) continue;
      for (const int host_error : failure.host_errors) {
        for (const bool goes_on : {false, true}) {
          if (goes_on && (host_error == EINTR || host_error == kDoneInterrupted || Allows(kTwice)))
            continue;
          Fault fault = {call, host_error, 1, goes_on};
          while (CheckFault(clean, failure, fault) && !HasFailure()) ++fault.first;
          if (HasFailure()) return;
        }
      }
    }
  }
}

// What happens between a close that lost data and the next open of the file.
struct AfterLostData {
  const char* name;
  void (*act)(World&);
  unsigned int open_flags;
  OZError open;  // of the file
};

TEST(FailedSync, IsReportedByTheVeryNextOpenOfTheFile) {
  const AfterLostData kRows[] = {
      {"nothing", [](World&) {}, 0x8002, eErrWrite},
      {"an emptying open", [](World&) {}, 0x8102, eErrNone},
      {"an open of another file", [](World& w) { w.target.OpenFile("target", 0); }, 0x8002,
       eErrNone},
      {"a failed open", [](World& w) { w.target.OpenFile("missing", 0); }, 0x8002, eErrNone},
      {"a rename", [](World&) { OZFile::RenameFile("target", "new"); }, 0x8002, eErrNone},
      {"a deletion", [](World&) { OZFile::DeleteFileA("target"); }, 0x8002, eErrNone},
  };
  for (const AfterLostData& row : kRows) {
    SCOPED_TRACE(row.name);
    World w;
    OpenDirty(w);
    {
      const Injection injection({"fdatasync", EIO, 1, false});
      EXPECT_EQ(w.file.CloseFile(), eErrNone);
    }
    row.act(w);
    EXPECT_EQ(w.file.OpenFile("file", row.open_flags, 0), row.open);
    w.file.CloseFile();
    EXPECT_EQ(w.file.OpenFile("file", 0x8002, 0), eErrNone);
  }
}

TEST(FailedSync, IsNoFileInUse) {
  World w;
  OpenDirty(w);
  const Injection injection({"fdatasync", EDQUOT, 1, false});
  EXPECT_EQ(w.file.RenameFile(w.new_spec), eErrDiskFull);
  EXPECT_TRUE(w.host.boxes.empty());
  EXPECT_EQ(w.file.IsOpen(), 1);
  EXPECT_TRUE(std::filesystem::exists("file"));
}

// If the library called the host without the stand-ins, no call in the test above would ever fail.
TEST(HostCalls, GoThroughTheStandIns) {
  std::set<std::string> calls;
  for (const Operation& operation : kOperations) {
    calls.merge(Try(operation, {"", 0, 1, false}).calls);
  }
  for (const char* call :
       {"new", "newlocale", "mmap", "madvise", "fcntl", "statx", "lseek", "pread", "pwrite",
        "ftruncate", "fdatasync", "close", "linkat", "renameat2"}) {
    EXPECT_TRUE(calls.contains(call)) << call;
  }
  EXPECT_TRUE(calls.contains("open") || calls.contains("openat"));
  EXPECT_TRUE(calls.contains("unlink") || calls.contains("unlinkat"));
}

INSTANTIATE_TEST_SUITE_P(Operation, Faults, testing::ValuesIn(kOperations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
