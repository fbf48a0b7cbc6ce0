// Runs every operation again and again. Each time, another call of the host or another allocation
// fails.
#include <algorithm>
#include <cerrno>
#include <optional>

#include "faults/HostCalls.h"
#include "faults/Operations.h"

namespace {

using Calls = std::vector<std::string>;

// What an operation may return if one of the calls fails with one of the error numbers. An
// operation succeeds in spite of a failure without results.
struct Failure {
  std::vector<int> host_errors;
  Calls calls;
  std::vector<OZError> results;
};

const Calls kOpening = {"open", "openat"};
const Calls kLooking = {"open", "openat", "statx", "fstatat"};
const Calls kNaming = {"linkat", "mkdirat", "renameat", "renameat2", "unlinkat"};
const Calls kSyncing = {"fdatasync", "fsync", "close"};
const std::vector<int> kNoLocks = {ENOLCK, EOPNOTSUPP, EINVAL, ENOSYS};

Calls operator+(Calls some, const Calls& more) {
  some.insert(some.end(), more.begin(), more.end());
  return some;
}

const std::vector<Failure> kFailures = {
    {{EINTR},
     kLooking + kNaming +
         Calls{"pread", "pwrite", "ftruncate", "fcntl", "nanosleep", "fsync", "close"},
     {}},
    {{kDoneInterrupted}, {"linkat", "renameat", "renameat2", "unlinkat"}, {}},
    {{kHalf}, {"pread", "pwrite"}, {}},
    {{EACCES, EAGAIN, EINVAL, EIO, ENOMEM, ENOSYS, EPERM},
     {"access", "clock_gettime", "fstatfs", "madvise", "stat", "statfs"},
     {}},
    {{EPERM, ENOSYS}, {"statx"}, {}},
    {{ENOMEM},
     kLooking + kNaming + Calls{"mmap", "new", "newlocale", "pread", "pwrite"},
     {eErrOutOfMemory, eErrLocked}},
    {{EAGAIN, EPERM}, {"mmap"}, {eErrOutOfMemory}},
    {{ENOSPC, EDQUOT},
     kOpening + kSyncing + Calls{"linkat", "mkdirat", "renameat2", "pwrite", "ftruncate"},
     {eErrDiskFull}},
    {{EFBIG}, {"pwrite", "ftruncate"}, {eErrDiskFull}},
    {{EMFILE, ENFILE}, kOpening, {eErrTooManyOpenFiles}},
    {{EROFS}, kOpening, {eErrWriteProtected, eErrAccessDenied}},
    {{EEXIST}, kOpening + Calls{"linkat", "mkdirat", "renameat2"}, {eErrCannotCreate}},
    {{EOPNOTSUPP, EOVERFLOW}, kOpening, {eErrUnknown}},
    {{EISDIR, ENXIO, EPERM, ETXTBSY, EBUSY}, kOpening, {eErrAccessDenied}},
    {{EAGAIN, ESTALE}, kOpening, {eErrSharing, eErrAccessDenied, eErrUnknown}},
    {{ENOENT}, kLooking, {eErrNotFound, eErrSharing, eErrAccessDenied, eErrCannotCreate}},
    {{ENOTDIR}, kLooking, {eErrNotFound}},
    {{EACCES, ELOOP}, kLooking, {eErrAccessDenied}},
    {{EIO}, kLooking, {eErrUnknown}},
    {{EIO, EOVERFLOW}, {"lseek"}, {eErrSeek, eErrUnknown}},
    {{EIO, EAGAIN, ESTALE}, {"pread"}, {eErrRead}},
    {{EIO, EAGAIN, ESTALE, kNothing}, {"pwrite"}, {eErrWrite}},
    {{EIO, EAGAIN, ESTALE}, {"ftruncate"}, {eErrWrite, eErrUnknown}},
    {{EPERM}, {"pwrite", "ftruncate"}, {eErrAccessDenied}},
    {{EIO, ESTALE}, kSyncing, {eErrWrite}},
    {{EAGAIN, EACCES, EINVAL, ENOLCK, ENOSYS, EOPNOTSUPP},
     {"fcntl"},
     {eErrSharing, eErrLocked, eErrUnlock, eErrAccessDenied, eErrCannotCreate}},
    {{EIO, ENOTCONN, EBADFD, ESTALE, ENOENT},
     {"fcntl"},
     {eErrUnknown, eErrSharing, eErrLocked, eErrUnlock, eErrRead, eErrWrite, eErrAccessDenied,
      eErrCannotCreate}},
    {{EMLINK, EXDEV}, {"linkat", "renameat", "renameat2"}, {eErrUnknown}},
    {{ENOSYS}, {"renameat2"}, {eErrUnknown}},
    {{EINVAL}, {"renameat2"}, {eErrAccessDenied}},
    {{EINVAL}, {"linkat"}, {eErrNotSupported}},
    {{EACCES, EPERM, EROFS, EBUSY, ENOTCONN, ETIMEDOUT}, kNaming, {eErrAccessDenied}},
    {{ENOENT, ENOTDIR}, kNaming, {eErrNotFound}},
    {{EIO, ESTALE}, kNaming, {eErrUnknown, eErrAccessDenied}},
};

auto CountDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
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

// Checks that no lock or open file is left after the objects are closed, and that the other user's
// lock is still there.
void CheckAftermath(World& w) {
  char byte = 0;
  unsigned short count = 0;
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
  std::optional<Injection> injection(fault);
  const int result = operation.run(w);
  const bool failed = Injection::HasHappened();
  injection.reset();
  const Trial trial = {result, before, State(w), Syncs() - syncs, failed, Injection::Calls()};
  // The first close of an operation closes the file. A later one closes a directory, and loses
  // nothing. A close that lost data makes the next open fail.
  const bool loses_data =
      failed && Has(kSyncing, fault.call) && fault.host_error != EINTR &&
      (fault.call != "close" || (fault.first == 1 && before.needs_flushing != 0));
  if ((operation.allowed & kNoted) != 0 && loses_data) {
    const bool is_full = fault.host_error == ENOSPC || fault.host_error == EDQUOT;
    EXPECT_EQ(w.file.OpenFile(w.closed_path, OZ_SHARE_EXCLUSIVE),
              is_full ? eErrDiskFull : eErrWrite);
    EXPECT_EQ(w.file.IsOpen(), 0);
  }
  // A failed operation has left no lock, and succeeds if it is repeated.
  if (result != eErrNone && result != operation.clean && (operation.allowed & kPartly) == 0) {
    TestFile other;
    if (other.OpenFile("file", 0) != eErrNotFound) {
      EXPECT_EQ(other.LockBytes(0, 10, 1000), eErrNone);
    }
    other.CloseFile();
    if (operation.prepare != nullptr && w.file.IsOpen() == 0) operation.prepare(w);
    EXPECT_EQ(operation.run(w), operation.clean);
  }
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
    const std::vector<OZError>& own = GetParam().failures;
    EXPECT_TRUE(Has(own.empty() ? failure.results : own, trial.result));
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
    const auto descriptors = CountDescriptors();
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
  const Trial clean = Try(GetParam(), {});
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

TEST(FailedSync, OfADirectoryIsReported) {
  World w;
  const Fault fault = {"fsync", EIO, 1, false};
  const auto rename = [&] { return OZFile::RenameFile(w.file_spec, w.new_spec); };
  EXPECT_EQ((Injection(fault), rename()), eErrNone);
  EXPECT_EQ(w.file.OpenFile("new", 0), eErrWrite);
  File created("created", kShareAll, platform::kCreateNew);
  EXPECT_EQ((Injection(fault), created.Close()), 29);
}

// If the library called the host without the stand-ins, no call in the test above would ever fail.
TEST(HostCalls, GoThroughTheStandIns) {
  std::set<std::string> calls;
  for (const Operation& operation : kOperations) {
    calls.merge(Try(operation, {}).calls);
  }
  for (const char* call :
       {"new", "newlocale", "mmap", "madvise", "fcntl", "statx", "lseek", "pread", "pwrite",
        "ftruncate", "fdatasync", "close", "linkat", "openat"}) {
    EXPECT_TRUE(calls.contains(call)) << call;
  }
}

INSTANTIATE_TEST_SUITE_P(Operation, Faults, testing::ValuesIn(kOperations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
