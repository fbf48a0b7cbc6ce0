// Waiting for a lock of another user.
#pragma once

#include <chrono>
#include <optional>

#include "orzcore/file.h"
#include "terminal/Interrupt.h"
#include "terminal/Options.h"

/// Returns the longest wait that the option "--wait" sets, or nothing without this option.
std::optional<std::chrono::seconds> LongestWait(const Options& options);

/// Shows the user that a file is in use, and lets Ctrl-C or a longest time end the wait. Then the
/// lock is refused; after Ctrl-C, `Interrupt::Came` returns true.
class LockWatcher final : public OZLockFailureCallbacks {
 public:
  /// @param shows  whether the user is shown that the file is in use
  /// @param most   the longest wait; with 0, a lock that is not free is refused at once
  LockWatcher(OZFile& file, bool shows, std::optional<std::chrono::seconds> most = {});
  ~LockWatcher() override;
  LockWatcher(const LockWatcher&) = delete;
  LockWatcher& operator=(const LockWatcher&) = delete;

  void NotifyLockBlocked(std::int32_t attempt) override;
  void NotifyLockWaitOver() override;

  int Waits() const { return waits_; }  ///< how often a lock was not free at once

 private:
  using Clock = std::chrono::steady_clock;

  bool RefusesAtOnce() const { return most_ && most_->count() == 0; }

  OZFile& file_;
  const bool shows_;
  const std::optional<std::chrono::seconds> most_;
  Clock::time_point began_;  // of the last wait
  bool erases_ = false;      // whether the terminal shows a line that must be erased
  int waits_ = 0;
  std::optional<Interrupt> interrupt_;  // during a wait
};
