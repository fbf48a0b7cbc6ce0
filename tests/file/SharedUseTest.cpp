// Several processes that use one file at the same time. They are this program, with arguments.
#include <gtest/gtest.h>

#include <iostream>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "UserProcess.h"
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

// How a user opens the file, and the bytes that he locks.
struct Use {
  unsigned share_mode = 0;
  std::int32_t offset = 0;
  std::int32_t length = 0;
};

OZError Begin(TestFile& file, const std::string& path, const Use& use) {
  const OZError error = file.OpenFile(path.c_str(), use.share_mode);
  if (error != eErrNone || use.length == 0) return error;
  return file.LockBytes(OZ_BYTES_LOCK, use.offset, use.length);
}

// What a process does: it counts, or keeps its lock. It reports each update, or again and again
// that it has the lock. When nobody takes the reports, it waits.
int Run(const std::string& path, const Use& use) {
  const HostWithoutDelays host;
  TestFile file;
  if (Begin(file, path, use) != eErrNone) return 1;
  const bool does_count = use.share_mode == 0 && use.length == 0;
  while ((!does_count || AddOne(file)) && std::cout << 'x' << std::flush) continue;
  return 1;
}

UserProcess Start(const std::string& path, const Use& use) {
  return UserProcess({path, std::to_string(use.share_mode), std::to_string(use.offset),
                      std::to_string(use.length)});
}

// Waits for reports of a process, and returns how many there are.
std::size_t TakeReports(UserProcess& user) {
  std::size_t count = 0;
  while ((count = user.TakeOutput().size()) == 0 && user.Look() == UserProcess::State::kRuns) {
    std::this_thread::yield();
  }
  EXPECT_NE(count, 0U) << "a user could not go on";
  return count;
}

TEST(SharedUse, BindsOtherProcessesUntilTheUserIsKilled) {
  constexpr struct {
    Use there, here;
    OZError error;
  } kCases[] = {
      {{OZ_SHARE_EXCLUSIVE}, {0}, eErrSharing},
      {{OZ_SHARE_EXCLUSIVE}, {OZ_SHARE_EXCLUSIVE}, eErrSharing},
      {{0, 10, 5}, {OZ_SHARE_EXCLUSIVE}, eErrSharing},
      {{0, 10, 5}, {0, 9, 1}, eErrNone},
      {{0, 10, 5}, {0, 9, 2}, eErrLocked},
      {{0, 10, 5}, {0, 14, 1}, eErrLocked},
      {{0, 10, 5}, {0, 15, 1}, eErrNone},
  };
  const TestDirectory directory;
  const std::string path = directory.Write("file", "");
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << "row " << &c - kCases);
    UserProcess user = Start(path, c.there);
    TakeReports(user);
    EXPECT_EQ(Begin(*std::make_unique<TestFile>(), path, c.here), c.error);
    user.Kill();
    EXPECT_EQ(Begin(*std::make_unique<TestFile>(), path, c.here), eErrNone);
    EXPECT_EQ(Begin(*std::make_unique<TestFile>(), path, c.there), eErrNone);
  }
}

// Each user reports every finished update. Again and again one of them is killed, possibly while it
// has the lock, and a new one is started.
TEST(SharedUse, LosesNoUpdateWhenUsersAreKilled) {
  constexpr std::size_t kUsers = 4;
  constexpr int kKills = 40;
  const TestDirectory directory;
  const std::string path = directory.Write("counter", std::string(8, '\0'));
  std::list<UserProcess> users;
  std::uint64_t reported = 0;
  const auto end = [&](std::size_t number) {
    for (UserProcess& user : users) reported += user.TakeOutput().size();
    const auto victim = std::next(users.begin(), static_cast<std::ptrdiff_t>(number));
    reported += TakeReports(*victim);
    victim->Kill();
    reported += victim->TakeOutput().size();
    users.erase(victim);
  };
  std::minstd_rand random(7);
  for (int i = 0; i < kKills; ++i) {
    while (users.size() < kUsers) users.push_back(Start(path, {}));
    end(random() % kUsers);
  }
  while (!users.empty()) end(0);
  std::uint64_t counter = 0;
  directory.Read("counter").copy(reinterpret_cast<char*>(&counter), sizeof(counter));
  // A user may die between its update and its report, once for each kill.
  EXPECT_GE(counter, reported);
  EXPECT_LE(counter, reported + kKills + kUsers);
  TestFile file;
  EXPECT_EQ(file.OpenFile(path.c_str(), 0x10), eErrNone);  // the killed users have no lock left
}

}  // namespace

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  if (count != 5) return RUN_ALL_TESTS();
  const auto share_mode = static_cast<unsigned>(std::stoi(arguments[2]));
  return Run(arguments[1], {share_mode, std::stoi(arguments[3]), std::stoi(arguments[4])});
}
