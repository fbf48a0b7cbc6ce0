// Several processes that use one file at the same time.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "orzcore/platform.h"
#include "support/TestFiles.h"

namespace {

constexpr std::int32_t kBase = 100000;

// A child that opens the file for itself. It leaves without running what its parent would.
pid_t Start(const std::function<bool()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  return child;
}

// How a child ended, or any of them for -1: its status, or the negative number of the signal.
int Wait(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// A pipe through which a child says that it is ready, and waits to be told to go on.
class Signal {
 public:
  Signal() { EXPECT_EQ(pipe(ends_), 0); }
  ~Signal() {
    close(ends_[0]);
    close(ends_[1]);
  }
  void Give() { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void Take() {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {};
};

// A counter in the file that is read and written as eight bytes under an exclusive lock.
bool AddOne(TestFile& file) {
  std::int32_t position = kBase;
  if (file.VirtualLock(0, &position, eLockWholeRange) != eErrNone) return false;
  std::uint64_t counter = 0;
  unsigned short count = 0;
  bool done = file.Seek(0, 0, nullptr) == eErrNone &&
              file.Read(&counter, sizeof(counter), &count) == eErrNone && count == sizeof(counter);
  ++counter;
  done = done && file.Seek(0, 0, nullptr) == eErrNone &&
         file.Write(&counter, sizeof(counter), &count) == eErrNone;
  return file.VirtualLock(OZ_LOCK_RELEASE, &position, eLockWholeRange) == eErrNone && done;
}

// Waits without the long delay: the lock is held for microseconds.
class Impatient : public OZHost {
 public:
  Impatient() { Install(this); }
  std::uint32_t GetTickCount() override { return ticks_ += 300; }

 private:
  std::uint32_t ticks_ = 0;
};

std::uint64_t CounterOf(const TestDirectory& directory) {
  std::uint64_t counter = 0;
  const std::string content = directory.Read("counter");
  EXPECT_EQ(content.size(), sizeof(counter));
  content.copy(reinterpret_cast<char*>(&counter), sizeof(counter));
  return counter;
}

TEST(SharedUse, LosesNoUpdate) {
  constexpr int kUsers = 4;
  constexpr int kUpdates = 500;
  const TestDirectory directory;
  const std::string path = directory.Write("counter", std::string(8, '\0'));
  std::vector<pid_t> users;
  for (int i = 0; i < kUsers; ++i) {
    users.push_back(Start([&] {
      const Impatient host;
      TestFile file;
      bool good = file.OpenFile(path.c_str(), 0) == eErrNone;
      for (int n = 0; good && n < kUpdates; ++n) good = AddOne(file);
      return good;
    }));
  }
  for (const pid_t user : users) EXPECT_EQ(Wait(user), 0);
  EXPECT_EQ(CounterOf(directory), std::uint64_t{kUsers} * kUpdates);
}

TEST(SharedUse, LosesNoUpdateWhenUsersAreKilled) {
  constexpr int kUsers = 3;
  constexpr int kKills = 40;
  const TestDirectory directory;
  const std::string path = directory.Write("counter", std::string(8, '\0'));
  // Each user reports every update that it has finished. One is killed while it may hold the lock,
  // and another takes its place.
  int reports[2] = {};
  ASSERT_EQ(pipe(reports), 0);
  const auto start = [&] {
    return Start([&] {
      const Impatient host;
      TestFile file;
      if (file.OpenFile(path.c_str(), 0) != eErrNone) return false;
      while (AddOne(file)) {
        if (write(reports[1], "x", 1) != 1) return false;
      }
      return false;
    });
  };
  std::vector<pid_t> users(kUsers);
  for (pid_t& user : users) user = start();
  std::minstd_rand random(7);
  std::uint64_t reported = 0;
  char buffer[4096];
  const auto take_reports = [&] {
    const ssize_t count = read(reports[0], buffer, sizeof(buffer));
    ASSERT_GT(count, 0);
    reported += static_cast<std::uint64_t>(count);
  };
  for (int kill_count = 0; kill_count < kKills; ++kill_count) {
    take_reports();
    pid_t& victim = users[random() % kUsers];
    kill(victim, SIGKILL);
    EXPECT_EQ(Wait(victim), -SIGKILL);
    victim = start();
  }
  for (const pid_t user : users) {
    kill(user, SIGKILL);
    Wait(user);
  }
  close(reports[1]);
  for (ssize_t count = 1; count > 0;) {
    count = read(reports[0], buffer, sizeof(buffer));
    reported += static_cast<std::uint64_t>(std::max<ssize_t>(count, 0));
  }
  close(reports[0]);
  // A user may die between its update and its report, once for each kill.
  EXPECT_GE(CounterOf(directory), reported);
  EXPECT_LE(CounterOf(directory), reported + kKills + kUsers);
  TestFile file;
  EXPECT_EQ(file.OpenFile(path.c_str(), 0x10), eErrNone);  // the dead hold nothing
}

// Counts the refusals of a real wait, and frees the way after the first.
class CountingListener : public OZLockFailureCallbacks {
 public:
  explicit CountingListener(Signal* go) : go_(go) {}
  void NotifyLockBlocked(std::int32_t attempt) override {
    attempts = attempt;
    if (attempt == 1) go_->Give();
  }
  void NotifyLockWaitOver() override { ++ends; }
  std::int32_t attempts = 0;
  int ends = 0;

 private:
  Signal* go_;
};

TEST(SharedUse, LetsAWriterWaitForTwoReaders) {
  const TestDirectory directory;
  const std::string path = directory.Write("file", "content");
  Signal ready;
  Signal go;
  const auto reader = [&] {
    TestFile file;
    std::int32_t position = kBase;
    const bool holds = file.OpenFile(path.c_str(), 0) == eErrNone &&
                       file.VirtualLock(OZ_LOCK_RETRY, &position, eLockSharedByte) == eErrNone;
    ready.Give();
    if (!holds) return false;
    go.Take();
    return file.VirtualLock(OZ_LOCK_RELEASE, &position, eLockSharedByte) == eErrNone;
  };
  Start(reader);
  ready.Take();
  Start(reader);
  ready.Take();

  TestFile writer;
  ASSERT_EQ(writer.OpenFile(path.c_str(), 0), eErrNone);
  CountingListener listener(&go);
  writer.SetLockFailureCallbackFunctor(&listener);
  go.Give();  // one reader goes at once, the other when the writer says that it waits
  EXPECT_EQ(Wait(-1), 0);
  std::int32_t position = kBase;
  EXPECT_EQ(writer.VirtualLock(0, &position, eLockWholeRange), eErrNone);
  EXPECT_GE(listener.attempts, 1);
  EXPECT_EQ(listener.ends, 1);
  EXPECT_EQ(Wait(-1), 0);

  const pid_t refused = Start([&] {
    TestFile file;
    std::int32_t byte = kBase;
    return file.OpenFile(path.c_str(), 0) == eErrNone &&
           file.VirtualLock(OZ_LOCK_NOWAIT, &byte, eLockSharedByte) == eErrLocked;
  });
  EXPECT_EQ(Wait(refused), 0);
}

}  // namespace
