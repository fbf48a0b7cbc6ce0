// The share state: who may have a file open at the same time.
#include "platform/posix/ShareState.h"

#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"

namespace orzcore::platform {
namespace {

// A user who shares has a shared lock on the first byte. A user who shares nothing has locked both
// bytes, and nobody else has a lock on them. docs/internals.md calls the bytes S and X.
constexpr std::uint64_t kFirstByte = std::uint64_t{1} << 62;
constexpr ByteRange kSharedByte = {kFirstByte, 1};
constexpr ByteRange kOwnerByte = {kFirstByte + 1, 1};
constexpr ByteRange kBothBytes = {kFirstByte, 2};

constexpr int kMaxCollisions = 8;

int ShareWithOthers(const OwnedFile& file) {
  if (const int result = LockShared(file, kSharedByte); result != 0) return result;
  const int result = QueryRange(file, kOwnerByte);
  return result == kNoLocks ? kTaken : result;  // the volume has locks: it just granted one
}

int ShareNothing(const OwnedFile& file) {
  int result = LockAlone(file, kBothBytes);
  for (int i = 1; result == kCollided && i < kMaxCollisions; ++i) {
    PauseBeforeRetry();
    result = LockAlone(file, kBothBytes);
  }
  return result;
}

}  // namespace

int TakeShareState(OwnedFile& file, bool shares) {
  const int result = shares ? ShareWithOthers(file) : ShareNothing(file);
  file.has_locks = result == 0;
  switch (result) {
    case kNoLocks:
      return 0;
    case kTaken:
    case kCollided:
    case kNotReleased:
      return kInUse;
    default:
      return result;
  }
}

}  // namespace orzcore::platform
