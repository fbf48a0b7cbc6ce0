// Two users of one directory on a network volume, each at a machine of its own: what one of them
// does, the other must see. scripts/test-network brings up the volumes and runs this program.
//
//   two_users FIRST_MACHINE FIRST_DIRECTORY SECOND_MACHINE SECOND_DIRECTORY READER_DIRECTORY
//
// The directories are the same one, mounted at the first machine, at the second, and once more at
// the second for reading only. A machine is a directory whose files "net" and "uts" are its
// namespaces; without them, it is this machine.
//
// Every user of a case is a process. This process lets them take the steps of the case. Prints a
// line for each case, with tabs between: "right" or "wrong", the case, what was wrong.
#include <fcntl.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <ctime>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "orzcore/file.h"

namespace {

constexpr int kUsers = 3;
constexpr int kTextSize = 100;

struct Detail {
  const char* text = "";  // to be written, or what a read must find
  const char* name = "file";
  unsigned int flags = OZ_OPEN_WRITE_MASK;
  unsigned int share = 0;
  std::int32_t position = 0;
  std::int32_t length = 1;
  eLockModes mode = eLockWholeRange;
  unsigned int lock_flags = OZ_LOCK_NOWAIT;
};
constexpr Detail kToRead = {.flags = 0};
constexpr Detail kExclusive = {.share = OZ_SHARE_EXCLUSIVE};
constexpr Detail kNew = {.name = "new"};
constexpr Detail kNewOpen = {.name = "new", .flags = OZ_OPEN_WRITE_MASK | OZ_OPEN_CREATE};
constexpr Detail kRenamed = {.name = "renamed"};
constexpr Detail kShared = {.mode = eLockSharedByte};

struct User : OZFile {
  std::string directory, number;  // the names of files end with the number
  std::int32_t locked = 0;
  char* found = nullptr;  // by the last read

  OZFileSpec Path(const char* name) const { return (directory + '/' + name + number).c_str(); }
};

// What users can do.
using Act = OZError (*)(User& user, const Detail& it);

OZError Open(User& user, const Detail& it) {
  return user.OpenFile(user.Path(it.name), it.flags, it.share);
}
OZError Create(User& user, const Detail& it) {
  return user.CreateFileA(user.Path(it.name), it.share);
}
OZError Close(User& user, const Detail& /*it*/) { return user.CloseFile(); }
OZError OpenAndClose(User& user, const Detail& it) {
  const OZError error = Open(user, it);
  return error == eErrNone ? Close(user, it) : error;
}
OZError Read(User& user, const Detail& /*it*/) {  // the whole file
  unsigned short count = 0;
  const std::int32_t length = user.FileLength();
  user.Seek(0, 0, nullptr);
  const OZError error = user.Read(user.found, kTextSize - 1, &count);
  user.found[count] = '\0';
  return error == eErrNone && count != length ? eErrSeek : error;
}
OZError Write(User& user, const Detail& it) {
  auto count = static_cast<unsigned short>(std::strlen(it.text));
  user.Seek(it.position, 0, nullptr);
  return user.Write(it.text, count, &count);
}
OZError Flush(User& user, const Detail& /*it*/) { return user.flushFile(); }
OZError Lock(User& user, const Detail& it) { return user.LockBytes(0, it.position, it.length); }
OZError Unlock(User& user, const Detail& it) { return user.LockBytes(1, it.position, it.length); }
OZError VirtualLock(User& user, const Detail& it) {
  user.locked = 0x7F000000;
  return user.VirtualLock(it.lock_flags, &user.locked, it.mode);
}
OZError Release(User& user, const Detail& it) {
  return user.VirtualLock(OZ_LOCK_RELEASE, &user.locked, it.mode);
}
OZError Rename(User& user, const Detail& it) {
  return OZFile::RenameFile(user.Path(it.name), user.Path("renamed"));
}
OZError Delete(User& user, const Detail& it) { return OZFile::DeleteFileA(user.Path(it.name)); }
OZError Die(User& /*user*/, const Detail& /*it*/) { return static_cast<OZError>(raise(SIGKILL)); }

struct Step {
  int user;
  Act act;
  Detail detail;
  OZError expected;  // in a race, the user who comes first gets 0 in any case
};

// A user's number. A call makes a step of this user.
struct Actor {
  int user;
  Step operator()(Act act, const Detail& detail = {}, OZError expected = eErrNone) const {
    return {user, act, detail, expected};
  }
};
constexpr Actor kFirst{0}, kSecond{1}, kReader{2};
constexpr const char* kNames[] = {"first", "second", "reader"};

// How the steps of a case are taken.
struct Pace {
  int rounds = 1;        // each with other files
  int times = 1;         // in each step, the user does the same again and again
  int at_once = 1;       // so many steps are taken at the same time
  int most_in_time = 2;  // users who may get 0 then; one must
};
constexpr Pace kFlushes = {.rounds = 300};
constexpr Pace kLoad = {.times = 400, .at_once = 2};
constexpr Pace kRace = {.rounds = 150, .at_once = 2};
constexpr Pace kRaceForOne = {.rounds = 150, .at_once = 2, .most_in_time = 1};

struct Case {
  std::string name;  // topic: case
  std::vector<Step> steps;
  Pace pace = {};
};

// The first steps of every case.
const Step kSetUp[] = {kFirst(Create), kFirst(Write, {"one"}), kFirst(Close)};

const std::vector<Case> kCases = {
    {"sharing: shared, then exclusive",
     {kFirst(Open), kSecond(Open, kExclusive, eErrSharing), kFirst(Close), kFirst(Open, kToRead),
      kSecond(Open, kExclusive, eErrSharing), kSecond(Open), kFirst(Close), kSecond(Close),
      kSecond(Open, kExclusive)}},
    {"sharing: exclusive, then shared",
     {kFirst(Open, kExclusive), kSecond(Open, {}, eErrSharing), kSecond(Open, kToRead, eErrSharing),
      kSecond(Create, {}, eErrCannotCreate), kSecond(Open, kExclusive, eErrSharing), kFirst(Close),
      kSecond(Open)}},
    {"sharing: rename and delete of an open file",
     {kFirst(Open), kSecond(Rename, {}, eErrAccessDenied), kSecond(Delete, {}, eErrAccessDenied),
      kFirst(Close), kSecond(Rename), kSecond(Delete, kRenamed)}},
    {"locks: byte locks",
     {kFirst(Lock, {.length = 10}), kSecond(Lock, {.position = 9, .length = 2}, eErrLocked),
      kSecond(Lock, {.position = 10}), kFirst(Lock, {.position = 10}, eErrLocked),
      kFirst(Unlock, {.length = 10}), kSecond(Lock, {.length = 10})}},
    {"locks: virtual locks",
     {kFirst(VirtualLock), kSecond(VirtualLock, {}, eErrLocked),
      kSecond(VirtualLock, kShared, eErrLocked), kFirst(Release), kFirst(VirtualLock, kShared),
      kSecond(VirtualLock, {.mode = eLockSharedByte, .lock_flags = OZ_LOCK_NOWAIT | OZ_LOCK_RETRY}),
      kFirst(Release, kShared), kFirst(VirtualLock, {}, eErrLocked), kSecond(Release, kShared),
      kFirst(VirtualLock)}},
    {"locks: transfers over a lock of the other one",
     {kFirst(Lock, {.position = 2, .length = 9}), kSecond(Read, {}, eErrLocked),
      kSecond(Write, {"two"}, eErrLocked), kFirst(Unlock, {.position = 2, .length = 9}),
      kSecond(Read, {"one"})}},
    {"locks: transfers over a lock of one's own",
     {kSecond(Open), kFirst(Lock, {.length = 20}), kFirst(Read, {"one"}), kFirst(Write, {"two"}),
      kSecond(Read, {}, eErrLocked), kFirst(Unlock, {.length = 20}), kFirst(Lock, {.position = 1}),
      kFirst(Read, {"two"}), kFirst(Write, {"six"}), kSecond(Lock, {.position = 2}),
      kFirst(Read, {}, eErrLocked)}},
    {"killed: a user who has the file exclusively",
     {kFirst(Open, kExclusive), kFirst(Die), kSecond(Open, kExclusive)}},
    {"killed: a user who has locks",
     {kFirst(Lock), kFirst(VirtualLock), kSecond(Lock, {}, eErrLocked),
      kSecond(VirtualLock, {}, eErrLocked), kFirst(Die), kSecond(Lock), kSecond(VirtualLock)}},
    {"names: renamed",
     {kSecond(OpenAndClose), kFirst(Rename), kSecond(Open, {}, eErrNotFound),
      kSecond(Open, kRenamed), kSecond(Read, {"one"})}},
    {"names: missing, then made",
     {kSecond(Open, kNew, eErrNotFound), kFirst(Create, kNew), kSecond(Open, kNew)}},
    {"names: deleted", {kSecond(OpenAndClose), kFirst(Delete), kSecond(Open, {}, eErrNotFound)}},
    {"names: deleted and made anew",
     {kSecond(OpenAndClose), kFirst(Delete), kFirst(Create), kFirst(Write, {"two"}),
      kSecond(Read, {"two"}), kSecond(Write, {"three"}), kFirst(Read, {"three"})}},
    {"names: renamed and made anew",
     {kSecond(OpenAndClose), kFirst(Rename), kFirst(Create), kSecond(Write, {"two"}),
      kFirst(Read, {"two"}), kFirst(Close), kFirst(Read, {"one", "renamed"})}},
    {"contents: under a lock",
     {kFirst(Read, {"one"}), kSecond(Read, {"one"}), kFirst(VirtualLock), kFirst(Write, {"three"}),
      kFirst(Release), kSecond(VirtualLock), kSecond(Read, {"three"}), kSecond(Write, {"eleven"}),
      kSecond(Release), kFirst(VirtualLock), kFirst(Read, {"eleven"})}},
    {"contents: without a lock",
     {kFirst(Read, {"one"}), kSecond(Read, {"one"}), kFirst(Write, {"two"}), kSecond(Read, {"two"}),
      kSecond(Write, {"six"}), kFirst(Read, {"six"}), kFirst(Write, {.text = "two", .position = 3}),
      kSecond(Read, {"sixtwo"}), kSecond(Write, {.text = "ten", .position = 6}),
      kFirst(Read, {"sixtwoten"})}},
    {"contents: after a flush",
     {kFirst(Read, {"one"}), kSecond(Read, {"one"}), kFirst(Write, {"three"}), kFirst(Flush),
      kSecond(Read, {"three"})}},
    {"flushes: of a file that is open exclusively",
     {kFirst(Write, {.text = "two", .share = OZ_SHARE_EXCLUSIVE}), kFirst(Flush)},
     kFlushes},
    {"flushes: rename and delete just after a close",
     {kFirst(Create, kNew), kFirst(Close), kFirst(Rename, kNew), kFirst(Open, kRenamed),
      kFirst(Close), kFirst(Delete, kRenamed)},
     kFlushes},
    {"read-only: opens",
     {kReader(Open, {}, eErrWriteProtected), kReader(Open, kToRead), kReader(Read, {"one"}),
      kReader(Write, {"two"}, eErrAccessDenied)}},
    {"read-only: sharing",
     {kReader(Open, kToRead), kFirst(Open, kExclusive, eErrSharing), kReader(Close),
      kFirst(Open, kExclusive), kReader(Open, kToRead, eErrSharing)}},
    {"read-only: locks and contents",
     {kReader(Open, kToRead), kReader(Lock), kFirst(Lock, {}, eErrLocked), kReader(Unlock),
      kFirst(Write, {"two"}), kReader(Read, {"two"}), kFirst(Lock), kReader(Read, {}, eErrLocked)}},
    {"load: opens and closes", {kFirst(OpenAndClose), kSecond(OpenAndClose)}, kLoad},
    {"load: reads", {kFirst(Read, {"one"}), kSecond(Read, {"one"})}, kLoad},
    {"creation: create and create",
     {kFirst(Create, kNew, eErrCannotCreate), kSecond(Create, kNew, eErrCannotCreate)},
     kRaceForOne},
    {"creation: create and open",
     {kFirst(Create, kNew, eErrCannotCreate), kSecond(Open, kNewOpen)},
     kRace},
    {"creation: open and open", {kFirst(Open, kNewOpen), kSecond(Open, kNewOpen)}, kRace},
};

struct Place {
  std::string machine, directory;
};

// What this process shares with a user.
struct Link {
  sem_t go, done;
  const Step* step;
  Pace pace;
  int round;
  OZError error;
  char found[kTextSize];
};

[[noreturn]] void Play(const std::string& number, const Place& place, Link& link) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const char* space : {"/net", "/uts"}) {
    setns(open((place.machine + space).c_str(), O_RDONLY), 0);
  }
  User user = {{}, place.directory, number, 0, link.found};
  for (;; sem_post(&link.done)) {
    sem_wait(&link.go);
    const auto& [who, act, detail, expected] = *link.step;
    const bool opens = act == Read || act == Write || act == Lock || act == VirtualLock;
    user.number = number + '.' + std::to_string(link.round);
    link.error = opens && user.IsOpen() == 0 ? Open(user, detail) : eErrNone;
    int left = link.pace.times;
    while (link.error == eErrNone && left-- > 0) link.error = act(user, detail);
    if (link.pace.at_once > 1) user.CloseFile();
  }
}

// Lets the users take the next steps. Returns what is wrong.
std::string Take(const Step* first, const Pace& pace, Link* links) {
  const Step* const end = first + pace.at_once;
  for (const Step* step = first; step != end; ++step) {
    const bool changes_names = step->act == Create || step->act == Rename || step->act == Delete;
    // To NFS 3, two changes of a directory in the same clock tick of the server are one.
    if (changes_names && pace.rounds == 1) usleep(20'000);
    links[step->user].step = step;
    links[step->user].pace = pace;
    sem_post(&links[step->user].go);
  }
  const timespec limit = {std::time(nullptr) + 60, 0};
  int in_time = 0;
  for (const Step* step = first; step != end; ++step) {
    const auto& [user, act, detail, expected] = *step;
    Link& link = links[user];
    const std::string name = kNames[user];
    if (act == Die) {
      wait(nullptr);
      usleep(100'000);  // until the servers know
      return "";
    }
    if (sem_timedwait(&link.done, &limit) != 0) return name + ": no end";
    if (link.error == eErrNone) ++in_time;
    if (link.error != expected && (link.error != eErrNone || pace.at_once == 1)) {
      return name + ": " + std::to_string(expected) + " expected, " + std::to_string(link.error) +
             " came";
    }
    if (act == Read && link.error == eErrNone && std::string(link.found) != detail.text) {
      return name + ": '" + detail.text + "' expected, '" + link.found + "' came";
    }
  }
  const bool is_right = pace.at_once == 1 || (in_time >= 1 && in_time <= pace.most_in_time);
  return is_right ? "" : std::to_string(in_time) + " in time";
}

// Returns what is wrong.
std::string Run(const Case& it, const std::string& number, const Place* places, Link* links) {
  pid_t processes[kUsers];
  for (int i = 0; i < kUsers; ++i) {
    links[i] = {};
    sem_init(&links[i].go, 1, 0);
    sem_init(&links[i].done, 1, 0);
    processes[i] = fork();
    if (processes[i] == 0) Play(number, places[i], links[i]);
  }
  std::string fault;
  for (const Step& step : kSetUp) fault += Take(&step, {}, links);
  const int steps = static_cast<int>(it.steps.size());
  for (int i = 0; fault.empty() && i < it.pace.rounds * steps; i += it.pace.at_once) {
    for (Link& link : std::span(links, kUsers)) link.round = i / steps;
    fault = Take(&it.steps[static_cast<std::size_t>(i % steps)], it.pace, links);
    if (!fault.empty()) fault = "step " + std::to_string(i + 1) + ", " + fault;
  }
  for (const pid_t process : processes) kill(process, SIGKILL);
  while (wait(nullptr) > 0) continue;
  return fault;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  const Place places[kUsers] = {{argv[1], argv[2]}, {argv[3], argv[4]}, {argv[3], argv[5]}};
  void* const memory = mmap(nullptr, kUsers * sizeof(Link), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  for (const Case& it : kCases) {
    const std::string number = std::to_string(&it - kCases.data());
    const std::string fault = Run(it, number, places, static_cast<Link*>(memory));
    std::cout << (fault.empty() ? "right\t" : "wrong\t") << it.name << '\t' << fault << '\n'
              << std::flush;
  }
}
