// Waiting for the lock of another user.
#pragma once

#include <optional>

#include "orzcore/file.h"
#include "terminal/Interrupt.h"

/// Tells the user that a file is in use, and lets Ctrl-C end the wait: the lock is then refused,
/// and `Interrupt::Came`.
class LockWatcher final : public OZLockFailureCallbacks {
 public:
  /// @param shows  whether the user is told
  LockWatcher(OZFile& file, bool shows);
  ~LockWatcher();
  LockWatcher(const LockWatcher&) = delete;
  LockWatcher& operator=(const LockWatcher&) = delete;

  void NotifyLockBlocked(std::int32_t attempt) override;
  void NotifyLockWaitOver() override;

  int Waits() const { return waits_; }  ///< how often a lock was not to be had at once

 private:
  OZFile& file_;
  const bool shows_;
  bool erases_ = false;  // whether a line on the terminal tells of a wait
  int waits_ = 0;
  std::optional<Interrupt> interrupt_;  // during a wait
};
