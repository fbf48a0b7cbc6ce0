// Who may have a file open at the same time.
#include "platform/posix/ShareState.h"

#include <ctime>

namespace orzcore::platform {
namespace {

constexpr std::uint64_t kFirstByte = std::uint64_t{1} << 62;
constexpr ByteRange kSharers = {kFirstByte, 1};
constexpr ByteRange kOwners = {kFirstByte + 1, 1};
constexpr ByteRange kBoth = {kFirstByte, 2};

constexpr int kMaxCollisions = 8;
constexpr long kShortestPause = 20000;  // nanoseconds
constexpr long kPauseSpread = 100000;

// Two users who collided would collide again if they paused for the same time.
void Pause() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const timespec pause = {0, kShortestPause + now.tv_nsec % kPauseSpread};
  nanosleep(&pause, nullptr);
}

LockAnswer ShareEverything(int descriptor) {
  const LockAnswer answer = LockShared(descriptor, kSharers);
  return answer == LockAnswer::kGranted ? AskForLocks(descriptor, kOwners) : answer;
}

LockAnswer ShareNothing(int descriptor, bool is_writable) {
  LockAnswer answer = LockAlone(descriptor, is_writable, kBoth);
  for (int i = 1; answer == LockAnswer::kCollided && i < kMaxCollisions; ++i) {
    Pause();
    answer = LockAlone(descriptor, is_writable, kBoth);
  }
  return answer;
}

}  // namespace

LockAnswer TakeShareState(int descriptor, bool is_writable, bool shares) {
  return shares ? ShareEverything(descriptor) : ShareNothing(descriptor, is_writable);
}

}  // namespace orzcore::platform
