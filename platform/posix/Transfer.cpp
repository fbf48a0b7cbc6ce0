// Reading, writing, and moving the position and the end of a file.
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
  int error;  // of the host; 0 if all bytes were moved, or up to the end of the file
};

// Calls `pread` or `pwrite` until all bytes are moved. EACCES: the server refuses the transfer
// because of a lock.
template <typename Call, typename Byte>
TransferResult MoveAll(Call call, const FileHandle& opened, Byte* bytes, std::uint32_t count) {
  TransferResult result = {0, 0};
  while (result.count < count) {
    const auto move = [&] {
      return call(opened.file.Number(), bytes + result.count, count - result.count,
                  opened.position + result.count);
    };
    const ssize_t piece = RetryMomentaryRefusal(
        opened.file.volume, [&] { return Uninterrupted(move); },
        [](ssize_t moved) { return moved < 0 && errno == EACCES; });
    if (piece < 0) result.error = errno;
    if (piece <= 0) break;
    result.count += static_cast<std::uint32_t>(piece);
  }
  return result;
}

// Finds out whether other handles have locks on the bytes of a transfer. Returns 0 if not, else as
// `QueryRange`.
//
// A handle that shares nothing needs no query: there are no other handles. Bytes that this handle
// has locked are left out, since some volumes report the locks of the handle itself.
int QueryLocksOfOthers(const FileHandle& opened, std::uint32_t count) {
  if (!opened.file.has_locks || !opened.shares) return 0;
  const auto start = static_cast<std::uint64_t>(opened.position);
  const std::uint64_t end = start + count;
  for (ByteRange gap = opened.locks.FirstGap({start, count}); gap.length != 0;
       gap = opened.locks.FirstGap({gap.End(), end - gap.End()})) {
    if (const int result = QueryRange(opened.file, gap); result != 0) return result;
  }
  return 0;
}

int FailToTransfer(int result, SystemError fault) {
  if (result == kNameMoved) return Fail(fault);
  return result < 0 ? Fail(kLockViolation) : FailWithHost(result, fault);
}

int Finish(FileHandle& opened, const TransferResult& result, std::uint32_t* done,
           SystemError fault) {
  if (result.error != 0) return FailWithHost(result.error, fault);
  opened.position += result.count;
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
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (!opened->may_read) return Fail(kAccessDenied);
  if (count == 0) return 1;
  if (const int result = QueryLocksOfOthers(*opened, count); result != 0) {
    return FailToTransfer(result, kReadFault);
  }
  RefreshData(opened->file.volume, opened->file.Number());
  const TransferResult result = MoveAll(::pread, *opened, static_cast<std::byte*>(buffer), count);
  return Finish(*opened, result, done, kReadFault);
}

int WriteFile(void* handle, const void* buffer, std::uint32_t count, std::uint32_t* done,
              void* /*overlapped*/) {
  *done = 0;
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (!opened->may_write) return Fail(kAccessDenied);
  if (count == 0) return 1;
  if (const int result = QueryLocksOfOthers(*opened, count); result != 0) {
    return FailToTransfer(result, kWriteFault);
  }
  count = std::min(count, gVolumeAbilities.longest_write);
  TransferResult result = MoveAll(::pwrite, *opened, static_cast<const std::byte*>(buffer), count);
  if (result.error == 0 && result.count < count) result.error = EIO;  // `pwrite` returned 0
  if (result.count > 0) opened->is_dirty = true;                      // even if the rest failed
  if (result.error == 0) {
    result.error = PublishData(opened->file.volume, opened->file.Number(), opened->position, count);
  }
  return Finish(*opened, result, done, kWriteFault);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's call has this shape
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin) {
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return FailToMove(kBadHandle);
  if (distance_high != nullptr || origin > kFileEnd) return FailToMove(kBadParameter);

  std::int64_t base = 0;
  if (origin == kFileCurrent) base = opened->position;
  if (origin == kFileEnd) {
    RefreshData(opened->file.volume, opened->file.Number());
    base = ::lseek(opened->file.Number(), 0, SEEK_END);
  }
  if (base < 0) {
    FailWithHost(errno);
    return kInvalidFilePosition;
  }
  const std::int64_t position = base + distance;
  if (position < 0) return FailToMove(kNegativeSeek);
  if (position > kLastPosition) return FailToMove(kBadParameter);

  opened->position = position;
  // This position is the same number as a failure; callers distinguish the two by `GetLastError`.
  if (position == kLastPosition) Fail(kNoError);
  return static_cast<std::uint32_t>(position);
}

int SetEndOfFile(void* handle) {
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (!opened->may_write) return Fail(kAccessDenied);
  const int number = opened->file.Number();
  if (Uninterrupted([&] { return ::ftruncate(number, opened->position); }) != 0) {
    return FailWithHost(errno, kWriteFault);
  }
  opened->is_dirty = true;
  return 1;
}

}  // namespace orzcore::platform
