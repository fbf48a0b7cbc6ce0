// The host's locks on open files.
#include "platform/posix/HostLocks.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/posix/Descriptor.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {

constinit VolumeAbilities gVolumeAbilities;

namespace {

static_assert(sizeof(off_t) == sizeof(std::uint64_t));

constexpr ByteRange kWholeFile = {0, 0};  // to the host, a length of 0 means "without an end"

struct ResultRow {
  int host_error;
  HostResult result;
};

// An error that is not here is a fault of the device.
constexpr ResultRow kResults[] = {
    {EAGAIN, kTaken},   {EACCES, kTaken},       {EINVAL, kNoLocks},   {ENOSYS, kNoLocks},
    {ENOTTY, kNoLocks}, {EOPNOTSUPP, kNoLocks}, {ESTALE, kNameMoved}, {ENOENT, kNameMoved},
};

// Returns 0 or the host's error.
int CallFcntl(int descriptor, int command, short type, ByteRange range, struct flock& lock) {
  if (!gVolumeAbilities.has_locks) return EOPNOTSUPP;
  lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = static_cast<off_t>(range.start);
  lock.l_len = static_cast<off_t>(range.length);
  return Uninterrupted([&] { return ::fcntl(descriptor, command, &lock); }) == 0 ? 0 : errno;
}

int ResultOf(int host_error) {
  for (const ResultRow& row : kResults) {
    if (row.host_error == host_error) return row.result;
  }
  return host_error;
}

int QueryOnce(const OwnedFile& file, ByteRange range) {
  struct flock lock;
  const int error = CallFcntl(file.Number(), F_OFD_GETLK, F_WRLCK, range, lock);
  if (error == ENOLCK) return kNoLocks;  // a query needs no memory
  if (error != 0) return ResultOf(error);
  return lock.l_type == F_UNLCK ? 0 : kTaken;
}

int SetOnce(const OwnedFile& file, short type, ByteRange range) {
  struct flock lock;
  const int error = CallFcntl(file.Number(), F_OFD_SETLK, type, range, lock);
  if (error != ENOLCK) return ResultOf(error);
  // The volume has no locks, or the host has no memory for one. A query shows which.
  return QueryOnce(file, range) == kNoLocks ? kNoLocks : kTaken;
}

template <typename Attempt>
int RetryIfTaken(const OwnedFile& file, Attempt attempt) {
  return RetryMomentaryRefusal(file.volume, attempt, [](int result) { return result == kTaken; });
}

int SetLock(const OwnedFile& file, short type, ByteRange range) {
  return RetryIfTaken(file, [&] { return SetOnce(file, type, range); });
}

int LockAloneReadOnly(const OwnedFile& file, ByteRange range) {
  if (const int result = QueryRange(file, range); result != 0) return result;
  if (const int result = LockShared(file, range); result != 0) return result;
  // Somebody else may have done the same at this moment. Where only a query that reports the user's
  // own lock could tell, both keep the lock: neither of them can write.
  if (ReportsOwnLocks(file.volume) || QueryRange(file, range) == 0) return 0;
  return Unlock(file, range) == 0 ? kCollided : kNotReleased;
}

}  // namespace

int LockShared(const OwnedFile& file, ByteRange range) { return SetLock(file, F_RDLCK, range); }

int LockAlone(const OwnedFile& file, ByteRange range) {
  return file.is_writable ? SetLock(file, F_WRLCK, range) : LockAloneReadOnly(file, range);
}

int Unlock(const OwnedFile& file, ByteRange range) { return SetLock(file, F_UNLCK, range); }

void UnlockAll(const OwnedFile& file) { Unlock(file, kWholeFile); }

int QueryRange(const OwnedFile& file, ByteRange range) {
  return RetryIfTaken(file, [&] { return QueryOnce(file, range); });
}

}  // namespace orzcore::platform
