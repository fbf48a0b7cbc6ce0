#include "StressUsers.h"

#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "Commands.h"
#include "Store.h"

namespace {

using Clock = std::chrono::steady_clock;

// What the users report. The memory is shared by their processes and the parent, so a report is not
// lost if its process is killed.
struct Reports {
  std::atomic<int> stored[kMostUsers];  // entries, for each user
  std::atomic<int> refused;
  std::atomic<int> waits;
  std::atomic<int> damaged;
};
static_assert(std::atomic<int>::is_always_lock_free, "a killed process must not keep a lock");

// Adds the entries of one user, in a process of its own. It begins after the last reported entry.
void AddEntries(const StressPlan& plan, int user, Reports& reports) {
  constexpr int kListEvery = 50;
  const pid_t parent = getppid();
  std::unique_ptr<Store> kept;
  std::atomic<int>& stored = reports.stored[user];
  while (stored < plan.entries && getppid() == parent) {
    RetryIfRefused(&reports.refused, [&] {
      // A store that has thrown is not used again.
      auto store =
          kept ? std::move(kept) : std::make_unique<Store>(plan.path, Store::kChanging, false);
      const int waits = store->Waits();
      Entry entry;
      entry.moment = OZDate::CurDateTime();
      entry.text = StressText(plan.run, user, stored);
      store->Add(entry);
      reports.waits += store->Waits() - waits;
      kept = std::move(store);
    });
    if (++stored % kListEvery != 0) continue;
    const auto damaged = static_cast<int>(kept->ReadAll().damaged.size());
    reports.damaged = std::max(reports.damaged.load(), damaged);
  }
}

// The system kills this process after some time, whatever the process is doing then.
void DieIn(int microseconds) {
  constexpr int kSecond = 1000000;
  const itimerval timer = {{}, {microseconds / kSecond, microseconds % kSecond}};
  setitimer(ITIMER_REAL, &timer, nullptr);  // by SIGALRM, which nobody handles
}

class Crowd {
 public:
  explicit Crowd(const StressPlan& plan)
      : plan_(plan), processes_(static_cast<std::size_t>(plan.users)) {
    void* const memory =
        mmap(nullptr, sizeof(Reports), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw Failure{eErrOutOfMemory, "Starting", __FILE__, __LINE__};
    reports_ = static_cast<Reports*>(memory);
    for (int user = 0; pid_t & process : processes_) process = Start(user++);
  }
  ~Crowd() {
    for (const pid_t process : processes_) {
      if (process > 0 && kill(process, SIGKILL) == 0) waitpid(process, nullptr, 0);
    }
    munmap(reports_, sizeof(Reports));
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  // Starts users again that were killed. Returns false when all users have ended.
  bool Watch();

  int Stored() const { return std::accumulate(reports_->stored, reports_->stored + kMostUsers, 0); }
  StressCounts Counts() const {
    return {reports_->refused, reports_->waits, reports_->damaged, kills_};
  }

 private:
  pid_t Start(int user);

  const StressPlan& plan_;
  std::vector<pid_t> processes_;  // of the users; 0 if it has ended
  Reports* reports_ = nullptr;
  int kills_ = 0;
  std::mt19937 random_{std::random_device{}()};
};

pid_t Crowd::Start(int user) {
  // Longer and longer, so that every user can finish.
  constexpr int kMostDoublings = 12;
  const int longest = 1000 << std::min(kills_ / plan_.users / 3, kMostDoublings);
  const int lifetime = std::uniform_int_distribution(1, longest)(random_);
  const pid_t process = fork();
  if (process < 0) throw Failure{eErrOutOfMemory, "Starting a user", __FILE__, __LINE__};
  if (process > 0) return process;
  try {
    std::signal(SIGINT, SIG_DFL);
    if (plan_.kills) DieIn(lifetime);
    AddEntries(plan_, user, *reports_);
    _exit(kSuccess);
  } catch (const Failure& failure) {
    ShowFailure(failure);
  } catch (...) {  // such as no memory; the process must end here
  }
  _exit(kNegative);
}

bool Crowd::Watch() {
  bool busy = false;
  for (int user = 0; pid_t & process : processes_) {
    int status = 0;
    if (process > 0 && waitpid(process, &status, WNOHANG) > 0) {
      const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
      process = 0;
      if (signal == SIGINT) throw Stopped{};  // Ctrl-C goes to all processes
      if (status != 0 && signal != SIGALRM) throw Rejection("a user failed");
      kills_ += signal == SIGALRM ? 1 : 0;
      if (signal == SIGALRM) process = Start(user);
    }
    busy |= process > 0;
    ++user;
  }
  return busy;
}

}  // namespace

std::string StressText(unsigned int run, int user, int entry) {
  return "stress " + std::to_string(run) + ": user " + std::to_string(user + 1) + ", entry " +
         std::to_string(entry + 1);
}

StressCounts RunUsers(const StressPlan& plan) {
  constexpr auto kPause = std::chrono::milliseconds(2);
  constexpr auto kPatience = std::chrono::minutes(1);
  Crowd crowd(plan);
  auto last_report = Clock::now();
  for (int stored = 0; crowd.Watch(); stored = crowd.Stored()) {
    std::this_thread::sleep_for(kPause);
    if (Interrupt::Came()) throw Stopped{};
    if (crowd.Stored() != stored) last_report = Clock::now();
    if (Clock::now() - last_report > kPatience) throw Rejection("no entry was stored for a minute");
  }
  return crowd.Counts();
}
