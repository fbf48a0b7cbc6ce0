// Runs every operation again and again. Each time, another call of the host or another allocation
// fails.
#include <cerrno>
#include <set>
#include <sstream>

#include "faults/HostCalls.h"
#include "faults/Operations.h"
#include "support/PageTables.h"

namespace {

// A row of a table in docs/internals.md: what an operation may return if one of the calls fails
// with one of the error numbers. Without results, it succeeds in spite of the failure.
struct Failure {
  std::vector<std::string> calls;
  std::vector<int> host_errors;
  std::set<int> results;
};

std::vector<Failure> ReadFailures(const std::string& effect) {
  std::map<std::string, int> numbers = {
      {"half", kHalf}, {"nothing", kNothing}, {"EINTR after its work", kDoneInterrupted}};
  for (int number = 1; number < 200; ++number) {
    if (const char* const name = strerrorname_np(number); name != nullptr) numbers[name] = number;
  }
  std::vector<Failure> failures;
  for (const PageRow& row : RowsUnder("internals.md", {"Call", "Reports", effect})) {
    Failure& failure = failures.emplace_back();
    failure.calls = CodeIn(row.cells[0]);
    for (const std::string& name : CodeIn(row.cells[1])) {
      EXPECT_EQ(numbers.count(name), 1U) << row.place << ": " << name;
      failure.host_errors.push_back(numbers[name]);
    }
    std::istringstream results(row.cells[2]);
    for (int result = 0; results.ignore(100, '(') >> result;) failure.results.insert(result);
  }
  return failures;
}

const std::vector<Failure>& Failures() {
  static const std::vector<Failure> kFailures = ReadFailures("Operation returns");
  return kFailures;
}

auto CountDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

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
  trial.before = w.CurrentState();
  {
    const Injection injection(fault);
    trial.result = operation.run(w);
    trial.failed = injection.count >= fault.first;
    trial.calls = injection.calls;
  }
  trial.after = w.CurrentState();
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
      const std::set<int>& own = GetParam().failures;
      EXPECT_TRUE((own.empty() ? failure.results : own).contains(trial.result));
    }
    State expected = succeeded ? clean.after : trial.before;
    // An operation that finds no memory must fail before it changes anything.
    if (!succeeded && trial.calls != std::set<std::string>{"new"}) {
      expected.file.needs_flushing = trial.after.file.needs_flushing;
      if (Allows(kPartly)) expected.files = trial.after.files;
      if (Allows(kMoved | kReopened)) expected.file.position = trial.after.file.position;
    }
    const bool may_be_closed =
        Allows(kClosed) || (Allows(kReopened) && (succeeded || fault.count > 1));
    if (may_be_closed && trial.after.is_open == 0) {
      expected.is_open = 0;
      expected.file = trial.after.file;
    }
    // A probe whose unlock fails still has its lock.
    if (fault.call == "unlock") expected.file.locks = trial.after.file.locks;
    EXPECT_EQ(trial.after, expected);
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
    const bool no_locks = (fault.call == "fcntl" || fault.call == "unlock") &&
                          std::set{ENOLCK, EOPNOTSUPP, EINVAL, ENOSYS}.contains(fault.host_error);
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
  for (const Failure& failure : Failures()) {
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

// Returns the result of the open after a close that lost data. The file is new, so that its
// directory is synced and closed as well.
OZError OpenAfter(const Fault& lost, const char* text = "data", const char* opened = "new",
                  unsigned int open_flags = 0x8002) {
  World w;
  w.file.CreateFileA("new", 0);
  w.file.Put(text);
  EXPECT_EQ((Injection(lost), w.file.CloseFile()), eErrNone);
  const OZError error = w.file.OpenFile(opened, open_flags, 0);
  EXPECT_EQ(w.file.IsOpen() != 0, error == eErrNone);
  w.file.CloseFile();
  EXPECT_EQ(w.file.OpenFile("new", 0), eErrNone);
  return error;
}

TEST(FailedSync, IsReportedByTheVeryNextOpenOfTheFile) {
  for (const Failure& failure : ReadFailures("Next open returns")) {
    for (const int host_error : failure.host_errors) {
      const int expected = failure.results.empty() ? eErrNone : *failure.results.begin();
      EXPECT_EQ(OpenAfter({failure.calls[0], host_error}), expected)
          << failure.calls[0] << " says " << std::strerror(host_error);
    }
  }
  // No data, the close of the directory, an open that empties the file, and one of another file:
  EXPECT_EQ(OpenAfter({"close", EIO}, ""), eErrNone);
  EXPECT_EQ(OpenAfter({"close", EIO, 2}), eErrNone);
  EXPECT_EQ(OpenAfter({"fdatasync", EIO}, "data", "new", 0x8102), eErrNone);
  EXPECT_EQ(OpenAfter({"fdatasync", EIO}, "data", "target"), eErrNone);
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
  for (const Failure& failure : Failures()) {
    for (const std::string& call : failure.calls) {
      // Only a volume that is not on a disk is asked for its kind.
      EXPECT_TRUE(calls.contains(call) || call == "fstatfs") << call;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Operation, Faults, testing::ValuesIn(kOperations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
