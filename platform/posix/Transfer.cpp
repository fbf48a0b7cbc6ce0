// Reading and writing.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/Volume.h"

namespace orzcore::platform {
namespace {

struct Moved {
  std::uint32_t count;
  int error;  // of the host; 0 if all was moved, or the file has ended
};

// Moves bytes by `pread` or `pwrite`, which may take several calls.
template <typename Call, typename Byte>
Moved MoveAll(Call call, const FileHandle& file, Byte* bytes, std::uint32_t count) {
  Moved moved = {0, 0};
  while (moved.count < count) {
    const ssize_t piece = Uninterrupted([&] {
      return call(file.descriptor.Number(), bytes + moved.count, count - moved.count,
                  file.position + moved.count);
    });
    if (piece < 0) moved.error = errno;
    if (piece <= 0) break;
    moved.count += static_cast<std::uint32_t>(piece);
  }
  return moved;
}

// A volume without locks has none in the way.
bool IsLockedByOthers(const FileHandle& file, std::uint32_t count) {
  const ByteRange range = {static_cast<std::uint64_t>(file.position), count};
  return file.Judge(AskForLocks(file.descriptor.Number(), range)) == LockAnswer::kTaken;
}

int Finish(FileHandle& file, const Moved& moved, std::uint32_t* done, SystemError fault) {
  if (moved.error != 0) return FailWithHost(moved.error, fault);
  file.position += moved.count;
  *done = moved.count;
  return 1;
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
  const Moved moved = MoveAll(::pread, *file, static_cast<std::byte*>(buffer), count);
  return Finish(*file, moved, done, kReadFault);
}

int WriteFile(void* handle, const void* buffer, std::uint32_t count, std::uint32_t* done,
              void* /*overlapped*/) {
  *done = 0;
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (!file->may_write) return Fail(kAccessDenied);
  if (count == 0) return 1;
  if (IsLockedByOthers(*file, count)) return Fail(kLockViolation);
  count = std::min(count, gVolume.longest_write);
  Moved moved = MoveAll(::pwrite, *file, static_cast<const std::byte*>(buffer), count);
  if (moved.error == 0 && moved.count < count) moved.error = EIO;  // the host took no more
  if (moved.count > 0) file->is_dirty = true;                      // also if the rest failed
  return Finish(*file, moved, done, kWriteFault);
}

}  // namespace orzcore::platform
