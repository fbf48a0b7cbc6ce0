#include "StressUsers.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <string_view>
#include <vector>

#include "Commands.h"
#include "Store.h"
#include "terminal/UserProcess.h"

namespace {

using Clock = std::chrono::steady_clock;

// What a user reports to the parent. A report is one byte, so that no part of it can be lost if
// the process is killed.
enum Report : char { kStored = '+', kRefused = 'r', kWaited = 'w', kFoundDamage = 'd' };

void Tell(Report report, int times = 1) {
  std::cout << std::string(static_cast<std::size_t>(times), report) << std::flush;
  if (!std::cout) throw Stopped{};  // the parent has ended
}

// One user: its process, which is started again if it was killed, and what it has reported.
struct User {
  std::optional<UserProcess> process;
  Clock::time_point death;  // when it is killed
  int stored = 0;           // entries
};

class Crowd {
 public:
  explicit Crowd(const StressPlan& plan)
      : plan_(plan), users_(static_cast<std::size_t>(plan.users)) {
    for (User& user : users_) Start(user);
  }

  // Reads the reports, kills users and starts them again. Returns false when all users have ended.
  bool Watch();

  int Stored() const {
    return std::accumulate(users_.begin(), users_.end(), 0,
                           [](int sum, const User& user) { return sum + user.stored; });
  }
  const StressCounts& Counts() const { return counts_; }

 private:
  void Start(User& user);
  void ReadReports(User& user);

  const StressPlan& plan_;
  std::vector<User> users_;
  StressCounts counts_;
  std::mt19937 random_{std::random_device{}()};
};

void Crowd::Start(User& user) {
  // Longer and longer, so that every user can finish.
  constexpr int kShortest = 4000;  // microseconds, in which a process starts
  constexpr int kMostDoublings = 10;
  const int longest = kShortest << std::min(counts_.kills / plan_.users / 3, kMostDoublings);
  const int lifetime = std::uniform_int_distribution(1, longest)(random_);
  user.death = Clock::now() + std::chrono::microseconds(lifetime);
  const auto number = static_cast<int>(&user - users_.data());
  user.process.emplace(std::vector<std::string>{
      "stress-user", "--", plan_.path, std::to_string(plan_.run), std::to_string(number),
      std::to_string(user.stored), std::to_string(plan_.entries)});
}

void Crowd::ReadReports(User& user) {
  for (const char report : user.process->TakeOutput()) {
    if (report == kStored) ++user.stored;
    if (report == kRefused) ++counts_.refused;
    if (report == kWaited) ++counts_.waits;
    if (report == kFoundDamage) ++counts_.damaged;
  }
}

bool Crowd::Watch() {
  bool busy = false;
  for (User& user : users_) {
    if (!user.process) continue;
    UserProcess::State state = user.process->Look();  // before the reports, to have them all
    const bool kill =
        plan_.kills && state == UserProcess::State::kRuns && Clock::now() >= user.death;
    if (kill) user.process->Kill();
    ReadReports(user);
    if (state == UserProcess::State::kInterrupted) throw Stopped{};
    if (state == UserProcess::State::kFailed) throw Rejection("a user failed");
    if (kill) ++counts_.kills, Start(user);
    if (state == UserProcess::State::kSucceeded) user.process.reset();
    busy |= user.process.has_value();
  }
  return busy;
}

}  // namespace

void AddEntries(const StressPlan& plan, int user, int first) {
  constexpr int kListEvery = 50;
  std::unique_ptr<Store> kept;
  for (int stored = first; stored < plan.entries;) {
    std::atomic<int> refused = 0;
    int waits = 0;
    RetryIfRefused(&refused, [&] {
      // A store that has thrown is not used again.
      auto store =
          kept ? std::move(kept) : std::make_unique<Store>(plan.path, Store::kChanging, false);
      const int waits_before = store->Waits();
      Entry entry;
      entry.moment = OZDate::CurDateTime();
      entry.text = StressText(plan.run, user, stored);
      store->Add(entry);
      waits = store->Waits() - waits_before;
      kept = std::move(store);
    });
    Tell(kStored);
    Tell(kRefused, refused);
    Tell(kWaited, waits);
    if (++stored % kListEvery == 0 && !kept->ReadAll().damaged.empty()) Tell(kFoundDamage);
  }
}

std::string StressText(int run, int user, int entry) {
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
