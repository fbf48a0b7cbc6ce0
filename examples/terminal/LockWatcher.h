// Waiting for a lock of another user.
#pragma once

#include <optional>

#include "orzcore/file.h"
#include "terminal/Interrupt.h"

/// Shows the user that a file is in use, and lets Ctrl-C end the wait. Then the lock is refused,
/// and `Interrupt::Came` returns true.
class LockWatcher final : public OZLockFailureCallbacks {
 public:
  /// @param shows  whether the user is shown that the file is in use
  LockWatcher(OZFile& file, bool shows);
  ~LockWatcher();
  LockWatcher(const LockWatcher&) = delete;
  LockWatcher& operator=(const LockWatcher&) = delete;

  void NotifyLockBlocked(std::int32_t attempt) override;
  void NotifyLockWaitOver() override;

  int Waits() const { return waits_; }  ///< how often a lock was not free at once

 private:
  OZFile& file_;
  const bool shows_;
  bool erases_ = false;  // whether the terminal shows a line that must be erased
  int waits_ = 0;
  std::optional<Interrupt> interrupt_;  // during a wait
};
