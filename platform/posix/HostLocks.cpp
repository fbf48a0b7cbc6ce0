// Locks of open files, as the host keeps them.
#include "platform/posix/HostLocks.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "platform/posix/Descriptor.h"
#include "platform/posix/Volume.h"

namespace orzcore::platform {
namespace {

static_assert(sizeof(off_t) == sizeof(std::uint64_t));

constexpr int kNoLockErrors[] = {EINVAL, ENOSYS, EOPNOTSUPP, ENOLCK};

int Call(int descriptor, int command, struct flock& lock) {
  if (!gVolume.has_locks) {
    errno = EOPNOTSUPP;
    return -1;
  }
  return Uninterrupted([&] { return ::fcntl(descriptor, command, &lock); });
}

struct flock Describe(short type, ByteRange range) {
  struct flock lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = static_cast<off_t>(range.start);
  lock.l_len = static_cast<off_t>(range.length);
  return lock;
}

// An error of any other kind gives no lock either.
LockAnswer Refusal() {
  const bool is_no_lock = std::find(std::begin(kNoLockErrors), std::end(kNoLockErrors), errno) !=
                          std::end(kNoLockErrors);
  return is_no_lock ? LockAnswer::kNoLocks : LockAnswer::kTaken;
}

LockAnswer Set(int descriptor, short type, ByteRange range) {
  struct flock lock = Describe(type, range);
  return Call(descriptor, F_OFD_SETLK, lock) == 0 ? LockAnswer::kGranted : Refusal();
}

}  // namespace

LockAnswer LockShared(int descriptor, ByteRange range) { return Set(descriptor, F_RDLCK, range); }

LockAnswer Unlock(int descriptor, ByteRange range) { return Set(descriptor, F_UNLCK, range); }

LockAnswer AskForLocks(int descriptor, ByteRange range) {
  struct flock lock = Describe(F_WRLCK, range);
  if (Call(descriptor, F_OFD_GETLK, lock) != 0) return Refusal();
  return lock.l_type == F_UNLCK ? LockAnswer::kGranted : LockAnswer::kTaken;
}

LockAnswer LockAlone(int descriptor, bool is_writable, ByteRange range) {
  if (is_writable) return Set(descriptor, F_WRLCK, range);
  LockAnswer answer = AskForLocks(descriptor, range);
  if (answer == LockAnswer::kGranted) answer = LockShared(descriptor, range);
  if (answer != LockAnswer::kGranted) return answer;
  if (AskForLocks(descriptor, range) == LockAnswer::kGranted) return LockAnswer::kGranted;
  Unlock(descriptor, range);
  return LockAnswer::kCollided;
}

}  // namespace orzcore::platform
