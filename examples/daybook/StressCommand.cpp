// Many users of one file at a time, some of whom are killed: what one was told is stored must be in
// the file afterwards, once.
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <iostream>
#include <map>
#include <random>
#include <ratio>
#include <set>

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

// Has the system kill this process, wherever it is then.
void DieIn(std::chrono::nanoseconds time) {
  sigevent death{};
  death.sigev_notify = SIGEV_SIGNAL;
  death.sigev_signo = SIGKILL;
  timer_t timer{};
  const auto rest = static_cast<long>(time.count() % std::nano::den);
  const itimerspec moment = {{}, {time.count() / std::nano::den, rest}};
  if (timer_create(CLOCK_MONOTONIC, &death, &timer) == 0) timer_settime(timer, 0, &moment, nullptr);
}

// The users, and what they have reported.
class Crowd {
 public:
  Crowd(std::string path, int users, int entries, bool kills)
      : path_(std::move(path)),
        entries_(entries),
        mortal_(kills),
        users_(static_cast<std::size_t>(users)) {
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

  // Waits for a moment, notes what is reported, and begins another life for who was killed. Returns
  // false when all users are through.
  bool Watch();

  int stored() const { return static_cast<int>(names_.size()); }
  int waits() const { return waits_; }
  int kills() const { return kills_; }
  const std::set<std::string>& names() const { return names_; }

 private:
  struct User {
    pid_t process = 0;
    int life = 0;
    int entries = 0;  // reported
  };

  void Start(int number);
  void NoteEnd(int number, int status);
  bool ReadReport(int milliseconds);

  const std::string path_;
  const int entries_;
  const bool mortal_;
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
  // A longer one each time, so that all get through.
  const std::chrono::microseconds lifetime(
      std::uniform_int_distribution(1, user.life * 1000)(random_));
  user.process = fork();
  if (user.process < 0) throw Failure{eErrOutOfMemory, "Starting a user", __FILE__, __LINE__};
  if (user.process > 0) return;
  try {
    close(pipe_[0]);  // so that the end of the parent is the end of the user
    std::signal(SIGINT, SIG_DFL);
    if (mortal_) DieIn(lifetime);
    AddEntries(path_, {number, user.life, user.entries, 0}, entries_, pipe_[1]);
    _exit(kSuccess);
  } catch (const Failure& failure) {
    ShowFailure(failure);
  } catch (...) {  // such as no memory; nothing may leave the process but its status
  }
  _exit(kNegative);
}

// Notes a report, if there is one within some time. Returns false if there is none.
bool Crowd::ReadReport(int milliseconds) {
  pollfd ready = {pipe_[0], POLLIN, 0};
  Report report{};
  if (poll(&ready, 1, milliseconds) <= 0) return false;
  if (read(pipe_[0], &report, sizeof report) != sizeof report) return false;
  users_[static_cast<std::size_t>(report.user)].entries = report.entry;
  names_.insert(NameOf(report.user, report.life, report.entry));
  waits_ += report.waits;
  last_report_ = Clock::now();
  return true;
}

bool Crowd::Watch() {
  constexpr int kMoment = 20;  // milliseconds
  constexpr auto kPatience = std::chrono::minutes(1);
  ReadReport(kMoment);
  bool busy = false;
  for (int number = 0; User & user : users_) {
    int status = 0;
    if (user.process > 0 && waitpid(user.process, &status, WNOHANG) > 0) NoteEnd(number, status);
    busy |= user.process > 0;
    ++number;
  }
  if (Interrupt::Came()) throw Stopped{};
  if (Clock::now() - last_report_ > kPatience) throw Rejection("no user gets on");
  return busy;
}

// A user has ended, with a status as `waitpid` gives it.
void Crowd::NoteEnd(int number, int status) {
  users_[static_cast<std::size_t>(number)].process = 0;
  while (ReadReport(0)) {  // what it had sent before
  }
  const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  if (mortal_ && signal == SIGKILL) {
    ++kills_;
    Start(number);
  } else if (signal == SIGINT || Interrupt::Came()) {  // Ctrl-C goes to all of them
    throw Stopped{};
  } else if (status != 0) {
    throw Rejection("a user failed");
  }
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
  Crowd crowd(path, users, entries, options.Has("--kill"));
  crowd.StartAll();
  while (crowd.Watch()) {
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
