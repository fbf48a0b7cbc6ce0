// Locks of byte ranges.
#include <cstdint>

#include "platform/files.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {
namespace {

// To the host, a length of 0 means "without an end". So only the table knows a lock of 0 bytes.
int LockOnHost(const OwnedFile& file, ByteRange range) {
  return range.length == 0 ? 0 : LockAlone(file, range);
}

int UnlockOnHost(const OwnedFile& file, ByteRange range) {
  return range.length == 0 ? 0 : Unlock(file, range);
}

// `LockAlone` can fail without releasing what it has locked meanwhile (`kNotReleased`). This would
// keep other users out until the close, so `LockFile` and `UnlockFile` try to release it again.
bool ReleaseLeftover(FileHandle& handle) {
  if (UnlockOnHost(handle.file, handle.unreleased) != 0) return false;
  handle.unreleased = {};
  return true;
}

// Every `HostResult` except `kNameMoved` means that the lock is refused. `kNoLocks` does, too: the
// volume had locks when the file was opened.
int FailToLock(int result) {
  if (result == kNameMoved) return Fail(kGeneralFailure);
  return result < 0 ? Fail(kLockViolation) : FailWithHost(result);
}

}  // namespace

int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high) {
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  if (!opened->file.has_locks) return Fail(kNotSupported);
  const ByteRange range = {offset_low, length_low};
  RangeTable& locks = opened->locks;
  if (locks.Overlaps(range) || locks.Contains(range)) return Fail(kLockViolation);
  if (!locks.Reserve()) return Fail(kNotEnoughMemory);
  if (!ReleaseLeftover(*opened)) return Fail(kLockViolation);
  const int result = LockOnHost(opened->file, range);
  if (result == kNotReleased) opened->unreleased = range;
  if (result != 0) return FailToLock(result);
  locks.Add(range);
  return 1;
}

int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high) {
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  if (!opened->file.has_locks) return Fail(kNotSupported);
  const ByteRange range = {offset_low, length_low};
  if (!opened->locks.Contains(range)) return Fail(kNotLocked);
  if (UnlockOnHost(opened->file, range) != 0) return Fail(kNotLocked);
  opened->locks.Remove(range);
  ReleaseLeftover(*opened);
  return 1;
}

}  // namespace orzcore::platform
