// Locks of byte ranges.
#include <cstdint>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {
namespace {

// The host takes a length of 0 as "to the end of all files", so such a lock stays in the table.
LockAnswer LockOnHost(const FileHandle& file, ByteRange range) {
  if (range.length == 0) return LockAnswer::kGranted;
  return file.Judge(LockAlone(file.descriptor.Number(), file.is_writable, range));
}

LockAnswer UnlockOnHost(const FileHandle& file, ByteRange range) {
  if (range.length == 0) return LockAnswer::kGranted;
  return file.Judge(Unlock(file.descriptor.Number(), range));
}

// A lock that is not in the table: on a volume without locks that is no wonder.
SystemError WhyNotLocked(const FileHandle& file, ByteRange range) {
  const LockAnswer answer = file.Judge(AskForLocks(file.descriptor.Number(), range));
  return answer == LockAnswer::kNoLocks ? kNotSupported : kNotLocked;
}

}  // namespace

int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  const ByteRange range = {offset_low, length_low};
  if (file->locks.Overlaps(range)) return Fail(kLockViolation);
  if (!file->locks.Reserve()) return Fail(kNotEnoughMemory);
  const LockAnswer answer = LockOnHost(*file, range);
  if (answer == LockAnswer::kNoLocks) return Fail(kNotSupported);
  if (answer != LockAnswer::kGranted) return Fail(kLockViolation);
  file->locks.Add(range);
  return 1;
}

int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  const ByteRange range = {offset_low, length_low};
  if (!file->locks.Contains(range)) return Fail(WhyNotLocked(*file, range));
  const LockAnswer answer = UnlockOnHost(*file, range);
  if (answer == LockAnswer::kNoLocks) return Fail(kNotSupported);
  if (answer != LockAnswer::kGranted) return Fail(kNotLocked);
  file->locks.Remove(range);
  return 1;
}

}  // namespace orzcore::platform
