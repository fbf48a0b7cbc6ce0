// Locks of open files, as the host keeps them.
#include "platform/posix/HostLocks.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "platform/posix/Descriptor.h"
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {

constinit VolumeAbilities gVolumeAbilities;

namespace {

static_assert(sizeof(off_t) == sizeof(std::uint64_t));

// The volume has no locks, or the host has no memory for one.
constexpr int kNoLockErrors[] = {EINVAL, ENOSYS, EOPNOTSUPP, ENOLCK};

bool IsNoLockError(int host_error) {
  return std::ranges::find(kNoLockErrors, host_error) != std::end(kNoLockErrors);
}

int CallFcntl(int descriptor, int command, short type, ByteRange range, struct flock& lock) {
  if (!gVolumeAbilities.has_locks) {
    errno = EOPNOTSUPP;
    return -1;
  }
  lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = static_cast<off_t>(range.start);
  lock.l_len = static_cast<off_t>(range.length);
  return Uninterrupted([&] { return ::fcntl(descriptor, command, &lock); });
}

LockResult SetLock(int descriptor, short type, ByteRange range) {
  struct flock lock;
  if (CallFcntl(descriptor, F_OFD_SETLK, type, range, lock) == 0) return LockResult::kDone;
  return IsNoLockError(errno) ? LockResult::kNoLocks : LockResult::kTaken;
}

LockResult LockAloneReadOnly(int descriptor, ByteRange range) {
  const RangeState state = QueryRange(descriptor, range);
  if (state == RangeState::kNoLocks) return LockResult::kNoLocks;
  if (state == RangeState::kTaken) return LockResult::kTaken;
  const LockResult result = LockShared(descriptor, range);
  if (result != LockResult::kDone) return result;
  if (QueryRange(descriptor, range) == RangeState::kFree) return LockResult::kDone;
  Unlock(descriptor, range);
  return LockResult::kCollided;
}

}  // namespace

LockResult LockShared(int descriptor, ByteRange range) {
  return SetLock(descriptor, F_RDLCK, range);
}

LockResult LockAlone(int descriptor, bool is_writable, ByteRange range) {
  return is_writable ? SetLock(descriptor, F_WRLCK, range) : LockAloneReadOnly(descriptor, range);
}

LockResult Unlock(int descriptor, ByteRange range) { return SetLock(descriptor, F_UNLCK, range); }

RangeState QueryRange(int descriptor, ByteRange range) {
  struct flock lock;
  if (CallFcntl(descriptor, F_OFD_GETLK, F_WRLCK, range, lock) == 0) {
    return lock.l_type == F_UNLCK ? RangeState::kFree : RangeState::kTaken;
  }
  return IsNoLockError(errno) ? RangeState::kNoLocks : RangeState::kTaken;
}

}  // namespace orzcore::platform
