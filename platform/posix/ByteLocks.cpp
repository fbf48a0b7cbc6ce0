// Locks of byte ranges.
#include <cstdint>

#include "platform/files.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {
namespace {

// The host takes a length of 0 as "to the end of all files", so such a lock stands in the table
// only.
int LockOnHost(const OwnedFile& file, ByteRange range) {
  return range.length == 0 ? 0 : LockAlone(file, range);
}

int UnlockOnHost(const OwnedFile& file, ByteRange range) {
  return range.length == 0 ? 0 : Unlock(file, range);
}

// A refused lock that could not be released would keep other users out until the close. So each
// call on the handle's locks tries again.
bool ReleaseRest(FileHandle& handle) {
  if (UnlockOnHost(handle.file, handle.unreleased) != 0) return false;
  handle.unreleased = {};
  return true;
}

// A refusal is a lock violation, and what the host cannot answer is a fault. A volume that had
// locks when the file was opened still has them.
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
  if (!ReleaseRest(*opened)) return Fail(kLockViolation);
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
  ReleaseRest(*opened);
  return 1;
}

}  // namespace orzcore::platform
