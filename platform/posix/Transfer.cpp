// Reading, writing, the position and the end of a file.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {
namespace {

constexpr std::int64_t kLastPosition = std::numeric_limits<std::uint32_t>::max();

struct TransferResult {
  std::uint32_t count;
  int error;  // of the host; 0 if all bytes were moved, or the file has ended
};

// Calls `pread` or `pwrite` until all bytes are moved.
template <typename Call, typename Byte>
TransferResult MoveAll(Call call, const FileHandle& file, Byte* bytes, std::uint32_t count) {
  TransferResult result = {0, 0};
  while (result.count < count) {
    const ssize_t piece = Uninterrupted([&] {
      return call(file.descriptor.Number(), bytes + result.count, count - result.count,
                  file.position + result.count);
    });
    if (piece < 0) result.error = errno;
    if (piece <= 0) break;
    result.count += static_cast<std::uint32_t>(piece);
  }
  return result;
}

bool IsLockedByOthers(const FileHandle& file, std::uint32_t count) {
  if (!file.has_locks) return false;
  const ByteRange range = {static_cast<std::uint64_t>(file.position), count};
  return QueryRange(file.descriptor.Number(), range) != RangeState::kFree;
}

int Finish(FileHandle& file, const TransferResult& result, std::uint32_t* done, SystemError fault) {
  if (result.error != 0) return FailWithHost(result.error, fault);
  file.position += result.count;
  *done = result.count;
  return 1;
}

std::uint32_t FailToMove(SystemError error) {
  Fail(error);
  return kInvalidFilePosition;
}

}  // namespace

int ReadFile(void* handle, void* buffer, std::uint32_t count, std::uint32_t* done,
             void* /*overlapped*/) {
  *done = 0;
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (!file->may_read) return Fail(kAccessDenied);
  if (count == 0) return 1;
  if (IsLockedByOthers(*file, count)) return Fail(kLockViolation);
  const TransferResult result = MoveAll(::pread, *file, static_cast<std::byte*>(buffer), count);
  return Finish(*file, result, done, kReadFault);
}

int WriteFile(void* handle, const void* buffer, std::uint32_t count, std::uint32_t* done,
              void* /*overlapped*/) {
  *done = 0;
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (!file->may_write) return Fail(kAccessDenied);
  if (count == 0) return 1;
  if (IsLockedByOthers(*file, count)) return Fail(kLockViolation);
  count = std::min(count, gVolumeAbilities.longest_write);
  TransferResult result = MoveAll(::pwrite, *file, static_cast<const std::byte*>(buffer), count);
  if (result.error == 0 && result.count < count) result.error = EIO;  // the host took no more bytes
  if (result.count > 0) file->is_dirty = true;                        // also if the rest failed
  return Finish(*file, result, done, kWriteFault);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's call has this shape
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return FailToMove(kBadHandle);
  if (distance_high != nullptr || origin > kFileEnd) return FailToMove(kBadParameter);

  std::int64_t base = 0;
  if (origin == kFileCurrent) base = file->position;
  if (origin == kFileEnd) base = ::lseek(file->descriptor.Number(), 0, SEEK_END);
  if (base < 0) {
    FailWithHost(errno);
    return kInvalidFilePosition;
  }
  const std::int64_t position = base + distance;
  if (position < 0) return FailToMove(kNegativeSeek);
  if (position > kLastPosition) return FailToMove(kBadParameter);

  file->position = position;
  if (position == kLastPosition) Fail(kNoError);  // callers tell this position from a failure by it
  return static_cast<std::uint32_t>(position);
}

int SetEndOfFile(void* handle) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (!file->may_write) return Fail(kAccessDenied);
  const int number = file->descriptor.Number();
  if (Uninterrupted([&] { return ::ftruncate(number, file->position); }) != 0) {
    return FailWithHost(errno, kWriteFault);
  }
  file->is_dirty = true;
  return 1;
}

}  // namespace orzcore::platform
