// Runs every operation again and again. Each time, another call of the host or another allocation
// fails.
#include <algorithm>
#include <cerrno>

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
const Calls kLocking = {"fcntl", "unlock"};
const Calls kSyncing = {"fdatasync", "fsync", "close"};
const std::vector<int> kNoLocks = {ENOLCK, EOPNOTSUPP, EINVAL, ENOSYS};

Calls operator+(Calls some, const Calls& more) {
  some.insert(some.end(), more.begin(), more.end());
  return some;
}

const std::vector<Failure> kFailures = {
    {{EINTR},
     kLooking + kNaming +
         Calls{"pread", "pwrite", "ftruncate", "fcntl", "unlock", "fsync", "close"},
     {}},
    {{kDoneInterrupted}, {"linkat", "renameat", "renameat2", "unlinkat"}, {}},
    {{kHalf}, {"pread", "pwrite"}, {}},
    {{EACCES, EAGAIN, EINVAL, EIO, ENOMEM, ENOSYS, EPERM}, {"fstatfs", "statfs"}, {}},
    {{EPERM, ENOSYS}, {"statx"}, {}},
    {{ENOMEM},
     kLooking + kNaming + Calls{"mmap", "new", "newlocale", "pread", "pwrite"},
     {eErrOutOfMemory}},
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
    {{EIO, EOVERFLOW}, {"lseek"}, {eErrSeek}},
    {{EIO, EAGAIN, ESTALE}, {"pread"}, {eErrRead}},
    {{EIO, EAGAIN, ESTALE, kNothing}, {"pwrite"}, {eErrWrite}},
    {{EIO, EAGAIN, ESTALE}, {"ftruncate"}, {eErrWrite, eErrUnknown}},
    {{EPERM}, {"pwrite", "ftruncate"}, {eErrAccessDenied}},
    {{EIO, ESTALE}, kSyncing, {eErrWrite}},
    {{EOPNOTSUPP, EINVAL, ENOSYS}, kLocking, {eErrSharing, eErrLocked, eErrAccessDenied}},
    {{EAGAIN, EACCES, ENOLCK},
     kLocking,
     {eErrSharing, eErrLocked, eErrAccessDenied, eErrCannotCreate}},
    {{EIO, ENOTCONN, EBADFD}, kLocking, {eErrUnknown, eErrRead, eErrWrite, eErrAccessDenied}},
    {{ESTALE, ENOENT},
     kLocking,
     {eErrSharing, eErrRead, eErrWrite, eErrAccessDenied, eErrCannotCreate}},
    {{EMLINK, EXDEV}, {"linkat", "renameat", "renameat2"}, {eErrUnknown}},
    {{ENOSYS}, {"renameat2"}, {eErrUnknown}},
    {{EINVAL}, {"renameat2"}, {eErrAccessDenied}},
    {{EINVAL}, {"linkat"}, {eErrNotSupported}},
    {{EACCES, EPERM, EROFS, EBUSY}, kNaming, {eErrAccessDenied}},
    {{ENOTCONN, EBADFD, ETIMEDOUT, EHOSTDOWN, EHOSTUNREACH}, kNaming, {eErrAccessDenied}},
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

using State = std::map<std::string, std::string>;

struct Trial {
  int result;
  State before;
  State after;
  bool failed;  // the fault has happened
  std::set<std::string> calls;
};

Trial Try(const Operation& operation, const Fault& fault) {
  World w;
  if (operation.prepare != nullptr) operation.prepare(w);
  Trial trial = {};
  trial.before = w.State();
  {
    const Injection injection(fault);
    trial.result = operation.run(w);
    trial.failed = injection.count >= fault.first;
    trial.calls = injection.calls;
  }
  trial.after = w.State();
  // A failed operation has left no lock, and succeeds if it is repeated.
  const bool can_be_repeated = (operation.allowed & kPartly) == 0;
  if (trial.result != eErrNone && trial.result != operation.clean && can_be_repeated) {
    TestFile other;
    other.OpenFile("file", 0);
    EXPECT_EQ(other.LockBytes(0, 10, 1000), eErrNone);
    other.CloseFile();
    if (operation.prepare != nullptr && w.file.IsOpen() == 0) operation.prepare(w);
    EXPECT_EQ(operation.run(w), operation.clean);
  }
  // After all objects are closed, every file can be opened. The first of these opens makes the
  // library forget a close that lost data.
  for (TestFile* file : {&w.file, &w.target, &w.holder}) file->CloseFile();
  for (const char* name : {"target", "file", "new"}) {
    if (!std::filesystem::is_regular_file(name)) continue;
    EXPECT_EQ(w.file.OpenFile(name, OZ_SHARE_EXCLUSIVE), eErrNone) << name;
    w.file.CloseFile();
  }
  return trial;
}

class Faults : public testing::TestWithParam<Operation> {
 protected:
  bool Allows(unsigned exceptions) const { return (GetParam().allowed & exceptions) != 0; }

  void CheckTrial(const Trial& trial, const Trial& clean, const Failure& failure,
                  const Fault& fault) const {
    const bool succeeded = trial.result == clean.result;
    if (!succeeded) {
      const std::vector<OZError>& own = GetParam().failures;
      EXPECT_TRUE(Has(own.empty() ? failure.results : own, trial.result));
    }
    std::set<std::string> ignored;
    // An operation that finds no memory must fail before it changes anything.
    if (!succeeded && trial.calls != std::set<std::string>{"new"}) {
      ignored.insert("needs flushing");
      if (Allows(kPartly)) ignored.insert("files");
      if (Allows(kMoved | kReopened)) ignored.insert("position");
    }
    const bool may_be_closed =
        Allows(kClosed) || (Allows(kReopened) && (succeeded || fault.count > 1));
    if (trial.after.at("is open") == "0" && may_be_closed) {
      ignored.insert({"is open", "position", "needs flushing"});
    }
    for (const auto& [aspect, value] : succeeded ? clean.after : trial.before) {
      if (!ignored.contains(aspect)) {
        EXPECT_EQ(trial.after.at(aspect), value) << aspect;
      }
    }
  }

  // Runs the operation with a fault. Returns true if the operation made the call that fails.
  bool CheckFault(const Trial& clean, const Failure& failure, const Fault& fault) const {
    SCOPED_TRACE(testing::Message()
                 << fault.call << " says " << fault.host_error << ", "
                 << (fault.host_error > 0 ? std::strerror(fault.host_error) : "a part")
                 << ", from call " << fault.first << (fault.count == 1 ? " once" : " on"));
    const auto descriptors = CountDescriptors();
    const int blocks = LiveBlocks();
    const Trial trial = Try(GetParam(), fault);
    EXPECT_EQ(CountDescriptors(), descriptors);
    EXPECT_EQ(LiveBlocks(), blocks);
    SCOPED_TRACE(testing::Message() << "the result is " << trial.result);
    const bool no_locks = Has(kLocking, fault.call) && Has(kNoLocks, fault.host_error);
    const bool did_nothing = trial.result == eErrNone && trial.after == trial.before;
    if (!(no_locks && Allows(kLocks)) && !(did_nothing && Allows(kSilent))) {
      CheckTrial(trial, clean, failure, fault);
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
        for (const int count : {1, kAllLater}) {
          const bool never_ends = host_error == EINTR || host_error == kDoneInterrupted;
          if (count != 1 && (never_ends || Allows(kTwice))) continue;
          Fault fault = {call, host_error, 1, count};
          while (CheckFault(clean, failure, fault) && !HasFailure()) ++fault.first;
          if (HasFailure()) return;
        }
      }
    }
  }
}

// A close that loses data, and the next open. The file is new, so that its directory is synced and
// closed as well.
struct LostData {
  const char* name;
  Fault fault;
  OZError open;
  const char* text = "data";
  const char* opened = "new";
  unsigned int open_flags = 0x8002;
};

TEST(FailedSync, IsReportedByTheVeryNextOpenOfTheFile) {
  const LostData kRows[] = {
      {"data", {"fdatasync", EIO}, eErrWrite},
      {"data on a full disk", {"fdatasync", ENOSPC}, eErrDiskFull},
      {"data beyond the quota", {"fdatasync", EDQUOT}, eErrDiskFull},
      {"an interrupted sync of data", {"fdatasync", EINTR}, eErrNone},
      {"data on a volume that cannot sync", {"fdatasync", EINVAL}, eErrNone},
      {"the name", {"fsync", EIO}, eErrWrite},
      {"an interrupted sync of the name", {"fsync", EINTR}, eErrNone},
      {"the name on a volume that cannot sync", {"fsync", EINVAL}, eErrNone},
      {"the name on a volume that became read-only", {"fsync", EROFS}, eErrNone},
      {"data at the close", {"close", EIO}, eErrWrite},
      {"no data at the close", {"close", EIO}, eErrNone, ""},
      {"the directory at its close", {"close", EIO, 2}, eErrNone},
      {"an interrupted close", {"close", EINTR}, eErrNone},
      {"an open that empties the file", {"fdatasync", EIO}, eErrNone, "data", "new", 0x8102},
      {"an open of another file", {"fdatasync", EIO}, eErrNone, "data", "target"},
  };
  for (const LostData& row : kRows) {
    SCOPED_TRACE(row.name);
    World w;
    w.file.CreateFileA("new", 0);
    w.file.Put(row.text);
    EXPECT_EQ((Injection(row.fault), w.file.CloseFile()), eErrNone);
    EXPECT_EQ(w.file.OpenFile(row.opened, row.open_flags, 0), row.open);
    EXPECT_EQ(w.file.IsOpen() != 0, row.open == eErrNone);
    w.file.CloseFile();
    EXPECT_EQ(w.file.OpenFile("new", 0), eErrNone);
  }
}

TEST(FailedSync, IsNoFileInUse) {
  World w;
  w.file.OpenFile("file", 0);
  w.file.Put("dirty");
  EXPECT_EQ((Injection({"fdatasync", EDQUOT}), w.file.RenameFile(w.new_spec)), eErrDiskFull);
  EXPECT_TRUE(w.host.boxes.empty());
}

TEST(FailedSync, OfADirectoryIsReported) {
  World w;
  const Fault fault = {"fsync", EIO};
  const auto rename = [&] { return OZFile::RenameFile(w.file_spec, w.new_spec); };
  EXPECT_EQ((Injection(fault), rename()), eErrNone);
  EXPECT_EQ(w.file.OpenFile("new", 0), eErrWrite);
  File created("created", kShareAll, platform::kCreateNew);
  EXPECT_EQ((Injection(fault), created.Close()), 29);
  EXPECT_EQ(OZFile::DeleteFileA("target"), eErrNone);  // the next operation forgets the failure
  EXPECT_EQ(w.file.OpenFile("created", 0), eErrNone);
}

// If the library called the host without the stand-ins, no call in the test above would ever fail.
TEST(HostCalls, GoThroughTheStandIns) {
  std::set<std::string> calls;
  for (const Operation& operation : kOperations) calls.merge(Try(operation, {}).calls);
  for (const Failure& failure : kFailures) {
    for (const std::string& call : failure.calls) {
      // Only a volume that is not on a disk is asked for its kind.
      EXPECT_TRUE(calls.contains(call) || call == "fstatfs") << call;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Operation, Faults, testing::ValuesIn(kOperations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
