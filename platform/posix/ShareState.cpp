// Who may have a file open at the same time.
#include "platform/posix/ShareState.h"

#include <ctime>

namespace orzcore::platform {
namespace {

// Users who share hold a shared lock on the first byte. A user who does not share holds both bytes
// alone.
constexpr std::uint64_t kFirstByte = std::uint64_t{1} << 62;
constexpr ByteRange kSharedByte = {kFirstByte, 1};
constexpr ByteRange kOwnerByte = {kFirstByte + 1, 1};
constexpr ByteRange kBothBytes = {kFirstByte, 2};

constexpr int kMaxCollisions = 8;
constexpr long kShortestPause = 20000;  // nanoseconds
constexpr long kPauseSpread = 100000;

// The length differs from one call to the next: two users who collided would collide again after
// equal pauses.
void Pause() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const timespec pause = {0, kShortestPause + now.tv_nsec % kPauseSpread};
  nanosleep(&pause, nullptr);
}

LockResult ShareWithOthers(int descriptor) {
  const LockResult result = LockShared(descriptor, kSharedByte);
  if (result != LockResult::kDone) return result;
  switch (QueryRange(descriptor, kOwnerByte)) {
    case RangeState::kFree:
      return LockResult::kDone;
    case RangeState::kTaken:
      return LockResult::kTaken;
    case RangeState::kNoLocks:
      return LockResult::kNoLocks;
  }
  return LockResult::kTaken;
}

LockResult ShareNothing(int descriptor, bool is_writable) {
  LockResult result = LockAlone(descriptor, is_writable, kBothBytes);
  for (int i = 1; result == LockResult::kCollided && i < kMaxCollisions; ++i) {
    Pause();
    result = LockAlone(descriptor, is_writable, kBothBytes);
  }
  return result;
}

}  // namespace

LockResult TakeShareState(int descriptor, bool is_writable, bool shares) {
  return shares ? ShareWithOthers(descriptor) : ShareNothing(descriptor, is_writable);
}

}  // namespace orzcore::platform
