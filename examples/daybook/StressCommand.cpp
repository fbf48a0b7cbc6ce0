// Many users of one file at a time, some of whom are killed: what one was told is stored must be in
// the file afterwards, once.
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "Commands.h"
#include "Store.h"
#include "terminal/Failure.h"

namespace {

using Clock = std::chrono::steady_clock;

// What a user sends when an entry is stored; short enough to be sent in one piece.
struct Report {
  int user;
  int life;
  int entry;
  int waits;  // since the report before
};

// A life has names of its own, since the one before may have stored an entry without reporting it.
std::string NameOf(int user, int life, int entry) {
  return "user " + std::to_string(user) + " life " + std::to_string(life) + " entry " +
         std::to_string(entry);
}

// The work of one user, in a process of its own.
void AddEntries(const std::string& path, Report report, int entries, int pipe) {
  constexpr int kListEvery = 50;
  Store store(path, Store::kChanging, false);
  for (int waits = 0; report.entry < entries; waits = store.Waits()) {
    ++report.entry;
    Entry entry;
    entry.moment = OZDate::CurDateTime();
    entry.text = NameOf(report.user, report.life, report.entry);
    store.Add(entry);
    report.waits = store.Waits() - waits;
    if (write(pipe, &report, sizeof report) != sizeof report) _exit(kNegative);
    if (report.entry % kListEvery == 0 && !store.ReadAll().damaged.empty()) _exit(kNegative);
  }
}

// The users, and what they have reported.
class Crowd {
 public:
  Crowd(std::string path, int users, int entries)
      : path_(std::move(path)), entries_(entries), users_(static_cast<std::size_t>(users)) {
    if (pipe(pipe_) != 0) throw Failure{eErrNoFileHandles, "Starting", __FILE__, __LINE__};
  }
  ~Crowd() {
    for (const User& user : users_) {
      if (user.process > 0 && kill(user.process, SIGKILL) == 0) waitpid(user.process, nullptr, 0);
    }
    close(pipe_[0]);
    close(pipe_[1]);
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  void StartAll() {
    for (std::size_t user = 0; user < users_.size(); ++user) Start(static_cast<int>(user));
  }

  // Waits for a moment, and notes what is reported. Returns false when all users are through.
  bool Watch();

  // Kills a user who is at work, and starts the next life.
  void KillSomebody();

  int stored() const { return static_cast<int>(names_.size()); }
  int waits() const { return waits_; }
  int kills() const { return kills_; }
  const std::set<std::string>& names() const { return names_; }
  int Random(int most) { return std::uniform_int_distribution(0, most)(random_); }

 private:
  struct User {
    pid_t process = 0;
    int life = 0;
    int entries = 0;  // reported
  };

  void Start(int number);
  void ReadReports(int milliseconds);

  const std::string path_;
  const int entries_;
  std::vector<User> users_;
  int pipe_[2] = {-1, -1};
  std::set<std::string> names_;
  int waits_ = 0;
  int kills_ = 0;
  std::mt19937 random_{std::random_device{}()};
  Clock::time_point last_report_ = Clock::now();
};

void Crowd::Start(int number) {
  User& user = users_[static_cast<std::size_t>(number)];
  ++user.life;
  user.process = fork();
  if (user.process < 0) throw Failure{eErrOutOfMemory, "Starting a user", __FILE__, __LINE__};
  if (user.process > 0) return;
  try {
    close(pipe_[0]);  // so that the end of the parent is the end of the user
    std::signal(SIGINT, SIG_DFL);
    AddEntries(path_, {number, user.life, user.entries, 0}, entries_, pipe_[1]);
    _exit(kSuccess);
  } catch (const Failure& failure) {
    ShowFailure(failure);
  } catch (...) {  // such as no memory; nothing may leave the process but its status
  }
  _exit(kNegative);
}

// Notes what is in the pipe, and waits a while for something to come.
void Crowd::ReadReports(int milliseconds) {
  pollfd ready = {pipe_[0], POLLIN, 0};
  for (; poll(&ready, 1, milliseconds) > 0; milliseconds = 0) {
    Report report{};
    if (read(pipe_[0], &report, sizeof report) != sizeof report) return;
    users_[static_cast<std::size_t>(report.user)].entries = report.entry;
    names_.insert(NameOf(report.user, report.life, report.entry));
    waits_ += report.waits;
    last_report_ = Clock::now();
  }
}

bool Crowd::Watch() {
  constexpr int kMoment = 20;  // milliseconds
  constexpr auto kPatience = std::chrono::minutes(1);
  ReadReports(kMoment);
  bool busy = false;
  bool failed = false;
  for (User& user : users_) {
    int status = 0;
    if (user.process > 0 && waitpid(user.process, &status, WNOHANG) > 0) user.process = 0;
    busy |= user.process > 0;
    failed |= status != 0;
  }
  if (Interrupt::Came()) throw Stopped{};
  if (failed) throw Rejection("a user failed");
  if (Clock::now() - last_report_ > kPatience) throw Rejection("no user gets on");
  if (!busy) ReadReports(0);  // what the last of them sent as it ended
  return busy;
}

void Crowd::KillSomebody() {
  const int number = Random(static_cast<int>(users_.size()) - 1);
  User& user = users_[static_cast<std::size_t>(number)];
  if (user.process <= 0) return;
  constexpr int kMostMicroseconds = 3000;
  std::this_thread::sleep_for(std::chrono::microseconds(Random(kMostMicroseconds)));
  kill(user.process, SIGKILL);
  int status = 0;
  waitpid(user.process, &status, 0);
  user.process = 0;
  if (WIFEXITED(status) && status != 0) throw Rejection("a user failed");
  ++kills_;
  ReadReports(0);  // of the life that has ended
  Start(number);
}

}  // namespace

std::string ExplainStress() {
  return "Every user is a process. What one reports through a pipe is on the disk by then, and is\n"
         "looked for at the end. FILE must not exist, and is kept.\n";
}

ExitStatus RunStress(const Options& options) {
  const std::string& path = options.Words().front();
  const int users = options.Number("--users", 1, 100, 4);
  const int entries = options.Number("--entries", 1, 100000, 100);
  const OZError made = OZFile().CreateFileA(path.c_str(), 0);
  if (made != eErrNone) throw Failure{made, "Making a new file", __FILE__, __LINE__};

  const Interrupt interrupt;
  const auto start = Clock::now();
  Crowd crowd(path, users, entries);
  crowd.StartAll();
  const int between = 1 + entries / 6;  // so that each user is killed several times
  int next_kill = crowd.Random(between);
  while (crowd.Watch()) {
    if (!options.Has("--kill") || crowd.stored() < next_kill) continue;
    crowd.KillSomebody();
    next_kill = crowd.stored() + crowd.Random(between);
  }
  const std::chrono::duration<double> seconds = Clock::now() - start;

  const Store::Contents contents = Store(path, Store::kReading).ReadAll();
  std::map<std::string, int> found;
  for (const auto& [id, entry] : contents.entries) ++found[entry.text];
  const auto lost = std::count_if(crowd.names().begin(), crowd.names().end(),
                                  [&](const std::string& name) { return found[name] != 1; });
  std::cout << "stored " << crowd.stored() << ", lost " << lost << ", damaged "
            << contents.damaged.size() << "\nnot reported " << found.size() - crowd.names().size()
            << ", kills " << crowd.kills() << ", waits " << crowd.waits() << ", entries per second "
            << static_cast<int>(crowd.stored() / seconds.count()) << '\n';
  const bool well = lost == 0 && contents.damaged.empty() && crowd.stored() == users * entries;
  return well ? kSuccess : kNegative;
}
