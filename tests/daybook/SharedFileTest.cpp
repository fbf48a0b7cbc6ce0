// The organizer: its entries, its file with and without damage, and users of one file.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>

#include "RunDaybook.h"
#include "support/TestFiles.h"

namespace {

constexpr int kBlock = 256;
constexpr std::int32_t kLockBase = 0x7F000000;

class SharedFile : public testing::Test {
 protected:
  Outcome Shell(const std::string& command) const {
    return RunShell("cd '" + directory.Path("") + "'; " + command);
  }

  // Makes a daybook with a number of entries, and returns its bytes.
  std::string Make(int entries) const {
    std::string command;
    for (int i = 1; i <= entries; ++i) command += "daybook add f Entry" + std::to_string(i) + "; ";
    EXPECT_EQ(Shell("rm -f f; " + command).status, 0);
    return directory.Read("f");
  }

  std::string File() const { return directory.Read("f"); }

  const TestDirectory directory;
};

TEST_F(SharedFile, OverwritesWhatWasNeverFinished) {
  const std::string whole = Make(3);
  const auto zeros = [](int bytes) { return std::string(static_cast<std::size_t>(bytes), '\0'); };
  const struct {
    std::string content;
    int next_id;
  } kFiles[] = {{whole.substr(0, 3 * kBlock) + zeros(3 * kBlock + 1), 3},
                {whole.substr(0, 2 * kBlock) + zeros(kBlock), 2},
                {whole.substr(0, 3 * kBlock - 1), 2},
                {whole.substr(0, 2 * kBlock + 1), 2},
                {whole.substr(0, kBlock - 1), 1},
                {whole.substr(0, 7), 1},
                {zeros(kBlock - 1), 1},
                {zeros(300 * kBlock), 1},
                {"", 1}};
  for (const auto& [content, next_id] : kFiles) {
    directory.Write("f", content);
    const Outcome list = Shell("daybook list f 2>&1");
    EXPECT_EQ(list.status, 0) << content.size();
    EXPECT_EQ(list.text.find("f ends within an entry") != std::string::npos,
              content.size() % kBlock != 0)
        << list.text;
    EXPECT_EQ(File(), content) << "a list must not write";
    const std::string id = std::to_string(next_id);
    const auto kept = static_cast<std::size_t>((next_id + 1) * kBlock);
    EXPECT_EQ(Shell("daybook add f Entry" + id).text, "stored as " + id + ": Wed-Nov 18,2026\n");
    EXPECT_EQ(File().compare(0, kept, whole, 0, kept), 0) << id;
  }
}

TEST_F(SharedFile, ReportsDamageAndNeverOverwritesIt) {
  const std::string whole = Make(3);
  for (const int field : {0, 4, 8, 10, 12, 14, 16, 251, 252, 255}) {
    for (const int entry : {2, 3}) {
      std::string damaged = whole;
      damaged[static_cast<std::size_t>(entry * kBlock + field)] ^= 0x10;
      directory.Write("f", damaged);
      const std::string id = std::to_string(entry);
      const Outcome list = Shell("daybook list f 2>&1");
      EXPECT_EQ(list.status, 1) << field;
      EXPECT_NE(list.text.find(": 2 dates\n"), std::string::npos) << list.text;
      EXPECT_NE(list.text.find("damaged entries in f: " + id + '\n'), std::string::npos);
      EXPECT_EQ(Shell("daybook done f " + id + " 2>&1").status, 1);
      EXPECT_EQ(Shell("daybook add f More").text, "stored as 4: Wed-Nov 18,2026\n");
      EXPECT_EQ(File().substr(0, whole.size()), damaged);
      const Outcome copy = Shell("daybook copy f g 2>&1; daybook list g --all | head -1; rm g");
      EXPECT_EQ(copy.text, "daybook: entry " + id + " is damaged, and is not in the copy\n" +
                               "Every date: 3 entries\n");
      EXPECT_EQ(Shell("daybook remove f " + id + " && daybook list f --all | head -1").text,
                "removed " + id + ": it was damaged\nEvery date: 3 entries\n");
    }
  }
}

TEST_F(SharedFile, RefusesWhatItCannotRead) {
  const std::string whole = Make(1);
  const auto changed = [&](std::size_t place, const std::string& bytes) {
    return std::string(whole).replace(place, bytes.size(), bytes);
  };
  const std::string newer = changed(8, "\2");
  const struct {
    std::string content;
    const char* box;
  } kFiles[] = {
      {changed(0, "d"), "Error Code: 113"},
      {changed(8, "\3"), "beginning of f is damaged"},
      {changed(252, "\3"), "beginning of f is damaged"},
      {newer.substr(0, 252) + "\xde\x3e\x47\x08" + newer.substr(kBlock), "Error Code: 113"},
      {"DAYBOOK\nof Anna", "Error Code: 113"},
      {std::string(kBlock, '\0') + whole.substr(kBlock), "Error Code: 113"},
      {std::string(200000, '\0') + '\1', "Error Code: 113"},
  };
  for (const auto& [content, box] : kFiles) {
    directory.Write("f", content);
    for (const std::string command :
         {"list f", "add f X", "done f 1", "edit f 1 X", "copy f g", "rename f g", "delete f --yes",
          "stress f", "remove f 1", "month f", "export f"}) {
      const Outcome outcome = Shell("daybook " + command + " 2>&1");
      EXPECT_EQ(outcome.status, 1) << command << outcome.text;
      EXPECT_NE(outcome.text.find(box), std::string::npos) << command << outcome.text;
    }
    EXPECT_EQ(File(), content);
    EXPECT_FALSE(directory.Has("g"));
  }
}

TEST_F(SharedFile, ExplainsEveryFailure) {
  Make(1);
  directory.Write("taken", "precious");
  std::filesystem::copy(directory.Path("f"), directory.Path("full"));
  std::filesystem::resize_file(directory.Path("full"), kLockBase - 1);
  Shell("printf x >> full");
  constexpr const char* kFailures[][2] = {
      {"add absent/f X", "no directory 'absent' for 'absent/f'"},
      {"add 'a\\b' X", "no directory 'a' for [^]*; a '[^]*' separates directories"},
      {"add . X", "'.' is a directory, not a daybook"},
      {"add $(printf %300s | tr ' ' x) X", "the name 'x+' is too long"},
      {"copy f taken", "Creating the copy taken [^]*a file by that[^]*already exists"},
      {"rename f taken", "Renaming f [^]*by that name already[^]*exists"},
      {"add full X", "Storing the entry in full [^]*Error Code: 207 "},
      {"add g X 2>&1 >/dev/full || false", "the entry is stored as 1, but"},
      {"list f --from 1/1/2028 --to 1/1/2027", "Fri-Jan 1,2027, is before [^]* Sat-Jan 1,2028"},
      {"add f --date none X", "the date field rejects 'none'"},
  };
  for (const auto& [command, box] : kFailures) {
    const Outcome outcome = Shell(std::string("daybook ") + command + " 2>&1");
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_TRUE(std::regex_search(outcome.text, std::regex(box))) << command << outcome.text;
  }
  EXPECT_EQ(directory.Read("taken"), "precious");
}

// From now on, a command that this thread starts cannot force data to the disk.
void LetSyncsFail() {
  sock_filter steps[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                         BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fdatasync, 0, 1),
                         BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EIO),
                         BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program = {std::size(steps), steps};
  ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

TEST_F(SharedFile, IsNotReportedAsStoredIfTheDiskFails) {
  Make(1);
  std::thread([&] {
    LetSyncsFail();
    for (const std::string command :
         {"add f X", "add new X", "edit f 1 X", "done f 1", "copy f g", "stress f"}) {
      const Outcome outcome = Shell("daybook " + command + " 2>&1");
      EXPECT_EQ(outcome.status, 1) << command;
      EXPECT_NE(outcome.text.find("Error Code: 108"), std::string::npos) << outcome.text;
      EXPECT_EQ(outcome.text.find("stored"), std::string::npos) << outcome.text;
    }
  }).join();
  EXPECT_EQ(Shell("ls").text, "f\nnew\n");
}

// A command that waits for a lock of this process, and has said so on its standard error.
class BlockedCommand {
 public:
  BlockedCommand(const std::string& path, const std::string& command) {
    EXPECT_EQ(file_.OpenFile(path.c_str(), 0), 0);
    EXPECT_EQ(file_.VirtualLock(OZ_LOCK_NOWAIT, &position_, eLockWholeRange), 0);
    std::signal(SIGINT, SIG_DFL);  // the command would inherit that it is ignored
    output_ = popen(
        ("echo $$; exec '" DAYBOOK_PATH "' " + command + ' ' + path + " X 2>&1").c_str(), "r");
    process_ = std::stoi(Line());
    EXPECT_EQ(Line(), "in use by another user, waiting (1)\n");
  }

  void Interrupt() const { kill(process_, SIGINT); }
  void Unlock() { EXPECT_EQ(file_.VirtualLock(OZ_LOCK_RELEASE, &position_, eLockWholeRange), 0); }

  std::string Line() {
    char line[256] = {};
    return std::fgets(line, sizeof line, output_) != nullptr ? line : "";
  }

  int Status() { return WEXITSTATUS(pclose(output_)); }

 private:
  OZFile file_;
  std::int32_t position_ = kLockBase;
  FILE* output_ = nullptr;
  int process_ = -1;
};

TEST_F(SharedFile, IsWaitedFor) {
  Make(1);
  BlockedCommand add(directory.Path("f"), "add");
  // A command that waits must not write its messages into the file if it has no standard error.
  EXPECT_EQ(Shell("timeout 0.5 '" DAYBOOK_PATH "' list f 2>&-").status, 124);
  const Outcome refused = Shell("daybook add f X --wait 0 2>&1");
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.text.find("Error Code: 203 "), std::string::npos) << refused.text;
  add.Unlock();
  EXPECT_EQ(add.Line().find("stored as 2: "), 0U);
  EXPECT_EQ(add.Status(), 0);
}

TEST_F(SharedFile, IsNotChangedAfterAnInterruptedWait) {
  const std::string content = Make(1);
  BlockedCommand add(directory.Path("f"), "add");
  add.Interrupt();
  EXPECT_EQ(add.Line(), "daybook: stopped\n");
  EXPECT_EQ(add.Status(), 130);
  EXPECT_EQ(File(), content);
}

TEST_F(SharedFile, IsNeitherRenamedNorDeletedWhileInUse) {
  const std::string content = Make(1);
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

TEST_F(SharedFile, IsListedInColorOnATerminalOnly) {
  Shell("daybook add f --date sat X");
  const std::string on_terminal = "script -qec \"'" DAYBOOK_PATH "' list f\" /dev/null </dev/null";
  const std::string colored = "\033[36mSat-Nov 21*";
  EXPECT_NE(Shell("NO_COLOR= " + on_terminal).text.find(colored), std::string::npos);
  EXPECT_NE(Shell("NO_COLOR=1 " + on_terminal).text.find("\nSat-Nov 21*"), std::string::npos);
  EXPECT_NE(Shell("NO_COLOR= daybook list f").text.find("\nSat-Nov 21*"), std::string::npos);
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

TEST_F(SharedFile, IsCheckedForTheLossesOfEarlierRuns) {
  const std::string own = Make(1);
  Shell("daybook stress f --users 2 --entries 5; daybook edit f 3 X");
  const Outcome outcome = Shell("daybook stress f --users 1 --entries 2");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.text.find("stored 12, lost 1, damaged 0\n"), 0U) << outcome.text;
  EXPECT_EQ(File().substr(0, own.size()), own);
}

}  // namespace
