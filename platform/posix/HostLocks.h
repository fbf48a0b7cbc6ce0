// Locks of open files, as the host keeps them.
//
// They belong to an open descriptor, bind every other one in any process, and end when it is
// closed.
#pragma once

#include <cstdint>

namespace orzcore::platform {

struct ByteRange {
  std::uint64_t start;
  std::uint64_t length;

  std::uint64_t End() const { return start + length; }
  bool operator==(const ByteRange&) const = default;
  bool operator<(const ByteRange& other) const {
    return start < other.start || (start == other.start && length < other.length);
  }
};

enum class LockAnswer {
  kGranted,
  kTaken,     // another descriptor has a lock there
  kCollided,  // it came at the same moment, and both stepped back
  kNoLocks    // this volume has none
};

/// Takes a lock that others may have as well.
LockAnswer LockShared(int descriptor, ByteRange range);

/// Takes a lock that nobody else has, of either kind. What a read-only descriptor gets are shared
/// locks, so it looks before it takes one, so as not to be in others' way for nothing, and again
/// afterwards.
LockAnswer LockAlone(int descriptor, bool is_writable, ByteRange range);

/// Tells whether another descriptor has a lock of either kind.
LockAnswer AskForLocks(int descriptor, ByteRange range);

LockAnswer Unlock(int descriptor, ByteRange range);

}  // namespace orzcore::platform
