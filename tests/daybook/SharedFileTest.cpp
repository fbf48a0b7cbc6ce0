// A file that several users share, also when they are killed, wait or meet damage.
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <regex>
#include <string>
#include <thread>

#include "RunDaybook.h"

namespace {

class SharedFile : public Daybook {
 protected:
  // Makes a daybook with one entry, and returns its bytes.
  std::string Make() const {
    EXPECT_EQ(Shell("daybook add f Entry1").status, 0);
    return File();
  }

  // Runs a command that must fail with a message, and must not say that anything is stored.
  void Refuses(const std::string& command, const std::string& message) const {
    const Outcome outcome = Shell("daybook " + command + " 2>&1");
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_NE(outcome.text.find(message), std::string::npos) << command << '\n' << outcome.text;
    EXPECT_EQ(outcome.text.find("stored"), std::string::npos) << outcome.text;
  }
};

// From now on, this happens to a command of this thread that forces data to the disk.
void LetSyncs(std::uint32_t happen) {
  sock_filter steps[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                         BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fdatasync, 0, 1),
                         BPF_STMT(BPF_RET | BPF_K, happen),
                         BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program = {std::size(steps), steps};
  ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

TEST_F(SharedFile, IsNotReportedAsStoredIfTheDiskFails) {
  Make();
  std::thread([&] {
    LetSyncs(SECCOMP_RET_ERRNO | EIO);
    for (const std::string command :
         {"add f X", "add new X", "edit f 1 X", "done f 1", "copy f g", "stress f"}) {
      Refuses(command, "Error Code: 108");
    }
  }).join();
  EXPECT_EQ(Shell("ls").text, "f\n");
}

TEST_F(SharedFile, HasNoNameUntilItIsOnTheDisk) {
  std::thread([&] {
    LetSyncs(SECCOMP_RET_KILL_PROCESS);
    Shell("daybook add f X");
  }).join();
  EXPECT_TRUE(std::regex_match(Shell("ls").text, std::regex("daybook-new-[0-9]+\n")));
}

TEST_F(SharedFile, IsWaitedFor) {
  constexpr std::int32_t kLockBase = 0x7F000000;
  const std::string content = Make();
  OZFile holder;
  ASSERT_EQ(holder.OpenFile(directory.Path("f").c_str(), 0), 0);
  std::int32_t position = kLockBase;
  ASSERT_EQ(holder.VirtualLock(OZ_LOCK_NOWAIT, &position, eLockWholeRange), 0);
  const std::string waiting = "in use by another user, waiting (1)\n";

  std::signal(SIGINT, SIG_DFL);  // the command would inherit that it is ignored
  const std::string interrupted = "timeout --foreground --preserve-status -s INT 3 ";
  const Outcome stopped = Shell(interrupted + "daybook add f X 2>&1");
  EXPECT_EQ(stopped.status, 130);
  EXPECT_EQ(stopped.text, waiting + "daybook: stopped\n");
  Refuses("add f X --wait 0", "Error Code: 203 ");
  Refuses("add f X --wait 1", waiting);
  // A command that waits must not write its messages into the file if it has no standard error.
  EXPECT_EQ(Shell("timeout 0.5 daybook list f 2>&-").status, 124);
  EXPECT_EQ(File(), content);

  const std::string waits = "until grep -q waiting out; do :; done";
  EXPECT_EQ(Shell("daybook add f X >out 2>&1 & timeout 60 sh -c '" + waits + "'").status, 0);
  EXPECT_EQ(holder.VirtualLock(OZ_LOCK_RELEASE, &position, eLockWholeRange), 0);
  const std::string stores = "until grep -q \"^stored as 2\" out; do :; done";
  EXPECT_EQ(Shell("timeout 60 sh -c '" + stores + "'").status, 0);
}

TEST_F(SharedFile, IsNeitherRenamedNorDeletedWhileInUse) {
  const std::string content = Make();
  OZFile user;
  ASSERT_EQ(user.OpenFile(directory.Path("f").c_str(), 0), 0);
  for (const char* const command : {"daybook rename f g 2>&1", "daybook delete f --yes 2>&1"}) {
    const Outcome outcome = Shell(command);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.text.find("because it is being used"), std::string::npos) << outcome.text;
    EXPECT_EQ(outcome.text.find("Error Code"), std::string::npos) << "reported twice";
  }
  EXPECT_EQ(File(), content);
}

TEST_F(SharedFile, IsLeftByAllUsersOfAnInterruptedStress) {
  std::signal(SIGINT, SIG_DFL);
  const Outcome outcome = Shell("timeout --foreground --preserve-status -s INT 0.5 '" DAYBOOK_PATH
                                "' stress f --entries 100000 2>&1");
  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.text, "daybook: stopped\n");
  OZFile alone;
  EXPECT_EQ(alone.OpenFile(directory.Path("f").c_str(), OZ_SHARE_EXCLUSIVE), 0);
}

TEST_F(SharedFile, LosesNothingUnderStress) {
  const std::string stress = "daybook stress f --runs 2 --users 3 --entries 50 ";
  const Outcome outcome = Shell(stress + "--kill >other & " + stress + "; wait $! && cat other");
  const std::string counts = "stored 300, lost 0, damaged 0\nrun [0-9]+ of 2, refused 0, ";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(std::regex_search(
      outcome.text, std::regex('^' + counts + "[^]*kills 0, [^]*\n" + counts + "[^]*kills [1-9]")))
      << outcome.text;
}

}  // namespace
