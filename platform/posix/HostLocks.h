// Locks of open files, as the host keeps them.
//
// They belong to an open descriptor, bind every other descriptor in any process, and end when their
// descriptor is closed.
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

/// What became of a lock or an unlock.
enum class LockResult {
  kDone,
  kTaken,     // another descriptor has a lock there
  kCollided,  // another descriptor took a lock at the same moment, and both were released
  kNoLocks    // the volume has none
};

/// What other descriptors have locked in a range.
enum class RangeState {
  kFree,
  kTaken,
  kNoLocks  // the volume has none
};

/// Takes a lock that other descriptors may have, too.
LockResult LockShared(int descriptor, ByteRange range);

/// Takes a lock that no other descriptor has, shared or exclusive.
///
/// The host gives a read-only descriptor shared locks only. So this asks for other locks before it
/// takes one, in order not to block others with an attempt that must fail, and once more afterwards.
LockResult LockAlone(int descriptor, bool is_writable, ByteRange range);

LockResult Unlock(int descriptor, ByteRange range);

/// Asks whether another descriptor has a lock in a range, shared or exclusive.
RangeState QueryRange(int descriptor, ByteRange range);

}  // namespace orzcore::platform
