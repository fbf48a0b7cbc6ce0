// Locks of byte ranges.
#include <cstdint>

#include "platform/files.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {
namespace {

// The host takes a length of 0 as "to the end of all files", so such a lock stands in the table only.
LockResult LockOnHost(const FileHandle& file, ByteRange range) {
  if (range.length == 0) return LockResult::kDone;
  return LockAlone(file.descriptor.Number(), file.is_writable, range);
}

LockResult UnlockOnHost(const FileHandle& file, ByteRange range) {
  if (range.length == 0) return LockResult::kDone;
  return Unlock(file.descriptor.Number(), range);
}

}  // namespace

int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  if (!file->has_locks) return Fail(kNotSupported);
  const ByteRange range = {offset_low, length_low};
  if (file->locks.Overlaps(range)) return Fail(kLockViolation);
  if (!file->locks.Reserve()) return Fail(kNotEnoughMemory);
  if (LockOnHost(*file, range) != LockResult::kDone) return Fail(kLockViolation);
  file->locks.Add(range);
  return 1;
}

int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  if (!file->has_locks) return Fail(kNotSupported);
  const ByteRange range = {offset_low, length_low};
  if (!file->locks.Contains(range)) return Fail(kNotLocked);
  if (UnlockOnHost(*file, range) != LockResult::kDone) return Fail(kNotLocked);
  file->locks.Remove(range);
  return 1;
}

}  // namespace orzcore::platform
