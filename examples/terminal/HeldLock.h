// A lock on a file.
#pragma once

#include <string>

#include "orzcore/file.h"

/// Holds a lock during its lifetime.
class HeldLock {
 public:
  /// Waits until the lock is free. Throws `Failure`, or `Stopped` after Ctrl-C.
  ///
  /// @param position  where the range begins
  /// @param path      of the file, for messages
  HeldLock(OZFile& file, std::int32_t position, eLockModes mode, const std::string& path);
  ~HeldLock() { file_.VirtualLock(OZ_LOCK_RELEASE, &position_, mode_); }
  HeldLock(const HeldLock&) = delete;
  HeldLock& operator=(const HeldLock&) = delete;

 private:
  OZFile& file_;
  std::int32_t position_;
  const eLockModes mode_;
};
