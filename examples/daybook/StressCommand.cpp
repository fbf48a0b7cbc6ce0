// Looks for losses in a shared file: every user must find every entry that was reported as stored.
//
// The users of a run add entries at the same time. Then the run adds an entry that reports how many
// entries were stored, and it checks the entries of every run whose report is in the file. So
// several runs, on one machine or on several, check each other.
#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <iostream>
#include <map>
#include <random>

#include "Commands.h"
#include "Store.h"
#include "StressUsers.h"
#include "terminal/Text.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMostEntries = 100000;

// The report of a run that has ended: each of its users stored `entries` entries.
struct RunReport {
  int number = 0;
  int users = 0;
  int entries = 0;

  std::string Text() const {
    return "stress " + std::to_string(number) + ": stored " + std::to_string(users) + " x " +
           std::to_string(entries);
  }

  // Returns false if the text is not such a report.
  bool Read(const std::string& text) {
    return std::sscanf(text.c_str(), "stress %d: stored %d x %d", &number, &users, &entries) == 3 &&
           Text() == text && users > 0 && users <= kMostUsers && entries <= kMostEntries;
  }
};

// What the entries of a file show.
struct Findings {
  int runs = 0;
  int stored = 0;
  int lost = 0;
  int not_reported = 0;
};

Findings Check(const Store::Contents& contents) {
  std::map<std::string, int> found;
  for (const auto& [id, entry] : contents.entries) ++found[entry.text];
  Findings findings;
  for (RunReport run; const auto& [text, count] : found) {
    if (!run.Read(text)) continue;
    ++findings.runs;
    findings.stored += run.users * run.entries;
    for (int i = 0; i < run.users * run.entries; ++i) {
      const auto entry = found.find(StressText(run.number, i / run.entries, i % run.entries));
      if (entry == found.end()) ++findings.lost;
      if (entry != found.end()) findings.not_reported += entry->second - 1;
    }
  }
  return findings;
}

}  // namespace

std::string ExplainStress() {
  return "Every user is a process. Each entry that it reports as stored must be in FILE at the "
         "end.\n"
         "Other entries in FILE stay as they are. To check that several machines can share FILE,\n"
         "start this command on each of them, with --runs. Each checks the entries of all.\n";
}

ExitStatus RunStress(const Options& options) {
  constexpr auto kPatience = std::chrono::minutes(1);
  constexpr auto kPause = std::chrono::milliseconds(200);
  const std::string& path = options.Words().front();
  const int runs = options.Number("--runs", 1, 100, 1);
  const StressPlan plan = {.path = path,
                           .run = static_cast<int>(std::random_device{}() & INT_MAX),
                           .users = options.Number("--users", 1, kMostUsers, 4),
                           .entries = options.Number("--entries", 1, kMostEntries, 100),
                           .kills = options.Has("--kill")};
  const Interrupt interrupt;
  Store::Contents contents;
  std::atomic<int> refused = 0;
  const auto read = [&](Store::Access access) {
    RetryIfRefused(&refused, [&] { contents = Store(path, access, false).ReadAll(); });
  };
  read(Store::kCreating);  // a file that is not a daybook is reported once, not by each user

  const auto start = Clock::now();
  const StressCounts counts = RunUsers(plan);
  const std::chrono::duration<double> seconds = Clock::now() - start;

  Entry report;
  report.moment = OZDate::CurDateTime();
  report.text = RunReport{plan.run, plan.users, plan.entries}.Text();
  RetryIfRefused(&refused, [&] { Store(path, Store::kChanging, false).Add(report); });

  Findings findings;
  std::size_t known = 0;
  for (auto last_change = Clock::now();; std::this_thread::sleep_for(kPause)) {
    read(Store::kReading);
    findings = Check(contents);
    if (contents.entries.size() != known) last_change = Clock::now();
    known = contents.entries.size();
    if (findings.runs >= runs || Clock::now() - last_change > kPatience) break;
    if (Interrupt::Came()) throw Stopped{};
  }

  const int damaged = std::max(counts.damaged, static_cast<int>(contents.damaged.size()));
  std::cout << "stored " << findings.stored << ", lost " << findings.lost << ", damaged " << damaged
            << "\nrun " << plan.run << " of " << findings.runs << ", refused "
            << counts.refused + refused << ", not reported " << findings.not_reported << ", kills "
            << counts.kills << ", waits " << counts.waits << ", entries per second "
            << static_cast<int>(plan.users * plan.entries / seconds.count()) << '\n';
  if (findings.runs < runs) {
    throw Rejection("waited a minute for another run: " + std::to_string(findings.runs) + " of " +
                    std::to_string(runs) + " have reported");
  }
  return findings.lost == 0 && damaged == 0 ? kSuccess : kNegative;
}

ExitStatus RunStressUser(const Options& options) {
  const auto& words = options.Words();
  const auto number = [&](std::size_t word, int most) {
    if (const auto value = WholeNumber(words[word], 0, most)) return *value;
    throw UsageError("'" + words[word] + "' must be a number from 0 to " + std::to_string(most));
  };
  const StressPlan plan = {.path = words[0],
                           .run = number(1, INT_MAX),
                           .users = 1,
                           .entries = number(4, kMostEntries),
                           .kills = false};
  AddEntries(plan, number(2, kMostUsers), number(3, kMostEntries));
  return kSuccess;
}
