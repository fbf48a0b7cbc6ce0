// Two users of one directory on a network volume, each at a machine of its own: what one of them
// does, the other must see. scripts/test-network brings up the volumes and runs this program.
//
//   two_users FIRST_MACHINE FIRST_DIRECTORY SECOND_MACHINE SECOND_DIRECTORY READER_DIRECTORY
//
// The directories are the same one, mounted at the first machine, at the second, and once more at
// the second for reading only. A machine is a directory whose files "net" and "uts" are its
// namespaces; without them, it is this machine.
//
// In each case, every user is a process. The steps come one after another; a race has a step for
// each of the two, and they come at the same time, in many rounds. Prints a line for each case,
// with tabs between: "right" or "wrong", the case, what was wrong.
#include <fcntl.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>

#include "orzcore/file.h"

namespace {

constexpr unsigned int kReading = 0;
constexpr unsigned int kWriting = OZ_OPEN_WRITE_MASK;
constexpr unsigned int kExclusive = OZ_SHARE_EXCLUSIVE;
constexpr unsigned int kPatient = OZ_LOCK_NOWAIT | OZ_LOCK_RETRY;
constexpr int kRounds = 150;

struct Detail {
  char name[8] = "file";
  char text[16] = "";  // to be written, or what a read must find
  unsigned int flags = kWriting;
  unsigned int share = 0;
  std::int32_t position = 0;
  std::int32_t length = 1;
  eLockModes mode = eLockWholeRange;
  unsigned int lock_flags = OZ_LOCK_NOWAIT;
  int times = 1;
};

// A user, and all that one can do.
class User {
 public:
  User(std::string directory, int number) : directory_(std::move(directory)), number_(number) {}

  OZError Open(const Detail& it) { return file_.OpenFile(Path(it.name), it.flags, it.share); }
  OZError Create(const Detail& it) { return file_.CreateFileA(Path(it.name), it.share); }
  OZError Close(const Detail& /*it*/) { return file_.CloseFile(); }
  OZError Read(const Detail& /*it*/) {  // the whole file
    char text[100] = "";
    unsigned short count = 0;
    const std::int32_t length = file_.FileLength();
    file_.Seek(0, 0, nullptr);
    const OZError error = file_.Read(text, sizeof text - 1, &count);
    found_ = text;
    if (length != count) found_ += ", of length " + std::to_string(length);
    return error;
  }
  OZError Write(const Detail& it) {
    auto count = static_cast<unsigned short>(std::strlen(it.text));
    file_.Seek(it.position, 0, nullptr);
    return file_.Write(it.text, count, &count);
  }
  OZError WriteAndFlush(const Detail& it) {
    const OZError error = Write(it);
    return error == eErrNone ? file_.flushFile() : error;
  }
  OZError Lock(const Detail& it) { return file_.LockBytes(0, it.position, it.length); }
  OZError Unlock(const Detail& it) { return file_.LockBytes(1, it.position, it.length); }
  OZError VirtualLock(const Detail& it) {
    locked_ = 0x7F000000;
    return file_.VirtualLock(it.lock_flags, &locked_, it.mode);
  }
  OZError Release(const Detail& it) {
    return file_.VirtualLock(OZ_LOCK_RELEASE, &locked_, it.mode);
  }
  OZError Rename(const Detail& it) { return OZFile::RenameFile(Path(it.name), Path("new")); }
  OZError Delete(const Detail& it) { return OZFile::DeleteFileA(Path(it.name)); }
  OZError RenameAndDelete(const Detail& it) {  // each just after a close
    ++number_;
    OZError error = Create(it);
    if (error == eErrNone) error = Close(it);
    if (error == eErrNone) error = Rename(it);
    if (error == eErrNone) error = Open({.name = "new"});
    if (error == eErrNone) error = Close(it);
    return error == eErrNone ? Delete({.name = "new"}) : error;
  }
  OZError Die(const Detail& /*it*/) { return static_cast<OZError>(raise(SIGKILL)); }

  void NextFile() { ++number_; }
  bool IsOpen() const { return file_.IsOpen() != 0; }
  const std::string& Found() const { return found_; }

 private:
  OZFileSpec Path(const char* name) const {
    return (directory_ + '/' + name + std::to_string(number_)).c_str();
  }

  const std::string directory_;
  int number_;  // the names of files end with it
  OZFile file_;
  std::int32_t locked_ = 0;
  std::string found_;  // by the last read
};

struct Act {
  const char* name;
  OZError (User::*work)(const Detail& it);
  bool opens = false;  // a file that is closed, beforehand
};
constexpr Act kOpen = {"open", &User::Open};
constexpr Act kCreate = {"create", &User::Create};
constexpr Act kClose = {"close", &User::Close};
constexpr Act kOpenAndClose = {"open and close", &User::Close, true};
constexpr Act kRead = {"read", &User::Read, true};
constexpr Act kWrite = {"write", &User::Write, true};
constexpr Act kWriteAndFlush = {"write and flush", &User::WriteAndFlush, true};
constexpr Act kLock = {"lock", &User::Lock, true};
constexpr Act kUnlock = {"unlock", &User::Unlock};
constexpr Act kVirtualLock = {"virtual lock", &User::VirtualLock, true};
constexpr Act kRelease = {"release", &User::Release};
constexpr Act kRename = {"rename", &User::Rename};
constexpr Act kDelete = {"delete", &User::Delete};
constexpr Act kRenameAndDelete = {"rename and delete", &User::RenameAndDelete};
constexpr Act kDie = {"die", &User::Die};

enum Who : int { kFirst, kSecond, kReader, kAll };
constexpr const char* kNames[] = {"first", "second", "reader"};

struct Step {
  Who who;
  Act act;  // all zeros behind the last step
  Detail detail;
  OZError expected;  // in a race: of a user who comes too late; who comes in time always gets 0
};
constexpr Step First(const Act& act, const Detail& detail = {}, OZError expected = eErrNone) {
  return {kFirst, act, detail, expected};
}
constexpr Step Second(const Act& act, const Detail& detail = {}, OZError expected = eErrNone) {
  return {kSecond, act, detail, expected};
}
constexpr Step Reader(const Act& act, Detail detail = {}, OZError expected = eErrNone) {
  if (act.opens) detail.flags = kReading;
  return {kReader, act, detail, expected};
}

struct Case {
  const char* name;  // topic: case
  Step steps[12];
  int rounds = 0;        // of a race
  int most_in_time = 2;  // of the users in a round of a race; one at least
};

constexpr Detail kNew = {.name = "new"};
constexpr Detail kNewOpen = {.name = "new", .flags = kWriting | OZ_OPEN_CREATE};
constexpr Detail kOften = {.text = "one", .times = 400};

// At the beginning there is a file named "file" that holds "one".
constexpr Case kCases[] = {
    {"sharing: shared, then exclusive",
     {First(kOpen), Second(kOpen, {.share = kExclusive}, eErrSharing), First(kClose),
      First(kOpen, {.flags = kReading}), Second(kOpen, {.share = kExclusive}, eErrSharing),
      Second(kOpen), First(kClose), Second(kClose), Second(kOpen, {.share = kExclusive})}},
    {"sharing: exclusive, then shared",
     {First(kOpen, {.share = kExclusive}), Second(kOpen, {}, eErrSharing),
      Second(kOpen, {.flags = kReading}, eErrSharing), Second(kCreate, {}, eErrCannotCreate),
      Second(kOpen, {.share = kExclusive}, eErrSharing), First(kClose), Second(kOpen)}},
    {"sharing: rename and delete of an open file",
     {First(kOpen), Second(kRename, {}, eErrAccessDenied), Second(kDelete, {}, eErrAccessDenied),
      First(kClose), Second(kRename), Second(kDelete, {.name = "new"})}},
    {"locks: byte locks",
     {First(kLock, {.length = 10}), Second(kLock, {.position = 9, .length = 2}, eErrLocked),
      Second(kLock, {.position = 10}), First(kLock, {.position = 10}, eErrLocked),
      First(kUnlock, {.length = 10}), Second(kLock, {.length = 10})}},
    {"locks: virtual locks",
     {First(kVirtualLock), Second(kVirtualLock, {}, eErrLocked),
      Second(kVirtualLock, {.mode = eLockSharedByte}, eErrLocked), First(kRelease),
      First(kVirtualLock, {.mode = eLockSharedByte}),
      Second(kVirtualLock, {.mode = eLockSharedByte, .lock_flags = kPatient}),
      First(kRelease, {.mode = eLockSharedByte}), First(kVirtualLock, {}, eErrLocked),
      Second(kRelease, {.mode = eLockSharedByte}), First(kVirtualLock)}},
    {"locks: transfers over a lock of the other one",
     {First(kLock, {.position = 2, .length = 9}), Second(kRead, {}, eErrLocked),
      Second(kWrite, {.text = "two"}, eErrLocked), First(kUnlock, {.position = 2, .length = 9}),
      Second(kRead, {.text = "one"})}},
    {"locks: transfers over a lock of one's own",
     {Second(kOpen), First(kLock, {.length = 20}), First(kRead, {.text = "one"}),
      First(kWrite, {.text = "two"}), Second(kRead, {}, eErrLocked), First(kUnlock, {.length = 20}),
      First(kLock, {.position = 1}), First(kRead, {.text = "two"}), First(kWrite, {.text = "six"}),
      Second(kLock, {.position = 2}), First(kRead, {}, eErrLocked)}},
    {"killed: a user who has the file exclusively",
     {First(kOpen, {.share = kExclusive}), First(kDie), Second(kOpen, {.share = kExclusive})}},
    {"killed: a user who has locks",
     {First(kLock), First(kVirtualLock), Second(kLock, {}, eErrLocked),
      Second(kVirtualLock, {}, eErrLocked), First(kDie), Second(kLock), Second(kVirtualLock)}},
    {"names: renamed",
     {Second(kOpenAndClose), First(kRename), Second(kOpen, {}, eErrNotFound),
      Second(kRead, {.name = "new", .text = "one"})}},
    {"names: missing, then made",
     {Second(kOpen, {.name = "new"}, eErrNotFound), First(kCreate, {.name = "new"}),
      Second(kOpen, {.name = "new"})}},
    {"names: deleted", {Second(kOpenAndClose), First(kDelete), Second(kOpen, {}, eErrNotFound)}},
    {"names: deleted and made anew",
     {Second(kOpenAndClose), First(kDelete), First(kCreate), First(kWrite, {.text = "two"}),
      Second(kRead, {.text = "two"}), Second(kWrite, {.text = "three"}),
      First(kRead, {.text = "three"})}},
    {"names: renamed and made anew",
     {Second(kOpenAndClose), First(kRename), First(kCreate), Second(kWrite, {.text = "two"}),
      First(kRead, {.text = "two"}), First(kClose), First(kRead, {.name = "new", .text = "one"})}},
    {"contents: under a lock",
     {First(kRead, {.text = "one"}), Second(kRead, {.text = "one"}), First(kVirtualLock),
      First(kWrite, {.text = "three"}), First(kRelease), Second(kVirtualLock),
      Second(kRead, {.text = "three"}), Second(kWrite, {.text = "eleven"}), Second(kRelease),
      First(kVirtualLock), First(kRead, {.text = "eleven"})}},
    {"contents: without a lock",
     {First(kRead, {.text = "one"}), Second(kRead, {.text = "one"}), First(kWrite, {.text = "two"}),
      Second(kRead, {.text = "two"}), First(kWrite, {.text = "six"}),
      Second(kRead, {.text = "six"}), Second(kWrite, {.text = "ten"}),
      First(kRead, {.text = "ten"})}},
    {"contents: longer, without a lock",
     {First(kRead, {.text = "one"}), Second(kRead, {.text = "one"}),
      First(kWrite, {.text = "two", .position = 3}), Second(kRead, {.text = "onetwo"}),
      Second(kWrite, {.text = "six", .position = 6}), First(kRead, {.text = "onetwosix"})}},
    {"contents: after a flush",
     {First(kRead, {.text = "one"}), Second(kRead, {.text = "one"}),
      First(kWriteAndFlush, {.text = "three"}), Second(kRead, {.text = "three"})}},
    {"flushes: of a file that is open exclusively",
     {First(kWriteAndFlush, {.text = "two", .share = kExclusive, .times = 300})}},
    {"flushes: rename and delete just after a close", {First(kRenameAndDelete, {.times = 300})}},
    {"read-only: opens",
     {Reader(kOpen, {}, eErrWriteProtected), Reader(kRead, {.text = "one"}),
      Reader(kWrite, {.text = "two"}, eErrAccessDenied)}},
    {"read-only: sharing",
     {Reader(kRead, {.text = "one"}), First(kOpen, {.share = kExclusive}, eErrSharing),
      Reader(kClose), First(kOpen, {.share = kExclusive}), Reader(kRead, {}, eErrSharing)}},
    {"read-only: locks and contents",
     {Reader(kLock), First(kLock, {}, eErrLocked), Reader(kUnlock), First(kWrite, {.text = "two"}),
      Reader(kRead, {.text = "two"}), First(kLock), Reader(kRead, {}, eErrLocked)}},
    {"load: opens and closes", {First(kOpenAndClose, kOften), Second(kOpenAndClose, kOften)}, 1},
    {"load: reads", {First(kRead, kOften), Second(kRead, kOften)}, 1},
    {"creation: create and create",
     {First(kCreate, kNew, eErrCannotCreate), Second(kCreate, kNew, eErrCannotCreate)},
     kRounds,
     1},
    {"creation: create and open",
     {First(kCreate, kNew, eErrCannotCreate), Second(kOpen, kNewOpen)},
     kRounds},
    {"creation: open and open", {First(kOpen, kNewOpen), Second(kOpen, kNewOpen)}, kRounds},
};

struct Place {
  std::string machine;
  std::string directory;
};

// What the processes of a case share.
struct Common {
  sem_t go[kAll];  // for each user: now it is your turn
  std::atomic<int> step;
  std::atomic<bool> is_over;
  std::atomic<int> in_time[kRounds];
  char fault[200];  // the first one
};

void Note(Common& common, const char* unit, int number, const std::string& fault) {
  if (fault.empty() || common.fault[0] != '\0') return;
  std::snprintf(common.fault, sizeof common.fault, "%s %d, %s", unit, number, fault.c_str());
}

// The user takes a step. Returns what is wrong with its outcome.
std::string Take(const Step& step, User& user, OZError* error) {
  const auto& [who, act, detail, expected] = step;
  int errors = 0;
  for (int time = 0; time < detail.times; ++time) {
    OZError outcome = act.opens && !user.IsOpen() ? user.Open(detail) : eErrNone;
    if (outcome == eErrNone) outcome = (user.*act.work)(detail);
    if (outcome != eErrNone && errors++ == 0) *error = outcome;
  }
  std::ostringstream fault;
  fault << kNames[who] << ": " << act.name << ": ";
  const bool finds = act.work == kRead.work && expected == eErrNone;
  if (*error != expected) {
    fault << expected << " expected, " << *error << " came";
    if (errors > 1) fault << ' ' << errors << " times";
  } else if (finds && user.Found() != detail.text) {
    fault << "'" << detail.text << "' expected, '" << user.Found() << "' came";
  } else {
    return "";
  }
  return fault.str();
}

// After a step, it is the turn of the next user. The case is over after the last step or a fault.
void Advance(const Case& it, Common& common, const std::string& fault) {
  const int next = ++common.step;
  Note(common, "step", next, fault);
  if (fault.empty() && it.steps[next].act.work != nullptr) {
    sem_post(&common.go[it.steps[next].who]);
    return;
  }
  common.is_over = true;
  for (sem_t& go : common.go) sem_post(&go);
}

void PlaySteps(const Case& it, Who who, User& user, Common& common) {
  if (who == kFirst) sem_post(&common.go[it.steps[0].who]);
  for (;;) {
    sem_wait(&common.go[who]);
    if (common.is_over) return;
    OZError error = eErrNone;
    Advance(it, common, Take(it.steps[common.step], user, &error));
  }
}

void PlayRace(const Case& it, Who who, User& user, Common& common) {
  if (who == kReader) return;
  for (int round = 0; round < it.rounds; ++round) {
    sem_post(&common.go[who == kFirst ? kSecond : kFirst]);
    sem_wait(&common.go[who]);
    OZError error = eErrNone;
    const std::string fault = Take(it.steps[who], user, &error);
    if (error == eErrNone) ++common.in_time[round];
    if (error != eErrNone) Note(common, "round", round + 1, fault);
    user.Close({});
    user.NextFile();
  }
}

[[noreturn]] void Play(const Case& it, Who who, const Place& place, int number, Common& common) {
  constexpr unsigned int kPatience = 60;  // seconds
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  alarm(kPatience);
  for (const char* space : {"/net", "/uts"})
    setns(open((place.machine + space).c_str(), O_RDONLY), 0);
  User user(place.directory, number);
  if (who == kFirst) {
    user.Create({});
    user.Write({.text = "one"});
    user.Close({});
  }
  (it.rounds > 0 ? PlayRace : PlaySteps)(it, who, user, common);
  _exit(0);
}

// Returns what is wrong.
std::string Run(const Case& it, const Place* places, int number) {
  void* const memory =
      mmap(nullptr, sizeof(Common), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  Common& common = *new (memory) Common{};
  for (sem_t& go : common.go) sem_init(&go, 1, 0);
  for (const Who who : {kFirst, kSecond, kReader}) {
    if (fork() == 0) Play(it, who, places[who], number, common);
  }
  for (int status = 0; wait(&status) > 0;) {
    if (!WIFSIGNALED(status)) continue;
    constexpr int kUntilServersKnow = 100'000;  // microseconds
    usleep(kUntilServersKnow);
    Advance(it, common, WTERMSIG(status) == SIGKILL ? "" : "no end");
  }
  for (int round = 0; round < it.rounds; ++round) {
    const int in_time = common.in_time[round];
    if (in_time >= 1 && in_time <= it.most_in_time) continue;
    Note(common, "round", round + 1, std::to_string(in_time) + " in time");
  }
  std::string fault = common.fault;
  munmap(memory, sizeof(Common));
  return fault;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  const Place places[] = {{argv[1], argv[2]}, {argv[3], argv[4]}, {argv[3], argv[5]}};
  int number = 0;
  int wrong = 0;
  for (const Case& it : kCases) {
    const std::string fault = Run(it, places, number);
    std::cout << (fault.empty() ? "right" : "wrong") << '\t' << it.name << '\t' << fault << '\n'
              << std::flush;
    if (!fault.empty()) ++wrong;
    number += 1000;  // the names of two cases differ
  }
  return wrong == 0 ? 0 : 1;
}
