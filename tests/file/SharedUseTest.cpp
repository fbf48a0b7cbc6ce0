// Several processes that use one file at the same time.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>
#include <string>

#include "orzcore/platform.h"
#include "support/TestFiles.h"

namespace {

// Adds one to a counter of eight bytes in the file, under an exclusive lock.
bool AddOne(TestFile& file) {
  std::int32_t position = 100000;
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

// Ends each delay of a wait at once, because the lock is held for microseconds only.
class HostWithoutDelays : public OZHost {
 public:
  HostWithoutDelays() { Install(this); }
  std::uint32_t GetTickCount() override { return ticks_ += 300; }

 private:
  std::uint32_t ticks_ = 0;
};

// Each user is a process that reports every finished update. Again and again one of them is killed,
// possibly while it has the lock, and a new one is started.
TEST(SharedUse, LosesNoUpdateWhenUsersAreKilled) {
  constexpr int kUsers = 4;
  constexpr int kKills = 40;
  const TestDirectory directory;
  const std::string path = directory.Write("counter", std::string(8, '\0'));
  int reports[2] = {};
  ASSERT_EQ(pipe(reports), 0);
  const auto start = [&] {
    const pid_t child = fork();
    if (child != 0) return child;
    const HostWithoutDelays host;
    TestFile file;
    if (file.OpenFile(path.c_str(), 0) != eErrNone) _exit(1);
    while (AddOne(file) && write(reports[1], "x", 1) == 1) continue;
    _exit(1);
  };
  const auto end = [](pid_t user) {
    kill(user, SIGKILL);
    int status = 0;
    waitpid(user, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "a user could not go on";
  };
  std::uint64_t reported = 0;
  const auto take_reports = [&] {
    char buffer[4096];
    const ssize_t count = read(reports[0], buffer, sizeof(buffer));
    reported += static_cast<std::uint64_t>(count > 0 ? count : 0);
    return count > 0;
  };
  pid_t users[kUsers];
  for (pid_t& user : users) user = start();
  std::minstd_rand random(7);
  for (int i = 0; i < kKills; ++i) {
    ASSERT_TRUE(take_reports());
    pid_t& victim = users[random() % kUsers];
    end(victim);
    victim = start();
  }
  for (const pid_t user : users) end(user);
  close(reports[1]);
  while (take_reports()) continue;
  close(reports[0]);
  std::uint64_t counter = 0;
  directory.Read("counter").copy(reinterpret_cast<char*>(&counter), sizeof(counter));
  // A user may die between its update and its report, once for each kill.
  EXPECT_GE(counter, reported);
  EXPECT_LE(counter, reported + kKills + kUsers);
  TestFile file;
  EXPECT_EQ(file.OpenFile(path.c_str(), 0x10), eErrNone);  // the killed users have no lock left
}

}  // namespace
