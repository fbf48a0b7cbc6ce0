// The users of a stress run: processes that add entries to one file at the same time.
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "terminal/Failure.h"

inline constexpr int kMostUsers = 100;

struct StressPlan {
  std::string path;
  int run;      ///< the number of the run, at random; the texts of its entries contain it
  int users;    ///< 1 to `kMostUsers`
  int entries;  ///< of each user
  bool kills;   ///< whether users are killed and started again
};

/// What the users of a run met with.
struct StressCounts {
  int refused = 0;  ///< opens and locks
  int waits = 0;    ///< for a lock of another user
  int damaged = 0;  ///< how often a user found a damaged entry in the file
  int kills = 0;
};

/// The text of an entry. Users and entries are numbered from 0.
std::string StressText(int run, int user, int entry);

/// Adds the entries of one user, and reports on standard output. It is the work of a process that
/// `RunUsers` starts.
///
/// @param first  the first entry to add
void AddEntries(const StressPlan& plan, int user, int first);

/// Carries out a plan. When it returns, every user has reported all its entries as stored. Throws
/// `Rejection` if a user fails, or `Stopped`.
StressCounts RunUsers(const StressPlan& plan);

/// Does some work on a daybook, and repeats it while an open or a lock is refused. Every daybook
/// user shares the file, so a refusal is a fault, but it may last only a moment.
///
/// @param refused  the refusals are added to it
template <typename Work>
void RetryIfRefused(std::atomic<int>* refused, Work work) {
  constexpr int kMostTries = 200;
  constexpr auto kPause = std::chrono::milliseconds(20);
  for (int tries = 1;; ++tries) {
    try {
      return work();
    } catch (const Failure& failure) {
      const bool is_refusal = failure.error == eErrSharing || failure.error == eErrLocked ||
                              failure.error == eErrAccessDenied;
      if (!is_refusal || tries == kMostTries) throw;
    }
    ++*refused;
    std::this_thread::sleep_for(kPause);
  }
}
